#pragma once
#include "core/ImageModSelector.h"

#include <array>
#include <vector>

// Mask from the selected hue regions, faded out for greys and darks. Variable: 0 "Hue".
class ImageModHueSelector : public ImageModSelector {
public:
    // Rising start, top start, top end, falling end, in hue degrees.
    using Region = std::array<float, 4>;

    ImageModHueSelector();
    std::unique_ptr<ImageMod> newInstance() const override;
    float maskValue(const FlexImageFloat* image, int32_t x, int32_t y, const ReferenceFrame* frame) const override;
    float maskValue(const FlexImage8* image, int32_t x, int32_t y, const ReferenceFrame* frame) const override;

    // Trapezoid with shaped flanks.
    static float regionValue(const Region& region, float hue);
    // The mask for one colour on 0..255 with the given selection.
    float maskForColor(const std::vector<int32_t>& selected, float r, float g, float b) const;

    std::vector<Region> regions;
    float wrapThreshold = 290.0f;
};
