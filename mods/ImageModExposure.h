#pragma once
#include "core/ImageMod.h"
#include "core/ImageModSourcedApply.h"

// Exposure as a gamma bend that also moves black (brightening) or white (darkening); darkening
// also drains saturation in proportion.
class ImageModExposure : public ImageMod, public ImageModSourcedApply {
public:
    explicit ImageModExposure(float amount = 1.0f);
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModExposure>(); }
    ImageModVariable* amountVariable() const override { return firstVariable(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
    // Unmasked only: a mask's weights come from the image being worked on.
    bool applyFrom(const FlexImageFloat& source, FlexImageFloat* dest, const ImageModApplyContext* context) override;
};
