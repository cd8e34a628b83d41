#pragma once
#include "core/ImageMod.h"

// One curve on the pixel's luminance; hue is kept. Masks are not read.
class ImageModLuminanceCurve : public ImageMod {
public:
    enum : int32_t { varAmount = 0, varCurve = 1 };

    ImageModLuminanceCurve();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModLuminanceCurve>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
