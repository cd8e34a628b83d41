#include "mods/ImageModHighlights.h"

#include "mods/ToneRegionPass.h"

#include <cmath>

namespace {

template <typename Sample>
void highlightsPass(const ImageModHighlights& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    const float a = mod.floatValue(0);
    if (!image || image->isEmpty() || a == 1.0f || !std::isfinite(a))
        return;
    if (mod.version == 2) {
        toneRegionTablePass(image, context, a, mod.brightenCurve, mod.darkenCurve);
        return;
    }
    std::vector<ToneCurvePoint> points{{0.0f, 0.0f}, {0.5f, 0.5f}};
    if (a < 1.0f)
        points.push_back({1.0f - 0.25f * a, 0.75f});
    else
        points.push_back({0.75f, 0.25f * a + 0.5f});
    points.push_back({1.0f, 1.0f});
    toneRegionPointPass(image, context, points);
}

} // namespace

ImageModHighlights::ImageModHighlights(int32_t v, float amount)
    : ImageMod("Highlights", "Highlights"),
      brightenCurve("0.000000 0.000000 0.245000 0.245000 0.503043 0.503043 0.608696 0.802174 0.813044 0.959239 "
                    "1.000000 1.000000"),
      darkenCurve("0.000000 0.000000 0.245000 0.245000 0.472609 0.472609 0.630435 0.563044 0.834783 0.650543 "
                  "0.960870 0.810054 1.000000 1.000000")
{
    toolTip = "Adjust the brightness of only the lighter portions of an image.";
    addAnimator(addAmountVariable(this, amount), ".3 1.7 .3", 3.0f);
    setVersion(v);
}

void ImageModHighlights::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    highlightsPass(*this, image, context);
}

void ImageModHighlights::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    highlightsPass(*this, image, context);
}
