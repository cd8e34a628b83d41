#pragma once
#include "core/ImageMod.h"

// Brightness by hue. Version 3 ("Hue Exposure") runs the exposure step with a strength that fades
// out on greys, black and white; version 2 moves HSL lightness with soft ramps on lightness and
// saturation; older versions add a signed grey level weighted by saturation and mid-brightness.
class ImageModHueBrightness : public ImageMod {
public:
    enum : int32_t { varAmount = 0, varHueRegion = 1 };

    ImageModHueBrightness();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModHueBrightness>(); }
    void setVersion(int32_t v) override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
