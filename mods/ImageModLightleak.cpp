#include "mods/ImageModLightleak.h"

#include "core/ImageModVariableDataColor.h"
#include "mods/ImageModDiscolor.h"

#include <cmath>
#include <cstdlib>

ImageModLightleak::ImageModLightleak()
    : ImageMod("Lightleak", "Light Leak")
{
    toolTip
        = "Discolors your film in oranges and purples where a poorly-made camera accidentally lets light in.";
    addFloat("Amount", 1.0f, 0.0f, 1.0f)->data->setDisplayScale(0.0f, 100.0f);
    ImageModVariable* phase = addFloat(kVariationVariableName, 0.0f, -5000.0f, 5000.0f);
    phase->visible = false;
    addAnimator(phase, "0 2000", 100.0f);
}

void ImageModLightleak::randomizeVariation()
{
    if (ImageModVariable* v = variableAt(1))
        v->setFloatValue(float(std::rand() % 10000 - 5000));
}

bool ImageModLightleak::configureDiscolor(ImageMod& discolor, float amount, float phase)
{
    if (amount == 0.0f || discolor.variableCount() < 5)
        return false;
    const double x = double(phase) + 248.75;
    if (ImageModVariableDataColor* color = discolor.variableAt(2)->asColor()) {
        color->red = float(std::cos(x * 0.08105308810215502) * 17.5 + 237.5);
        color->green = float(std::cos(x * 0.06000441866188032) * 37.5 + 162.5);
        color->blue = float(std::cos(x * 0.033740705144660564) * 60.0 + 140.0);
        color->alpha = 255.0f;
    }
    const float stretch
        = float(std::cos(x * 0.044673449142009804) * 0.11500000953674316 + 0.1850000098347664);
    const float strength = float(
        double(amount) * (std::cos(x * 0.029405306921233814) * 0.19999998807907104 + 0.699999988079071));
    discolor.variableAt(0)->setFloatValue(strength);
    discolor.variableAt(1)->setFloatValue(float(x));
    discolor.variableAt(3)->setFloatValue(1.45f);
    discolor.variableAt(4)->setFloatValue(stretch);
    return true;
}

namespace {

template <typename Sample>
void applyLightleak(const ImageModLightleak& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    const float amount = mod.floatValue(0);
    if (amount == 0.0f)
        return;
    ImageModDiscolor discolor;
    if (ImageModLightleak::configureDiscolor(discolor, amount, mod.floatValue(1)))
        discolor.apply(image, context);
}

} // namespace

void ImageModLightleak::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyLightleak(*this, image, context);
}

void ImageModLightleak::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyLightleak(*this, image, context);
}
