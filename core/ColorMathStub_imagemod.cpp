// TEMPORARY stand-in so the imagemod branch links before the real colour code is merged.
// Delete this file on merge. Only what the mask and animator code calls.
#include "core/ColorMath.h"

#include <cmath>

void hsvToRgb(float h, float s, float v, float& r, float& g, float& b)
{
    if (h < 0.0f)
        h += 360.0f * float(1 + int32_t(h * (-1.0f / 360.0f)));
    if (h >= 360.0f)
        h -= 360.0f * float(int32_t(h / 360.0f));
    if (s == 0.0f) {
        r = g = b = v * 255.0f;
        return;
    }
    const float x = h / 360.0f * 6.0f;
    const float f = std::floor(x);
    const float q = x - f;
    const float p = (1.0f - s) * v;
    const float dn = (1.0f - q * s) * v;
    const float up = (1.0f - (1.0f - q) * s) * v;
    switch (int32_t(f) % 6) {
    case 0: r = v; g = up; b = p; break;
    case 1: r = dn; g = v; b = p; break;
    case 2: r = p; g = v; b = up; break;
    case 3: r = p; g = dn; b = v; break;
    case 4: r = up; g = p; b = v; break;
    default: r = v; g = p; b = dn; break;
    }
    r *= 255.0f;
    g *= 255.0f;
    b *= 255.0f;
}

float shapedStep(float t, float p)
{
    if (!(t > 0.0f))
        return 0.0f;
    if (t < 0.5f)
        return 0.5f * std::pow(2.0f * t, p);
    if (t >= 1.0f)
        return 1.0f;
    return 1.0f - 0.5f * std::pow(2.0f - 2.0f * t, p);
}
