#include "mods/ImageModToneCurve.h"

#include "core/ImageModVariableData.h"
#include "mods/CurveSteps.h"

ImageModToneCurve::ImageModToneCurve() : ImageMod("Tone Curve", "Tone Curve")
{
    toolTip = "Adjust brightness values using a traditional curve editor.";
    addFloat("Amount", 1.0f, 0.0f, 1.0f)->data->setDisplayScale(0.0f, 100.0f);
    ImageModVariable* curve = addCurve("Curve", "0 0 1 1");
    addChoice("Method", {"RGB", "Luminance", "Value", "Lightness"}, 0);
    addCurveAnimator(curve, {"0 0 0 .1 0 0", ".3 .1 .3 .5 .3 .1", ".7 .5 .7 1 .7 .5", "1 1"}, 3.0f);
}

namespace {

template <typename Sample>
static inline void toneCurvePixel(Sample* p, int32_t channels, int32_t colorChannels, const float* table,
                                  int32_t method, float s)
{
    // Strength 0 (a masked-out pixel) is no change; the colour-space round trips are not exact.
    if (s == 0.0f)
        return;
    if (method == ImageModToneCurve::methodLuminance) {
        luminanceCurvePixelAny(p, channels, colorChannels, table, s);
        return;
    }
    if (method == ImageModToneCurve::methodValue || method == ImageModToneCurve::methodLightness) {
        const bool grey = channels < 3 || colorChannels < 3;
        const float r = float(p[0]);
        const float g = grey ? r : float(p[1]);
        const float b = grey ? r : float(p[2]);
        float h, sat, v, outR, outG, outB;
        if (method == ImageModToneCurve::methodValue) {
            rgbToHsvInline(r, g, b, h, sat, v);
            const float v2 = (curveReadUnit(table, v) - v) * s + v;
            hsvToRgbInline(h, sat, v2, outR, outG, outB);
        } else {
            rgbToHsl(r, g, b, h, sat, v);
            const float l2 = (curveReadUnit(table, v) - v) * s + v;
            hslToRgb(h, sat, l2, outR, outG, outB);
        }
        p[0] = curveStore<Sample>(outR);
        if (!grey) {
            p[1] = curveStore<Sample>(outG);
            p[2] = curveStore<Sample>(outB);
        }
        return;
    }
    for (int32_t c = 0; c < colorChannels; ++c)
        p[c] = curveRgbChannelAny(table, p[c], s);
}

template <typename Sample>
void applyToneCurve(const ImageModToneCurve& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float amount = mod.floatValue(ImageModToneCurve::varAmount);
    const ToneCurve* curve = mod.curveAt(ImageModToneCurve::varCurve);
    const int32_t method = mod.choiceIndex(ImageModToneCurve::varMethod);
    if (amount == 0.0f || !curveUsable(curve) || curveIsIdentity(*curve))
        return;
    const float* table = curve->table();
    const int32_t channels = image->channels;
    const int32_t colorChannels = image->colorChannels;
    curveRowJobs(image, context, [=](Sample* p, float m) {
        toneCurvePixel(p, channels, colorChannels, table, method, amount * m);
    });
}

} // namespace

void ImageModToneCurve::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyToneCurve(*this, image, context);
}

void ImageModToneCurve::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyToneCurve(*this, image, context);
}
