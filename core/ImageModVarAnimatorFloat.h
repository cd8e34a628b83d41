#pragma once
#include "core/ImageModVarAnimator.h"

class ImageModVariable;

// Writes the key value into a float value, a curve's hue offset, or a choice's index.
class ImageModVarAnimatorFloat : public ImageModVarAnimator {
public:
    ImageModVarAnimatorFloat(ImageModVariable* target, std::vector<float> keyValues, int32_t period);
    void apply(int32_t frame) override;

    std::vector<float> keys;
    ImageModVariable* variable = nullptr;
    int32_t periodFrames = 1;
};
