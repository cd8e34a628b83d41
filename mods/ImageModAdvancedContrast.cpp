#include "mods/ImageModAdvancedContrast.h"

#include "core/ColorMath.h"
#include "mods/TonalPixelLoop.h"
#include "mods/TonalSteps.h"

#include <cmath>

namespace {

// Lightness variant of the pair: the upper branch works with 1 - c in double.
static inline float lightnessPair(float l, float c, float e)
{
    if (l > c) {
        const double span = 1.0 - double(c);
        return float(1.0 - std::pow((1.0 - double(l)) / span, double(e)) * span);
    }
    if (l < c)
        return std::pow(l / c, e) * c;
    return l;
}

// Reads r, g, b (grey images repeat channel 0) and writes back what the image has room for.
template <typename Sample>
static inline void readRgb(const Sample* p, int32_t channels, float& r, float& g, float& b)
{
    r = float(p[0]);
    g = channels >= 3 ? float(p[1]) : r;
    b = channels >= 3 ? float(p[2]) : r;
}

template <typename Sample>
static inline void writeRgb(Sample* p, int32_t channels, float r, float g, float b)
{
    p[0] = storeSample<Sample>(r);
    if (channels >= 3) {
        p[1] = storeSample<Sample>(g);
        p[2] = storeSample<Sample>(b);
    }
}

template <typename Sample>
static inline void advancedContrastPixel(Sample* p, int32_t channels, int32_t colorChannels, int32_t method,
                                         float center, float e)
{
    switch (method) {
    case ImageModAdvancedContrast::methodRgb:
        for (int32_t c = 0; c < colorChannels; ++c)
            p[c] = storeSample<Sample>(powerPair(float(p[c]), center, e));
        break;
    case ImageModAdvancedContrast::methodLuminance:
        luminanceContrastPixel(p, channels, colorChannels, center, e);
        break;
    case ImageModAdvancedContrast::methodValue: {
        float r, g, b, h, s, v;
        readRgb(p, channels, r, g, b);
        rgbToHsvInline(r, g, b, h, s, v);
        hsvToRgbInline(h, s, powerPair(v, center / 255.0f, e, 1.0f), r, g, b);
        writeRgb(p, channels, r, g, b);
        break;
    }
    case ImageModAdvancedContrast::methodLightness: {
        float r, g, b, h, s, l;
        readRgb(p, channels, r, g, b);
        rgbToHsl(r, g, b, h, s, l);
        hslToRgb(h, s, lightnessPair(l, center / 255.0f, e), r, g, b);
        writeRgb(p, channels, r, g, b);
        break;
    }
    default:
        break;
    }
}

template <typename Sample>
void advancedContrastPass(FlexImageT<Sample>* image, const ImageModApplyContext* context, float amount,
                          float center, int32_t method)
{
    if (!image || image->isEmpty() || amount == 1.0f || !std::isfinite(amount) || !std::isfinite(center))
        return;
    if (method < ImageModAdvancedContrast::methodRgb || method > ImageModAdvancedContrast::methodLightness)
        return;
    const int32_t channels = image->channels;
    const int32_t colour = image->colorChannels;
    const float e = powerPairExponent(amount);
    forEachPixel(
        image, context, [=](Sample* p) { advancedContrastPixel(p, channels, colour, method, center, e); },
        [=](Sample* p, float m) {
            const float a = maskRuleA(amount, m);
            if (a != 1.0f)
                advancedContrastPixel(p, channels, colour, method, center, powerPairExponent(a));
        });
}

} // namespace

ImageModAdvancedContrast::ImageModAdvancedContrast(float amount, float center, int32_t method)
    : ImageMod("Advanced Contrast", "Advanced Contrast")
{
    toolTip = "Adjust contrast based on different brightness algorithms. The Contrast Origin slider determines "
              "the brightness value from which the contrast emanates.";
    addAnimator(addAmountVariable(this, amount), "1.6 .7 1.6", 3.0f);
    addAnimator(addFloat("Center", center, 0.0f, 255.0f, "Contrast Origin"), "90 165 90", 4.513f);
    addChoice("Method", {"RGB", "Luminance", "Value", "Lightness"}, method);
}

void ImageModAdvancedContrast::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    advancedContrastPass(image, context, floatValue(0), floatValue(1), choiceIndex(2));
}

void ImageModAdvancedContrast::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    advancedContrastPass(image, context, floatValue(0), floatValue(1), choiceIndex(2));
}
