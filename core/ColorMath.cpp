#include "core/ColorMath.h"

#include <cmath>

namespace {

// Hue to 0 up to 360 in whole turns; the same rule serves any caller that takes hue in degrees.
float wrapHueDegrees(float h)
{
    if (h < 0.0f)
        h += 360.0f * (1.0f + std::trunc(h * (-1.0f / 360.0f)));
    if (h >= 360.0f)
        h -= 360.0f * std::trunc(h / 360.0f);
    return h;
}

// A sector index from a floor or truncation; 6 (rounding at the top) and NaN map to 0.
int32_t sectorOf(float f)
{
    return (f >= 0.0f && f < 6.0f) ? int32_t(f) : 0;
}

// Sector 0 is red to yellow: each sector holds one channel at hi, one at lo and one moving between
// them. HSV and HSL differ only in how they compute the four levels.
void sectorToRgb(float sector, float hi, float rising, float falling, float lo, float& r, float& g,
                 float& b)
{
    float rr, gg, bb;
    switch (sectorOf(sector)) {
    case 0:
        rr = hi, gg = rising, bb = lo;
        break;
    case 1:
        rr = falling, gg = hi, bb = lo;
        break;
    case 2:
        rr = lo, gg = hi, bb = rising;
        break;
    case 3:
        rr = lo, gg = falling, bb = hi;
        break;
    case 4:
        rr = rising, gg = lo, bb = hi;
        break;
    default:
        rr = hi, gg = lo, bb = falling;
        break;
    }
    r = rr * 255.0f;
    g = gg * 255.0f;
    b = bb * 255.0f;
}

constexpr double kD65X = 0.950456;
constexpr double kD65Z = 1.088754;
constexpr double kLabEpsilon = 0.008856;
constexpr double kLabOffset = 0.13793103448275862; // 16 / 116

double labF(double t)
{
    return t > kLabEpsilon ? std::cbrt(t) : 7.787 * t + kLabOffset;
}

double labFInverse(double f)
{
    const double cube = f * f * f;
    return cube > kLabEpsilon ? cube : f * 0.1284191601386927 - 0.017712987605336922;
}

float clamp255(double v)
{
    if (!(v > 0.0))
        return 0.0f;
    return v > 255.0 ? 255.0f : float(v);
}

} // namespace

void rgbToHsv(float r, float g, float b, float& h, float& s, float& v)
{
    const float rf = float(r * kInv255);
    const float gf = float(g * kInv255);
    const float bf = float(b * kInv255);
    const float mx = maxOf3(rf, gf, bf);
    const float d = mx - minOf3(rf, gf, bf);
    v = mx;
    if (d == 0.0f) {
        h = 0.0f;
        s = 0.0f;
        return;
    }
    s = d / mx;
    const float m = 60.0f * (1.0f / d);
    float hue;
    if (mx == rf)
        hue = (gf - bf) * m;
    else if (mx == gf)
        hue = (bf - rf) * m + 120.0f;
    else
        hue = (rf - gf) * m + 240.0f;
    if (hue < 0.0f)
        hue += 360.0f;
    else if (hue >= 360.0f)
        hue -= 360.0f;
    h = hue;
}

void hsvToRgb(float h, float s, float v, float& r, float& g, float& b)
{
    h = wrapHueDegrees(h);
    if (s == 0.0f) {
        r = g = b = v * 255.0f;
        return;
    }
    const float x = h / 360.0f * 6.0f;
    const float f = std::floor(x);
    const float q = x - f;
    const float p = (1.0f - s) * v;
    const float qq = (1.0f - q * s) * v;
    const float t = (1.0f - (1.0f - q) * s) * v;
    sectorToRgb(f, v, t, qq, p, r, g, b);
}

ColorRGB setSaturation(ColorRGB rgb, float s)
{
    float h, oldS, v;
    rgbToHsv(rgb.r, rgb.g, rgb.b, h, oldS, v);
    ColorRGB out;
    hsvToRgb(h, s, v, out.r, out.g, out.b);
    return out;
}

ColorRGB setHue(ColorRGB rgb, float h)
{
    float oldH, s, v;
    rgbToHsv(rgb.r, rgb.g, rgb.b, oldH, s, v);
    ColorRGB out;
    hsvToRgb(h, s, v, out.r, out.g, out.b);
    return out;
}

void rgbToHsl(float r, float g, float b, float& h, float& s, float& l)
{
    const float rf = float(r * kInv255);
    const float gf = float(g * kInv255);
    const float bf = float(b * kInv255);
    const float hi = maxOf3(rf, gf, bf);
    const float lo = minOf3(rf, gf, bf);
    const float light = 0.5f * (hi + lo);
    if (light == 0.0f) {
        h = s = l = 0.0f;
        return;
    }
    l = light;
    const float d = hi - lo;
    if (d == 0.0f) {
        h = s = 0.0f;
        return;
    }
    s = light <= 0.5f ? d / (hi + lo) : d / (2.0f - hi - lo);
    // Sextant form: each channel's distance from the maximum, scaled by the spread.
    const float rd = (hi - rf) / d;
    const float gd = (hi - gf) / d;
    const float bd = (hi - bf) / d;
    float sextant;
    if (rf == hi)
        sextant = (gf == lo) ? 5.0f + bd : 1.0f - gd;
    else if (gf == hi)
        sextant = (bf == lo) ? 1.0f + rd : 3.0f - bd;
    else
        sextant = (rf == lo) ? 3.0f + gd : 5.0f - rd;
    float hue = sextant * 60.0f;
    if (hue >= 360.0f)
        hue -= 360.0f;
    h = hue;
}

void hslToRgb(float h, float s, float l, float& r, float& g, float& b)
{
    const float v = l <= 0.5f ? l * (1.0f + s) : l + s - l * s;
    if (!(v > 0.0f)) {
        r = g = b = 0.0f;
        return;
    }
    const float m = l + l - v;
    const float sv = (v - m) / v;
    const float hh = wrapHueDegrees(h) / 60.0f;
    const float whole = std::trunc(hh);
    const float fract = hh - whole;
    const float vsf = v * sv * fract;
    const float mid1 = m + vsf;
    const float mid2 = v - vsf;
    sectorToRgb(whole, v, mid1, mid2, m, r, g, b);
}

// The matrix works on the encoded values as they are, with no gamma decoding: the look of every
// Lab-based adjustment depends on this.
void rgbToLab(float r, float g, float b, float& L, float& a, float& bb)
{
    const double rd = r * kInv255;
    const double gd = g * kInv255;
    const double bd = b * kInv255;
    const double x = (0.412453 * rd + 0.35758 * gd + 0.180423 * bd) * 1.0521265581994328;
    const double y = 0.212671 * rd + 0.71516 * gd + 0.072169 * bd;
    const double z = (0.019334 * rd + 0.119193 * gd + 0.950227 * bd) * 0.9184811261313391;
    const double fx = labF(x);
    const double fy = labF(y);
    const double fz = labF(z);
    L = float(116.0 * fy - 16.0);
    a = float(500.0 * (fx - fy));
    bb = float(200.0 * (fy - fz));
}

void labToRgb(float L, float a, float bb, float& r, float& g, float& b)
{
    const double fy = L * 0.008620689655172414 + kLabOffset;
    const double fx = fy + 0.002 * a;
    const double fz = fy - 0.005 * bb;
    const double x = labFInverse(fx) * kD65X;
    const double y = labFInverse(fy);
    const double z = labFInverse(fz) * kD65Z;
    r = clamp255((3.240479 * x - 1.53715 * y - 0.498535 * z) * 255.0);
    g = clamp255((-0.969256 * x + 1.875992 * y + 0.041556 * z) * 255.0);
    b = clamp255((0.055648 * x - 0.204043 * y + 1.057311 * z) * 255.0);
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

int32_t nearestPoint(const float* xy, int32_t count, float x, float y)
{
    if (xy == nullptr || count < 2)
        return 0;
    int32_t best = 0;
    float bestDist = 0.0f;
    for (int32_t i = 0; i < count; ++i) {
        const float dx = xy[2 * i] - x;
        const float dy = xy[2 * i + 1] - y;
        const float dist = dx * dx + dy * dy;
        if (i == 0 || dist < bestDist) {
            best = i;
            bestDist = dist;
        }
    }
    return best;
}
