#pragma once
#include "core/ImageMod.h"

// One curve applied to red, green and blue alike. Masks are not read.
class ImageModRGBCombinedCurve : public ImageMod {
public:
    enum : int32_t { varAmount = 0, varCurve = 1 };

    ImageModRGBCombinedCurve();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModRGBCombinedCurve>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
