#pragma once
#include "core/ImageMod.h"

// A mask tile. It changes no pixels: a mod asks it, once per pixel and before touching the pixel,
// how strongly to act there (0..1), on the pixels as they stand when that mod runs.
class ImageModSelector : public ImageMod {
public:
    static constexpr int32_t selectorKind = 4;

    explicit ImageModSelector(std::string modName = "Selector", std::string label = {});

    int32_t kind() const override { return selectorKind; }
    bool isPlainAdjustment() const override { return false; }
    std::unique_ptr<ImageMod> newInstance() const override;

    // Both depths read samples on the 0..255 scale; frame may be null. The base mask is 1 everywhere.
    virtual float maskValue(const FlexImageFloat* image, int32_t x, int32_t y, const ReferenceFrame* frame) const;
    virtual float maskValue(const FlexImage8* image, int32_t x, int32_t y, const ReferenceFrame* frame) const;
};

// Rule A, for mods whose neutral Amount is 1: the mask scales the distance from neutral.
static inline float maskRuleA(float amount, float mask)
{
    return float((double(amount) - 1.0) * double(mask) + 1.0);
}

// Rule B, for mods whose neutral Amount is 0.
static inline float maskRuleB(float amount, float mask)
{
    return amount * mask;
}
