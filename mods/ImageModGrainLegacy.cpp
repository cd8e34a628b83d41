#include "mods/ImageModGrainLegacy.h"

#include "core/ColorMath.h"
#include "core/ParallelFor.h"
#include "mods/FilmNoise.h"
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <cmath>

ImageModGrainLegacy::ImageModGrainLegacy()
    : ImageMod("Grain Legacy", "Grain Legacy")
{
    toolTip = "Apply film grain to the image.";
    ImageModVariable* amount = addFloat("Amount", 25.0f, 0.0f, 100.0f);
    ImageModVariable* scale = addFloat("Scale", 25.0f, 0.0f, 100.0f);
    ImageModVariable* uniformity = addFloat("Uniformity", 50.0f, 0.0f, 100.0f);
    addAnimator(amount, "60 20 60", 2.348f);
    addAnimator(scale, "30 75 30", 3.577f);
    addAnimator(uniformity, "0 100 0", 3.0f);
}

namespace
{

// The older look: grain cells of `cell` document pixels carrying a hashed value, blended between
// lattice points; Uniformity pulls every cell towards the same magnitude. Midtones get the most.
// Amplitude falls with the cell's size on screen when a cell is smaller than a working pixel,
// because a preview pixel averages several cells of the full-size grain.
template <typename Sample>
void applyLegacy(
    const ImageModGrainLegacy& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float amount = mod.floatValue(0) * 0.01f;
    if (amount == 0.0f)
        return;
    const float cellDoc = 0.75f + mod.floatValue(1) * 0.03f; // document pixels per cell
    const float u = std::clamp(mod.floatValue(2) * 0.01f, 0.0f, 1.0f);
    const SpatialFrame frame = spatialFrameOf(*image, context);
    const uint32_t seed = uint32_t(context ? context->frame : 0) * 7919u + 17u;
    const float cellPx = cellDoc / frame.scale;
    const float shrink = cellPx < 1.0f ? cellPx : 1.0f;
    const float strength = amount * amount * 255.0f * 0.6f * shrink;
    const float step = frame.scale / cellDoc; // lattice units per working pixel
    const int32_t w = image->width;
    const int32_t ch = image->channels;
    const int32_t cc = image->colorChannels;
    const ImageModSelector* selector = context ? context->selector : nullptr;
    parallelFor(image->height, [&](int32_t y) {
        Sample* row = image->row(y);
        const float ly = (float(y + frame.bufferY) + 0.5f) * step;
        for (int32_t x = 0; x < w; ++x) {
            Sample* p = row + x * ch;
            const float m = selector ? maskAt(selector, image, x, y, context) : 1.0f;
            float n = valueNoise((float(x + frame.bufferX) + 0.5f) * step, ly, seed);
            // Uniformity: push |n| towards 0.5 while keeping its sign.
            n = n * (1.0f - u) + (n < 0.0f ? -0.5f : 0.5f) * u;
            const float Y = cc < 3 ? float(p[0]) : luminance(float(p[0]), float(p[1]), float(p[2]));
            const float mid = 1.0f - 0.6f * std::fabs(Y / 127.5f - 1.0f);
            const float add = n * strength * mid * m;
            for (int32_t c = 0; c < cc; ++c)
                p[c] = storeClamped<Sample>(float(p[c]) + add);
        }
    });
}

} // namespace

void ImageModGrainLegacy::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyLegacy(*this, image, context);
}

void ImageModGrainLegacy::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyLegacy(*this, image, context);
}
