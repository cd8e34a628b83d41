#include "core/SafeFileWriter.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

std::string folderOf(const std::string& path)
{
    const size_t slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? std::string("/") : path.substr(0, slash);
}

// The pid in ".vantrel-save-<pid>-...", or 0 when the name is not one of ours.
long pidOfTemporary(const char* name)
{
    const size_t n = std::strlen(SafeFileWriter::kPrefix);
    if (std::strncmp(name, SafeFileWriter::kPrefix, n) != 0)
        return 0;
    char* end = nullptr;
    const long pid = std::strtol(name + n, &end, 10);
    return (end != name + n && *end == '-' && pid > 0) ? pid : 0;
}

bool processIsGone(long pid)
{
    return ::kill(pid_t(pid), 0) != 0 && errno == ESRCH;
}

} // namespace

SafeFileWriter::~SafeFileWriter()
{
    cancel();
}

int SafeFileWriter::removeStrayTemporaries(const std::string& folder)
{
    DIR* dir = ::opendir(folder.c_str());
    if (!dir)
        return 0;
    std::vector<std::string> stale;
    while (const dirent* entry = ::readdir(dir)) {
        const long pid = pidOfTemporary(entry->d_name);
        if (pid != 0 && pid != long(::getpid()) && processIsGone(pid))
            stale.push_back(folder + "/" + entry->d_name);
    }
    ::closedir(dir);
    int removed = 0;
    for (const std::string& path : stale)
        removed += ::unlink(path.c_str()) == 0 ? 1 : 0;
    return removed;
}

bool SafeFileWriter::open(const std::string& target, const std::string& suffix)
{
    cancel();
    failed_ = false;
    if (target.empty() || target.back() == '/')
        return false;
    // A link is kept and the file it points at replaced (linked dotfiles stay linked).
    std::string resolved = target;
    struct stat link;
    if (::lstat(target.c_str(), &link) == 0 && S_ISLNK(link.st_mode)) {
        if (char* real = ::realpath(target.c_str(), nullptr)) {
            resolved = real;
            std::free(real);
        }
    }
    const std::string folder = folderOf(resolved);
    removeStrayTemporaries(folder);
    std::string name = folder + "/" + kPrefix + std::to_string(long(::getpid())) + "-XXXXXX" + suffix;
    std::vector<char> buf(name.begin(), name.end());
    buf.push_back('\0');
    const int fd = ::mkstemps(buf.data(), int(suffix.size()));
    if (fd < 0)
        return false;
    struct stat st;
    ::fchmod(fd, ::stat(resolved.c_str(), &st) == 0 ? (st.st_mode & 07777) : 0644);
    fd_ = fd;
    target_ = resolved;
    temporary_ = buf.data();
    return true;
}

bool SafeFileWriter::write(const void* data, size_t size)
{
    if (fd_ < 0 || failed_)
        return false;
    const char* p = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t n = ::write(fd_, p, size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            failed_ = true;
            return false;
        }
        p += n;
        size -= size_t(n);
    }
    return true;
}

bool SafeFileWriter::commit()
{
    if (temporary_.empty())
        return false;
    bool ok = !failed_;
    if (fd_ >= 0) {
        // Without the flush a crash of the machine soon after could leave the renamed file empty.
        ok = ::fsync(fd_) == 0 && ok;
        ok = ::close(fd_) == 0 && ok;
        fd_ = -1;
    }
    if (ok)
        ok = std::rename(temporary_.c_str(), target_.c_str()) == 0;
    if (!ok) {
        cancel();
        return false;
    }
    temporary_.clear();
    return true;
}

void SafeFileWriter::cancel()
{
    if (fd_ >= 0)
        ::close(fd_);
    fd_ = -1;
    if (!temporary_.empty())
        ::unlink(temporary_.c_str());
    temporary_.clear();
}

bool SafeFileWriter::writeWhole(const std::string& target, const void* data, size_t size)
{
    SafeFileWriter writer;
    return writer.open(target) && writer.write(data, size) && writer.commit();
}
