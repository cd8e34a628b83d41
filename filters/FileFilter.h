#pragma once
#include "core/ImageModCompound.h"
#include "filters/FilterFile.h"

#include <string>

// A group that stands for a filter file: it reads the file's mods as its children and takes the
// file's base name, with "_" shown as " ", as its name. A path without the filter extension is
// not read, and the tile stays "File Filter" and empty.
class FileFilter : public ImageModCompound {
public:
    FileFilter(const std::string& path, const ModCatalogue& catalogue);

    // A copy of the group as read; the file is not read again.
    std::unique_ptr<ImageMod> newInstance() const override;

    const std::string& path() const { return filePath; }
    // The status of readFilter, or kFilterReadDamaged when the path wasn't a filter file.
    int32_t readStatus() const { return status; }

private:
    FileFilter() = default;

    std::string filePath;
    int32_t status = kFilterReadDamaged;
};
