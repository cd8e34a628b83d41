#include "mods/ImageModBorderPlain.h"

#include "core/ImageModVariableDataColor.h"

#include <algorithm>
#include <cmath>

ImageModBorderPlain::ImageModBorderPlain(bool roundedKind)
    : ImageModBorder(roundedKind ? "Custom Rounded" : "Custom Straight", "Basic Border")
    , rounded(roundedKind)
{
    toolTip = "A basic border of any color, with adjustable width dependent on the size of the image and optional "
              "rounding.";
    addColor("Color", 255.0f, 255.0f, 255.0f, 255.0f);
    addFloat("Width", 0.05f, 0.0f, 1.0f, 0.0f, 0.25f);
    if (rounded)
        addFloat("Radius", 0.05f, 0.0f, 0.5f, 0.0f, 0.5f, "Rounding");
}

std::unique_ptr<ImageMod> ImageModBorderPlain::newInstance() const
{
    return std::make_unique<ImageModBorderPlain>(rounded);
}

BorderBands ImageModBorderPlain::bands(double width, double height) const
{
    const float fraction = floatValue(widthIndex);
    // A damaged file's NaN or negative width draws no band.
    if (!(fraction > 0.0f))
        return {};
    const double b = double(std::min(fraction, 1.0f)) * std::min(width, height);
    return { b, b, b, b };
}

float ImageModBorderPlain::cornerRadius() const
{
    if (!rounded)
        return 0.0f;
    const float r = floatValue(radiusIndex);
    return r > 0.0f ? std::min(r, 0.5f) : 0.0f;
}

void ImageModBorderPlain::bandColor(float rgba[4]) const
{
    colorVariableBand(colorIndex, rgba);
}
