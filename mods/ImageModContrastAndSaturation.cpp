#include "mods/ImageModContrastAndSaturation.h"

#include "mods/ImageModContrast.h"
#include "mods/ImageModSaturation.h"
#include "mods/TonalPixelLoop.h"

#include <cmath>

namespace {

template <typename Image>
void contrastAndSaturation(Image* image, const ImageModApplyContext* context, float amount, float center)
{
    if (!image || image->isEmpty() || amount == 1.0f || !std::isfinite(amount) || !std::isfinite(center))
        return;
    ImageModContrast contrast(1, amount, center);
    contrast.apply(image, context);
    ImageModSaturation saturation(1, (1.0f - amount) * 0.44f + 1.0f);
    saturation.apply(image, context);
}

} // namespace

ImageModContrastAndSaturation::ImageModContrastAndSaturation(float amount, float center)
    : ImageMod("Contrast Saturation", "Contrast")
{
    toolTip = "Adjust contrast. The Center slider determines the brightness value from which the contrast emanates.";
    addAmountVariable(this, amount);
    addFloat("Center", center, 0.0f, 255.0f, "Brightness Origin");
}

void ImageModContrastAndSaturation::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    contrastAndSaturation(image, context, floatValue(0), floatValue(1));
}

void ImageModContrastAndSaturation::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    contrastAndSaturation(image, context, floatValue(0), floatValue(1));
}
