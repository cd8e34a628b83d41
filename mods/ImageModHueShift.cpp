#include "mods/ImageModHueShift.h"

#include "core/ImageModVariableData.h"
#include "mods/HueRegionSteps.h"

ImageModHueShift::ImageModHueShift() : ImageMod("Hue Shift", "Hue Shift")
{
    toolTip = "Shift selected hues using a curve editor.";
    ImageModVariable* amount = addFloat("Amount", 1.0f, 0.0f, 1.0f);
    amount->data->setDisplayScale(0.0f, 100.0f);
    ImageModVariable* curve = addHueCurve("Hue Region", "0 .5 .25 .5 .5 .5 .75 .5 1 .5");
    addAnimator(amount, ".5 1 .5", 4.431f);
    addCurveAnimator(curve, {"0 .25", ".25 .5", ".5 .75", ".75 .5", "1 .25"}, 3.0f);
    addAnimator(curve, "0 360", 3.0f);
    setVersion(2);
}

namespace {

template <typename Sample>
void applyHueShift(const ImageModHueShift& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty() || image->channels < 3 || image->colorChannels < 3)
        return;
    const float amount = mod.floatValue(ImageModHueShift::varAmount);
    const ToneCurve* curve = mod.curveAt(ImageModHueShift::varHueRegion);
    if (amount == 0.0f || !curveUsable(curve) || curveIsFlatHalf(*curve))
        return;
    const float* table = curve->table();
    const float offset = curve->hueOffset;
    const bool current = mod.version == 2;
    curveRowJobs(image, context, [=](Sample* p, float m) {
        // A masked-out pixel stays; the HSV round trip is not exact.
        if (m == 0.0f)
            return;
        float h, s, v;
        hueRegionHsv<float>(float(p[0]), float(p[1]), float(p[2]), h, s, v);
        const float t = hueRegionRead(table, h, offset);
        const float strength = amount * m;
        float hue;
        if (current)
            hue = hueRegionWrap360(strength * 180.0f * hueRegionSignedSquare(2.0f * t - 1.0f) + h + 360.0f);
        else
            hue = hueRegionWrap360((t * 360.0f - 180.0f) * strength + h + 360.0f);
        float r, g, b;
        hsvToRgbInline(hue, s, v, r, g, b);
        p[0] = curveStore<Sample>(r);
        p[1] = curveStore<Sample>(g);
        p[2] = curveStore<Sample>(b);
    });
}

} // namespace

void ImageModHueShift::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyHueShift(*this, image, context);
}

void ImageModHueShift::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyHueShift(*this, image, context);
}
