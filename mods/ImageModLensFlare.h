#pragma once
#include "core/FlexImage.h"
#include "core/ImageMod.h"

// "Lens Flare": a bright starburst at the light source ("Handle", in document pixels; unset puts
// it in the upper left of the picture) and a string of coloured ghosts along the line from the
// source through the centre of the frame, as internal reflections in a lens draw them.
// "Variation" moves the ghosts smoothly: each ghost's place, size, hue and strength is a smooth
// noise of Variation, so the animator makes them drift and a remix step gives a related flare.
// Every size is a fraction of the frame's half-diagonal, so a preview and the save agree.
class ImageModLensFlare : public ImageMod
{
public:
    static constexpr int32_t ghostCount = 7;
    static constexpr int32_t spriteSize = 256;

    ImageModLensFlare();

    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModLensFlare>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // The starburst sprite: one channel, 0..1, spriteSize square, drawn in code once.
    static const FlexImageFloat& sprite();
};
