#pragma once
#include "core/FlexImage.h"
#include "mods/CropFractions.h"

#include <cstdint>

// Destination pixels kept around the cropped area, showing what a pending crop would cut away.
struct ResampleMargins {
    int32_t left = 0;
    int32_t right = 0;
    int32_t top = 0;
    int32_t bottom = 0;

    bool isNone() const { return left == 0 && right == 0 && top == 0 && bottom == 0; }
};

// Where each destination pixel reads the source: position(x, y) = origin + x * column + y * row, in
// source pixels with integer positions at pixel centres. The map is linear, so the row job steps it.
struct CropRotateScaleMapping {
    int32_t width = 0;
    int32_t height = 0;
    ResampleMargins margins;
    double originX = 0.0;
    double originY = 0.0;
    double columnX = 1.0;
    double columnY = 0.0;
    double rowX = 0.0;
    double rowY = 1.0;
    // Source pixels per destination pixel from the sizes alone.
    double factor = 1.0;
    // Source span a destination pixel covers, which picks the sampler.
    double footprint = 1.0;
    // How far the turn pulls positions toward the centre (1 unturned) so no empty corner shows.
    double zoom = 1.0;
    // Same size, no turn, no crop, no margins: a plain copy does.
    bool plainCopy = false;

    void position(int32_t x, int32_t y, double& sx, double& sy) const
    {
        sx = originX + x * columnX + y * rowX;
        sy = originY + x * columnY + y * rowY;
    }
};

// Works out the mapping for a source of sourceWidth x sourceHeight. A target below 1 on either side
// means "the crop's own size" with no scaling. crop and margins may be null. False, with nothing
// planned, when the sizes leave no pixel to draw.
bool planCropRotateScale(int32_t sourceWidth, int32_t sourceHeight, int32_t targetWidth, int32_t targetHeight,
                         const CropFractions* crop, const ResampleMargins* margins, float angle,
                         CropRotateScaleMapping& mapping);

// Cuts, turns and scales source into destination in one pass (destination keeps its channel count).
// The aspect of the target is filled by a centred cut, never by distortion; `nearest` forces the
// nearest pixel. destination.scale becomes factor * source.scale. Returns false and leaves the
// destination alone when there is nothing to draw.
template <typename Sample>
bool resampleCropRotateScale(const FlexImageT<Sample>& source, int32_t targetWidth, int32_t targetHeight,
                             const CropFractions* crop, const ResampleMargins* margins, FlexImageT<Sample>& destination,
                             bool nearest, float angle);

extern template bool resampleCropRotateScale<float>(const FlexImageFloat&, int32_t, int32_t, const CropFractions*,
                                                    const ResampleMargins*, FlexImageFloat&, bool, float);
extern template bool resampleCropRotateScale<uint8_t>(const FlexImage8&, int32_t, int32_t, const CropFractions*,
                                                      const ResampleMargins*, FlexImage8&, bool, float);
