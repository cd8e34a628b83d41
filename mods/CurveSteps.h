#pragma once
// Pixel steps shared by the curve tiles (tone, luminance, RGB, component, exposure, Lab and the hue
// region curves) and by the tonal tiles that run a curve through luminance.
#include "core/ColorMath.h"
#include "core/FlexImage.h"
#include "core/ImageModApplyContext.h"
#include "core/ImageModSelector.h"
#include "core/ParallelFor.h"
#include "core/ToneCurve.h"
#include "mods/TonalSteps.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

class ImageMod;
class ImageModVariable;

// 2047 / 255 as the table index scale for values on 0..255.
inline constexpr float kCurveIndexScale = 8.0274515f;
inline constexpr int32_t kCurveLastEntry = ToneCurve::tableSize - 1;

// Linear read between entries n and n + 1 at fractional index i. The clamp of n only matters for a
// value a hair below the top whose scaled index rounds up to 2047.
static inline float curveLerpAt(const float* table, float i)
{
    int32_t n = int32_t(i);
    if (n > kCurveLastEntry - 1)
        n = kCurveLastEntry - 1;
    return (i - float(n)) * table[n + 1] + (float(n + 1) - i) * table[n];
}

// Table read for a value on the 0..255 scale: entry 2047 when c / 255 is at least 1, entry 0 when
// it is at most 0 (or NaN), else the linear read. c / 255 >= 1 exactly when c >= 255, and c / 255 > 0
// exactly when c > 0 except for tiny c whose quotient underflows, so the division is only done
// there.
static inline float curveRead255(const float* table, float c)
{
    if (c >= 255.0f)
        return table[kCurveLastEntry];
    if (!(c > 1.0e-30f)) {
        if (!(c / 255.0f > 0.0f))
            return table[0];
    }
    return curveLerpAt(table, c * kCurveIndexScale);
}

// Table read for a value already on 0..1.
static inline float curveReadUnit(const float* table, float u)
{
    if (u >= 1.0f)
        return table[kCurveLastEntry];
    if (!(u > 0.0f))
        return table[0];
    return curveLerpAt(table, u * float(kCurveLastEntry));
}

// The RGB branch of the curve tiles on 8-bit images reads the table at its ends only: entry 2047
// for a full channel and entry 0 for anything else. Old 8-bit renders depend on it.
static inline float curveRead8Plain(const float* table, uint8_t c)
{
    return c == 255 ? table[kCurveLastEntry] : table[0];
}

// Truncating store for 8-bit results; the clamp only keeps the conversion defined.
static inline uint8_t curveStore8(double v)
{
    if (!(v > 0.0))
        return 0;
    if (v >= 255.0)
        return 255;
    return uint8_t(v);
}

template <typename Sample>
static inline Sample curveStore(double v)
{
    if constexpr (std::is_same_v<Sample, uint8_t>)
        return curveStore8(v);
    else
        return Sample(v);
}

// One channel through the curve at strength s: c * (1 - s) + table(c) * s * 255, in double.
static inline float curveRgbChannel(const float* table, float c, float s)
{
    const double t = curveRead255(table, c);
    return float(double(c) * (1.0 - double(s)) + t * double(s) * 255.0);
}

static inline uint8_t curveRgbChannel8(const float* table, uint8_t c, float s)
{
    const double t = curveRead8Plain(table, c);
    return curveStore8(double(c) * (1.0 - double(s)) + t * double(s) * 255.0);
}

template <typename Sample>
static inline Sample curveRgbChannelAny(const float* table, Sample c, float s)
{
    if constexpr (std::is_same_v<Sample, uint8_t>)
        return curveRgbChannel8(table, c, s);
    else
        return curveRgbChannel(table, c, s);
}

// Target luminance of the luminance-curve step: Y * (1 - s) + s * 255 * table(Y). The pixel is
// then moved to it by the luminance-setting step.
static inline float luminanceCurveTarget(const float* table, float y, float s)
{
    const float t = curveRead255(table, y);
    return y * (1.0f - s) + s * 255.0f * t;
}

// Luminance of a pixel of either depth: channel 0 when the pixel stride marks a grey image.
template <typename Sample>
static inline float curvePixelLuminance(const Sample* p, int32_t channels)
{
    if (channels < 3)
        return float(p[0]);
    return luminance(float(p[0]), float(p[1]), float(p[2]));
}

// The luminance-curve step: the pixel's luminance goes through the table at strength s and the
// pixel is moved to the result, keeping its hue. Both depths read the table with the fractional
// index; the 8-bit form truncates.
static inline void luminanceCurvePixel(float* p, int32_t channels, int32_t colorChannels, const float* table, float s)
{
    const float y = curvePixelLuminance(p, channels);
    setLuminance(p, colorChannels, y, luminanceCurveTarget(table, y, s));
}

static inline void luminanceCurvePixel8(uint8_t* p, int32_t channels, int32_t colorChannels, const float* table,
                                        float s)
{
    const float y = curvePixelLuminance(p, channels);
    setLuminance8(p, colorChannels, y, luminanceCurveTarget(table, y, s));
}

template <typename Sample>
static inline void luminanceCurvePixelAny(Sample* p, int32_t channels, int32_t colorChannels, const float* table,
                                          float s)
{
    if constexpr (std::is_same_v<Sample, uint8_t>)
        luminanceCurvePixel8(p, channels, colorChannels, table, s);
    else
        luminanceCurvePixel(p, channels, colorChannels, table, s);
}

// A curve counts as untouched when its points equal the list exactly, pairwise, same count.
static inline bool curvePointsEqual(const ToneCurve& curve, const ToneCurvePoint* identity, int32_t count)
{
    if (curve.pointCount() != count)
        return false;
    for (int32_t i = 0; i < count; ++i) {
        if (curve.points[size_t(i)].x != identity[i].x || curve.points[size_t(i)].y != identity[i].y)
            return false;
    }
    return true;
}

// Identity list of the brightness curves: (0,0), (1,1).
static inline bool curveIsIdentity(const ToneCurve& curve)
{
    static constexpr ToneCurvePoint identity[2] = {{0.0f, 0.0f}, {1.0f, 1.0f}};
    return curvePointsEqual(curve, identity, 2);
}

// A curve whose table can be read: the mods skip anything else.
static inline bool curveUsable(const ToneCurve* curve)
{
    return curve && curve->entries.size() == size_t(ToneCurve::tableSize);
}

// Hue curves do nothing while every point sits at y 0.5.
static inline bool curveIsFlatHalf(const ToneCurve& curve)
{
    for (const ToneCurvePoint& p : curve.points) {
        if (p.y != 0.5f)
            return false;
    }
    return true;
}

// Mask value at (x, y), 1 without a mask.
template <typename Sample>
static inline float curveMaskAt(const ImageModSelector* selector, const FlexImageT<Sample>* image, int32_t x,
                                int32_t y, const ReferenceFrame* frame)
{
    return selector ? selector->maskValue(image, x, y, frame) : 1.0f;
}

// One job per row; pixel(p, m) gets each pixel and its mask value (1 without a mask). Give pixel
// its settings by value: a float captured by reference could alias the samples and be reloaded.
template <typename Sample, typename PixelFn>
void curveRowJobs(FlexImageT<Sample>* image, const ImageModApplyContext* context, PixelFn pixel)
{
    const ImageModSelector* selector = context ? context->selector : nullptr;
    const ReferenceFrame* frame = context ? context->referenceFrame : nullptr;
    const int32_t width = image->width;
    const int32_t stride = image->channels;
    parallelFor(image->height, [&](int32_t y) {
        Sample* p = image->row(y);
        if (selector) {
            for (int32_t x = 0; x < width; ++x, p += stride)
                pixel(p, selector->maskValue(image, x, y, frame));
        } else {
            for (int32_t x = 0; x < width; ++x, p += stride)
                pixel(p, 1.0f);
        }
    });
}

