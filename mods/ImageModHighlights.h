#pragma once
#include "core/ImageMod.h"
#include "core/ToneCurve.h"

// Brightens or darkens the light part of the image; the counterpart of ImageModShadows.
class ImageModHighlights : public ImageMod {
public:
    explicit ImageModHighlights(int32_t v = 1, float amount = 1.0f);
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModHighlights>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    const ToneCurve brightenCurve;
    const ToneCurve darkenCurve;
};
