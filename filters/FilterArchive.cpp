#include "filters/FilterArchive.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

// The default sets nest two levels; anything much deeper is hostile.
constexpr int kMaxNesting = 8;
// No file system takes longer names; a larger length field is damage, not a name.
constexpr uint32_t kMaxNameLength = 4096;

using Components = std::vector<std::string>;

class Fd {
public:
    explicit Fd(int fd = -1)
        : fd_(fd)
    {
    }
    Fd(Fd&& o) noexcept
        : fd_(o.fd_)
    {
        o.fd_ = -1;
    }
    Fd& operator=(Fd&& o) noexcept
    {
        if (this != &o) {
            reset();
            fd_ = o.fd_;
            o.fd_ = -1;
        }
        return *this;
    }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    ~Fd() { reset(); }
    int get() const { return fd_; }
    int release()
    {
        const int fd = fd_;
        fd_ = -1;
        return fd;
    }
    bool valid() const { return fd_ >= 0; }
    void reset()
    {
        if (fd_ >= 0)
            ::close(fd_);
        fd_ = -1;
    }

private:
    int fd_;
};

// Splits a record name into folder parts, or refuses it (false). Both '/' and '\\' separate,
// so names packed on other systems are judged by what they would mean there.
bool splitSafeName(const std::string& name, Components& parts, bool& namesFolder)
{
    parts.clear();
    namesFolder = false;
    if (name.find('\0') != std::string::npos)
        return false;
    if (!name.empty() && (name[0] == '/' || name[0] == '\\'))
        return false;
    std::string part;
    for (size_t i = 0; i <= name.size(); ++i) {
        const bool end = i == name.size();
        if (end || name[i] == '/' || name[i] == '\\') {
            if (part == "..")
                return false;
            if (!part.empty() && part != ".")
                parts.push_back(part);
            part.clear();
        } else {
            part.push_back(name[i]);
        }
    }
    namesFolder = name.empty() || name.back() == '/' || name.back() == '\\' || parts.empty();
    return true;
}

bool isLinkAt(int dirFd, const std::string& leaf)
{
    struct stat st;
    return ::fstatat(dirFd, leaf.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(st.st_mode);
}

class Extractor {
public:
    explicit Extractor(std::string base)
        : base_(std::move(base))
        , buffer_(65536)
    {
    }

    int status = kArchiveOk;

    void run(std::FILE* in, const Components& prefix, int depth);

private:
    // The caller's target folder: trusted, made on first need.
    int baseFd();
    // Opens the folder base/parts[0]/.../parts[count-1] without following any link, making
    // missing folders when asked. Sets the status on failure.
    Fd openFolder(const Components& parts, size_t count, bool create);
    Fd createFile(const Components& parts);
    bool skip(std::FILE* in, uint64_t count);

    std::string base_;
    Fd baseHandle_;
    bool baseTried_ = false;
    std::vector<char> buffer_;
};

int Extractor::baseFd()
{
    if (!baseTried_) {
        baseTried_ = true;
        const QString path = QFile::decodeName(base_.c_str());
        if (QDir().mkpath(path))
            baseHandle_ = Fd(::open(base_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    return baseHandle_.get();
}

Fd Extractor::openFolder(const Components& parts, size_t count, bool create)
{
    const int base = baseFd();
    if (base < 0) {
        status |= kArchiveWriteFailed;
        return Fd();
    }
    Fd current(::dup(base));
    for (size_t i = 0; i < count && current.valid(); ++i) {
        const char* part = parts[i].c_str();
        int next = ::openat(current.get(), part, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (next < 0 && errno == ENOENT && create) {
            if (::mkdirat(current.get(), part, 0777) == 0 || errno == EEXIST)
                next = ::openat(current.get(), part, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        }
        if (next < 0) {
            status |= isLinkAt(current.get(), parts[i]) ? kArchiveNameRefused : kArchiveWriteFailed;
            return Fd();
        }
        current = Fd(next);
    }
    return current;
}

Fd Extractor::createFile(const Components& parts)
{
    Fd folder = openFolder(parts, parts.size() - 1, true);
    if (!folder.valid())
        return Fd();
    const std::string& leaf = parts.back();
    struct stat st;
    if (::fstatat(folder.get(), leaf.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0) {
        if (S_ISLNK(st.st_mode)) {
            status |= kArchiveNameRefused;
            return Fd();
        }
        // Replaced rather than truncated, so a hard link to a file elsewhere is left alone.
        if (!S_ISREG(st.st_mode) || ::unlinkat(folder.get(), leaf.c_str(), 0) != 0) {
            status |= kArchiveWriteFailed;
            return Fd();
        }
    }
    Fd file(::openat(folder.get(), leaf.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
    if (!file.valid())
        status |= kArchiveWriteFailed;
    return file;
}

bool Extractor::skip(std::FILE* in, uint64_t count)
{
    while (count > 0) {
        const size_t want = size_t(count < buffer_.size() ? count : buffer_.size());
        const size_t got = std::fread(buffer_.data(), 1, want, in);
        count -= got;
        if (got < want)
            return false;
    }
    return true;
}

bool readU32(std::FILE* in, uint32_t& value, size_t& got)
{
    unsigned char b[4];
    got = std::fread(b, 1, 4, in);
    value = uint32_t(b[0]) | uint32_t(b[1]) << 8 | uint32_t(b[2]) << 16 | uint32_t(b[3]) << 24;
    return got == 4;
}

bool hasArchiveExtension(const std::string& leaf, std::string& stem)
{
    const size_t dot = leaf.rfind('.');
    if (dot == std::string::npos || leaf.compare(dot + 1, std::string::npos, kArchiveExtension) != 0)
        return false;
    stem = leaf.substr(0, dot);
    return true;
}

void Extractor::run(std::FILE* in, const Components& prefix, int depth)
{
    std::vector<Components> nested;
    Components parts;
    std::string name;

    for (;;) {
        char tag[4];
        const size_t tagBytes = std::fread(tag, 1, 4, in);
        if (tagBytes == 0)
            break;
        if (tagBytes < 4) {
            status |= kArchiveTruncated;
            break;
        }
        if (std::memcmp(tag, "EMTY", 4) == 0) {
            openFolder(prefix, prefix.size(), true);
            continue;
        }
        if (std::memcmp(tag, "FILE", 4) != 0) {
            // Without an index there is no way to find the next record.
            status |= kArchiveBadRecord;
            break;
        }

        uint32_t nameLength = 0;
        size_t got = 0;
        if (!readU32(in, nameLength, got)) {
            status |= kArchiveTruncated;
            break;
        }
        if (nameLength > kMaxNameLength) {
            status |= kArchiveBadRecord;
            break;
        }
        name.resize(nameLength);
        if (std::fread(name.data(), 1, nameLength, in) != nameLength) {
            status |= kArchiveTruncated;
            break;
        }
        uint32_t size = 0;
        if (!readU32(in, size, got)) {
            status |= kArchiveTruncated;
            break;
        }

        bool namesFolder = false;
        Fd out;
        if (!splitSafeName(name, parts, namesFolder)) {
            status |= kArchiveNameRefused;
        } else if (namesFolder) {
            status |= kArchiveWriteFailed; // no file name to create
        } else {
            Components full = prefix;
            full.insert(full.end(), parts.begin(), parts.end());
            parts = std::move(full);
            out = createFile(parts);
        }
        if (!out.valid()) {
            if (!skip(in, size)) {
                status |= kArchiveTruncated;
                break;
            }
            continue;
        }

        // Copied in blocks of a fixed buffer: a size field beyond the end of the input costs
        // nothing and gives a file cut at the end of the input.
        uint64_t left = size;
        bool cut = false;
        bool writeOk = true;
        while (left > 0) {
            const size_t want = size_t(left < buffer_.size() ? left : buffer_.size());
            const size_t n = std::fread(buffer_.data(), 1, want, in);
            size_t done = 0;
            while (writeOk && done < n) {
                const ssize_t w = ::write(out.get(), buffer_.data() + done, n - done);
                if (w < 0 && errno == EINTR)
                    continue;
                if (w <= 0)
                    writeOk = false;
                else
                    done += size_t(w);
            }
            left -= n;
            if (n < want) {
                cut = true;
                break;
            }
        }
        if (!writeOk)
            status |= kArchiveWriteFailed;
        out.reset();
        std::string stem;
        if (writeOk && hasArchiveExtension(parts.back(), stem))
            nested.push_back(parts);
        if (cut) {
            status |= kArchiveTruncated;
            break;
        }
    }

    for (const Components& archive : nested) {
        Fd folder = openFolder(archive, archive.size() - 1, false);
        if (!folder.valid())
            continue;
        if (depth + 1 > kMaxNesting) {
            status |= kArchiveTooDeep;
            continue;
        }
        const std::string& leaf = archive.back();
        const int fd = ::openat(folder.get(), leaf.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
        std::FILE* inner = fd >= 0 ? ::fdopen(fd, "rb") : nullptr;
        if (!inner) {
            if (fd >= 0)
                ::close(fd);
            status |= kArchiveNotOpened;
            continue;
        }
        std::string stem;
        hasArchiveExtension(leaf, stem);
        Components target(archive.begin(), archive.end() - 1);
        if (!stem.empty())
            target.push_back(stem);
        run(inner, target, depth + 1);
        std::fclose(inner);
        ::unlinkat(folder.get(), leaf.c_str(), 0);
    }
}

} // namespace

int extractArchive(const std::string& archivePath, const std::string& targetFolder)
{
    // An empty target would become "/", the root of the file system.
    if (targetFolder.empty())
        return kArchiveWriteFailed;
    std::string target = targetFolder;
    if (target.back() != '/' && target.back() != '\\')
        target += '/';
    std::FILE* in = std::fopen(archivePath.c_str(), "rb");
    if (!in)
        return kArchiveNotOpened;
    Extractor ex(target);
    ex.run(in, Components(), 0);
    std::fclose(in);
    return ex.status;
}

int extractResourceArchive(const std::string& resourcePath, const std::string& targetFolder)
{
    // A private folder instead of the shared temporary folder itself: no other user or running
    // copy of the program can plant or race on the bundle's name.
    QTemporaryDir temp;
    if (!temp.isValid())
        return kArchiveNotOpened;
    const QString bundle = temp.filePath(QStringLiteral("tempbundle.mvr"));
    if (!QFile::copy(QFile::decodeName(resourcePath.c_str()), bundle))
        return kArchiveNotOpened;
    // Copies out of the resources are read-only.
    QFile::setPermissions(bundle, QFile::permissions(bundle) | QFileDevice::WriteOwner);
    const int status = extractArchive(QFile::encodeName(bundle).toStdString(), targetFolder);
    QFile::remove(bundle);
    return status;
}
