#include "mods/ImageModRGBCombinedCurve.h"

#include "core/ImageModVariableData.h"
#include "mods/CurveSteps.h"

ImageModRGBCombinedCurve::ImageModRGBCombinedCurve() : ImageMod("RGB Curve", "RGB Curve")
{
    toolTip = "Adjust RGB values together using a curve editor.";
    addFloat("Amount", 1.0f, 0.0f, 1.0f)->data->setDisplayScale(0.0f, 100.0f);
    addCurve("Curve", "0 0 1 1");
}

namespace {

template <typename Sample>
void applyCombinedCurve(const ImageModRGBCombinedCurve& mod, FlexImageT<Sample>* image)
{
    if (!image || image->isEmpty())
        return;
    const float amount = mod.floatValue(ImageModRGBCombinedCurve::varAmount);
    const ToneCurve* curve = mod.curveAt(ImageModRGBCombinedCurve::varCurve);
    if (amount == 0.0f || !curveUsable(curve) || curveIsIdentity(*curve))
        return;
    const float* table = curve->table();
    const int32_t colorChannels = image->colorChannels;
    // Pixels are independent, so rows in parallel give the same bits as one serial walk.
    curveRowJobs(image, nullptr, [=](Sample* p, float) {
        for (int32_t c = 0; c < colorChannels; ++c)
            p[c] = curveRgbChannelAny(table, p[c], amount);
    });
}

} // namespace

void ImageModRGBCombinedCurve::apply(FlexImage8* image, const ImageModApplyContext*)
{
    applyCombinedCurve(*this, image);
}

void ImageModRGBCombinedCurve::apply(FlexImageFloat* image, const ImageModApplyContext*)
{
    applyCombinedCurve(*this, image);
}
