#pragma once
#include "core/FlexImage.h"
#include "core/ImageModApplyContext.h"

// Mixed into a tile whose float pass reads each pixel on its own (no neighbours, no image-wide
// state): it can read one image and write another of the same shape. A runner that restores cached
// pixels and then runs such a tile in place does both in one sweep, saving a full-image copy.
class ImageModSourcedApply {
public:
    virtual ~ImageModSourcedApply() = default;
    // dest becomes what apply() on a copy of source would leave: same size and channels, the
    // placement fields of source. False when this pass can't run that way under this context (a
    // mask, a setting that needs the image as a whole); dest is then untouched.
    virtual bool applyFrom(const FlexImageFloat& source, FlexImageFloat* dest, const ImageModApplyContext* context) = 0;
};
