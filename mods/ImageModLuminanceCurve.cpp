#include "mods/ImageModLuminanceCurve.h"

#include "core/ImageModVariableData.h"
#include "mods/CurveSteps.h"

ImageModLuminanceCurve::ImageModLuminanceCurve() : ImageMod("Curves", "Luminance Curve")
{
    toolTip = "Adjust luminance using a curve editor.";
    addFloat("Amount", 1.0f, 0.0f, 1.0f)->data->setDisplayScale(0.0f, 100.0f);
    addCurve("Curve", "0 0 1 1");
}

namespace {

template <typename Sample>
void applyLuminanceCurve(const ImageModLuminanceCurve& mod, FlexImageT<Sample>* image)
{
    if (!image || image->isEmpty())
        return;
    const float amount = mod.floatValue(ImageModLuminanceCurve::varAmount);
    const ToneCurve* curve = mod.curveAt(ImageModLuminanceCurve::varCurve);
    if (amount == 0.0f || !curveUsable(curve) || curveIsIdentity(*curve))
        return;
    const float* table = curve->table();
    const int32_t channels = image->channels;
    const int32_t colorChannels = image->colorChannels;
    // Pixels are independent, so rows in parallel give the same bits as one serial walk.
    curveRowJobs(image, nullptr, [=](Sample* p, float) {
        luminanceCurvePixelAny(p, channels, colorChannels, table, amount);
    });
}

} // namespace

void ImageModLuminanceCurve::apply(FlexImage8* image, const ImageModApplyContext*)
{
    applyLuminanceCurve(*this, image);
}

void ImageModLuminanceCurve::apply(FlexImageFloat* image, const ImageModApplyContext*)
{
    applyLuminanceCurve(*this, image);
}
