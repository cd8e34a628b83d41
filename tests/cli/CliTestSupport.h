#pragma once
// Shared pieces of the command-line tests: test photos, captured runs, a folder with a look.
#include "cli/CliCommands.h"
#include "core/ImageModVariable.h"
#include "core/ModCatalogue.h"
#include "filters/FilterFile.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

inline std::string testPhoto(const char* name)
{
    const std::string path = std::string(VANTREL_TESTDATA) + "/" + name;
    return QFileInfo::exists(QString::fromStdString(path)) ? path : std::string();
}

#define REQUIRE_PHOTO(var, name)                                                                   \
    const std::string var = testPhoto(name);                                                       \
    if (var.empty())                                                                               \
        GTEST_SKIP() << name << " not found under " << VANTREL_TESTDATA

inline std::string slurp(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void spill(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

inline bool exists(const std::string& path)
{
    return QFileInfo::exists(QString::fromStdString(path));
}

// A command line's exit status and captured streams.
struct CliRun {
    int status = -1;
    std::string out;
    std::string err;
};

inline CliRun run(const std::vector<std::string>& args)
{
    std::ostringstream out, err;
    CliRun r;
    r.status = runCli(args, out, err, false);
    r.out = out.str();
    r.err = err.str();
    return r;
}

// A temporary folder holding looks: more saturation, a little exposure, and (unless colourOnly)
// a split tone.
class CliFolder {
public:
    CliFolder() { EXPECT_TRUE(dir.isValid()); }
    std::string root() const { return dir.path().toStdString(); }
    std::string path(const std::string& name) const { return root() + "/" + name; }

    std::string writeLook(const std::string& name, bool colourOnly, float saturation = 1.6f, float exposure = 0.35f)
    {
        const ModCatalogueContents catalogue = buildModCatalogue();
        ModList mods;
        mods.push_back(createMod(catalogue.mods, "Saturation"));
        mods.push_back(createMod(catalogue.mods, "Exposure"));
        if (!colourOnly)
            mods.push_back(createMod(catalogue.mods, "Split Tone"));
        for (const auto& mod : mods)
            EXPECT_TRUE(mod) << "catalogue lacks a tile of the test look";
        mods[0]->firstVariable()->setFloatValue(saturation);
        mods[1]->firstVariable()->setFloatValue(exposure);
        const std::string file = path(name);
        EXPECT_TRUE(writeFilter(mods, file));
        return file;
    }

    // A copy of file under name with the first `from` replaced by `to`.
    std::string writeEdited(const std::string& file, const std::string& name, const std::string& from,
        const std::string& to)
    {
        std::string text = slurp(file);
        const size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        if (at != std::string::npos)
            text.replace(at, from.size(), to);
        spill(path(name), text);
        return path(name);
    }

    // Copies a file in under name, making the folders on the way.
    void copyIn(const std::string& from, const std::string& name) const
    {
        QDir().mkpath(QFileInfo(QString::fromStdString(path(name))).absolutePath());
        EXPECT_TRUE(QFile::copy(QString::fromStdString(from), QString::fromStdString(path(name)))) << name;
    }

    QTemporaryDir dir;
};
