#include "mods/ImageModMultiTool.h"

#include "mods/ImageModContrast.h"
#include "mods/ImageModExposure.h"
#include "mods/ImageModGammaLegacy.h"
#include "mods/ImageModSaturation.h"

namespace {

// Each stage takes the mask and applies it by its own rule.
template <typename Image>
void multiTool(Image* image, const ImageModApplyContext* context, const ImageMod& mod)
{
    if (!image || image->isEmpty())
        return;
    const float exposure = mod.floatValue(0) * 0.02f;
    const float contrast = mod.floatValue(1) * 0.02f;
    const float saturation = mod.floatValue(2) * 0.02f;
    if (mod.version < 2) {
        ImageModGammaLegacy stage(exposure);
        stage.apply(image, context);
    } else {
        ImageModExposure stage(exposure);
        stage.apply(image, context);
    }
    // Contrast version 2 fixes its center at 90, so the 127.5 of newer tiles has no effect.
    ImageModContrast contrastStage(2, contrast, mod.version <= 2 ? 90.0f : 127.5f);
    contrastStage.apply(image, context);
    ImageModSaturation saturationStage(1, saturation);
    saturationStage.apply(image, context);
}

} // namespace

ImageModMultiTool::ImageModMultiTool() : ImageMod("Multi Tool", "Multi Tool")
{
    toolTip = "Adjust exposure, contrast, and saturation simultaneously.";
    addAnimator(addFloat("Exposure", 50.0f, 0.0f, 100.0f), "20 80 20", 3.0f);
    addAnimator(addFloat("Contrast", 50.0f, 0.0f, 100.0f), "35 65 35", 3.0f);
    addAnimator(addFloat("Saturation", 50.0f, 0.0f, 100.0f), "0 70 0", 3.0f);
    setVersion(newestVersion);
}

void ImageModMultiTool::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    multiTool(image, context, *this);
}

void ImageModMultiTool::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    multiTool(image, context, *this);
}
