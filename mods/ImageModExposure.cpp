#include "mods/ImageModExposure.h"

#include "mods/TonalPixelLoop.h"
#include "mods/TonalSteps.h"

#include <cmath>

namespace {

// Everything one exposure value needs per pixel.
struct ExposureStep {
    float exponent = 1.0f;
    float saturation = 1.0f;
    int32_t direction = 0;  // 1 brighten, -1 darken, 0 leave alone
};

static inline ExposureStep exposureStep(float e)
{
    ExposureStep s;
    if (e > 1.0f) {
        s.direction = 1;
        s.exponent = 1.0f / (2.0f - e);
    } else if (e < 1.0f) {
        s.direction = -1;
        s.exponent = 1.0f / e;
        s.saturation = std::pow(1.0f - std::fabs(e - 1.0f), 0.4f);
    }
    return s;
}

template <typename Sample>
static inline void exposePixel(Sample* p, int32_t channels, int32_t colorChannels, const ExposureStep& s)
{
    if (s.direction > 0) {
        for (int32_t c = 0; c < colorChannels; ++c) {
            if constexpr (sizeof(Sample) == 1)
                p[c] = gammaBrighten8(p[c], s.exponent);
            else
                p[c] = gammaBrighten(p[c], s.exponent);
        }
    } else if (s.direction < 0) {
        for (int32_t c = 0; c < colorChannels; ++c) {
            if constexpr (sizeof(Sample) == 1)
                p[c] = gammaDarken8(p[c], s.exponent);
            else
                p[c] = gammaDarken(p[c], s.exponent);
        }
        legacySaturate(p, channels, colorChannels, s.saturation);
    }
}

template <typename Sample>
void exposurePass(FlexImageT<Sample>* image, const ImageModApplyContext* context, float amount,
                  const FlexImageT<Sample>* from = nullptr)
{
    if (!image || image->isEmpty() || amount == 1.0f || !std::isfinite(amount))
        return passUntouched(image, from);
    const int32_t channels = image->channels;
    const int32_t colour = image->colorChannels;
    const ExposureStep plain = exposureStep(amount);
    forEachPixel(
        image, context, [=](Sample* p) { exposePixel(p, channels, colour, plain); },
        [=](Sample* p, float m) { exposePixel(p, channels, colour, exposureStep(maskRuleA(amount, m))); }, from);
}

} // namespace

ImageModExposure::ImageModExposure(float amount) : ImageMod("Exposure", "Exposure")
{
    toolTip = "Adjust exposure, which affects the brightness of an image.";
    addAnimator(addAmountVariable(this, amount), "1.8 .2 1.8", 3.0f);
}

void ImageModExposure::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    exposurePass(image, context, floatValue(0));
}

void ImageModExposure::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    exposurePass(image, context, floatValue(0));
}

bool ImageModExposure::applyFrom(const FlexImageFloat& source, FlexImageFloat* dest, const ImageModApplyContext* context)
{
    if (!prepareSourcedPass(source, dest, context))
        return false;
    exposurePass(dest, context, floatValue(0), &source);
    return true;
}
