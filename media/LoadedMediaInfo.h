#pragma once
#include "media/ColorSpaceKind.h"
#include "media/MediaProperties.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// A document's record of its source file.
struct LoadedMediaInfo {
    // The stripped properties, shared with copies of the record; null when the file had none.
    std::shared_ptr<MediaProperties> properties;
    std::string profileName;
    std::vector<uint8_t> iccProfile;
    ColorSpaceKind colorSpaceKind = ColorSpaceKind::None;
    // The source's depth at load; 16 or 8 at save.
    int32_t bitsPerComponent = 8;
};
