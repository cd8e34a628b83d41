#include "mods/styles/ImageModStyle.h"

#include "core/ImageModSelector.h"
#include "core/ParallelFor.h"
#include "mods/ImageModBlur.h"

#include <cstring>

ImageModStyle::ImageModStyle(std::string modName, std::string label)
    : ImageMod(std::move(modName), std::move(label))
{
    addFloat("Amount", 1.0f, 0.0f, 1.0f)->data->setDisplayScale(0.0f, 100.0f);
    addFloat(kVariationVariableName, 0.0f, -5000.0f, 5000.0f);
}

void ImageModStyle::describe(const char* tip, int32_t newestVersion, float blurAtFullAmount)
{
    toolTip = tip;
    version = newestVersion;
    blurPerAmount = blurAtFullAmount;
}

int32_t ImageModStyle::paddingNeeded(int32_t width, int32_t height, float scale) const
{
    const float a = floatValue(varAmount);
    if (blurPerAmount == 0.0f || a == 0.0f)
        return 0;
    ImageModBlur blur;
    blur.variableAt(0)->setFloatValue(blurPerAmount * a);
    return blur.paddingNeeded(width, height, scale);
}

namespace {

// Moves the styled pixel back towards the original by 1 - m.
static inline void mergePixel(float* styled, const float* original, int32_t colour, float m)
{
    for (int32_t c = 0; c < colour; ++c)
        styled[c] = original[c] + (styled[c] - original[c]) * m;
}

// Clamped, rounded store of the 8-bit depth.
static inline uint8_t roundTo8(float v)
{
    if (!(v > 0.0f))
        return 0;
    if (v >= 255.0f)
        return 255;
    return uint8_t(int32_t(v + 0.5f));
}

} // namespace

void ImageModStyle::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float a = floatValue(varAmount);
    if (a == 0.0f)
        return;
    const float v = floatValue(varVariation);
    const ImageModSelector* selector = context ? context->selector : nullptr;
    if (!selector) {
        runRecipe(image, context, a, v);
        return;
    }
    // Stages disagree about masks (curves ignore them), so the whole look runs unmasked and is
    // merged over the original by the mask as it reads on the original pixels.
    FlexImageFloat original;
    original.copyFrom(*image, true);
    if (original.isEmpty())
        return;
    ImageModApplyContext plain = *context;
    plain.selector = nullptr;
    runRecipe(image, &plain, a, v);
    const ReferenceFrame* frame = context->referenceFrame;
    const int32_t w = image->width;
    const int32_t ch = image->channels;
    const int32_t colour = image->colorChannels < ch ? image->colorChannels : ch;
    parallelFor(image->height, [&](int32_t y) {
        float* out = image->row(y);
        const float* in = original.row(y);
        for (int32_t x = 0; x < w; ++x)
            mergePixel(out + x * ch, in + x * ch, colour, selector->maskValue(&original, x, y, frame));
    });
}

void ImageModStyle::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty() || floatValue(varAmount) == 0.0f)
        return;
    FlexImageFloat work;
    work.copyFromOtherDepth(*image, true);
    if (work.isEmpty())
        return;
    apply(&work, context);
    const int32_t n = image->width * image->channels;
    parallelFor(image->height, [&](int32_t y) {
        uint8_t* out = image->row(y);
        const float* in = work.row(y);
        for (int32_t k = 0; k < n; ++k)
            out[k] = roundTo8(in[k]);
    });
}
