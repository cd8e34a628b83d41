#include "core/ImageModLuminanceSelector.h"

#include "core/ImageModSelectorPixel.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ToneCurve.h"

namespace {

struct LuminancePreset {
    const char* label;
    const char* points;
};

// Five point pairs each: a flat top over the chosen range and a ramp to 0 beside it.
constexpr LuminancePreset kPresets[] = {
    {"Shadows", "0 1 .1666 1 .3333 0 .5 0 1 0"},
    {"Shadows (Wide)", "0 1 .2222 1 .4444 0 .6666 0 1 0"},
    {"Midtones", "0 0 .25 0 .5 1 .75 0 1 0"},
    {"Highlights (Wide)", "0 0 .3334 0 .5556 0 .7778 1 1 1"},
    {"Highlights", "0 0 .5 0 .6667 0 .8334 1 1 1"},
};
constexpr int32_t kPresetCount = int32_t(sizeof(kPresets) / sizeof(kPresets[0]));

template <typename Sample>
static inline float luminanceMask(const ToneCurve* curve, const FlexImageT<Sample>* image, int32_t x, int32_t y)
{
    if (!curve || !image || !image->data)
        return 0.0f;
    const Sample* p = selectorPixel(image, x, y);
    float lum;
    if (image->channels >= 3)
        lum = float(0.299 * double(p[0]) + 0.587 * double(p[1]) + 0.114 * double(p[2]));
    else
        lum = float(p[0]);
    return curve->lookup(lum * 0.003921569f);
}

} // namespace

ImageModLuminanceSelector::ImageModLuminanceSelector() : ImageModSelector("Luminance Mask", "Luminance Mask")
{
    toolTip = "Place to the left of a tile (or nested group of tiles) to make that tile only affect specific "
              "luminance (brightness) ranges. Use the presets dropdown for common tone ranges.";
    addCurve("Curve", "0 1 1 1");
    std::vector<std::string> labels{"Load Preset..."};
    for (const LuminancePreset& p : kPresets)
        labels.emplace_back(p.label);
    addChoice("Presets", std::move(labels), 0);
}

std::unique_ptr<ImageMod> ImageModLuminanceSelector::newInstance() const
{
    return std::make_unique<ImageModLuminanceSelector>();
}

const char* ImageModLuminanceSelector::presetCurve(int32_t presetIndex)
{
    return presetIndex >= 0 && presetIndex < kPresetCount ? kPresets[presetIndex].points : nullptr;
}

void ImageModLuminanceSelector::variableChanged(int32_t index)
{
    if (index != 1)
        return;
    ImageModVariable* presets = variableAt(1);
    ImageModVariableDataChoice* choice = presets ? presets->asChoice() : nullptr;
    if (!choice || choice->index <= 0)
        return;
    const char* points = presetCurve(choice->index - 1);
    ImageModVariable* curveVar = variableAt(0);
    ImageModVariableDataCurve* curve = curveVar ? curveVar->asCurve() : nullptr;
    if (points && curve)
        curve->curve.setFromString(points);
    choice->index = 0;
}

float ImageModLuminanceSelector::maskValue(const FlexImageFloat* image, int32_t x, int32_t y,
                                           const ReferenceFrame*) const
{
    return luminanceMask(curveAt(0), image, x, y);
}

float ImageModLuminanceSelector::maskValue(const FlexImage8* image, int32_t x, int32_t y, const ReferenceFrame*) const
{
    return luminanceMask(curveAt(0), image, x, y);
}
