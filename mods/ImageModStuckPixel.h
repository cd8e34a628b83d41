#pragma once
#include "core/ImageMod.h"

// Hides one stuck or dead sensor pixel: the working pixels that cover it take the mean of the ring
// of pixels around them (the eight neighbours at full size). "Pixel X" and "Pixel Y" hold the spot
// in document pixels; "Pixel" is the same spot as the on-canvas picker sets it. Version 1 files
// only knew the two numbers; from version 2 the picker's point wins when it is set.
class ImageModStuckPixel : public ImageMod {
public:
    ImageModStuckPixel();

    std::unique_ptr<ImageMod> newInstance() const override;
    bool isPlainAdjustment() const override { return false; }
    // Keeps the numbers and the picker's point on the same spot.
    void variableChanged(int32_t index) override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // The spot in document pixels; false when none is set.
    bool documentSpot(float& x, float& y) const;

    // Working-image block [x0, x1] x [y0, y1] that covers document pixel (docX, docY): the pixel
    // divided by the scale, less the crop margin and region origin when a frame is given. False when
    // it falls outside an image of width x height.
    static bool workingBlock(float docX, float docY, float scale, const ReferenceFrame* frame, int32_t width,
                             int32_t height, int32_t& x0, int32_t& y0, int32_t& x1, int32_t& y1);

private:
    template <typename Sample>
    void applyDepth(FlexImageT<Sample>* image, const ImageModApplyContext* context);
};
