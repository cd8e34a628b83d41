#include "mods/ImageModShadowsMidsHighs.h"

#include "core/ImageModVariableDataCurve.h"

namespace {
constexpr const char* kStartCurve = "0 0 .25 .25 .5 .5 .75 .75 1 1";
}

ImageModShadowsMidsHighs::ImageModShadowsMidsHighs() : ImageMod("Shadows/Highlights", "Shadows/Highlights")
{
    toolTip = "Separately adjust the brightness of dark, midtone, and light areas of an image.";
    const char* names[3] = {"Shadows", "Midtones", "Highlights"};
    const float seconds[3] = {3.0f, 2.47f, 3.53f};
    for (int32_t i = 0; i < 3; ++i) {
        ImageModVariable* v = addFloat(names[i], 0.0f, -1.0f, 1.0f);
        if (v && v->data)
            v->data->setDisplayScale(-100.0f, 100.0f);
        addAnimator(v, "-.5 .5 -.5", seconds[i]);
    }
    if (ImageModVariable* c = toneCurve.variableAt(ImageModToneCurve::varCurve))
        if (ImageModVariableDataCurve* data = c->asCurve())
            data->curve.setFromString(kStartCurve);
    updateCurve();
}

void ImageModShadowsMidsHighs::copyFrom(const ImageMod& other)
{
    ImageMod::copyFrom(other);
    updateCurve();
}

void ImageModShadowsMidsHighs::variableChanged(int32_t)
{
    updateCurve();
}

void ImageModShadowsMidsHighs::updateCurve()
{
    ImageModVariable* variable = toneCurve.variableAt(ImageModToneCurve::varCurve);
    ImageModVariableDataCurve* data = variable ? variable->asCurve() : nullptr;
    if (!data)
        return;
    ToneCurve curve(kStartCurve);
    const float s = floatValue(varShadows);
    const float d = floatValue(varMidtones);
    const float h = floatValue(varHighlights);

    const float q = d * 0.25f;
    const ToneCurvePoint mid{0.5f - q, 0.5f + q};

    ToneCurvePoint low{mid.x / 2.0f, mid.y / 2.0f};
    low.y = low.y * (s + 1.0f);
    if (s >= 0.0f)
        low.x = low.x * (1.0f - s);

    ToneCurvePoint high{mid.x / 2.0f + 0.5f, mid.y / 2.0f + 0.5f};
    high.y = (1.0f - high.y) * h + high.y;
    if (h <= 0.0f)
        high.x = (high.x - 1.0f) * h + high.x;

    curve.points[1] = low;
    curve.points[2] = mid;
    curve.points[3] = high;
    curve.rebuild();
    data->curve = curve;
}

// At rest the five-point curve is a straight line, but not the two-point identity the tone curve
// skips: it would still run, and its 8-bit RGB branch (end entries only) would black the image.
bool ImageModShadowsMidsHighs::isNeutral() const
{
    return floatValue(varShadows) == 0.0f && floatValue(varMidtones) == 0.0f && floatValue(varHighlights) == 0.0f;
}

void ImageModShadowsMidsHighs::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    if (isNeutral())
        return;
    updateCurve();
    toneCurve.apply(image, context);
}

void ImageModShadowsMidsHighs::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    if (isNeutral())
        return;
    updateCurve();
    toneCurve.apply(image, context);
}
