#include "mods/ImageModToneRegion.h"

#include "mods/ToneRegionPass.h"

#include <cmath>

ImageModToneRegion::ImageModToneRegion(const char* name, const char* brighten, const char* darken,
                                       const char* tip, int32_t v, float amount)
    : ImageMod(name, name), brightenCurve(brighten), darkenCurve(darken)
{
    toolTip = tip;
    addAnimator(addAmountVariable(this, amount), ".3 1.7 .3", 3.0f);
    setVersion(v);
}

template <typename Sample>
void ImageModToneRegion::applyPass(FlexImageT<Sample>* image, const ImageModApplyContext* context) const
{
    const float a = floatValue(0);
    if (!image || image->isEmpty() || a == 1.0f || !std::isfinite(a))
        return;
    if (version == 2)
        toneRegionTablePass(image, context, a, brightenCurve, darkenCurve);
    else
        toneRegionPointPass(image, context, amountCurvePoints(a));
}

void ImageModToneRegion::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyPass(image, context);
}

void ImageModToneRegion::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyPass(image, context);
}
