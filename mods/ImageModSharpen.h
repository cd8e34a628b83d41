#pragma once
#include "core/ImageMod.h"

// "Sharpen": adds a high-pass of the image. The kernel widens on previews so that smaller views
// still show the effect.
class ImageModSharpen : public ImageMod
{
public:
    ImageModSharpen();

    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModSharpen>(); }
    int32_t paddingNeeded(int32_t width, int32_t height, float scale) const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // Reach R and tap value v of the kernel at scale s for a version: every tap but the centre is
    // v, the centre is -v ((2R + 1)^2 - 1).
    static int32_t kernelReach(float scale);
    static float kernelTap(float scale, int32_t version);
};
