#include "mods/ImageModDiscolor.h"

#include "core/ImageModVariableDataColor.h"
#include "core/ParallelFor.h"
#include "mods/FilmNoise.h"
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <cmath>

ImageModDiscolor::ImageModDiscolor()
    : ImageMod("Discolor", "Discolor")
{
    toolTip = "Apply uneven discoloration to the image.";
    addFloat("Amount", 1.0f, 0.0f, 1.0f)->data->setDisplayScale(0.0f, 100.0f);
    addFloat("Offset", 0.0f, 0.0f, 100.0f);
    addColor("Color", 210.0f, 160.0f, 110.0f);
    addFloat("Scale", 1.0f, 0.0f, 2.0f);
    addFloat("Stretch", 1.0f, 0.0f, 2.0f);
}

namespace
{

// The colour filter step: a channel of 127.5 in the colour is neutral.
static inline float filterStep(float c, float k, float w)
{
    const float f = k / 127.5f; // by division: the rounded reciprocal would drift at k = 127.5
    return k <= 127.5f ? c + (f - 1.0f) * w * c : c + (f - 1.0f) * w * (255.0f - c);
}

template <typename Sample>
void applyDiscolor(
    const ImageModDiscolor& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float amount = mod.floatValue(0);
    if (amount == 0.0f)
        return;
    const float offset = mod.floatValue(1);
    const ImageModVariableDataColor* color = mod.colorAt(2);
    const float k[3]
        = { color ? color->red : 127.5f, color ? color->green : 127.5f, color ? color->blue : 127.5f };
    const float scale = std::max(mod.floatValue(3), 0.01f);
    const float stretch = std::max(mod.floatValue(4), 0.0f);
    const SpatialFrame frame = spatialFrameOf(*image, context);
    // Noise units per working pixel: one unit is 0.35 of the frame's longer side at Scale 1.
    const float unit = 1.0f / (0.35f * scale * float(std::max(frame.frameWidth, frame.frameHeight)));
    const float ou = offset * 0.013f, ov = offset * 0.007f;
    const int32_t w = image->width;
    const int32_t ch = image->channels;
    const int32_t cc = std::min(image->colorChannels, 3);
    const ImageModSelector* selector = context ? context->selector : nullptr;
    parallelFor(image->height, [&](int32_t y) {
        Sample* row = image->row(y);
        const float v = (float(y + frame.bufferY) + 0.5f) * unit * stretch + ov;
        for (int32_t x = 0; x < w; ++x) {
            Sample* p = row + x * ch;
            const float u = (float(x + frame.bufferX) + 0.5f) * unit + ou;
            // The raw two-octave sum rarely leaves -0.55..0.55; spread it over the ramp.
            const float n = std::clamp(fractalNoise(u, v, 2, 0.5f, 2.0f, 0xd15cu) * 1.8f, -1.0f, 1.0f);
            float q = smoothRamp(n * 0.5f + 0.5f, 2.0f);
            if (selector)
                q *= maskAt(selector, image, x, y, context);
            const float wgt = q * amount;
            for (int32_t c = 0; c < cc; ++c)
                p[c] = storeClamped<Sample>(filterStep(float(p[c]), cc < 3 ? k[1] : k[c], wgt));
        }
    });
}

} // namespace

void ImageModDiscolor::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyDiscolor(*this, image, context);
}

void ImageModDiscolor::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyDiscolor(*this, image, context);
}
