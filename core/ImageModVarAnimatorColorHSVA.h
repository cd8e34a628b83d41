#pragma once
#include "core/ImageModVarAnimator.h"

class ImageModVariable;

// Interpolates in HSV (hue in degrees, the rest 0..1) and writes RGBA into a colour value.
class ImageModVarAnimatorColorHSVA : public ImageModVarAnimator {
public:
    ImageModVarAnimatorColorHSVA(ImageModVariable* target, std::vector<float> hueKeys, std::vector<float> saturationKeys,
                                 std::vector<float> valueKeys, std::vector<float> alphaKeys, int32_t period);
    void apply(int32_t frame) override;

    std::vector<float> hue;
    std::vector<float> saturation;
    std::vector<float> value;
    std::vector<float> alpha;
    ImageModVariable* variable = nullptr;
    int32_t periodFrames = 1;
};
