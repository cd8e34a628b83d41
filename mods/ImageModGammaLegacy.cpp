#include "mods/ImageModGammaLegacy.h"

#include "core/ParallelFor.h"
#include "mods/TonalPixelLoop.h"
#include "mods/TonalSteps.h"

#include <cmath>

namespace {

static inline float gammaPlain(float c, float e)
{
    return std::pow(c / 255.0f, e) * 255.0f;
}

// Version 1 in 8 bits: the integer base is 1 for white and 0 for everything else.
static inline uint8_t gammaPlain8(uint8_t c, float e)
{
    const float base = float(int32_t(c) / 255);
    return uint8_t(int32_t(std::pow(base, e) * 255.0f));
}

template <typename Sample>
static inline Sample gammaChannel(Sample c, float e, int32_t mode)
{
    if constexpr (sizeof(Sample) == 1)
        return mode > 0 ? gammaBrighten8(c, e) : mode < 0 ? gammaDarken8(c, e) : gammaPlain8(c, e);
    else
        return mode > 0 ? gammaBrighten(c, e) : mode < 0 ? gammaDarken(c, e) : gammaPlain(c, e);
}

// The mask plays no part here.
template <typename Sample>
void gammaPass(FlexImageT<Sample>* image, float a, int32_t version)
{
    if (!image || image->isEmpty() || a == 1.0f || !std::isfinite(a))
        return;
    int32_t mode = 0;  // 1 brighten, -1 darken, 0 plain power
    float e;
    if (version == 2) {
        mode = a < 1.0f ? -1 : 1;
        e = a < 1.0f ? 1.0f / a : 1.0f / (2.0f - a);
    } else {
        e = a >= 1.0f ? 2.0f - a : 1.0f / a;
    }
    const int32_t colour = image->colorChannels;
    forEachPixel(
        image, nullptr,
        [=](Sample* p) {
            for (int32_t c = 0; c < colour; ++c)
                p[c] = gammaChannel(p[c], e, mode);
        },
        [](Sample*, float) {});
}

} // namespace

ImageModGammaLegacy::ImageModGammaLegacy(float amount) : ImageMod("Gamma", "Exposure")
{
    toolTip = "Adjust exposure, which affects the brightness of an image.";
    addAmountVariable(this, amount);
    setVersion(newestVersion);
}

void ImageModGammaLegacy::apply(FlexImage8* image, const ImageModApplyContext*)
{
    gammaPass(image, floatValue(0), version);
}

void ImageModGammaLegacy::apply(FlexImageFloat* image, const ImageModApplyContext*)
{
    gammaPass(image, floatValue(0), version);
}
