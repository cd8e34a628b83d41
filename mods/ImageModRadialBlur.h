#pragma once
#include "core/ImageMod.h"

// "Radial Blur", shown as "Circular Blur": sharp in the middle, blurrier towards the edges.
class ImageModRadialBlur : public ImageMod
{
public:
    ImageModRadialBlur();

    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModRadialBlur>(); }
    int32_t paddingNeeded(int32_t width, int32_t height, float scale) const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // Largest blur radius in pixels for a frame content whose longer side is maxSide.
    static float maxRadius(float amount, int32_t method, float maxSide);
};
