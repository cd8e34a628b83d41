#pragma once
#include "core/ImageMod.h"

// "Discolor": uneven, cloudy colour filtering, as of film that aged or caught stray light. The
// clouds are a two-octave value noise over the frame: Scale sizes them against the frame's longer
// side, Stretch squeezes them vertically into streaks (below 1) or flattens them (above 1), and
// Offset slides the pattern through the noise field.
class ImageModDiscolor : public ImageMod
{
public:
    ImageModDiscolor();

    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModDiscolor>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
