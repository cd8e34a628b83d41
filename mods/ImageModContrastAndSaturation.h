#pragma once
#include "core/ImageMod.h"

// Old "Contrast" tile (file name "Contrast Saturation"): version 1 contrast, then a saturation
// pass that falls as contrast rises, so colours don't get louder with contrast.
class ImageModContrastAndSaturation : public ImageMod {
public:
    explicit ImageModContrastAndSaturation(float amount = 1.0f, float center = 90.0f);
    std::unique_ptr<ImageMod> newInstance() const override
    {
        return std::make_unique<ImageModContrastAndSaturation>();
    }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
