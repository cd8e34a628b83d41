#pragma once
// The front shared by the hue-region tiles (ImageModSaturationCurve, ImageModHueBrightness,
// ImageModHueShift): the pixel's hue, where it falls on the offset hue curve, and the reading there.
#include "mods/CurveSteps.h"

#include <cfloat>
#include <cmath>

// HSV with hue in degrees and s, v in 0..1 from samples on 0..255. G is float or double: one old
// tile reads green in double. A grey pixel, or a hue that comes out infinite, has hue 0.
template <typename G>
static inline void hueRegionHsv(float r255, float g255, float b255, float& h, float& s, float& v)
{
    const float r = r255 / 255.0f;
    const G g = G(g255) / G(255);
    const float b = b255 / 255.0f;
    const G mx = r > g ? (r > b ? G(r) : G(b)) : (g > b ? g : G(b));
    const G mn = r < g ? (r < b ? G(r) : G(b)) : (g < b ? g : G(b));
    if (mx == mn) {
        h = 0.0f;
        s = 0.0f;
        v = float(mx);
        return;
    }
    const G d = mx - mn;
    G hue;
    if (mx == G(r))
        hue = G(60) * (g - G(b)) / d;
    else if (mx == g)
        hue = G(60) * (G(b) - G(r)) / d + G(120);
    else
        hue = G(60) * (G(r) - g) / d + G(240);
    float hf = float(hue);
    if (std::isinf(hf))
        hf = 0.0f;
    if (hf < 0.0f)
        hf += 360.0f;
    else if (hf >= 360.0f)
        hf -= 360.0f;
    h = hf;
    s = float(d / mx);
    v = float(mx);
}

// fmod(x, 360) with the common range done by one subtraction: for x in [360, 720) the difference
// is exact, so the result is the same bits as fmod.
static inline float hueRegionWrap360(float x)
{
    if (x >= 0.0f && x < 360.0f)
        return x;
    if (x >= 360.0f && x < 720.0f)
        return x - 360.0f;
    return std::fmod(x, 360.0f);
}

// Position of a hue on the curve after the offset, 0..1, and the curve's reading there.
static inline float hueRegionRead(const float* table, float hue, float offset)
{
    const float u = float(double(hueRegionWrap360(hue + (360.0f - offset))) * 0.002777777777777778);
    return curveReadUnit(table, u);
}

// sign(w) * w * w: the signed square that softens small readings.
static inline float hueRegionSignedSquare(float w)
{
    return w < 0.0f ? -w * w : w * w;
}
