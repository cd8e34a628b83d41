#include "mods/ImageModBorderFillout.h"

#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "mods/ImageModAspectRatio.h"

#include <cmath>

ImageModBorderFillout::ImageModBorderFillout() : ImageModBorder("Fill Out", "Fill Border")
{
    toolTip = "A border of any color that adds bars to the image to make it the desired aspect ratio.";
    addColor("Color", 255.0f, 255.0f, 255.0f, 255.0f);
    // The same list, in the same order, as the aspect-ratio tile, so files share the indices.
    const ImageModAspectRatio aspects;
    addVariable(*aspects.variableAt(0));
    addVariable(*aspects.variableAt(1));
}

std::unique_ptr<ImageMod> ImageModBorderFillout::newInstance() const
{
    return std::make_unique<ImageModBorderFillout>();
}

void ImageModBorderFillout::variableChanged(int32_t index)
{
    if (index != aspectIndex)
        return;
    if (ImageModVariable* custom = variableAt(customIndex))
        custom->visible = choiceIndex(aspectIndex) == ImageModAspectRatio::customIndex;
    refreshRequested = true;
}

bool ImageModBorderFillout::consumeRefreshRequest()
{
    const bool was = refreshRequested;
    refreshRequested = false;
    return was;
}

double ImageModBorderFillout::targetAspect(double width, double height) const
{
    const ImageModVariable* v = variableAt(aspectIndex);
    const ImageModVariableDataChoice* choice = v ? v->asChoice() : nullptr;
    if (!choice)
        return 0.0;
    const double r = ImageModAspectRatio::aspectForLabel(choice->currentLabel(), floatValue(customIndex));
    if (!(r > 0.0) || !std::isfinite(r))
        return 0.0;
    return width < height ? 1.0 / r : r;
}

BorderBands ImageModBorderFillout::bands(double width, double height) const
{
    const double a = targetAspect(width, height);
    if (!(a > 0.0) || !(width > 0.0) || !(height > 0.0))
        return {};
    BorderBands b;
    if (width / height < a) {
        const double bar = (height * a - width) * 0.5;
        b.left = b.right = bar;
    } else {
        const double bar = (width / a - height) * 0.5;
        b.top = b.bottom = bar;
    }
    return b;
}

void ImageModBorderFillout::bandColor(float rgba[4]) const
{
    colorVariableBand(colorIndex, rgba);
}
