#pragma once
#include "core/ImageModSelector.h"

#include <memory>

// A mask frozen into a one-channel float image, so later pixel changes don't move it.
class ImageModBitmapSelector : public ImageModSelector {
public:
    ImageModBitmapSelector();
    std::unique_ptr<ImageMod> newInstance() const override;
    // 0 where there is no mask image (or outside it).
    float maskValue(const FlexImageFloat* image, int32_t x, int32_t y, const ReferenceFrame* frame) const override;
    float maskValue(const FlexImage8* image, int32_t x, int32_t y, const ReferenceFrame* frame) const override;

    // Evaluates source once at every pixel of image into a fresh mask of the image's size.
    // A null source or an empty image leaves no mask.
    void fillFrom(const ImageModSelector* source, const FlexImageFloat* image, const ReferenceFrame* frame);
    void fillFrom(const ImageModSelector* source, const FlexImage8* image, const ReferenceFrame* frame);

    std::unique_ptr<FlexImageFloat> mask;

private:
    float read(int32_t x, int32_t y) const;
};
