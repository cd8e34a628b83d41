#pragma once
#include "core/ImageMod.h"

// Saturation of the hues near one colour's hue, fading out beyond the tolerance.
class ImageModSelectiveColor : public ImageMod {
public:
    ImageModSelectiveColor();
    std::unique_ptr<ImageMod> newInstance() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // Distance of two hues in degrees around the circle, 0..180.
    static float hueDistance(float a, float b);
    // How much of the change a hue distance d gets: 1 inside tol, fading to 0 at 1.5 tol.
    static float hueWeight(float d, float tol);
};
