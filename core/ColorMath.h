#pragma once
#include <cstdint>

// Colour helpers on the 0..255 scale; plain functions without state.

struct ColorRGB {
    float r = 0.0f;
    float g = 0.0f;
    float b = 0.0f;
};

inline constexpr double kInv255 = 0.00392156862745098;
inline constexpr float kInv255Float = 0.003921569f;

float luminance(float r, float g, float b);            // 0.299 R + 0.587 G + 0.114 B in double
float luminanceRootOfSquares(float r, float g, float b);
// Channel 0 for images with fewer than three channels.
float pixelLuminance(const float* p, int32_t channels);

void rgbToHsv(float r, float g, float b, float& h, float& s, float& v);
void hsvToRgb(float h, float s, float v, float& r, float& g, float& b);
ColorRGB setSaturation(ColorRGB rgb, float s);
ColorRGB setHue(ColorRGB rgb, float h);
void rgbToHsl(float r, float g, float b, float& h, float& s, float& l);
void hslToRgb(float h, float s, float l, float& r, float& g, float& b);
void rgbToLab(float r, float g, float b, float& L, float& a, float& bb);
void labToRgb(float L, float a, float bb, float& r, float& g, float& b);
float shapedStep(float t, float p);
int32_t nearestPoint(const float* xy, int32_t count, float x, float y);

// Inline variants for hot loops; results match the functions above.
void rgbToHsvInline(float r, float g, float b, float& h, float& s, float& v);
void hsvToRgbInline(float h, float s, float v, float& r, float& g, float& b);
