#pragma once
// Helpers for the fault tests: a lowered file-size limit (writes past it fail as on a full disk)
// and a child copy of the test program that saves in a loop until it is killed.
#include "core/SafeFileWriter.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace fault {

// While alive, files of this process can't grow past `bytes`: write() fails with EFBIG instead of
// raising SIGXFSZ.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        oldHandler_ = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &old_);
        rlimit lowered = old_;
        lowered.rlim_cur = bytes;
        active_ = setrlimit(RLIMIT_FSIZE, &lowered) == 0;
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, oldHandler_);
    }
    bool active() const { return active_; }

private:
    rlimit old_{};
    void (*oldHandler_)(int) = SIG_DFL;
    bool active_ = false;
};

inline std::string slurp(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void spill(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

// Our temporary files in folder.
inline int temporaryCount(const std::string& folder)
{
    int n = 0;
    if (DIR* dir = opendir(folder.c_str())) {
        const size_t len = std::strlen(SafeFileWriter::kPrefix);
        while (const dirent* e = readdir(dir))
            n += std::strncmp(e->d_name, SafeFileWriter::kPrefix, len) == 0 ? 1 : 0;
        closedir(dir);
    }
    return n;
}

constexpr const char* kLoopTargetVariable = "VANTREL_FAULT_LOOP_TARGET";

// The target the child loop writes to, or null in a normal run.
inline const char* loopTarget()
{
    return std::getenv(kLoopTargetVariable);
}

// Marks that the child's first save is complete, so the parent knows the old file stands.
inline void markStarted(const std::string& target)
{
    spill(target + ".started", "1");
}

// Runs this test program again with only childTest (a test that calls the save in a loop while
// loopTarget() is set), waits for its first save, lets it run for delay and kills it.
inline bool killDuringSaves(const std::string& childTest, const std::string& target, std::chrono::milliseconds delay)
{
    std::vector<std::string> env;
    for (char** e = environ; *e; ++e)
        env.emplace_back(*e);
    env.push_back(std::string(kLoopTargetVariable) + "=" + target);
    std::vector<char*> envp;
    for (std::string& s : env)
        envp.push_back(s.data());
    envp.push_back(nullptr);
    std::string self = "/proc/self/exe";
    std::string filter = "--gtest_filter=" + childTest;
    char* argv[] = { self.data(), filter.data(), nullptr };
    const std::string started = target + ".started";
    std::remove(started.c_str());

    const pid_t pid = fork();
    if (pid < 0)
        return false;
    if (pid == 0) {
        execve("/proc/self/exe", argv, envp.data());
        _exit(127);
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(120);
    while (access(started.c_str(), F_OK) != 0 && std::chrono::steady_clock::now() < deadline) {
        int st = 0;
        if (waitpid(pid, &st, WNOHANG) == pid)
            return false; // the child ended on its own
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    std::this_thread::sleep_for(delay);
    kill(pid, SIGKILL);
    int st = 0;
    waitpid(pid, &st, 0);
    std::remove(started.c_str());
    return WIFSIGNALED(st) && WTERMSIG(st) == SIGKILL;
}

} // namespace fault
