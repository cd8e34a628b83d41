#include "core/ImageModHSVSelector.h"

#include "core/ImageModSelectorPixel.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ToneCurve.h"

#include <cmath>

ImageModHSVSelector::ImageModHSVSelector() : ImageModSelector("HSV Mask", "HSV Mask")
{
    toolTip = "Place to the left of a tile (or nested group of tiles) to make that tile only affect specified hue, "
              "saturation, and value ranges.";
    addHueCurve("Hue Region", "0 1 1 1");
    addCurve("Saturation Range", "0 1 1 1");
    addCurve("Value Region", "0 1 1 1");
}

std::unique_ptr<ImageMod> ImageModHSVSelector::newInstance() const
{
    return std::make_unique<ImageModHSVSelector>();
}

void ImageModHSVSelector::variableChanged(int32_t index)
{
    if (index != 0)
        return;
    ImageModVariable* v = variableAt(0);
    ImageModVariableDataCurve* c = v ? v->asCurve() : nullptr;
    if (c && !c->curve.closed) {
        c->curve.closed = true;
        c->curve.rebuild();
    }
}

float ImageModHSVSelector::maskForColor(const ToneCurve* hue, const ToneCurve* saturation, const ToneCurve* value,
                                        float r, float g, float b)
{
    if (!hue || !saturation || !value)
        return 0.0f;
    float h, s, v;
    selectorHsv(r, g, b, h, s, v);
    const float huePos = std::fmod(360.0f - hue->hueOffset + h, 360.0f) * (1.0f / 360.0f);
    return hue->lookup(huePos) * saturation->lookup(s) * value->lookup(v);
}

float ImageModHSVSelector::maskValue(const FlexImageFloat* image, int32_t x, int32_t y, const ReferenceFrame*) const
{
    if (!image || !image->data)
        return 0.0f;
    float r, g, b;
    selectorRgb(image, x, y, r, g, b);
    return maskForColor(curveAt(0), curveAt(1), curveAt(2), r, g, b);
}

float ImageModHSVSelector::maskValue(const FlexImage8* image, int32_t x, int32_t y, const ReferenceFrame*) const
{
    if (!image || !image->data)
        return 0.0f;
    float r, g, b;
    selectorRgb(image, x, y, r, g, b);
    return maskForColor(curveAt(0), curveAt(1), curveAt(2), r, g, b);
}
