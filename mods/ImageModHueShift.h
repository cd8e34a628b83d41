#pragma once
#include "core/ImageMod.h"

// Hue rotation by hue: the curve reading at the pixel's hue turns it by up to 180 degrees either
// way. Version 2 softens readings near the middle.
class ImageModHueShift : public ImageMod {
public:
    enum : int32_t { varAmount = 0, varHueRegion = 1 };

    ImageModHueShift();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModHueShift>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
