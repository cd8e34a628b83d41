#pragma once
#include "core/FlexImage.h"
#include "core/ImageMod.h"

#include <cstdint>
#include <vector>

// Builds the working image of a sequence from its source: the crop, straighten, border and size
// tiles of the list act here, once, before any other tile runs.
//
// Without `exact` the target is a bound (the screen): the size the geometry tiles ask for is fitted
// inside it. With `exact` and a positive target, the target is the size. A border tile's draw slot
// draws the source when the list has one, else the crop, rotate and scale resampler does.
// destination.scale ends as (source width / destination width, 1 within a pixel) * source.scale.
// Returns false, leaving the destination alone, when the geometry leaves no pixel. `changed` (may
// be null) says the geometry or the destination's size changed.
bool geometryResample(const FlexImageFloat& source, FlexImageFloat& destination, const std::vector<ImageMod*>& mods,
                      int32_t targetWidth, int32_t targetHeight, bool exact, bool* changed = nullptr);

// True when geometryResample with these arguments would only copy the source as it is (same size,
// no crop, no turn, no border tile): a caller that owns the source may then use it in place.
bool geometryIsPlainCopy(const FlexImageFloat& source, const std::vector<ImageMod*>& mods, int32_t targetWidth,
                         int32_t targetHeight, bool exact);
