#pragma once
#include "core/ToneCurve.h"
#include "mods/styles/ImageModStyle.h"

#include <array>

// "Colorcross": three channel curves built from the phase at every apply, so shadows and
// highlights of each channel drift apart as in cross-processed film. The monochrome styles run it
// before draining the colour, where it acts as a filter that changes with Variation.
class ImageModColorcross : public ImageModStyle {
public:
    ImageModColorcross();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModColorcross>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;

    // The phase of a Variation v: (v * 0.5 - 1667.67) * 2 pi / 100.
    static double phaseOf(float v);
    // Red, green and blue curves at Amount a: five points each, rising, within 0..1; a of 0 gives
    // the identity.
    static std::array<ToneCurve, 3> buildCurves(float a, float v);
};
