#include "mods/ImageModBrightness.h"

#include "core/ToneCurve.h"
#include "mods/TonalPixelLoop.h"
#include "mods/TonalSteps.h"

#include <cmath>

namespace {

constexpr float kTableScale = 8.0274515f;  // 2047 / 255

// Interpolated table read on the 0..255 scale.
static inline float brightnessTable(const float* t, float c)
{
    const float u = c / 255.0f;
    if (u >= 1.0f)
        return t[ToneCurve::tableSize - 1];
    if (!(u > 0.0f)) // NaN too: its index would fall far outside the table
        return t[0];
    const float i = c * kTableScale;
    const float f = std::floor(i);
    const int32_t k = int32_t(f);
    // The rounded scale lets a value just below 255 land on the last entry itself.
    if (k >= ToneCurve::tableSize - 1)
        return t[ToneCurve::tableSize - 1];
    return t[k] + (t[k + 1] - t[k]) * (i - f);
}

static inline float brightnessChannel(const float* t, float c, float s)
{
    return c * (1.0f - s) + brightnessTable(t, c) * 255.0f * s;
}

// 8 bits: entry 2047 for white, entry 0 for every other value.
static inline uint8_t brightnessChannel(const float* t, uint8_t c, float s)
{
    const float entry = c == 255 ? t[ToneCurve::tableSize - 1] : t[0];
    return uint8_t(int32_t(float(c) * (1.0f - s) + entry * s * 255.0f));
}

template <typename Sample>
static inline void brightnessPixel(Sample* p, int32_t colorChannels, const float* t, float s)
{
    for (int32_t c = 0; c < colorChannels; ++c)
        p[c] = brightnessChannel(t, p[c], s);
}

template <typename Sample>
void brightnessPass(FlexImageT<Sample>* image, const ImageModApplyContext* context, float a,
                    const FlexImageT<Sample>* from = nullptr)
{
    if (!image || image->isEmpty() || a == 1.0f || !std::isfinite(a))
        return passUntouched(image, from);
    ToneCurve curve("0 0 1 1");
    if (a >= 1.0f)
        curve.setPoint(0, 0.0f, a - 1.0f);
    else
        curve.setPoint(1, 1.0f, a);
    const float* t = curve.table();
    const int32_t colour = image->colorChannels;
    forEachPixel(
        image, context, [=](Sample* p) { brightnessPixel(p, colour, t, 1.0f); },
        [=](Sample* p, float m) { brightnessPixel(p, colour, t, m); }, from);
}

} // namespace

ImageModBrightness::ImageModBrightness(float amount) : ImageMod("Brightness", "Brightness")
{
    toolTip = "Adjust overall image brightness.";
    addAnimator(addAmountVariable(this, amount), ".7 1.3 .7", 3.0f);
}

void ImageModBrightness::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    brightnessPass(image, context, floatValue(0));
}

void ImageModBrightness::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    brightnessPass(image, context, floatValue(0));
}

bool ImageModBrightness::applyFrom(const FlexImageFloat& source, FlexImageFloat* dest,
                                   const ImageModApplyContext* context)
{
    if (!prepareSourcedPass(source, dest, context))
        return false;
    brightnessPass(dest, context, floatValue(0), &source);
    return true;
}
