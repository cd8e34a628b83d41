#pragma once
#include "core/ImageMod.h"
#include "core/ImageModSourcedApply.h"

// Colour intensity. Version 2 anchors each pixel on the root of weighted squares; version 1 on the
// linear luminance. Amount 0..1 fades to grey, 1..2 stretches towards the clamp.
class ImageModSaturation : public ImageMod, public ImageModSourcedApply {
public:
    static constexpr int32_t newestVersion = 2;

    explicit ImageModSaturation(int32_t v = newestVersion, float amount = 1.0f);
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModSaturation>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
    // Unmasked only: a mask's weights come from the image being worked on.
    bool applyFrom(const FlexImageFloat& source, FlexImageFloat* dest, const ImageModApplyContext* context) override;
};
