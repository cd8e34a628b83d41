#include "mods/ImageModColorizeCurve.h"

#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataCurve.h"
#include "mods/ColorSteps.h"

namespace {

struct ColorizeCurveParams {
    const float* table = nullptr;
    float amount = 0.0f;
    ColorStepColor pos;
    ColorStepColor neg;
    bool currentDye = false;
};

template <int32_t Method, int32_t CC, typename Sample>
void runColorizeCurveChannels(FlexImageT<Sample>* image, const ImageModApplyContext* context,
                              const ColorizeCurveParams& prm)
{
    colorRowLoop(image, context, true, [&](Sample* p, float m) {
        float px[3] = {0.0f, 0.0f, 0.0f};
        for (int32_t c = 0; c < CC; ++c)
            px[c] = sampleValue(p[c]);
        const float y = CC < 3 ? px[0] : luminance(px[0], px[1], px[2]);
        const float t = curveRead255(prm.table, y);
        const float w = 2.0f * prm.amount * (t - 0.5f) * m;
        colorMethodPixel<Method>(px, CC, w, prm.pos, prm.neg, prm.currentDye);
        for (int32_t c = 0; c < CC; ++c)
            storeSample(p + c, px[c]);
    });
}

// The channel count is a constant in the loop, so the RGB case unrolls.
template <int32_t Method, typename Sample>
void runColorizeCurve(FlexImageT<Sample>* image, const ImageModApplyContext* context, const ColorizeCurveParams& prm)
{
    if (image->channels >= 3)
        runColorizeCurveChannels<Method, 3>(image, context, prm);
    else if constexpr (!colorMethodNeedsRgbConst(Method)) {
        if (image->channels == 2)
            runColorizeCurveChannels<Method, 2>(image, context, prm);
        else
            runColorizeCurveChannels<Method, 1>(image, context, prm);
    }
}

template <typename Sample>
void applyColorizeCurve(const ImageModColorizeCurve& mod, FlexImageT<Sample>* image,
                        const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    ColorizeCurveParams prm;
    prm.amount = mod.floatValue(ImageModColorizeCurve::kAmount);
    if (prm.amount == 0.0f)
        return;
    const ToneCurve* curve = mod.curveAt(ImageModColorizeCurve::kCurve);
    if (!curveUsable(curve))
        return;
    prm.table = curve->table();
    const int32_t method = mod.choiceIndex(ImageModColorizeCurve::kMethod);
    if (method < 0 || method >= kColorMethodCount)
        return;
    // The dye and hue methods need a colour pixel; grey working images pass through.
    if (colorMethodNeedsRgb(method) && image->channels < 3)
        return;
    float r = 0.0f, g = 0.0f, b = 0.0f;
    if (const ImageModVariableDataColor* col = mod.colorAt(ImageModColorizeCurve::kColor)) {
        r = col->red;
        g = col->green;
        b = col->blue;
    }
    prm.pos = makeStepColor(r, g, b);
    prm.neg = makeStepComplement(r, g, b);
    prm.currentDye = mod.version == 2;
    switch (method) {
    case kColorMethodColorize:
        runColorizeCurve<kColorMethodColorize>(image, context, prm);
        break;
    case kColorMethodTint:
        runColorizeCurve<kColorMethodTint>(image, context, prm);
        break;
    case kColorMethodFilter:
        runColorizeCurve<kColorMethodFilter>(image, context, prm);
        break;
    case kColorMethodDye:
        runColorizeCurve<kColorMethodDye>(image, context, prm);
        break;
    case kColorMethodBalance:
        runColorizeCurve<kColorMethodBalance>(image, context, prm);
        break;
    case kColorMethodScreen:
        runColorizeCurve<kColorMethodScreen>(image, context, prm);
        break;
    case kColorMethodMultiply:
        runColorizeCurve<kColorMethodMultiply>(image, context, prm);
        break;
    default:
        runColorizeCurve<kColorMethodHue>(image, context, prm);
        break;
    }
}

} // namespace

std::vector<std::string> ImageModColorizeCurve::methodLabels()
{
    return {"Colorize", "Tint", "Color Filter", "Dye", "Color Balance", "Screen", "Multiply", "Hue"};
}

ImageModColorizeCurve::ImageModColorizeCurve() : ImageMod("Colorize Curve", "Coloring Curve")
{
    toolTip = "Adjust the color of a specified luminance region.";
    version = 2;
    ImageModVariable* curve = addCurve("Luminance Region", "0 .5 .5 .6 1 .5", "Affected Brightness");
    ImageModVariable* color = addColor("Color", 127.0f, 63.0f, 0.0f, 255.0f);
    addFloat("Amount", 1.0f, 0.0f, 1.0f)->data->setDisplayScale(0.0f, 100.0f);
    addChoice("Color Method", methodLabels(), kColorMethodColorize);
    addCurveAnimator(curve, {"0 .25 0 .75 0 .25", ".5 .75 .5 .25 .5 .75", "1 .25 1 .5 1 .25"}, 2.464f);
    addColorAnimator(color, "0 1 .75 1 360 1 .75 1", 3.0f);
}

std::unique_ptr<ImageMod> ImageModColorizeCurve::newInstance() const
{
    return std::make_unique<ImageModColorizeCurve>();
}

ImageModVariable* ImageModColorizeCurve::amountVariable() const
{
    return variableAt(kAmount);
}

void ImageModColorizeCurve::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyColorizeCurve(*this, image, context);
}

void ImageModColorizeCurve::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyColorizeCurve(*this, image, context);
}

void ImageModColorizeCurve::setCurve(const std::string& points)
{
    ImageModVariable* v = variableAt(kCurve);
    if (ImageModVariableDataCurve* c = v ? v->asCurve() : nullptr)
        c->curve.setFromString(points);
}

void ImageModColorizeCurve::setColor(float r, float g, float b, float a)
{
    ImageModVariable* v = variableAt(kColor);
    if (ImageModVariableDataColor* c = v ? v->asColor() : nullptr) {
        c->red = r;
        c->green = g;
        c->blue = b;
        c->alpha = a;
    }
}

void ImageModColorizeCurve::setAmount(float amount)
{
    if (ImageModVariable* v = variableAt(kAmount))
        v->setFloatValue(amount);
}

void ImageModColorizeCurve::setMethod(int32_t index)
{
    ImageModVariable* v = variableAt(kMethod);
    if (ImageModVariableDataChoice* c = v ? v->asChoice() : nullptr)
        c->index = index;
}
