#pragma once
#include "core/ImageMod.h"

// Exposure by luminance: the curve, flat at 0.5 when neutral, darkens (below) or brightens (above)
// each brightness range with the gamma pair. Version 2 is the gamma form; older versions also
// desaturate where they darken.
class ImageModExposureCurve : public ImageMod {
public:
    enum : int32_t { varAmount = 0, varCurve = 1 };

    ImageModExposureCurve();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModExposureCurve>(); }
    void setVersion(int32_t v) override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
