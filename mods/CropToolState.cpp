#include "mods/CropToolState.h"

#include "core/ImageModVariableDataChoice.h"
#include "mods/ImageModCrop.h"

namespace {

void setFloat(ImageMod& mod, int32_t index, float v)
{
    ImageModVariable* var = mod.variableAt(index);
    if (!var)
        return;
    // A damaged file may have left another kind here: the tool's value wins.
    if (!var->asFloat())
        var->data = std::make_unique<ImageModVariableData>(v, 0.0f, 1.0f);
    var->asFloat()->value = v;
}

} // namespace

CropPixelInsets applyCropState(const CropToolGeometry& g, ImageModCrop& crop, int32_t W, int32_t H)
{
    setFloat(crop, 1, g.leftInset);
    setFloat(crop, 2, g.rightInset);
    setFloat(crop, 3, g.topInset);
    setFloat(crop, 4, g.bottomInset);
    if (g.customAspect > 0.0f) {
        if (ImageModVariable* custom = crop.aspect.variableAt(1)) {
            if (!custom->asFloat())
                custom->data = std::make_unique<ImageModVariableData>(g.customAspect, 0.01f, 100.0f);
            custom->asFloat()->value = g.customAspect;
        }
        if (crop.aspectChoice)
            crop.aspectChoice->index = ImageModAspectRatio::customIndex;
    }
    CropPixelInsets px;
    if (W < 1 || H < 1)
        return px;
    const CropFractions f = crop.cropRect(float(W), float(H));
    px.left = int32_t(f.left * float(W));
    px.top = int32_t(f.top * float(H));
    px.right = int32_t(f.right * float(W));
    px.bottom = int32_t(f.bottom * float(H));
    return px;
}

void readCropState(const ImageModCrop& crop, CropToolGeometry& g)
{
    g.leftInset = crop.floatValue(1);
    g.rightInset = crop.floatValue(2);
    g.topInset = crop.floatValue(3);
    g.bottomInset = crop.floatValue(4);
    g.listAspect = crop.aspectChoice ? crop.aspect.aspectValue() : 0.0f;
    g.clearHits();
}

int32_t cropAspectRow(const ImageModCrop& crop, const char* label)
{
    return crop.aspectChoice ? crop.aspectChoice->indexOfLabel(label) : -1;
}
