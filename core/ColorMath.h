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
    float hue = mx == rf ? (gf - bf) * m : mx == gf ? (bf - rf) * m + 120.0f : (rf - gf) * m + 240.0f;
    // |hue| < inf is false for both infinities and NaN.
    const bool finite = std::fabs(hue) < INFINITY;
    hue = finite ? hue : 0.0f;
    hue = hue < 0.0f ? hue + 360.0f : hue >= 360.0f ? hue - 360.0f : hue;
    h = hue;
    s = finite ? d / mx : 0.0f;
    v = mx;
}

inline void hsvToRgbInline(float h, float s, float v, float& r, float& g, float& b)
{
    // Selects instead of branches and a sector kept as a float, so the loop if-converts.
    h = h < 0.0f ? h + 360.0f * (1.0f + std::trunc(h * (-1.0f / 360.0f))) : h;
    h = h >= 360.0f ? h - 360.0f * std::trunc(h / 360.0f) : h;
    const float x = h / 360.0f * 6.0f;
    const float f = std::floor(x);
    const float q = x - f;
    const float p = (1.0f - s) * v;
    const float qq = (1.0f - q * s) * v;
    const float t = (1.0f - (1.0f - q) * s) * v;
    // Sector 6 (h rounding up to 360) and a NaN hue fall through to sector 0.
    const bool s1 = f == 1.0f, s2 = f == 2.0f, s3 = f == 3.0f, s4 = f == 4.0f, s5 = f == 5.0f;
    float rr = s1 ? qq : (s2 | s3) ? p : s4 ? t : v;
    float gg = (s1 | s2) ? v : s3 ? qq : (s4 | s5) ? p : t;
    float bb = s2 ? t : (s3 | s4) ? v : s5 ? qq : p;
    const bool grey = s == 0.0f;
    rr = grey ? v : rr;
    gg = grey ? v : gg;
    bb = grey ? v : bb;
    r = rr * 255.0f;
    g = gg * 255.0f;
    b = bb * 255.0f;
}
