#pragma once
#include "core/ImageMod.h"

// Exposure as a gamma bend that also moves black (brightening) or white (darkening); darkening
// also drains saturation in proportion.
class ImageModExposure : public ImageMod {
public:
    explicit ImageModExposure(float amount = 1.0f);
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModExposure>(); }
    ImageModVariable* amountVariable() const override { return firstVariable(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
