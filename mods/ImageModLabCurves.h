#pragma once
#include "core/ImageMod.h"

// Curves on L, a and b. Amount only switches the tile on or off; it scales nothing. A used a or b
// curve maps its channel into -64..64.
class ImageModLabCurves : public ImageMod {
public:
    enum : int32_t { varL = 0, varA = 1, varB = 2, varAmount = 3 };

    ImageModLabCurves();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModLabCurves>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};

// The Lab round trip of this tile (its own constants, kept for old renders). Inputs and outputs
// on 0..255; the way back clamps.
void labCurvesToLab(float r, float g, float b, float& L, float& a, float& bb);
void labCurvesToRgb(float L, float a, float bb, float& r, float& g, float& b);
