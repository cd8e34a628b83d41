#pragma once
#include "mods/ImageModToneRegion.h"

// Brightens or darkens the dark part of the image. Version 2 works on HSV value through fixed
// curves; other versions through a luminance curve built from Amount.
class ImageModShadows : public ImageModToneRegion {
public:
    explicit ImageModShadows(int32_t v = 1, float amount = 1.0f);
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModShadows>(); }

protected:
    std::vector<ToneCurvePoint> amountCurvePoints(float amount) const override;
};
