#pragma once
#include "core/ColorMath.h"
#include "core/ToneCurve.h"
#include "mods/CurveSteps.h"
#include "mods/TonalPixelLoop.h"
#include "mods/TonalSteps.h"

#include <vector>

// The pass behind the shadows and highlights tiles. Version 2 bends HSV value through one of two
// fixed curves (one to brighten, one to darken) at strength |A - 1|; older versions build a small
// curve from Amount and run it through luminance at full strength.

template <typename Sample>
static inline void toneRegionValuePixel(Sample* p, int32_t channels, const float* table, float t)
{
    const bool grey = channels < 3;
    const float r = float(p[0]);
    const float g = grey ? r : float(p[1]);
    const float b = grey ? r : float(p[2]);
    float h, s, v, outR, outG, outB;
    rgbToHsvInline(r, g, b, h, s, v);
    const float vNew = (curveReadUnit(table, v) - v) * t + v;
    hsvToRgbInline(h, s, vNew, outR, outG, outB);
    p[0] = storeSample<Sample>(outR);
    if (!grey) {
        p[1] = storeSample<Sample>(outG);
        p[2] = storeSample<Sample>(outB);
    }
}

template <typename Sample>
void toneRegionTablePass(FlexImageT<Sample>* image, const ImageModApplyContext* context, float amount,
                         const ToneCurve& brighten, const ToneCurve& darken)
{
    const float* table = amount > 1.0f ? brighten.table() : darken.table();
    const float t = amount > 1.0f ? amount - 1.0f : 1.0f - amount;
    const int32_t channels = image->channels;
    forEachPixel(
        image, context, [=](Sample* p) { toneRegionValuePixel(p, channels, table, t); },
        [=](Sample* p, float m) {
            if (m != 0.0f)
                toneRegionValuePixel(p, channels, table, m * t);
        });
}

template <typename Sample>
void toneRegionPointPass(FlexImageT<Sample>* image, const ImageModApplyContext* context,
                         const std::vector<ToneCurvePoint>& points)
{
    const ToneCurve curve(points);
    const float* table = curve.table();
    const int32_t channels = image->channels;
    const int32_t colour = image->colorChannels;
    forEachPixel(
        image, context, [=](Sample* p) { luminanceCurvePixelAny(p, channels, colour, table, 1.0f); },
        [=](Sample* p, float m) { luminanceCurvePixelAny(p, channels, colour, table, m); });
}
