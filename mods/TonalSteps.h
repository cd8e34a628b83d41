#pragma once
#include "core/ColorMath.h"

#include <cmath>
#include <cstdint>

// Per-pixel steps shared by the tonal, colour and style mods. Each exists once per depth; the 8-bit
// forms compute in float and truncate on the store (never round), which saved tiles depend on.

// --- the power pair ---------------------------------------------------------------------------
// Slider value a in 0..2: below 1 the exponent is a itself, above 1 it grows as 1 / (2 - a).
static inline float powerPairExponent(float a)
{
    return a < 1.0f ? a : 1.0f / (2.0f - a);
}

// Bends x away from (e < 1) or towards (e > 1) the center, keeping 0, center and top fixed.
static inline float powerPair(float x, float center, float e, float top = 255.0f)
{
    if (x > center) {
        const float span = top - center;
        return top - std::pow((top - x) / span, e) * span;
    }
    if (x < center)
        return std::pow(x / center, e) * center;
    return x;
}

static inline uint8_t powerPair8(uint8_t x, float center, float e)
{
    return uint8_t(int32_t(powerPair(float(x), center, e)));
}

// --- luminance setting ------------------------------------------------------------------------
// Moves the colour channels so the pixel's luminance y becomes target, keeping hue: channels shrink
// proportionally towards 0 or stretch towards 255. A black or white pixel has no hue to keep and
// takes the target in every channel. No clamp.
static inline float setLuminanceChannel(float c, float y, float target)
{
    if (target <= y)
        return c - c * (y - target) / y;
    return c + (255.0f - c) * (target - y) / (255.0f - y);
}

static inline void setLuminance(float* p, int32_t colorChannels, float y, float target)
{
    if (y == 0.0f || y == 255.0f) {
        for (int32_t c = 0; c < colorChannels; ++c)
            p[c] = target;
        return;
    }
    for (int32_t c = 0; c < colorChannels; ++c)
        p[c] = setLuminanceChannel(p[c], y, target);
}

static inline void setLuminance8(uint8_t* p, int32_t colorChannels, float y, float target)
{
    if (y == 0.0f || y == 255.0f) {
        for (int32_t c = 0; c < colorChannels; ++c)
            p[c] = uint8_t(int32_t(target));
        return;
    }
    for (int32_t c = 0; c < colorChannels; ++c)
        p[c] = uint8_t(int32_t(setLuminanceChannel(float(p[c]), y, target)));
}

// Linear luminance of an 8-bit pixel; channel 0 when the pixel stride marks a grey image.
static inline float pixelLuminance8(const uint8_t* p, int32_t channels)
{
    return channels < 3 ? float(p[0]) : luminance(float(p[0]), float(p[1]), float(p[2]));
}

// --- saturation steps -------------------------------------------------------------------------
// Pushes a channel away from (v > 1) or towards (v < 1) the anchor; upper bound first so a NaN-free
// overshoot always lands on 255 before the lower test.
static inline float saturateChannel(float c, float anchor, float v)
{
    float t = (c - anchor) * v + anchor;
    if (t > 255.0f)
        t = 255.0f;
    if (t < 0.0f)
        t = 0.0f;
    return t;
}

// Legacy step: anchored on the linear luminance, every colour channel alike. The anchor is read
// before any channel is written.
static inline void legacySaturate(float* p, int32_t channels, int32_t colorChannels, float v)
{
    const float y = pixelLuminance(p, channels);
    for (int32_t c = 0; c < colorChannels; ++c)
        p[c] = saturateChannel(p[c], y, v);
}

static inline void legacySaturate8(uint8_t* p, int32_t channels, int32_t colorChannels, float v)
{
    const float y = pixelLuminance8(p, channels);
    for (int32_t c = 0; c < colorChannels; ++c)
        p[c] = uint8_t(int32_t(saturateChannel(float(p[c]), y, v)));
}

// Current step: anchored on the root of weighted squares, always channels 0..2 (RGB images only).
static inline void rootSaturate(float* p, float v)
{
    const float g = luminanceRootOfSquares(p[0], p[1], p[2]);
    p[0] = saturateChannel(p[0], g, v);
    p[1] = saturateChannel(p[1], g, v);
    p[2] = saturateChannel(p[2], g, v);
}

static inline void rootSaturate8(uint8_t* p, float v)
{
    const float g = luminanceRootOfSquares(float(p[0]), float(p[1]), float(p[2]));
    p[0] = uint8_t(int32_t(saturateChannel(float(p[0]), g, v)));
    p[1] = uint8_t(int32_t(saturateChannel(float(p[1]), g, v)));
    p[2] = uint8_t(int32_t(saturateChannel(float(p[2]), g, v)));
}

// Saturation slider value (already bent by a mask) to the factor: 0..1 stays linear, 1..2 maps to
// 1..~100000, capped just below 2 so the division never reaches zero.
static inline float saturationFactor(float amount)
{
    float v = amount < 1.99999f ? amount : 1.99999f;
    if (v > 1.0f)
        v = 1.0f / (2.0f - v);
    return v;
}

// --- gamma steps (current form) ---------------------------------------------------------------
// Darkening: the channel is capped just below white first so white moves too.
static inline float gammaDarken(float c, float e)
{
    if (c >= 254.95f)
        c = 254.95f;
    return std::pow(c / 255.0f, e) * 255.0f;
}

// Brightening: the channel is floored just above black first so black moves too.
static inline float gammaBrighten(float c, float e)
{
    if (c <= 0.05f)
        c = 0.05f;
    return 255.0f - std::pow(1.0f - c / 255.0f, e) * 255.0f;
}

// The 8-bit forms divide by 255 as integers, so the base of the power is 0 or 1. Kept exactly:
// darkening turns every channel black, brightening turns every non-zero channel white.
static inline uint8_t gammaDarken8(uint8_t c, float e)
{
    (void)c;  // the capped channel over 255 is 0 for every input
    return uint8_t(int32_t(std::pow(0.0f, e) * 255.0f));
}

// One's complement of the power of the integer base: 1 for a black channel, 0 otherwise.
static inline uint8_t gammaBrighten8(uint8_t c, float e)
{
    const float base = c == 0 ? 1.0f : 0.0f;
    return uint8_t(~int32_t(std::pow(base, e) * 255.0f));
}

// --- the same steps by pixel type, for code written once over both depths ----------------------
static inline void setLuminance(uint8_t* p, int32_t colorChannels, float y, float target)
{
    setLuminance8(p, colorChannels, y, target);
}

static inline float pixelLuminance(const uint8_t* p, int32_t channels)
{
    return pixelLuminance8(p, channels);
}

static inline void legacySaturate(uint8_t* p, int32_t channels, int32_t colorChannels, float v)
{
    legacySaturate8(p, channels, colorChannels, v);
}

static inline void rootSaturate(uint8_t* p, float v)
{
    rootSaturate8(p, v);
}

// Stores a computed value: as it is in float, truncated towards zero in 8 bits.
template <typename Sample>
static inline Sample storeSample(float v)
{
    if constexpr (sizeof(Sample) == 1)
        return Sample(int32_t(v));
    else
        return v;
}

// Luminance contrast: the power pair on the linear luminance, then the pixel moves to the result.
template <typename Sample>
static inline void luminanceContrastPixel(Sample* p, int32_t channels, int32_t colorChannels, float center, float e)
{
    const float y = pixelLuminance(p, channels);
    setLuminance(p, colorChannels, y, powerPair(y, center, e));
}
