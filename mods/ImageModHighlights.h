#pragma once
#include "mods/ImageModToneRegion.h"

// Brightens or darkens the light part of the image; the counterpart of ImageModShadows.
class ImageModHighlights : public ImageModToneRegion {
public:
    explicit ImageModHighlights(int32_t v = 1, float amount = 1.0f);
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModHighlights>(); }

protected:
    std::vector<ToneCurvePoint> amountCurvePoints(float amount) const override;
};
