#pragma once
#include "core/ColorMath.h"
#include "core/FlexImage.h"
#include "core/ImageModApplyContext.h"
#include "core/ImageModSelector.h"
#include "core/ParallelFor.h"
#include "mods/CurveSteps.h"
#include "mods/TonalPixelLoop.h"

#include <cstdint>

// The eight colour pixel steps (colorize, tint, filter, legacy dye, current dye, screen, multiply,
// hue) shared by the colour mods, the colorize curve and the camera styles. Channels are on the
// 0..255 scale; a weight w is normally 0..1 and is never clamped here. Each step computes in float
// exactly as its comment says; the 8-bit depth loads into float and clamps and truncates on store.

// --- sample load and store ----------------------------------------------------------------------

static inline float sampleValue(float v)
{
    return v;
}

static inline float sampleValue(uint8_t v)
{
    return float(v);
}

// Float images keep what the step computed.
static inline void storeSample(float* p, float v)
{
    *p = v;
}

// 8-bit: upper clamp at 255, then lower clamp at 0 (which also catches NaN), then truncation.
static inline void storeSample(uint8_t* p, float v)
{
    if (v > 255.0f)
        v = 255.0f;
    if (!(v > 0.0f))
        v = 0.0f;
    *p = uint8_t(int32_t(v));
}

// Upper bound first, then lower, as every clamped step here writes it.
static inline float clamp0To255(float v)
{
    if (v > 255.0f)
        v = 255.0f;
    if (v < 0.0f)
        v = 0.0f;
    return v;
}

// x / 255 through the double constant, rounded to float once.
static inline float div255(float x)
{
    return float(double(x) * kInv255);
}

// --- a colour prepared once per apply -------------------------------------------------------------

struct ColorStepColor {
    float k[3] = {0.0f, 0.0f, 0.0f}; // R, G, B on 0..255
    float mean = 0.0f;               // (R + G + B) / 3, as the colorize step takes it
    float kn[3] = {0.0f, 0.0f, 0.0f}; // each channel / 255
    float h = 0.0f;                  // hue in degrees
    float s = 0.0f;                  // saturation 0..1
    float v = 0.0f;                  // value 0..1
};

static inline ColorStepColor makeStepColor(float r, float g, float b)
{
    ColorStepColor c;
    c.k[0] = r;
    c.k[1] = g;
    c.k[2] = b;
    c.mean = (r + g + b) * 0.33333334f;
    for (int32_t i = 0; i < 3; ++i)
        c.kn[i] = div255(c.k[i]);
    rgbToHsv(r, g, b, c.h, c.s, c.v);
    return c;
}

// (255 - R, 255 - G, 255 - B): what a negative weight pushes towards.
static inline ColorStepColor makeStepComplement(float r, float g, float b)
{
    return makeStepColor(255.0f - r, 255.0f - g, 255.0f - b);
}

// --- per-channel steps ----------------------------------------------------------------------------

// 1. Colorize: shifts the channel by the colour's distance from its own grey, so a grey colour
// moves nothing.
static inline float colorizeStep(float c, float k, float mean, float w)
{
    return clamp0To255(c + (k - mean) * w);
}

// 2. Tint: straight blend towards the colour; no clamp.
static inline float tintStep(float c, float k, float w)
{
    return c * (1.0f - w) + (k * w);
}

// Tint with k * w and 1 - w taken out of the pixel loop; the same arithmetic.
static inline float tintStepHoisted(float c, float kw, float oneMinusW)
{
    return c * oneMinusW + kw;
}

// 3. Filter: a channel below 127.5 darkens proportionally, above it lightens towards 255; 127.5 is
// neutral. f = k / 127.5 by division: the float reciprocal 0.007843138 times 127.5 rounds to one
// unit below 1, which would pull an 8-bit 200 down to 199 at the neutral colour.
static inline float filterStep(float c, float k, float w)
{
    const float f = k / 127.5f;
    if (k <= 127.5f)
        return clamp0To255(c + (f - 1.0f) * w * c);
    return clamp0To255(c + (f - 1.0f) * w * (255.0f - c));
}

// 6. Screen; kn = k / 255. No clamp.
static inline float screenStep(float c, float kn, float w)
{
    return ((kn - 1.0f) * (1.0f - div255(c)) + 1.0f) * w * 255.0f + c * (1.0f - w);
}

// 7. Multiply; kn = k / 255.
static inline float multiplyStep(float c, float kn, float w)
{
    return clamp0To255(c * kn * w + c * (1.0f - w));
}

// --- whole-pixel steps (RGB) ----------------------------------------------------------------------

static inline void blendRgb(float& r, float& g, float& b, float nr, float ng, float nb, float w)
{
    const float keep = 1.0f - w;
    r = nr * w + r * keep;
    g = ng * w + g * keep;
    b = nb * w + b * keep;
}

// 4. Dye, legacy: the pixel takes the colour's hue; its luminance, scaled by the colour's value,
// becomes the new value and fades the saturation as it rises.
static inline void dyeLegacyStep(float& r, float& g, float& b, const ColorStepColor& col, float w)
{
    const float y = luminance(r, g, b);
    const float n = div255(col.v) * y;
    float nr, ng, nb;
    hsvToRgbInline(col.h, col.s * (1.0f - n), n, nr, ng, nb);
    blendRgb(r, g, b, nr, ng, nb, w);
}

// 5. Dye, current: the colour's hue and saturation at the pixel's own value times the colour's.
static inline void dyeStep(float& r, float& g, float& b, const ColorStepColor& col, float w)
{
    const float v = float(double(maxOf3(r, g, b)) * kInv255) * col.v;
    float nr, ng, nb;
    hsvToRgbInline(col.h, col.s, v, nr, ng, nb);
    blendRgb(r, g, b, nr, ng, nb, w);
}

// 8. Hue: the pixel keeps its saturation and value and takes the colour's hue, weighted by how
// colourful the colour is.
static inline void hueStep(float& r, float& g, float& b, const ColorStepColor& col, float w)
{
    float ph, ps, pv;
    rgbToHsvInline(r, g, b, ph, ps, pv);
    float nr, ng, nb;
    hsvToRgbInline(col.h, ps, pv, nr, ng, nb);
    blendRgb(r, g, b, nr, ng, nb, w * col.s * col.v);
}

// --- the row loop ---------------------------------------------------------------------------------

// fn(pixel, mask) for every pixel, one job per row, through the shared tonal walk. mask is the
// constant 1 without a selector (or when readMask is false, for the tiles that ignore masks), so
// the unmasked loop folds it away.
template <typename Sample, typename Fn>
static inline void colorRowLoop(FlexImageT<Sample>* image, const ImageModApplyContext* context, bool readMask,
                                const Fn& fn)
{
    forEachPixel(image, readMask ? context : nullptr, [&](Sample* p) { fn(p, 1.0f); },
                 [&](Sample* p, float m) { fn(p, m); });
}

// --- the colour methods of the colorize curve -----------------------------------------------------

// Index of the "Color Method" choice shared by the colorize curve, the coloring tile and the wheels.
enum ColorMethod : int32_t {
    kColorMethodColorize = 0,
    kColorMethodTint = 1,
    kColorMethodFilter = 2,
    kColorMethodDye = 3,
    kColorMethodBalance = 4,
    kColorMethodScreen = 5,
    kColorMethodMultiply = 6,
    kColorMethodHue = 7,
    kColorMethodCount = 8,
};

// Methods that need a full RGB pixel.
constexpr bool colorMethodNeedsRgbConst(int32_t method)
{
    return method == kColorMethodDye || method == kColorMethodHue;
}

static inline bool colorMethodNeedsRgb(int32_t method)
{
    return colorMethodNeedsRgbConst(method);
}

// Colours the first cc channels of px (cc of 3 for the RGB methods) at the signed weight w. A
// positive w pushes towards pos with weight w; a zero or negative w towards neg (the complement)
// with weight -w. Tint and balance keep the signed forms they are defined by.
template <int32_t Method>
static inline void colorMethodPixel(float* px, int32_t cc, float w, const ColorStepColor& pos,
                                    const ColorStepColor& neg, bool currentDye)
{
    const bool positive = w > 0.0f;
    const ColorStepColor& col = positive ? pos : neg;
    const float aw = positive ? w : -w;
    if constexpr (Method == kColorMethodColorize) {
        for (int32_t c = 0; c < cc; ++c)
            px[c] = colorizeStep(px[c], col.k[c], col.mean, aw);
    } else if constexpr (Method == kColorMethodTint) {
        for (int32_t c = 0; c < cc; ++c)
            px[c] = positive ? tintStep(px[c], pos.k[c], w) : px[c] * (1.0f + w) - neg.k[c] * w;
    } else if constexpr (Method == kColorMethodFilter) {
        for (int32_t c = 0; c < cc; ++c)
            px[c] = filterStep(px[c], col.k[c], aw);
    } else if constexpr (Method == kColorMethodDye) {
        if (currentDye)
            dyeStep(px[0], px[1], px[2], col, aw);
        else
            dyeLegacyStep(px[0], px[1], px[2], col, aw);
    } else if constexpr (Method == kColorMethodBalance) {
        for (int32_t c = 0; c < cc; ++c)
            px[c] = clamp0To255(px[c] + pos.k[c] * w);
    } else if constexpr (Method == kColorMethodScreen) {
        for (int32_t c = 0; c < cc; ++c)
            px[c] = screenStep(px[c], col.kn[c], aw);
    } else if constexpr (Method == kColorMethodMultiply) {
        for (int32_t c = 0; c < cc; ++c)
            px[c] = multiplyStep(px[c], col.kn[c], aw);
    } else {
        hueStep(px[0], px[1], px[2], col, aw);
    }
}
