#pragma once
#include "core/ImageMod.h"

// "Grain Legacy": the older grain, kept so that old filters keep their look; not offered in the
// panel. Per-pixel hashed value noise laid on the document's own pixel grid, so a preview shows
// the grain a full-size save will have. Version 1 of "Grain" runs it.
class ImageModGrainLegacy : public ImageMod
{
public:
    ImageModGrainLegacy();

    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModGrainLegacy>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
