#pragma once
#include "core/ImageMod.h"

// Contrast around a center on a chosen measure of brightness: "RGB" per channel, "Luminance",
// HSV "Value" or HSL "Lightness".
class ImageModAdvancedContrast : public ImageMod {
public:
    enum Method : int32_t { methodRgb = 0, methodLuminance = 1, methodValue = 2, methodLightness = 3 };

    explicit ImageModAdvancedContrast(float amount = 1.0f, float center = 90.0f, int32_t method = methodRgb);
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModAdvancedContrast>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
