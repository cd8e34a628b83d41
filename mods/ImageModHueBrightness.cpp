#include "mods/ImageModHueBrightness.h"

#include "core/ImageModVariableData.h"
#include "mods/HueRegionSteps.h"

ImageModHueBrightness::ImageModHueBrightness() : ImageMod("Hue Brightness", "Hue Brightness")
{
    toolTip = "Adjust the brightness of selected hues using a curve editor.";
    ImageModVariable* amount = addFloat("Amount", 1.0f, 0.0f, 1.0f);
    amount->data->setDisplayScale(0.0f, 100.0f);
    ImageModVariable* curve = addHueCurve("Hue Region", "0 .5 .25 .5 .5 .5 .75 .5 1 .5");
    addAnimator(amount, ".5 1 .5", 3.0f);
    addCurveAnimator(curve, {"0 .125", ".25 .5", ".375 .875", ".625 .875", ".75 .5", "1 .125"}, 3.0f);
    addAnimator(curve, "0 360", 3.0f);
    setVersion(3);
}

void ImageModHueBrightness::setVersion(int32_t v)
{
    ImageMod::setVersion(v);
    displayName = v >= 3 ? "Hue Exposure" : "Hue Brightness";
}

namespace {

static inline float fourthOfDistanceToOne(float x)
{
    const float d = x - 1.0f;
    const float d2 = d * d;
    return d2 * d2;
}

// Version 3: exposure e from the reading, faded by saturation and by distance from black/white.
template <typename Sample>
static inline void hueExposurePixel(Sample* p, int32_t channels, int32_t colorChannels, const float* table,
                                    float offset, float strength)
{
    float h, s, v;
    hueRegionHsv<double>(float(p[0]), float(p[1]), float(p[2]), h, s, v);
    const float t = hueRegionRead(table, h, offset);
    const float w = hueRegionSignedSquare(2.0f * t - 1.0f);
    const float e = 1.0f + (1.0f - fourthOfDistanceToOne(s)) * w * (1.0f - fourthOfDistanceToOne(v)) * strength;
    constexpr bool is8 = std::is_same_v<Sample, uint8_t>;
    if (e < 1.0f) {
        const float ex = 1.0f / e;
        const float sat = std::pow(1.0f - std::fabs(e - 1.0f), 0.4f);
        if constexpr (is8) {
            for (int32_t c = 0; c < colorChannels; ++c)
                p[c] = gammaDarken8(p[c], ex);
            legacySaturate8(p, channels, colorChannels, sat);
        } else {
            for (int32_t c = 0; c < colorChannels; ++c)
                p[c] = gammaDarken(p[c], ex);
            legacySaturate(p, channels, colorChannels, sat);
        }
    } else if (e > 1.0f) {
        const float ex = 1.0f / (2.0f - e);
        for (int32_t c = 0; c < colorChannels; ++c) {
            if constexpr (is8)
                p[c] = gammaBrighten8(p[c], ex);
            else
                p[c] = gammaBrighten(p[c], ex);
        }
    }
}

// Version 2 ramps: 0 at the ends, rising quadratically, then easing into 1. The easing term
// is squared in double, without rounding it to float first.
static inline float lightnessRamp(float l)
{
    const float a = 1.0f - 2.0f * std::fabs(l - 0.5f);
    if (a <= 0.0f)
        return 0.0f;
    if (a >= 1.0f)
        return 1.0f;
    if (a < 0.3f)
        return a * a * 3.3333333f;
    const double q = double(1.0f - a) * 1.4285714528998554;
    return float(1.0 - 0.699999988079071 * (q * q));
}

static inline float saturationRamp(float s)
{
    if (s <= 0.0f)
        return 0.0f;
    if (s >= 1.0f)
        return 1.0f;
    if (s < 0.15f)
        return s * s * 6.6666665f;
    const double q = double(1.0f - s) * 1.176470596485072;
    return float(1.0 - 0.8499999940395355 * (q * q));
}

template <typename Sample>
static inline void hueLightnessPixel(Sample* p, const float* table, float offset, float strength)
{
    float h, s, l;
    rgbToHsl(float(p[0]), float(p[1]), float(p[2]), h, s, l);
    const float t = hueRegionRead(table, h, offset);
    const float weight = lightnessRamp(l) * strength * saturationRamp(s);
    const float w = 2.0f * t - 1.0f;
    float l2 = l;
    if (t > 0.5f)
        l2 = (1.0f - l) * (weight * w) + l;
    else if (t < 0.5f)
        l2 = l * (weight * w) + l;
    float r, g, b;
    hslToRgb(h, s, l2, r, g, b);
    p[0] = curveStore<Sample>(r);
    p[1] = curveStore<Sample>(g);
    p[2] = curveStore<Sample>(b);
}

// Oldest form: the colour-balance step with white, weighted by saturation and mid-brightness.
template <typename Sample>
static inline void hueBalancePixel(Sample* p, int32_t colorChannels, const float* table, float offset,
                                   float strength)
{
    float h, s, v;
    hueRegionHsv<double>(float(p[0]), float(p[1]), float(p[2]), h, s, v);
    const float t = hueRegionRead(table, h, offset);
    const float weight = (1.0f - std::fabs(2.0f * v - 1.0f)) * s * strength * (2.0f * t - 1.0f);
    const float add = 255.0f * weight;
    for (int32_t c = 0; c < colorChannels; ++c) {
        float x = float(p[c]) + add;
        x = x < 0.0f ? 0.0f : (x > 255.0f ? 255.0f : x);
        p[c] = curveStore<Sample>(x);
    }
}

template <typename Sample>
void applyHueBrightness(const ImageModHueBrightness& mod, FlexImageT<Sample>* image,
                        const ImageModApplyContext* context)
{
    if (!image || image->isEmpty() || image->channels < 3 || image->colorChannels < 3)
        return;
    const float amount = mod.floatValue(ImageModHueBrightness::varAmount);
    const ToneCurve* curve = mod.curveAt(ImageModHueBrightness::varHueRegion);
    if (amount == 0.0f || !curveUsable(curve) || curveIsFlatHalf(*curve))
        return;
    const float* table = curve->table();
    const float offset = curve->hueOffset;
    const int32_t version = mod.version;
    const int32_t channels = image->channels;
    const int32_t colorChannels = image->colorChannels;
    curveRowJobs(image, context, [=](Sample* p, float m) {
        // A masked-out pixel stays; the colour-space round trips are not exact.
        if (m == 0.0f)
            return;
        const float strength = amount * m;
        if (version >= 3)
            hueExposurePixel(p, channels, colorChannels, table, offset, strength);
        else if (version == 2)
            hueLightnessPixel(p, table, offset, strength);
        else
            hueBalancePixel(p, colorChannels, table, offset, strength);
    });
}

} // namespace

void ImageModHueBrightness::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyHueBrightness(*this, image, context);
}

void ImageModHueBrightness::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyHueBrightness(*this, image, context);
}
