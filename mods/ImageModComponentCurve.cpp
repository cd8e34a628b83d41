#include "mods/ImageModComponentCurve.h"

#include "core/ImageModVariableData.h"
#include "core/ImageModVariableDataChoice.h"
#include "mods/CurveSteps.h"

ImageModComponentCurve::ImageModComponentCurve() : ImageMod("Component Curve", "Component Curve")
{
    toolTip = "Adjust a single curve for individual or combined red, green, and blue components.";
    addFloat("Amount", 1.0f, 0.0f, 1.0f)->data->setDisplayScale(0.0f, 100.0f);
    ImageModVariable* curve = addCurve("Curve", "0 0 1 1");
    ImageModVariable* parts =
        addChoice("Components", {"Red", "Green", "Blue", "Red+Green", "Green+Blue", "Blue+Red"}, redGreen);
    // The short forms the tile shows are also accepted from files.
    parts->asChoice()->labelSets.push_back({"R", "G", "B", "RG", "GB", "BR"});
    addCurveAnimator(curve, {"0 0", ".3 .15 .15 .3 .65 .85 .85 .65 .3 .15", "1 1"}, 3.0f);
}

namespace {

template <typename Sample>
void applyComponentCurve(const ImageModComponentCurve& mod, FlexImageT<Sample>* image,
                         const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float amount = mod.floatValue(ImageModComponentCurve::varAmount);
    const ToneCurve* curve = mod.curveAt(ImageModComponentCurve::varCurve);
    if (amount == 0.0f || !curveUsable(curve) || curveIsIdentity(*curve))
        return;
    bool chosen[3] = {false, false, false};
    switch (mod.choiceIndex(ImageModComponentCurve::varComponents)) {
    case ImageModComponentCurve::red: chosen[0] = true; break;
    case ImageModComponentCurve::green: chosen[1] = true; break;
    case ImageModComponentCurve::blue: chosen[2] = true; break;
    case ImageModComponentCurve::redGreen: chosen[0] = chosen[1] = true; break;
    case ImageModComponentCurve::greenBlue: chosen[1] = chosen[2] = true; break;
    case ImageModComponentCurve::blueRed: chosen[2] = chosen[0] = true; break;
    default: return;
    }
    const int32_t channelCount = image->colorChannels < 3 ? image->colorChannels : 3;
    const float* table = curve->table();
    if (!context || !context->selector) {
        // Channels are independent: one pass gives the same bits as a pass per channel.
        curveRowJobs(image, nullptr, [=](Sample* p, float) {
            for (int32_t k = 0; k < channelCount; ++k) {
                if (chosen[k])
                    p[k] = curveRgbChannelAny(table, p[k], amount);
            }
        });
        return;
    }
    // A pass per channel, red first: the mask of a later pass sees the earlier channel changed.
    for (int32_t k = 0; k < channelCount; ++k) {
        if (!chosen[k])
            continue;
        curveRowJobs(image, context, [=](Sample* p, float m) { p[k] = curveRgbChannelAny(table, p[k], amount * m); });
    }
}

} // namespace

void ImageModComponentCurve::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyComponentCurve(*this, image, context);
}

void ImageModComponentCurve::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyComponentCurve(*this, image, context);
}
