#include "mods/ImageModSaturationCurve.h"

#include "core/ImageModVariableData.h"
#include "mods/HueRegionSteps.h"

ImageModSaturationCurve::ImageModSaturationCurve() : ImageMod("Saturation Curve", "Hue Saturation")
{
    toolTip = "Adjust the saturation of selected hues using a curve editor.";
    addFloat("Amount", 1.0f, 0.0f, 1.0f)->data->setDisplayScale(0.0f, 100.0f);
    ImageModVariable* curve = addHueCurve("Hue Region", "0 .5 .25 .5 .5 .5 .75 .5 1 .5");
    addCurveAnimator(curve, {"0 .25", ".25 .5", ".5 .75", ".75 .5", "1 .25"}, 3.0f);
    addAnimator(curve, "0 360", 3.0f);
    setVersion(3);
}

namespace {

// Saturation factor from the curve reading t at strength s.
static inline float saturationCurveFactor(float t, float s, int32_t version)
{
    float q;
    if (version == 3) {
        const float w = 2.0f * t - 1.0f;
        const float aw = std::fabs(w);
        const float root = aw < FLT_MIN ? 0.0f : std::sqrt(aw);
        q = (w * root * 0.5f + 0.5f) * 1.99999f;
    } else {
        q = t * 1.99999f;
    }
    float f = (q - 1.0f) * s + 1.0f;
    if (f > 1.0f)
        f = 1.0f / (2.0f - f);
    return f;
}

template <typename Sample>
void applySaturationCurve(const ImageModSaturationCurve& mod, FlexImageT<Sample>* image,
                          const ImageModApplyContext* context)
{
    // A grey image has no hue to select.
    if (!image || image->isEmpty() || image->channels < 3 || image->colorChannels < 3)
        return;
    const float amount = mod.floatValue(ImageModSaturationCurve::varAmount);
    const ToneCurve* curve = mod.curveAt(ImageModSaturationCurve::varHueRegion);
    if (amount == 0.0f || !curveUsable(curve) || curveIsFlatHalf(*curve))
        return;
    const float* table = curve->table();
    const float offset = curve->hueOffset;
    const int32_t version = mod.version;
    const bool rootAnchor = version == 2 || version == 3;
    const int32_t channels = image->channels;
    const int32_t colorChannels = image->colorChannels;
    curveRowJobs(image, context, [=](Sample* p, float m) {
        // A masked-out pixel stays; a factor of 1 would still round.
        if (m == 0.0f)
            return;
        float h, s, v;
        hueRegionHsv<float>(float(p[0]), float(p[1]), float(p[2]), h, s, v);
        const float f = saturationCurveFactor(hueRegionRead(table, h, offset), amount * m, version);
        if constexpr (std::is_same_v<Sample, uint8_t>) {
            if (rootAnchor)
                rootSaturate8(p, f);
            else
                legacySaturate8(p, channels, colorChannels, f);
        } else {
            if (rootAnchor)
                rootSaturate(p, f);
            else
                legacySaturate(p, channels, colorChannels, f);
        }
    });
}

} // namespace

void ImageModSaturationCurve::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applySaturationCurve(*this, image, context);
}

void ImageModSaturationCurve::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applySaturationCurve(*this, image, context);
}
