#pragma once
#include <cmath>
#include <cstdint>

// Colour helpers on the 0..255 scale; plain functions without state.

struct ColorRGB {
    float r = 0.0f;
    float g = 0.0f;
    float b = 0.0f;
};

inline constexpr double kInv255 = 0.00392156862745098;
inline constexpr float kInv255Float = 0.003921569f;

inline constexpr double kLumaR = 0.299;
inline constexpr double kLumaG = 0.587;
inline constexpr double kLumaB = 0.114;

// 0.299 R + 0.587 G + 0.114 B in double, rounded to float once at the end.
inline float luminance(float r, float g, float b)
{
    return float(kLumaR * double(r) + kLumaG * double(g) + kLumaB * double(b));
}

inline float luminanceRootOfSquares(float r, float g, float b)
{
    const double dr = r, dg = g, db = b;
    return float(std::sqrt(kLumaR * dr * dr + kLumaG * dg * dg + kLumaB * db * db));
}

// Channel 0 for images with fewer than three channels.
inline float pixelLuminance(const float* p, int32_t channels)
{
    return channels < 3 ? p[0] : luminance(p[0], p[1], p[2]);
}

void rgbToHsv(float r, float g, float b, float& h, float& s, float& v);
void hsvToRgb(float h, float s, float v, float& r, float& g, float& b);
ColorRGB setSaturation(ColorRGB rgb, float s);
ColorRGB setHue(ColorRGB rgb, float h);
void rgbToHsl(float r, float g, float b, float& h, float& s, float& l);
void hslToRgb(float h, float s, float l, float& r, float& g, float& b);
void rgbToLab(float r, float g, float b, float& L, float& a, float& bb);
void labToRgb(float L, float a, float bb, float& r, float& g, float& b);
float shapedStep(float t, float p);
// xy holds count (x, y) pairs. Ties keep the lower index; fewer than two points give 0.
int32_t nearestPoint(const float* xy, int32_t count, float x, float y);

// Plain comparisons rather than fmax/fmin so the loops that use them vectorise.
inline float maxOf3(float a, float b, float c)
{
    const float ab = a > b ? a : b;
    return ab > c ? ab : c;
}

inline float minOf3(float a, float b, float c)
{
    const float ab = a < b ? a : b;
    return ab < c ? ab : c;
}

// Inline variants for hot loops; results match the functions above bit for bit.
// Without a branch on d: a grey pixel divides by zero, and the non-finite hue that comes out is
// taken as hue 0 and saturation 0.
inline void rgbToHsvInline(float r, float g, float b, float& h, float& s, float& v)
{
    const float rf = float(r * kInv255);
    const float gf = float(g * kInv255);
    const float bf = float(b * kInv255);
    const float mx = maxOf3(rf, gf, bf);
    const float mn = minOf3(rf, gf, bf);
    const float d = mx - mn;
    const float m = 60.0f * (1.0f / d);
    float hue;
    if (mx == rf)
        hue = (gf - bf) * m;
    else if (mx == gf)
        hue = (bf - rf) * m + 120.0f;
    else
        hue = (rf - gf) * m + 240.0f;
    float sat = d / mx;
    if (std::isinf(hue) || std::isnan(hue)) {
        hue = 0.0f;
        sat = 0.0f;
    }
    if (hue < 0.0f)
        hue += 360.0f;
    else if (hue >= 360.0f)
        hue -= 360.0f;
    h = hue;
    s = sat;
    v = mx;
}

inline void hsvToRgbInline(float h, float s, float v, float& r, float& g, float& b)
{
    if (h < 0.0f)
        h += 360.0f * (1.0f + std::trunc(h * (-1.0f / 360.0f)));
    if (h >= 360.0f)
        h -= 360.0f * std::trunc(h / 360.0f);
    const float x = h / 360.0f * 6.0f;
    const float f = std::floor(x);
    const float q = x - f;
    const float p = (1.0f - s) * v;
    const float qq = (1.0f - q * s) * v;
    const float t = (1.0f - (1.0f - q) * s) * v;
    // Sector 6 (h rounding up to 360) is sector 0 again; so is a NaN hue, which never indexes.
    const int32_t sector = (f >= 0.0f && f < 6.0f) ? int32_t(f) : 0;
    float rr = v, gg = t, bb = p;
    rr = (sector == 1) ? qq : (sector == 2 || sector == 3) ? p : (sector == 4) ? t : rr;
    gg = (sector == 1 || sector == 2) ? v : (sector == 3) ? qq : (sector >= 4) ? p : gg;
    bb = (sector == 2) ? t : (sector == 3 || sector == 4) ? v : (sector == 5) ? qq : bb;
    if (s == 0.0f)
        rr = gg = bb = v;
    r = rr * 255.0f;
    g = gg * 255.0f;
    b = bb * 255.0f;
}
