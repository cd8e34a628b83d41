#include "core/ImageModHueSelector.h"

#include "core/ColorMath.h"
#include "core/ImageModSelectorPixel.h"
#include "core/ImageModVariableDataMultiChoice.h"

ImageModHueSelector::ImageModHueSelector() : ImageModSelector("Hue Mask", "Hue Mask")
{
    toolTip = "Place to the left of a tile (or nested group of tiles) to make that tile only affect selected hues.";
    addMultiChoice("Hue", {"255 0 0", "255 127 0", "255 255 0", "0 255 0", "0 255 255", "0 0 255", "255 0 255"}, {0});
    regions = {
        {-60.0f, -10.0f, 0.0f, 50.0f},   {-25.0f, 30.0f, 40.0f, 80.0f},    {20.0f, 45.0f, 65.0f, 110.0f},
        {50.0f, 75.0f, 150.0f, 205.0f},  {135.0f, 175.0f, 195.0f, 220.0f}, {180.0f, 205.0f, 260.0f, 300.0f},
        {250.0f, 290.0f, 310.0f, 350.0f},
    };
}

std::unique_ptr<ImageMod> ImageModHueSelector::newInstance() const
{
    return std::make_unique<ImageModHueSelector>();
}

float ImageModHueSelector::regionValue(const Region& region, float h)
{
    const float start = region[0], top = region[1], topEnd = region[2], end = region[3];
    if (h < start || h > end)
        return 0.0f;
    if (h >= top && h <= topEnd)
        return 1.0f;
    if (h < top)
        return shapedStep((h - start) / (top - start), 2.0f);
    return shapedStep((end - h) / (end - topEnd), 2.0f);
}

// Fades the mask out as u (saturation or value, doubled) drops below 1.
static inline float purityFactor(float u)
{
    const float k = 1.0f - u;
    return 1.0f - k * k;
}

float ImageModHueSelector::maskForColor(const std::vector<int32_t>& selected, float r, float g, float b) const
{
    float h, s, v;
    selectorHsv(r, g, b, h, s, v);
    float m = 0.0f;
    for (int32_t index : selected) {
        if (index < 0 || size_t(index) >= regions.size())
            continue;
        const Region& region = regions[size_t(index)];
        m += regionValue(region, h);
        if (h >= wrapThreshold)
            m += regionValue(region, h - 360.0f);
    }
    if (m > 1.0f)
        m = 1.0f;
    if (s < 0.5f)
        m *= purityFactor(2.0f * s);
    if (v < 0.5f)
        m *= purityFactor(2.0f * v);
    return m;
}

namespace {

template <typename Sample>
float hueMask(const ImageModHueSelector& selector, const FlexImageT<Sample>* image, int32_t x, int32_t y)
{
    const ImageModVariableDataMultiChoice* hue = selector.multiChoiceAt(0);
    if (!hue || !image || !image->data)
        return 0.0f;
    float r, g, b;
    selectorRgb(image, x, y, r, g, b);
    return selector.maskForColor(hue->selected, r, g, b);
}

} // namespace

float ImageModHueSelector::maskValue(const FlexImageFloat* image, int32_t x, int32_t y, const ReferenceFrame*) const
{
    return hueMask(*this, image, x, y);
}

float ImageModHueSelector::maskValue(const FlexImage8* image, int32_t x, int32_t y, const ReferenceFrame*) const
{
    return hueMask(*this, image, x, y);
}
