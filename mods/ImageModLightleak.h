#pragma once
#include "core/ImageMod.h"

// "Lightleak", shown as "Light Leak": warm streaks where light got onto the film. It draws through
// a Discolor whose colour, stretch and strength follow the hidden phase ("Variation").
class ImageModLightleak : public ImageMod
{
public:
    ImageModLightleak();

    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModLightleak>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
    // A phase of (rand mod 10000) - 5000.
    void randomizeVariation() override;

    // Sets up `discolor` for this Amount and phase; false when there is nothing to draw.
    static bool configureDiscolor(ImageMod& discolor, float amount, float phase);
};
