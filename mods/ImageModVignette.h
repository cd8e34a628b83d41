#pragma once
#include "core/ImageMod.h"

// "Vignette": darkens (or, with a negative Amount, lightens) towards the corners of the frame.
class ImageModVignette : public ImageMod
{
public:
    ImageModVignette();

    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModVignette>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // Exponent of the soft ramp for a Sharpness (Falloff) of 0..100; infinite at 100.
    static float rampExponent(float sharpness);
};
