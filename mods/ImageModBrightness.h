#pragma once
#include "core/ImageMod.h"
#include "core/ImageModSourcedApply.h"

// Brightness through a two-point tone curve: above 1 lifts black, below 1 lowers white. The 8-bit
// path reads only the curve's end entries; kept as it is because saved looks depend on it.
class ImageModBrightness : public ImageMod, public ImageModSourcedApply {
public:
    explicit ImageModBrightness(float amount = 1.0f);
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModBrightness>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
    // Unmasked only: a mask's weights come from the image being worked on.
    bool applyFrom(const FlexImageFloat& source, FlexImageFloat* dest, const ImageModApplyContext* context) override;
};
