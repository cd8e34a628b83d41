#include "mods/ImageModRGBCurves.h"

#include "core/ImageModVariableData.h"
#include "mods/CurveSteps.h"

ImageModRGBCurves::ImageModRGBCurves() : ImageMod("RGB Curves", "R,G,B Curves")
{
    toolTip = "Adjust separate curves for red, green, and blue components.";
    addCurve("Red", "0 0 1 1");
    addCurve("Green", "0 0 1 1");
    addCurve("Blue", "0 0 1 1");
    ImageModVariable* rgb = addCurve("RGB", "0 0 1 1");
    addFloat("Amount", 1.0f, 0.0f, 1.0f)->visible = false;
    variables.back()->data->setDisplayScale(0.0f, 100.0f);
    addCurveAnimator(rgb, {"0 0 0 .1 0 0", ".5 .7 .5 .3 .5 .7", "1 1 1 .9 1 1"}, 3.0f);
}

namespace {

template <typename Sample>
void applyRgbCurves(const ImageModRGBCurves& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float amount = mod.floatValue(ImageModRGBCurves::varAmount);
    if (amount == 0.0f)
        return;
    // Null for a curve that is missing or identity: that stage is skipped.
    const float* own[3] = {nullptr, nullptr, nullptr};
    const int32_t channelCount = image->colorChannels < 3 ? image->colorChannels : 3;
    bool any = false;
    for (int32_t k = 0; k < 3; ++k) {
        const ToneCurve* c = mod.curveAt(ImageModRGBCurves::varRed + k);
        if (curveUsable(c) && !curveIsIdentity(*c) && k < channelCount) {
            own[k] = c->table();
            any = true;
        }
    }
    const ToneCurve* all = mod.curveAt(ImageModRGBCurves::varRgb);
    const float* shared = curveUsable(all) && !curveIsIdentity(*all) ? all->table() : nullptr;
    if (!any && !shared)
        return;

    const ImageModSelector* selector = context ? context->selector : nullptr;
    const ReferenceFrame* frame = context ? context->referenceFrame : nullptr;
    const int32_t width = image->width;
    const int32_t stride = image->channels;
    if (!selector) {
        // Channels are independent, so one walk per pixel keeps the per-channel order and bits.
        curveRowJobs(image, nullptr, [=](Sample* p, float) {
            for (int32_t k = 0; k < channelCount; ++k) {
                if (own[k])
                    p[k] = curveRgbChannelAny(own[k], p[k], amount);
                if (shared)
                    p[k] = curveRgbChannelAny(shared, p[k], amount);
            }
        });
        return;
    }
    // With a mask each stage walks the row and asks the mask again, so a mask that reads the
    // pixel sees the previous stage's result.
    parallelFor(image->height, [&](int32_t y) {
        Sample* row = image->row(y);
        for (int32_t k = 0; k < channelCount; ++k) {
            for (const float* table : {own[k], shared}) {
                if (!table)
                    continue;
                Sample* p = row;
                for (int32_t x = 0; x < width; ++x, p += stride)
                    p[k] = curveRgbChannelAny(table, p[k], selector->maskValue(image, x, y, frame));
            }
        }
    });
}

} // namespace

void ImageModRGBCurves::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyRgbCurves(*this, image, context);
}

void ImageModRGBCurves::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyRgbCurves(*this, image, context);
}
