#include "mods/ImageModNoise.h"

#include "core/ColorMath.h"
#include "core/ParallelFor.h"
#include "mods/FilmNoise.h"
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <cmath>

ImageModNoise::ImageModNoise()
    : ImageMod("Noise", "Grain")
{
    toolTip = "Apply film grain.";
    addFloat("Amount", 25.0f, 0.0f, 100.0f);
    addFloat("Scale", 20.0f, 0.0f, 100.0f);
    addFloat("Offset", 0.0f, 0.0f, 100.0f);
}

float ImageModNoise::cellSize(float scale, int32_t v)
{
    const float k = scale * 0.006f + 0.4f;
    if (v == 2)
        return std::pow(k, 2.6f) * 8.0f + 0.5f;
    // A frequency in cycles per document pixel; at Scale 100 it reaches 0, so cells are capped.
    const float frequency = std::pow(std::max(1.0f / k - 1.0f, 0.0f), 2.6f);
    return std::min(1.0f / std::max(frequency, 1.0f / 64.0f), 64.0f);
}

namespace
{

// The gamma step of the legacy exposure tile, float path.
static inline float gammaStep(float c, float a)
{
    if (a < 1.0f) {
        c = c >= 254.95f ? 254.95f : c;
        return std::pow(c / 255.0f, 1.0f / a) * 255.0f;
    }
    if (a > 1.0f) {
        c = c <= 0.05f ? 0.05f : c;
        return 255.0f - std::pow(1.0f - c / 255.0f, 1.0f / (2.0f - a)) * 255.0f;
    }
    return c;
}

template <typename Sample>
void applyNoise(const ImageModNoise& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float amount = mod.floatValue(0) * 0.01f;
    if (amount == 0.0f)
        return;
    const int32_t branch = std::max(1, std::min(mod.version, 3));
    const SpatialFrame frame = spatialFrameOf(*image, context);
    const float cell = ImageModNoise::cellSize(mod.floatValue(1), branch);
    const float cellPx = cell / frame.scale;
    // A working pixel larger than a cell averages several cells of the full-size noise.
    const float shrink = cellPx < 1.0f ? cellPx : 1.0f;
    const float step = frame.scale / cell; // lattice units per working pixel
    const float offset = mod.floatValue(2);
    const float shift = float(context ? context->frame : 0) * 50.0f + offset * 13.7f;
    const float strength = amount * amount * 255.0f * shrink;
    const int32_t w = image->width;
    const int32_t ch = image->channels;
    const int32_t cc = image->colorChannels;
    const ImageModSelector* selector = context ? context->selector : nullptr;
    parallelFor(image->height, [&](int32_t y) {
        Sample* row = image->row(y);
        const float ly = ((float(y + frame.bufferY) + 0.5f) * frame.scale + offset * 7.3f) / cell;
        for (int32_t x = 0; x < w; ++x) {
            Sample* p = row + x * ch;
            const float m = selector ? maskAt(selector, image, x, y, context) : 1.0f;
            const float lx = (float(x + frame.bufferX) + 0.5f) * step + shift / cell;
            const float v = valueNoise(lx, ly, 0x5eedu) * m;
            const float Y = cc < 3 ? float(p[0]) : luminance(float(p[0]), float(p[1]), float(p[2]));
            const float dist = std::fabs(Y / 127.5f - 1.0f);
            if (branch == 3) {
                const float yn = Y / 255.0f;
                const float a = 1.0f + v * amount * shrink * (yn * yn * 0.7f + 0.3f);
                for (int32_t c = 0; c < cc; ++c)
                    p[c] = storeClamped<Sample>(gammaStep(float(p[c]), a));
                continue;
            }
            const float weight
                = branch == 1 ? std::pow(std::max(1.0f - dist, 0.0f), 0.34f) : 1.0f - 0.7f * dist;
            const float add = v * strength * weight;
            for (int32_t c = 0; c < cc; ++c)
                p[c] = storeClamped<Sample>(float(p[c]) + add);
        }
    });
}

} // namespace

void ImageModNoise::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyNoise(*this, image, context);
}

void ImageModNoise::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyNoise(*this, image, context);
}
