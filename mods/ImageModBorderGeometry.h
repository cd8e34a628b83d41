#pragma once
#include "core/FlexImage.h"
#include "mods/CropFractions.h"

#include <cstdint>

// The two geometry slots of the border family. A border tile (kind 1, tag 4) derives from this
// beside ImageMod; the geometry calculation and the driver's resampling find it by tag and ask:
//  - adjustGeometry: the border may change the size the sequence produces and the straighten
//    angle passed on (a border that adds bars makes the picture larger, for instance);
//  - drawSource: draws the source, cut by `crop` (null for none) and turned by `straighten`, into
//    `destination` at width x height in place of the plain resampler. Returns false when it drew
//    nothing, and the driver then falls back to the resampler.
class ImageModBorderGeometry {
public:
    virtual ~ImageModBorderGeometry() = default;
    virtual void adjustGeometry(double& width, double& height, float& straighten) = 0;
    virtual bool drawSource(const FlexImageFloat& source, const CropFractions* crop, FlexImageFloat& destination,
                            int32_t width, int32_t height, float straighten) = 0;
};
