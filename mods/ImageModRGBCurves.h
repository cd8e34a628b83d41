#pragma once
#include "core/ImageMod.h"

// A curve per channel plus one for all three. Each channel takes its own curve first, then the
// shared one. A mask sets the strength by itself; Amount only gates.
class ImageModRGBCurves : public ImageMod {
public:
    enum : int32_t { varRed = 0, varGreen = 1, varBlue = 2, varRgb = 3, varAmount = 4 };

    ImageModRGBCurves();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModRGBCurves>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
