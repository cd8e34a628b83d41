#include "mods/ImageModShadows.h"

#include "mods/ToneRegionPass.h"

#include <cmath>

namespace {

template <typename Sample>
void shadowsPass(const ImageModShadows& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    const float a = mod.floatValue(0);
    if (!image || image->isEmpty() || a == 1.0f || !std::isfinite(a))
        return;
    if (mod.version == 2) {
        toneRegionTablePass(image, context, a, mod.brightenCurve, mod.darkenCurve);
        return;
    }
    std::vector<ToneCurvePoint> points{{0.0f, 0.0f}};
    if (a < 1.0f)
        points.push_back({0.25f, 0.25f * a});
    else
        points.push_back({0.5f - 0.25f * a, 0.25f});
    points.push_back({0.5f, 0.5f});
    points.push_back({1.0f, 1.0f});
    toneRegionPointPass(image, context, points);
}

} // namespace

ImageModShadows::ImageModShadows(int32_t v, float amount)
    : ImageMod("Shadows", "Shadows"),
      brightenCurve("0.000000 0.000000 0.023913 0.054348 0.071739 0.271739 0.311956 0.455435 0.566522 0.562174 "
                    "0.750000 0.750000 1.000000 1.000000"),
      darkenCurve("0.000000 0.000000 0.149457 0.021739 0.342391 0.116304 0.454348 0.336956 0.575217 0.575217 "
                  "0.750000 0.750000 1.000000 1.000000")
{
    toolTip = "Adjust the brightness of only the darker portions of an image.";
    addAnimator(addAmountVariable(this, amount), ".3 1.7 .3", 3.0f);
    setVersion(v);
}

void ImageModShadows::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    shadowsPass(*this, image, context);
}

void ImageModShadows::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    shadowsPass(*this, image, context);
}
