#pragma once
#include "core/ImageMod.h"

// The general curve tile: one curve, applied per channel, to luminance, to HSV value or to HSL
// lightness. Also embedded by the shadows/midtones/highlights tile.
class ImageModToneCurve : public ImageMod {
public:
    enum Method : int32_t { methodRgb = 0, methodLuminance = 1, methodValue = 2, methodLightness = 3 };
    // Variable indices.
    enum : int32_t { varAmount = 0, varCurve = 1, varMethod = 2 };

    ImageModToneCurve();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModToneCurve>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
