#include "mods/ImageModSelectiveColor.h"

#include "core/ImageModVariableDataColor.h"
#include "mods/ColorSteps.h"
#include "mods/TonalSteps.h"

#include <cmath>

namespace {

template <typename Sample>
void applySelectiveColor(const ImageMod& mod, FlexImageT<Sample>* image)
{
    if (!image || image->isEmpty() || image->channels < 3)
        return;
    const float saturation = mod.floatValue(2);
    if (saturation == 1.0f)
        return;
    const ImageModVariableDataColor* col = mod.colorAt(0);
    float hue = 0.0f, s, v;
    if (col)
        rgbToHsv(col->red, col->green, col->blue, hue, s, v);
    const float tol = mod.floatValue(1) * 1.8f;
    const float wide = 1.5f * tol;
    const float sat = saturationFactor(saturation);
    const int32_t channels = image->channels;
    const int32_t colour = image->colorChannels;
    colorRowLoop(image, nullptr, false, [&](Sample* p, float) {
        float ph, ps, pv;
        rgbToHsvInline(sampleValue(p[0]), sampleValue(p[1]), sampleValue(p[2]), ph, ps, pv);
        const float d = ImageModSelectiveColor::hueDistance(ph, hue);
        if (!(d <= wide))
            return;
        const float g = ImageModSelectiveColor::hueWeight(d, tol);
        legacySaturate(p, channels, colour, (1.0f - g) + g * sat);
    });
}

} // namespace

float ImageModSelectiveColor::hueDistance(float a, float b)
{
    float d = std::fabs(a - b);
    if (d > 180.0f)
        d = 360.0f - d;
    return d;
}

float ImageModSelectiveColor::hueWeight(float d, float tol)
{
    if (d <= tol)
        return 1.0f;
    return 1.0f - shapedStep(2.0f * (d - tol) / tol, 2.0f);
}

ImageModSelectiveColor::ImageModSelectiveColor() : ImageMod("Selective Saturation", "")
{
    toolTip = "Adjust the saturation of a specific hue only.";
    addColor("Color", 229.0f, 182.0f, 171.0f, 255.0f);
    addFloat("Tolerance", 20.0f, 0.0f, 100.0f);
    addFloat("Saturation", 0.3f, 0.0f, 2.0f);
}

std::unique_ptr<ImageMod> ImageModSelectiveColor::newInstance() const
{
    return std::make_unique<ImageModSelectiveColor>();
}

void ImageModSelectiveColor::apply(FlexImage8* image, const ImageModApplyContext*)
{
    applySelectiveColor(*this, image);
}

void ImageModSelectiveColor::apply(FlexImageFloat* image, const ImageModApplyContext*)
{
    applySelectiveColor(*this, image);
}
