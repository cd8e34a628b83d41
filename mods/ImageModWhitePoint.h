#pragma once
#include "core/ImageMod.h"

// White balance from a picked pixel that should be neutral: each pixel loses the pick's cast,
// scaled by a luminance curve that is 1 at the pick's own luminance.
class ImageModWhitePoint : public ImageMod {
public:
    enum VariableIndex : int32_t { kNeutralColor = 0, kReset = 1, kCurve = 2 };

    ImageModWhitePoint();
    std::unique_ptr<ImageMod> newInstance() const override;
    // The Reset button writes white back into the pick.
    void variableChanged(int32_t index) override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // The pick's scale factor: 1 for a black or white pick, else 1 / table(Y0 / 255).
    static float pickScale(const float* table, float y0);
};
