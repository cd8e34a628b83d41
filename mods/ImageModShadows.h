#pragma once
#include "core/ImageMod.h"
#include "core/ToneCurve.h"

// Brightens or darkens the dark part of the image. Version 2 works on HSV value through fixed
// curves; other versions through a luminance curve built from Amount.
class ImageModShadows : public ImageMod {
public:
    explicit ImageModShadows(int32_t v = 1, float amount = 1.0f);
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModShadows>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // The version 2 curves; the point values are part of the look.
    const ToneCurve brightenCurve;
    const ToneCurve darkenCurve;
};
