#include "mods/ImageModSaturation.h"

#include "mods/TonalPixelLoop.h"
#include "mods/TonalSteps.h"

#include <cmath>

namespace {

template <typename Sample>
static inline void saturatePixel(Sample* p, int32_t channels, int32_t colorChannels, float v, bool root)
{
    if (root)
        rootSaturate(p, v);
    else
        legacySaturate(p, channels, colorChannels, v);
}

template <typename Sample>
void saturationPass(FlexImageT<Sample>* image, const ImageModApplyContext* context, float amount, int32_t version,
                    const FlexImageT<Sample>* from = nullptr)
{
    if (!image || image->isEmpty() || amount == 1.0f || !std::isfinite(amount))
        return passUntouched(image, from);
    const bool root = version == 2;
    const int32_t channels = image->channels;
    const int32_t colour = image->colorChannels;
    // The root anchor reads three channels; a grey image has none to spread.
    if (root && channels < 3)
        return passUntouched(image, from);
    const float v = saturationFactor(amount);
    forEachPixel(
        image, context, [=](Sample* p) { saturatePixel(p, channels, colour, v, root); },
        [=](Sample* p, float m) {
            const float a = maskRuleA(amount, m);
            if (a != 1.0f)
                saturatePixel(p, channels, colour, saturationFactor(a), root);
        },
        from);
}

} // namespace

ImageModSaturation::ImageModSaturation(int32_t v, float amount) : ImageMod("Saturation", "Saturation")
{
    toolTip = "Adjust color intensity.";
    addAnimator(addAmountVariable(this, amount), "0 0 1.5 1.5 0", 3.0f);
    setVersion(v);
}

void ImageModSaturation::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    saturationPass(image, context, floatValue(0), version);
}

void ImageModSaturation::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    saturationPass(image, context, floatValue(0), version);
}

bool ImageModSaturation::applyFrom(const FlexImageFloat& source, FlexImageFloat* dest,
                                   const ImageModApplyContext* context)
{
    if (!prepareSourcedPass(source, dest, context))
        return false;
    saturationPass(dest, context, floatValue(0), version, &source);
    return true;
}
