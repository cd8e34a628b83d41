#pragma once
// File helpers and sample bytes shared by the filter tests.
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

// The whole file, or "<absent>" when it can't be opened.
inline std::string slurp(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll().toStdString() : std::string("<absent>");
}
inline std::string slurp(const std::string& path) { return slurp(QString::fromStdString(path)); }

// Replaces the file, making its folder first.
inline void spit(const QString& path, const std::string& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes.data(), qint64(bytes.size()));
}
inline void spit(const std::string& path, const std::string& bytes) { spit(QString::fromStdString(path), bytes); }

// Every file and folder below root, relative, sorted; folders end in "/".
inline QStringList tree(const QString& root)
{
    QStringList out;
    QDirIterator it(root, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
        QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        QString rel = QDir(root).relativeFilePath(it.filePath());
        if (it.fileInfo().isDir() && !it.fileInfo().isSymLink())
            rel += '/';
        out << rel;
    }
    out.sort();
    return out;
}

// Archive bytes laid out as the packer writes them.
struct Pack {
    Pack& file(const std::string& name, const std::string& payload)
    {
        bytes += "FILE";
        u32(uint32_t(name.size()));
        bytes += name;
        u32(uint32_t(payload.size()));
        bytes += payload;
        return *this;
    }
    Pack& empty() { return raw("EMTY"); }
    Pack& raw(const std::string& b)
    {
        bytes += b;
        return *this;
    }
    Pack& u32(uint32_t v)
    {
        for (int i = 0; i < 4; ++i)
            bytes.push_back(char((v >> (8 * i)) & 0xff));
        return *this;
    }
    std::string bytes;
};

// A fixed-seed generator, so the scrambling tests repeat exactly.
struct TestRandom {
    uint32_t seed;
    uint32_t operator()()
    {
        seed = seed * 1664525u + 1013904223u;
        return seed >> 8;
    }
};

// Sets an environment variable for the scope and restores it after, also when an assertion fails.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const QByteArray& value) : name_(name), old_(qgetenv(name)) { qputenv(name, value); }
    ~ScopedEnv()
    {
        if (old_.isNull())
            qunsetenv(name_);
        else
            qputenv(name_, old_);
    }

private:
    const char* name_;
    QByteArray old_;
};

// A two-tile preset as the application saves it.
inline const char* const kColorizeFile = "<filter version=\"4\">\n"
                                         "  <mod name=\"Hue Mask\" version=\"1\" enabled=\"1\">\n"
                                         "    <var name=\"Hue\" type=\"multichoice\">\n"
                                         "      <selection>255 127 0</selection>\n"
                                         "      <selection>255 255 0</selection>\n"
                                         "    </var>\n"
                                         "  </mod>\n"
                                         "  <mod name=\"Colorize Curve\" version=\"2\" enabled=\"1\">\n"
                                         "    <var name=\"Luminance Region\" type=\"curve\">0.000000 0.500000 "
                                         "0.518325 1.000000 1.000000 0.500000 </var>\n"
                                         "    <var name=\"Color\" type=\"color\">108.776230 68.700775 0.000000 "
                                         "255.000000</var>\n"
                                         "    <var name=\"Amount\" type=\"float\">1.000000</var>\n"
                                         "    <var name=\"Color Method\" type=\"choice\">Colorize</var>\n"
                                         "  </mod>\n"
                                         "</filter>\n";
