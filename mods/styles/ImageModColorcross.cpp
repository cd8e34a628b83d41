#include "mods/styles/ImageModColorcross.h"

#include "mods/styles/StyleStages.h"

#include <algorithm>
#include <cmath>

ImageModColorcross::ImageModColorcross() : ImageModStyle("Colorcross", "Colorcross Camera")
{
    describe("Chemical color-swapping straight from the darkroom.", 2);
}

double ImageModColorcross::phaseOf(float v)
{
    return (double(v) * 0.5 - 1667.67) * 0.0628318531;
}

std::array<ToneCurve, 3> ImageModColorcross::buildCurves(float a, float v)
{
    // Each channel bends its five tones by cosines a third of a turn apart from the next
    // channel's, so one channel's lifted shadows meet another's lifted highlights. The ends only
    // ever move inwards (a faded black or white, never a clipped one).
    static constexpr float xs[5] = {0.0f, 0.25f, 0.5f, 0.75f, 1.0f};
    static constexpr double offsets[5] = {0.5, 1.7, 2.9, 4.1, 5.3};
    static constexpr float reach[5] = {0.12f, 0.10f, 0.09f, 0.10f, 0.12f};
    const double theta = phaseOf(v);
    std::array<ToneCurve, 3> curves;
    // Plain "0 0 1 1" curves, which the curve stage skips.
    if (a == 0.0f)
        return curves;
    for (int32_t k = 0; k < 3; ++k) {
        const double phi = theta + double(k) * 2.0943951023931953;
        std::vector<ToneCurvePoint> pts(5);
        float previous = 0.0f;
        for (int32_t i = 0; i < 5; ++i) {
            float bend = reach[i] * float(std::cos(phi + offsets[i]));
            if (i == 0)
                bend = std::max(bend, 0.0f);
            if (i == 4)
                bend = std::min(-bend, 0.0f);
            float y = std::clamp(xs[i] + bend * a, 0.0f, 1.0f);
            y = std::max(y, previous);
            previous = y;
            pts[size_t(i)] = {xs[i], y};
        }
        curves[size_t(k)] = ToneCurve(pts);
    }
    return curves;
}

void ImageModColorcross::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a,
                                   float v) const
{
    const std::array<ToneCurve, 3> curves = buildCurves(a, v);
    StyleStages(image, context).rgbCurves(1.0f, curves[0], curves[1], curves[2]);
}
