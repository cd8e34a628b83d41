#include "mods/ColorizeCurveMods.h"

#include "core/ImageModVariableDataColor.h"
#include "mods/ColorSteps.h"

#include <cmath>

// --- Coloring ---

ImageModColorizeNoCurve::ImageModColorizeNoCurve() : ImageMod("Colorize Basic", "Coloring")
{
    toolTip = "Adjust the overall color.";
    ImageModVariable* color = addColor("Color", 127.0f, 63.0f, 0.0f, 255.0f);
    addFloat("Amount", 0.5f, 0.0f, 1.0f)->data->setDisplayScale(0.0f, 100.0f);
    addChoice("Color Method", ImageModColorizeCurve::methodLabels(), 0);
    addColorAnimator(color, "0 1 .5 1 360 1 .5 1", 3.0f);
    // A constant 1 makes the curve's weight 2 * Amount * (1 - 0.5), that is Amount, everywhere.
    inner.setCurve("0 1 1 1");
}

std::unique_ptr<ImageMod> ImageModColorizeNoCurve::newInstance() const
{
    return std::make_unique<ImageModColorizeNoCurve>();
}

void ImageModColorizeNoCurve::update()
{
    if (const ImageModVariableDataColor* c = colorAt(0))
        inner.setColor(c->red, c->green, c->blue, c->alpha);
    else
        inner.setColor(0.0f, 0.0f, 0.0f);
    inner.setAmount(floatValue(1));
    inner.setMethod(choiceIndex(2));
}

void ImageModColorizeNoCurve::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    update();
    inner.apply(image, context);
}

void ImageModColorizeNoCurve::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    update();
    inner.apply(image, context);
}

// --- Temperature ---

ImageModColorTemperature::ImageModColorTemperature() : ImageMod("Colorize Temperature", "Temperature")
{
    toolTip = "Adjust tones to be warmer or cooler.";
    version = 4;
    ImageModVariable* t = addFloat("Temperature", 0.0f, -1.0f, 1.0f);
    t->data->setDisplayScale(-100.0f, 100.0f);
    addAnimator(t, "-.5 -.5 .5 .5 -.5", 3.0f);
}

std::unique_ptr<ImageMod> ImageModColorTemperature::newInstance() const
{
    return std::make_unique<ImageModColorTemperature>();
}

bool ImageModColorTemperature::configure(float t, ImageModColorizeCurve& curve) const
{
    if (t == 0.0f)
        return false;
    curve.setMethod(kColorMethodColorize);
    if (version == 3 || version == 4) {
        if (version == 4)
            t = t * std::fabs(t);
        if (t > 0.0f) {
            curve.setCurve("0.000000 0.500000 0.250000 0.666667 0.500000 1.000000 0.750000 0.666667 1.000000 "
                           "0.500000");
            curve.setAmount(t);
        } else {
            curve.setCurve("0.000000 0.500000 0.250000 0.333333 0.500000 0.000000 0.750000 0.333333 1.000000 "
                           "0.500000");
            curve.setAmount(-t);
        }
        curve.setColor(255.0f, 170.0f, 0.0f, 255.0f);
    } else if (version == 2) {
        curve.setCurve("0 .5 .25 1 .75 1 1 .5");
        curve.setAmount(1.0f);
        if (t > 0.0f)
            curve.setColor(t * 127.5f, t * 63.75f, 0.0f, 255.0f);
        else
            curve.setColor(0.0f, t * -63.75f, t * -127.5f, 255.0f);
    } else {
        curve.setCurve("0.000000 0.500000 0.500000 0.000000 1.000000 0.000000 1.000000 0.500000");
        curve.setColor(t > 0.0f ? 0.0f : 255.0f, 127.0f, t > 0.0f ? 255.0f : 0.0f, 255.0f);
        // |t| to the power 1.5; a plain root stands in for the old estimate, equal to the last bits.
        const float a = std::fabs(t);
        curve.setAmount(a * std::sqrt(a));
    }
    return true;
}

namespace {

template <typename Sample>
void applyTemperature(const ImageModColorTemperature& mod, FlexImageT<Sample>* image,
                      const ImageModApplyContext* context)
{
    const float t = mod.floatValue(0);
    if (t == 0.0f)
        return;
    ImageModColorizeCurve curve;
    if (mod.configure(t, curve))
        curve.apply(image, context);
}

} // namespace

void ImageModColorTemperature::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyTemperature(*this, image, context);
}

void ImageModColorTemperature::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyTemperature(*this, image, context);
}

// --- Color Wheels ---

namespace {

const char* const kWheelCurves[4] = {
    "0 1 1 1",
    "0 1 .25 1 .375 .5 .625 .5 1 .5",
    "0 .5 .25 .5 .375 1 .5 1 .625 1 .75 .5 1 .5",
    "0 .5 .375 .5 .625 .5 .75 1 1 1",
};

} // namespace

ImageModColorWheels::ImageModColorWheels() : ImageMod("Color Wheels", "")
{
    toolTip = "Use color wheels to adjust the coloring of shadows, midtones, and highlights.";
    // White at strength 0: every wheel starts with no effect, and a white colour is also the one
    // that the colorize step leaves alone when only the strength is raised.
    addColor("All", 255.0f, 255.0f, 255.0f, 0.0f);
    ImageModVariable* shadows = addColor("Shadows", 255.0f, 255.0f, 255.0f, 0.0f);
    ImageModVariable* mids = addColor("Midtones", 255.0f, 255.0f, 255.0f, 0.0f);
    ImageModVariable* highs = addColor("Highlights", 255.0f, 255.0f, 255.0f, 0.0f);
    addChoice("Color Method", ImageModColorizeCurve::methodLabels(), 0);
    // The preview turns the three regional wheels at slightly different speeds.
    addColorAnimator(shadows, "0 1 1 .2 360 1 1 .2", 3.0f);
    addColorAnimator(mids, "0 1 1 .2 360 1 1 .2", 2.73f);
    addColorAnimator(highs, "0 1 1 .2 360 1 1 .2", 2.34f);
    for (int32_t i = 0; i < 4; ++i)
        wheels[size_t(i)].setCurve(kWheelCurves[i]);
    update();
}

std::unique_ptr<ImageMod> ImageModColorWheels::newInstance() const
{
    return std::make_unique<ImageModColorWheels>();
}

void ImageModColorWheels::copyFrom(const ImageMod& other)
{
    ImageMod::copyFrom(other);
    update();
}

void ImageModColorWheels::variableChanged(int32_t)
{
    update();
}

void ImageModColorWheels::update()
{
    const int32_t method = choiceIndex(4);
    for (int32_t i = 0; i < 4; ++i) {
        ImageModColorizeCurve& w = wheels[size_t(i)];
        const ImageModVariableDataColor* c = colorAt(i);
        if (c) {
            w.setColor(c->red, c->green, c->blue, 255.0f);
            w.setAmount(float(std::pow(double(c->alpha) / 255.0, 1.7)));
        } else {
            w.setColor(0.0f, 0.0f, 0.0f, 255.0f);
            w.setAmount(0.0f);
        }
        w.setMethod(method);
    }
}

void ImageModColorWheels::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    update();
    for (auto& w : wheels)
        w.apply(image, context);
}

void ImageModColorWheels::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    update();
    for (auto& w : wheels)
        w.apply(image, context);
}
