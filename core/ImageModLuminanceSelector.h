#pragma once
#include "core/ImageModSelector.h"

// Mask from the pixel's luminance read through a curve. Variables: 0 "Curve", 1 "Presets".
class ImageModLuminanceSelector : public ImageModSelector {
public:
    ImageModLuminanceSelector();
    std::unique_ptr<ImageMod> newInstance() const override;
    // Picking a preset range sets the curve and returns the choice to "Load Preset...".
    void variableChanged(int32_t index) override;
    float maskValue(const FlexImageFloat* image, int32_t x, int32_t y, const ReferenceFrame* frame) const override;
    float maskValue(const FlexImage8* image, int32_t x, int32_t y, const ReferenceFrame* frame) const override;

    // Point strings of the preset ranges, in the order of the choice after "Load Preset...".
    static const char* presetCurve(int32_t presetIndex);
};
