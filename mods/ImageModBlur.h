#pragma once
#include "core/ImageMod.h"

// "Blur": Gaussian, Box or Circle, sized from the whole frame so that a preview and the full-size
// save look alike.
class ImageModBlur : public ImageMod
{
public:
    enum Method : int32_t { Gaussian = 0, Box = 1, Circle = 2 };

    ImageModBlur();

    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModBlur>(); }
    int32_t paddingNeeded(int32_t width, int32_t height, float scale) const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // Radius in pixels for an Amount of 0..100 on a frame of w by h pixels.
    static float radiusFor(float amount, int32_t method, int32_t w, int32_t h);

    // Blurs by radius r (reach ceil(r - 1)) with mix 0..1. A selector in the context merges the
    // result over the original by its mask. Other mods (Dynamics, Grain) call these directly.
    static void blurWithRadius(
        FlexImage8* image, float r, int32_t method, float mix, const ImageModApplyContext* context);
    static void blurWithRadius(
        FlexImageFloat* image, float r, int32_t method, float mix, const ImageModApplyContext* context);
};
