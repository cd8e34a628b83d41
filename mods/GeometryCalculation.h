#pragma once
#include "core/ImageMod.h"

#include <cstdint>
#include <vector>

// What the geometry tiles of a sequence make of a source size.
struct GeometryResult {
    int32_t width = 0;
    int32_t height = 0;
    // How much the size limits reduced the picture (1 when they didn't).
    float scale = 1.0f;
    bool changed = false;
};

// The first enabled mod of the list carrying `tag`, or null.
ImageMod* findEnabledWithTag(const std::vector<ImageMod*>& mods, int32_t tag);

// Output size of a source of sourceWidth x sourceHeight through the crop (tag 0), border (tag 4)
// and size (tag 1) tiles of the list, then fitted inside maxWidth x maxHeight where those are above 0.
// A crop that cuts more than the whole picture gives a size below 1, passed on as it is.
GeometryResult computeGeometry(int32_t sourceWidth, int32_t sourceHeight, const std::vector<ImageMod*>& mods,
                               int32_t maxWidth = 0, int32_t maxHeight = 0);
