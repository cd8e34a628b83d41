#include "mods/ImageModLuminanceContrast.h"

#include "mods/PowerPairTable.h"
#include "mods/TonalPixelLoop.h"
#include "mods/TonalSteps.h"

#include <cmath>

namespace {

static inline void luminanceContrastPixelTable(float* p, int32_t channels, int32_t colorChannels,
                                               const PowerPairTable& table)
{
    const float y = pixelLuminance(p, channels);
    setLuminance(p, colorChannels, y, table(y));
}

template <typename Sample>
void luminanceContrastPass(FlexImageT<Sample>* image, const ImageModApplyContext* context, float amount, float center)
{
    if (!image || image->isEmpty() || amount == 1.0f || !std::isfinite(amount) || !std::isfinite(center))
        return;
    const int32_t channels = image->channels;
    const int32_t colour = image->colorChannels;
    const float e = powerPairExponent(amount);
    if constexpr (sizeof(Sample) == 4) {
        // Unmasked float pixels read the pair from a table built once for the pass.
        if (!context || !context->selector) {
            PowerPairTable table;
            table.build(center, e);
            forEachPixel(
                image, nullptr, [&](float* p) { luminanceContrastPixelTable(p, channels, colour, table); },
                [](float*, float) {});
            return;
        }
    }
    forEachPixel(
        image, context, [=](Sample* p) { luminanceContrastPixel(p, channels, colour, center, e); },
        [=](Sample* p, float m) {
            const float a = maskRuleA(amount, m);
            if (a != 1.0f)
                luminanceContrastPixel(p, channels, colour, center, powerPairExponent(a));
        });
}

} // namespace

ImageModLuminanceContrast::ImageModLuminanceContrast(float amount, float center)
    : ImageMod("Luminance Contrast", "Luminance Contrast")
{
    toolTip = "Adjust contrast based on luminance, which preserves saturation. The Contrast Origin slider "
              "determines the brightness value from which the contrast emanates.";
    addAnimator(addAmountVariable(this, amount), "1.6 .7 1.6", 3.0f);
    addAnimator(addFloat("Center", center, 0.0f, 255.0f, "Contrast Origin"), "90 165 90", 4.513f);
}

void ImageModLuminanceContrast::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    luminanceContrastPass(image, context, floatValue(0), floatValue(1));
}

void ImageModLuminanceContrast::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    luminanceContrastPass(image, context, floatValue(0), floatValue(1));
}
