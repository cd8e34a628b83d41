#pragma once
#include "core/ImageModSelector.h"

// Product of three curve readings: hue (turned by the hue curve's offset), saturation and value.
// Variables: 0 "Hue Region" (hue curve), 1 "Saturation Range", 2 "Value Region".
class ImageModHSVSelector : public ImageModSelector {
public:
    ImageModHSVSelector();
    std::unique_ptr<ImageMod> newInstance() const override;
    // Keeps the hue curve a closed ring whatever a file set.
    void variableChanged(int32_t index) override;
    float maskValue(const FlexImageFloat* image, int32_t x, int32_t y, const ReferenceFrame* frame) const override;
    float maskValue(const FlexImage8* image, int32_t x, int32_t y, const ReferenceFrame* frame) const override;

    // The mask for one colour on 0..255; null curves read as 0.
    static float maskForColor(const ToneCurve* hue, const ToneCurve* saturation, const ToneCurve* value, float r,
                              float g, float b);
};
