#pragma once
#include "core/ImageModSelector.h"

#include <vector>

// Several masks acting together: the product of their values, 1 with none. Owns nothing; lives on
// the stack of whoever runs the tile.
class ImageModSelectorPointerArray : public ImageModSelector {
public:
    ImageModSelectorPointerArray();
    explicit ImageModSelectorPointerArray(std::vector<ImageModSelector*> members);
    std::unique_ptr<ImageMod> newInstance() const override;
    float maskValue(const FlexImageFloat* image, int32_t x, int32_t y, const ReferenceFrame* frame) const override;
    float maskValue(const FlexImage8* image, int32_t x, int32_t y, const ReferenceFrame* frame) const override;

    std::vector<ImageModSelector*> selectors;
};
