#pragma once
#include "filters/FilterFile.h"

#include <string>
#include <vector>

class MultiData;

// The preset groups on disk below the data folder:
//   Presets/<group>/<name>.vnf      one folder per group shown in the Presets tab
//   Presets/My Presets/             what the user saved
//   Presets Archive/Archive <n>/    earlier contents of Presets/, kept when the defaults change
// Functions only; the GUI asks the questions and shows the messages.
class PresetLibrary {
public:
    // The version of the default set the program carries.
    static constexpr float kDefaultSetVersion = 4.2f;
    static constexpr const char* kDefaultSetResource = ":/prefs/default_favorite_filters_photo.mvr";
    static constexpr const char* kLegacyTilesResource = ":/prefs/legacy_tiles.mvr";
    static constexpr const char* kMyPresets = "My Presets";

    // dataFolder ends in "/" (see dataFolder()); the archive is a resource path or a file.
    explicit PresetLibrary(std::string dataFolder, std::string defaultSetArchive = kDefaultSetResource);

    std::string presetsFolder() const { return dataFolder_ + "Presets/"; }
    std::string archiveFolder() const { return dataFolder_ + "Presets Archive/"; }

    struct StartupResult {
        bool unpacked = false; // the default set was unpacked
        int archiveNumber = 0; // n of the "Archive n" backup made, 0 for none
        int archiveStatus = 0; // ArchiveStatus bits of the unpacking
    };
    // Makes the folders, and when the stored DefaultFiltersVersion differs from the set the
    // program carries: backs up what stands in Presets/ (when it holds anything), unpacks the
    // default set over it (other groups, "My Presets" among them, stay), and stores the new
    // version in prefs. When the backup can't be made nothing is unpacked. The caller writes
    // prefs to disk.
    StartupResult startupCheck(MultiData& prefs);
    // Set when the start-up check replaced an earlier set: the main window shows "Filters
    // Updated" once its panels stand.
    bool filtersUpdated() const { return updated_; }
    void clearFiltersUpdated() { updated_ = false; }

    // "Presets/" + group + "/" + name + ".vnf".
    std::string presetPath(const std::string& name, const std::string& group = kMyPresets) const;

    enum SaveResult {
        kSaved,
        kNoName, // "Name Filter": "No filter name was chosen"
        kBadName, // a name that would leave its group folder
        kNeedsOverwrite, // "Filter Overwrite Warning": ask, then call again with overwrite
        kWriteFailed,
        kNothingToSave, // an empty list writes no file
    };
    SaveResult saveToPresets(const ModList& mods, const std::string& name, bool overwrite,
        const std::string& group = kMyPresets) const;

    // Group folders in name order, and the preset files of one group in name order.
    std::vector<std::string> groups() const;
    std::vector<std::string> presetsIn(const std::string& group) const;

    // The former default groups, kept where they stand.
    static std::vector<std::string> legacyGroups() { return { "Legacy 2_0", "Legacy 2_6", "Legacy 2_7" }; }

private:
    std::string dataFolder_;
    std::string defaultSetArchive_;
    bool updated_ = false;
};
