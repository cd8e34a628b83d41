#include "mods/ImageModDynamics.h"

#include "core/ColorMath.h"
#include "core/ParallelFor.h"
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <cmath>

ImageModDynamics::ImageModDynamics()
    : ImageMod("Dynamics", "Dynamics")
{
    toolTip = "Adjust the dynamic range of shadows and highlights relative to pixels within a given radius.";
    ImageModVariable* amount = addFloat("Amount", 0.0f, 0.0f, 100.0f);
    ImageModVariable* radius = addFloat("Radius", 50.0f, 0.0f, 100.0f);
    addChoice("Method", { "Overlay", "Luminance" }, 0);
    addAnimator(amount, "0 75 0", 3.0f);
    addAnimator(radius, "30 60", 2.55f);
    syncBlur();
}

void ImageModDynamics::syncBlur()
{
    if (ImageModVariable* a = blur.variableAt(0))
        a->setFloatValue(floatValue(1));
}

void ImageModDynamics::copyFrom(const ImageMod& other)
{
    ImageMod::copyFrom(other);
    syncBlur();
}

void ImageModDynamics::variableChanged(int32_t index)
{
    if (index == 1)
        syncBlur();
}

int32_t ImageModDynamics::paddingNeeded(int32_t width, int32_t height, float scale) const
{
    return floatValue(0) == 0.0f ? 0 : blur.paddingNeeded(width, height, scale);
}

namespace
{

// Overlay of the pixel with a grey that follows the neighbourhood: a dark surround lifts the
// pixel, a bright one lowers it.
static inline float overlayChannel(float c, float b)
{
    const float C = ImageModDynamics::overlayCenter;
    return c < C ? (1.0f - b) * 2.0f * c : (2.0f * c - 510.0f) * b + 255.0f;
}

// The power pair of the contrast mods around centre C with exponent e.
static inline float powerPair(float x, float C, float e)
{
    if (x > C)
        return 255.0f - std::pow((255.0f - x) / (255.0f - C), e) * (255.0f - C);
    if (x < C)
        return std::pow(x / C, e) * C;
    return x;
}

// Moves a pixel of luminance Y to luminance L, keeping its hue.
static inline float toLuminance(float c, float Y, float L)
{
    if (Y == 0.0f || Y == 255.0f)
        return L;
    if (L <= Y)
        return c - c * (Y - L) / Y;
    return c + (255.0f - c) * (L - Y) / (255.0f - Y);
}

} // namespace

template <typename Sample>
void ImageModDynamics::applyDepth(FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float a = floatValue(0) * 0.01f;
    if (a == 0.0f)
        return;
    const int32_t method = choiceIndex(2) == Luminance ? Luminance : Overlay;
    syncBlur();
    FlexImageT<Sample> blurred;
    blurred.copyFrom(*image, true);
    // The mask weighs the result below, not the neighbourhood average.
    ImageModApplyContext blurContext;
    if (context)
        blurContext = *context;
    blurContext.selector = nullptr;
    blur.apply(&blurred, &blurContext);

    const int32_t w = image->width;
    const int32_t ch = image->channels;
    const int32_t cc = image->colorChannels;
    const ImageModSelector* selector = context ? context->selector : nullptr;
    parallelFor(image->height, [&](int32_t y) {
        Sample* row = image->row(y);
        const Sample* avg = blurred.row(y);
        for (int32_t x = 0; x < w; ++x) {
            const float am = selector ? maskRuleB(a, maskAt(selector, image, x, y, context)) : a;
            if (am == 0.0f)
                continue; // the contrast pair at exponent 1 would still round
            Sample* p = row + x * ch;
            const Sample* q = avg + x * ch;
            const float yb = cc < 3 ? float(q[0]) : luminance(float(q[0]), float(q[1]), float(q[2]));
            if (method == Overlay) {
                const float b = ((yb - overlayCenter) * am + overlayCenter) / 255.0f;
                for (int32_t c = 0; c < cc; ++c)
                    p[c] = storeClamped<Sample>(overlayChannel(float(p[c]), b));
                continue;
            }
            // Contrast around the local average, at amount am + 1 (capped short of the pole at 2).
            const float amount = std::min(am + 1.0f, 1.99999f);
            const float e = amount < 1.0f ? amount : 1.0f / (2.0f - amount);
            const float Y = cc < 3 ? float(p[0]) : luminance(float(p[0]), float(p[1]), float(p[2]));
            const float L = powerPair(Y, yb, e);
            for (int32_t c = 0; c < cc; ++c)
                p[c] = storeClamped<Sample>(toLuminance(float(p[c]), Y, L));
        }
    });
}

void ImageModDynamics::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyDepth(image, context);
}

void ImageModDynamics::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyDepth(image, context);
}
