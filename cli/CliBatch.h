#pragma once
#include "core/ImageMod.h"

#include <condition_variable>
#include <cstdint>
#include <iosfwd>
#include <mutex>
#include <string>
#include <vector>

// What a --type word asks for: the writer's extension and the depth (16 or 8). A depth of 0
// means "as the save dialog would choose for the source": 16 bits only where the format offers it
// and the source had more than 8.
struct CliOutputType {
    std::string extension;
    int32_t bits = 0;
};

// jpg, png, tif, png16, tif16, vni. False for anything else.
bool parseOutputType(const std::string& word, CliOutputType& type);

// The files of a folder a batch takes, in name order: every plain file whose extension the
// loader knows (the open table or the native image). Sub-folders and hidden files are skipped.
std::vector<std::string> batchInputFiles(const std::string& folder);

// folder + "/" + base name + postfix + "." + extension, the base name being the file name up to
// its last dot.
std::string batchOutputPath(const std::string& folder, const std::string& inputPath, const std::string& postfix,
                            const std::string& extension);

struct CliRenderItem {
    std::string input;
    std::string output;
    int32_t bits = 0; // as CliOutputType::bits
};

struct CliRenderSettings {
    int32_t width = 0; // both above 0: the output size; else the sequence's own
    int32_t height = 0;
    float quality = 85.0f;
    int32_t jobs = 1;
    uint64_t memoryBudget = 0; // bytes the running renders may hold together; 0 = defaultMemoryBudget()
};

// Renders one file exactly as the editor's save does (geometry first, then the sequence with no
// frame, the source's metadata and the profile of a "Color Space" tile) and writes it. On failure
// error holds the reason and no output is left behind.
bool renderFileTo(const CliRenderItem& item, const std::vector<ImageMod*>& mods, const CliRenderSettings& settings,
                  std::string& error);

// Peak bytes one render of a width x height picture is expected to hold: the decoded bitmap,
// the float source, the float destination, one scratch image a spatial tile may take, and the
// quantised copy the writer encodes.
uint64_t estimateRenderBytes(int64_t width, int64_t height);
// Three quarters of the memory the system reports available, at least 256 MB.
uint64_t defaultMemoryBudget();

// Admits renders while their estimated bytes fit the budget together. A render bigger than the
// whole budget is admitted only when nothing else runs, so every file is rendered in the end.
class CliMemoryGate {
public:
    explicit CliMemoryGate(uint64_t budget) : budget_(budget) {}
    void acquire(uint64_t bytes);
    void release(uint64_t bytes);
    uint64_t peakReserved() const;

private:
    mutable std::mutex mutex_;
    std::condition_variable freed_;
    uint64_t budget_;
    uint64_t reserved_ = 0;
    uint64_t peak_ = 0;
};

// Renders every item with up to settings.jobs files at once, within the memory gate. Progress
// goes to out: on a terminal a bar with files done, rate and time left, else one line per file.
// Every failure is named on err with its reason. Returns how many failed.
int32_t renderItems(const std::vector<CliRenderItem>& items, const std::vector<ImageMod*>& mods,
                    const CliRenderSettings& settings, std::ostream& out, std::ostream& err, bool terminal);
