#include "mods/ImageModVignette.h"

#include "core/ParallelFor.h"
#include "mods/SpatialSupport.h"

#include <cmath>

ImageModVignette::ImageModVignette()
    : ImageMod("Vignette", "Vignette")
{
    toolTip
        = "Simulate vignetting around the corners of the image. Falloff and Radius affect the intensity and "
          "size of the effect.";
    ImageModVariable* amount = addFloat("Amount", 1.0f, -1.0f, 1.0f);
    amount->data->setDisplayScale(-100.0f, 100.0f);
    ImageModVariable* sharpness = addFloat("Sharpness", 50.0f, 0.0f, 100.0f, "Falloff");
    ImageModVariable* radius = addFloat("Radius", 1.0f, 0.0f, 2.0f);
    addPixel("Center");
    addAnimator(amount, ".5 1 .5", 2.348f);
    addAnimator(sharpness, "30 70 30", 1.961f);
    addAnimator(radius, ".75 1.2 .75", 2.844f);
}

float ImageModVignette::rampExponent(float sharpness)
{
    const float e = float(std::pow(1.0 - double(sharpness) * 0.01, 1.68));
    return 1.0f / e;
}

namespace
{

// Darkening at distance f of the outer radius (0 at the centre, ramping up outwards).
static inline float vignetteWeight(float f, float p)
{
    if (f <= 0.0f)
        return 0.0f;
    const float g = smoothRamp(f * 1.05f, p);
    return g < 1.0f ? g : 1.0f;
}

template <typename Sample>
void applyVignette(
    const ImageModVignette& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float amount = mod.floatValue(0);
    if (amount == 0.0f)
        return;
    const float p = ImageModVignette::rampExponent(mod.floatValue(1));
    const float r2 = mod.floatValue(2) * 2.0f;
    SpatialFrame frame = spatialFrameOf(*image, context);
    applyCenterPoint(frame, mod.pixelAt(3));
    const float outer = frame.halfDiagonal() * r2;
    // A zero radius darkens everything at full strength.
    const float invOuter = outer > 0.0f ? 1.0f / outer : INFINITY;
    const int32_t w = image->width;
    const int32_t ch = image->channels;
    const int32_t cc = image->colorChannels;
    const ImageModSelector* selector = context ? context->selector : nullptr;
    parallelFor(image->height, [&](int32_t y) {
        Sample* p0 = image->row(y);
        const float dy = float(y) - frame.cy;
        for (int32_t x = 0; x < w; ++x) {
            Sample* px = p0 + x * ch;
            const float dx = float(x) - frame.cx;
            const float dist = std::sqrt(dx * dx + dy * dy);
            const float f = dist == 0.0f ? 0.0f : dist * invOuter;
            const float a = selector ? maskRuleB(amount, maskAt(selector, image, x, y, context)) : amount;
            const float darken = a * 255.0f * vignetteWeight(f, p);
            for (int32_t c = 0; c < cc; ++c)
                px[c] = storeClamped<Sample>(float(px[c]) - darken);
        }
    });
}

} // namespace

void ImageModVignette::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyVignette(*this, image, context);
}

void ImageModVignette::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyVignette(*this, image, context);
}
