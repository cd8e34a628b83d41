#pragma once
#include "core/ImageMod.h"

// Contrast on the linear luminance only; the pixel then moves to the new luminance keeping hue.
class ImageModLuminanceContrast : public ImageMod {
public:
    explicit ImageModLuminanceContrast(float amount = 1.0f, float center = 90.0f);
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModLuminanceContrast>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
