#pragma once
#include "filters/FilterFile.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

class QTemporaryDir;

// Exit statuses of every command.
enum CliExit : int {
    kCliOk = 0,         // everything asked for was done
    kCliSomeFailed = 1, // some files failed; all others were still written
    kCliBadUsage = 2,   // the command line can't be carried out; nothing was written
};

// Runs one command line (without the program name). Results and progress go to out, errors to
// err; terminal says whether out is a terminal (a progress bar instead of one line per file).
int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err, bool terminal);

// The look a render applies: the tiles of a filter file, then those of a preset.
struct CliLook {
    ModList mods;
    std::vector<ImageMod*> list() const;
};

// Where presets are looked up: the library in dataFolder (ending in "/") when its Presets folder
// exists, else the default set the program carries, unpacked into a temporary folder.
class CliPresetSource {
public:
    explicit CliPresetSource(std::string dataFolder);
    ~CliPresetSource();
    // "" when there is no library at all.
    const std::string& libraryFolder() const { return folder_; }

private:
    std::string folder_;
    std::unique_ptr<QTemporaryDir> unpacked_;
};

// Reads the filter file (when filterPath isn't empty) and the preset "Group/Name" (when
// preset isn't empty) into look. False with the reason in error when either can't be read.
bool loadCliLook(const std::string& filterPath, const std::string& preset, const std::string& dataFolder,
                 CliLook& look, std::string& error);

// The words for a filter reader's status.
std::string filterReadStatusText(int32_t status);
