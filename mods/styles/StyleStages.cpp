#include "mods/styles/StyleStages.h"

#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataCurve.h"
#include "mods/ColorCastMods.h"
#include "mods/ImageModBlur.h"
#include "mods/ImageModBrightness.h"
#include "mods/ImageModColorizeCurve.h"
#include "mods/ImageModContrast.h"
#include "mods/ImageModDiscolor.h"
#include "mods/ImageModGammaLegacy.h"
#include "mods/ImageModLuminanceContrast.h"
#include "mods/ImageModLuminanceCurve.h"
#include "mods/ImageModNoise.h"
#include "mods/ImageModRGBCombinedCurve.h"
#include "mods/ImageModRGBCurves.h"
#include "mods/ImageModSaturation.h"
#include "mods/ImageModSplitTone.h"
#include "mods/ImageModVignette.h"
#include "mods/styles/ImageModColorcross.h"

namespace {

// Writes without the slider's clamp: recipes may reach past a slider's range on purpose.
void setFloat(ImageMod& mod, int32_t index, float value)
{
    if (ImageModVariable* v = mod.variableAt(index))
        v->setFloatValue(value);
}

void setColor(ImageMod& mod, int32_t index, StyleColor c)
{
    ImageModVariable* v = mod.variableAt(index);
    ImageModVariableDataColor* data = v ? v->asColor() : nullptr;
    if (!data)
        return;
    data->red = c.r;
    data->green = c.g;
    data->blue = c.b;
    data->alpha = 255.0f;
}

void setCurve(ImageMod& mod, int32_t index, const char* points)
{
    ImageModVariable* v = mod.variableAt(index);
    ImageModVariableDataCurve* data = v ? v->asCurve() : nullptr;
    if (data && points && *points)
        data->curve.setFromString(points);
}

void setCurve(ImageMod& mod, int32_t index, const ToneCurve& curve)
{
    ImageModVariable* v = mod.variableAt(index);
    if (ImageModVariableDataCurve* data = v ? v->asCurve() : nullptr)
        data->curve = curve;
}

void setValue(ImageMod& mod, int32_t index, float value)
{
    setFloat(mod, index, value);
}

void setValue(ImageMod& mod, int32_t index, StyleColor value)
{
    setColor(mod, index, value);
}

// Most stage mods take their values as variables 0, 1, 2... in the order the stage lists them.
template <class... Values>
void applyWithValues(ImageMod& mod, FlexImageFloat* image, const ImageModApplyContext* context, Values... values)
{
    int32_t index = 0;
    (setValue(mod, index++, values), ...);
    mod.apply(image, context);
}

} // namespace

void StyleStages::gamma(float amount)
{
    ImageModGammaLegacy mod(amount);
    mod.apply(image, context);
}

void StyleStages::saturation(float amount, int32_t version)
{
    ImageModSaturation mod(version, amount);
    mod.apply(image, context);
}

void StyleStages::contrast(float amount, float center, int32_t version)
{
    ImageModContrast mod(version, amount, center);
    mod.apply(image, context);
}

void StyleStages::luminanceContrast(float amount, float center)
{
    ImageModLuminanceContrast mod(amount, center);
    mod.apply(image, context);
}

void StyleStages::brightness(float amount)
{
    ImageModBrightness mod(amount);
    mod.apply(image, context);
}

void StyleStages::luminanceCurve(float amount, const char* points)
{
    ImageModLuminanceCurve mod;
    setFloat(mod, ImageModLuminanceCurve::varAmount, amount);
    setCurve(mod, ImageModLuminanceCurve::varCurve, points);
    mod.apply(image, context);
}

void StyleStages::rgbCombinedCurve(float amount, const char* points)
{
    ImageModRGBCombinedCurve mod;
    setFloat(mod, ImageModRGBCombinedCurve::varAmount, amount);
    setCurve(mod, ImageModRGBCombinedCurve::varCurve, points);
    mod.apply(image, context);
}

void StyleStages::rgbCurves(float amount, const char* red, const char* green, const char* blue, const char* rgb)
{
    ImageModRGBCurves mod;
    setFloat(mod, ImageModRGBCurves::varAmount, amount);
    setCurve(mod, ImageModRGBCurves::varRed, red);
    setCurve(mod, ImageModRGBCurves::varGreen, green);
    setCurve(mod, ImageModRGBCurves::varBlue, blue);
    setCurve(mod, ImageModRGBCurves::varRgb, rgb);
    mod.apply(image, context);
}

void StyleStages::rgbCurves(float amount, const ToneCurve& red, const ToneCurve& green, const ToneCurve& blue)
{
    ImageModRGBCurves mod;
    setFloat(mod, ImageModRGBCurves::varAmount, amount);
    setCurve(mod, ImageModRGBCurves::varRed, red);
    setCurve(mod, ImageModRGBCurves::varGreen, green);
    setCurve(mod, ImageModRGBCurves::varBlue, blue);
    mod.apply(image, context);
}

void StyleStages::colorizeCurve(float amount, const char* points, StyleColor color, int32_t method)
{
    ImageModColorizeCurve mod;
    mod.setCurve(points);
    mod.setColor(color.r, color.g, color.b);
    mod.setAmount(amount);
    mod.setMethod(method);
    mod.apply(image, context);
}

void StyleStages::dye(float amount, StyleColor color, int32_t version)
{
    ImageModDye mod(version);
    applyWithValues(mod, image, context, amount, color);
}

void StyleStages::colorFilter(float amount, StyleColor color)
{
    ImageModColorFilter mod;
    applyWithValues(mod, image, context, amount, color);
}

void StyleStages::splitTone(float amount, StyleColor dark, StyleColor light)
{
    ImageModSplitTone mod;
    applyWithValues(mod, image, context, amount, dark, light);
}

void StyleStages::colorCorrector(float amount, StyleColor shadows, StyleColor midtones, StyleColor highlights)
{
    ImageModColorCorrector mod;
    applyWithValues(mod, image, context, amount, shadows, midtones, highlights);
}

void StyleStages::vignette(float amount, float sharpness, float radius)
{
    ImageModVignette mod;
    applyWithValues(mod, image, context, amount, sharpness, radius);
}

void StyleStages::noise(float amount, float scale, float offset, int32_t version)
{
    ImageModNoise mod;
    mod.setVersion(version);
    applyWithValues(mod, image, context, amount, scale, offset);
}

void StyleStages::blur(float amount, float mix)
{
    ImageModBlur mod;
    applyWithValues(mod, image, context, amount, mix);
}

void StyleStages::discolor(float amount, float offset, StyleColor color, float scale, float stretch)
{
    ImageModDiscolor mod;
    applyWithValues(mod, image, context, amount, offset, color, scale, stretch);
}

void StyleStages::colorcross(float amount, float variation, int32_t version)
{
    ImageModColorcross mod;
    mod.setVersion(version);
    setFloat(mod, ImageModColorcross::varAmount, amount);
    setFloat(mod, ImageModColorcross::varVariation, variation);
    mod.apply(image, context);
}
