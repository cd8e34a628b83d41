#pragma once
#include "core/FlexImage.h"

#include <cstdint>

// Pixel reads shared by the mask classes. Coordinates are trusted to lie inside the image.

template <typename Sample>
static inline const Sample* selectorPixel(const FlexImageT<Sample>* image, int32_t x, int32_t y)
{
    return image->data + (int64_t(y) * image->width + x) * image->channels;
}

// Pixel as r, g, b on 0..255; a pixel of fewer than three channels is grey from channel 0.
template <typename Sample>
static inline void selectorRgb(const FlexImageT<Sample>* image, int32_t x, int32_t y, float& r, float& g, float& b)
{
    const Sample* p = selectorPixel(image, x, y);
    if (image->channels >= 3) {
        r = float(p[0]);
        g = float(p[1]);
        b = float(p[2]);
    } else {
        r = g = b = float(p[0]);
    }
}

// Plain HSV from samples on 0..255: hue in degrees 0 up to 360, s and v in 0..1. Grey has h = s = 0.
static inline void selectorHsv(float r255, float g255, float b255, float& h, float& s, float& v)
{
    const float r = r255 / 255.0f;
    const float g = g255 / 255.0f;
    const float b = b255 / 255.0f;
    v = r > g ? (r > b ? r : b) : (g > b ? g : b);
    const float mn = r < g ? (r < b ? r : b) : (g < b ? g : b);
    const float d = v - mn;
    if (d == 0.0f) {
        h = 0.0f;
        s = 0.0f;
        return;
    }
    s = d / v;
    if (v == r)
        h = 60.0f * (g - b) / d;
    else if (v == g)
        h = 60.0f * (b - r) / d + 120.0f;
    else
        h = 60.0f * (r - g) / d + 240.0f;
    if (h < 0.0f)
        h += 360.0f;
    else if (h >= 360.0f)
        h -= 360.0f;
}
