#pragma once
#include <cstddef>
#include <string>

// Writes a file so that a failure or a kill at any moment leaves either the former file or the
// complete new one: the bytes go into a temporary file beside the target, are flushed to disk and
// renamed over the target on commit. A temporary file is named
//   .vantrel-save-<pid>-XXXXXX<suffix>
// so that the next writer into the same folder can tell those of processes that died (killed
// mid-save) from those of live ones and remove them: at most one stray file stays between runs.
class SafeFileWriter {
public:
    SafeFileWriter() = default;
    ~SafeFileWriter(); // a writer that was not committed removes its temporary file
    SafeFileWriter(const SafeFileWriter&) = delete;
    SafeFileWriter& operator=(const SafeFileWriter&) = delete;

    // Makes the temporary file. suffix is appended to its name (".jpg" for a writer that goes by
    // the extension). The file gets the mode of the file it replaces, else 0644.
    bool open(const std::string& target, const std::string& suffix = std::string());
    bool write(const void* data, size_t size);
    // Flushes, renames over the target and returns true when every step (and every write) worked;
    // otherwise removes the temporary file and leaves the target as it was.
    bool commit();
    void cancel();

    // The temporary file, for writers that open it themselves (empty before open).
    const std::string& temporaryPath() const { return temporary_; }

    // Opens, writes and commits in one go.
    static bool writeWhole(const std::string& target, const void* data, size_t size);
    // Removes the temporary files of dead processes in folder; returns how many went.
    static int removeStrayTemporaries(const std::string& folder);
    static constexpr const char* kPrefix = ".vantrel-save-";

private:
    std::string target_;
    std::string temporary_;
    int fd_ = -1;
    bool failed_ = false;
};
