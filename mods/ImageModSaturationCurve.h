#pragma once
#include "core/ImageMod.h"

// Saturation by hue: the curve reading at the pixel's hue sets a saturation factor. Version 3
// softens readings near the middle; versions 2 and 3 anchor on the root of squares, older ones on
// linear luminance.
class ImageModSaturationCurve : public ImageMod {
public:
    enum : int32_t { varAmount = 0, varHueRegion = 1 };

    ImageModSaturationCurve();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModSaturationCurve>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
