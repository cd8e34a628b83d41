#pragma once
#include "core/ImageMod.h"

// Two-tone image: each pixel moves towards the light colour scaled by its luminance plus the dark
// colour scaled by the rest.
class ImageModSplitTone : public ImageMod {
public:
    ImageModSplitTone();
    std::unique_ptr<ImageMod> newInstance() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
