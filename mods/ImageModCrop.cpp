#include "mods/ImageModCrop.h"

#include "core/GrowingArray.h"
#include "core/ImageModVariableDataChoice.h"

ImageModCrop::ImageModCrop() : ImageMod("Crop", "Crop")
{
    toolTip = "Crop the image by dragging the edges and corners of the crop indicator. Apply minor "
              "rotation/straightening using the rotation slider. Cropping will always be applied before any image "
              "adjustments or styles.";
    appendGrowing(tags, kTagCrop);
    addFloat("Straighten", 0.0f, -180.0f, 180.0f);
    addFloat("cp0", 0.0f, 0.0f, 1.0f);
    addFloat("cp1", 0.0f, 0.0f, 1.0f);
    addFloat("cp2", 0.0f, 0.0f, 1.0f);
    addFloat("cp3", 0.0f, 0.0f, 1.0f);
    if (ImageModVariable* v = aspect.variableAt(0))
        aspectChoice = v->asChoice();
}

std::unique_ptr<ImageMod> ImageModCrop::newInstance() const
{
    return std::make_unique<ImageModCrop>();
}

void ImageModCrop::copyFrom(const ImageMod& other)
{
    ImageMod::copyFrom(other);
    if (const auto* crop = dynamic_cast<const ImageModCrop*>(&other); crop && crop != this)
        aspect.copyFrom(crop->aspect);
    ImageModVariable* v = aspect.variableAt(0);
    aspectChoice = v ? v->asChoice() : nullptr;
}

CropFractions ImageModCrop::cropRect(float W, float H) const
{
    CropFractions f;
    f.left = floatValue(1);
    f.right = floatValue(2);
    f.top = floatValue(3);
    f.bottom = floatValue(4);
    float r = aspectChoice ? aspect.aspectValue() : 0.0f;
    if (r == 0.0f)
        return f;
    const float keptW = 1.0f - (f.left + f.right);
    const float keptH = 1.0f - (f.top + f.bottom);
    // A degenerate rectangle has no aspect to correct.
    if (!(keptW * W > 0.0f) || !(keptH * H > 0.0f))
        return f;
    const float c = (keptW * W) / (keptH * H);
    if (r > 1.0f && c < 1.0f)
        r = 1.0f / r;
    if (c > r) {
        const float d = (keptW - r * keptW / c) * 0.5f;
        f.left += d;
        f.right += d;
    } else if (c < r) {
        const float d = (keptH - c * keptH / r) * 0.5f;
        f.top += d;
        f.bottom += d;
    }
    return f;
}
