#pragma once
#include "core/ImageMod.h"

// "Noise", shown as "Grain": value noise laid on the document's pixel grid, strongest in the
// midtones. The camera styles use it as their grain stage.
//
// Branches by version: 1 (the tile's) adds monochrome noise whose cell shrinks as the frequency
// pow(1 / (Scale * 0.006 + 0.4) - 1, 2.6) grows, weighted by pow(1 - |Y / 127.5 - 1|, 0.34);
// 2 adds noise with cells of pow(Scale * 0.006 + 0.4, 2.6) * 8 + 0.5 document pixels, weighted
// by 1 - 0.7 |Y / 127.5 - 1|; 3 and above bend each pixel's gamma by the noise instead.
class ImageModNoise : public ImageMod
{
public:
    ImageModNoise();

    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModNoise>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // Size of one noise cell in document pixels for a Scale of 0..100 and a version.
    static float cellSize(float scale, int32_t version);
};
