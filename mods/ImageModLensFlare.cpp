#include "mods/ImageModLensFlare.h"

#include "core/ColorMath.h"
#include "core/ParallelFor.h"
#include "mods/FilmNoise.h"
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <cmath>

ImageModLensFlare::ImageModLensFlare()
    : ImageMod("Lens Flare", "Lens Flare")
{
    toolTip = "Draw an adjustable lens flare on the image, as appears when a camera is pointed at a bright "
              "point of "
              "light.";
    ImageModVariable* amount = addFloat("Amount", 0.5f, 0.0f, 1.0f);
    amount->data->setDisplayScale(0.0f, 100.0f);
    addPixel("Handle");
    ImageModVariable* variation = addFloat(kVariationVariableName, -2444.999f, -5000.0f, 5000.0f);
    variation->visible = false;
    addAnimator(variation, "-2444.999 -2440.0", 7.5f);
    addAnimator(amount, ".50 .25 .50", 1.3f);
}

const FlexImageFloat& ImageModLensFlare::sprite()
{
    // Rays from the angle round the centre (acos of the unit x), a few long ones and many faint
    // short ones, over a soft core. Thread-safe one-time construction.
    struct Holder {
        FlexImageFloat s { spriteSize, spriteSize, 1 };
        Holder()
        {
            const float half = float(spriteSize) * 0.5f;
            for (int32_t y = 0; y < spriteSize; ++y)
                for (int32_t x = 0; x < spriteSize; ++x) {
                    const float dx = (float(x) + 0.5f - half) / half, dy = (float(y) + 0.5f - half) / half;
                    const float d = std::sqrt(dx * dx + dy * dy);
                    float angle = d > 0.0f ? std::acos(std::clamp(dx / d, -1.0f, 1.0f)) : 0.0f;
                    if (dy < 0.0f)
                        angle = 6.2831853f - angle;
                    const float longRays = std::pow(std::fabs(std::cos(angle * 3.0f + 0.3f)), 80.0f);
                    const float shortRays = 0.35f * std::pow(std::fabs(std::cos(angle * 17.0f)), 30.0f)
                        * (0.5f + 0.5f * unitFloat(flareHash(uint32_t(angle * 40.0f))));
                    const float fade = std::max(0.0f, 1.0f - d);
                    const float rays = (longRays * fade * fade + shortRays * fade * fade * fade);
                    const float core = std::exp(-d * d * 60.0f);
                    s.data[y * spriteSize + x] = std::min(1.0f, rays + core);
                }
        }
    };
    static const Holder holder;
    return holder.s;
}

namespace
{

struct Ghost {
    float x = 0.0f, y = 0.0f; // buffer pixels
    float radius = 1.0f;
    float ring = 0.0f; // 0 a soft disc, 1 a ring
    float rgb[3] = { 0.0f, 0.0f, 0.0f };
};

struct FlareSetup {
    float sx = 0.0f, sy = 0.0f; // source, buffer pixels
    float unit = 1.0f; // the frame's half-diagonal
    float glowRadius = 1.0f;
    float spriteRadius = 1.0f;
    Ghost ghosts[ImageModLensFlare::ghostCount];
};

// Smooth noise in Variation for ghost i and parameter k: 0..1, hashed anchors every 50 units.
static inline float ghostParam(float variation, int32_t i, int32_t k)
{
    const float t = variation / 50.0f;
    const float f = std::floor(t);
    float u = t - f;
    u = u * u * (3.0f - 2.0f * u);
    const uint32_t base = uint32_t(int32_t(f)) * 131u + uint32_t(i) * 17u + uint32_t(k) * 7919u;
    const float a = float(flareHash(base)) * 4.656613e-10f;
    const float b = float(flareHash(base + 131u)) * 4.656613e-10f;
    return a + (b - a) * u;
}

FlareSetup flareSetup(const ImageModLensFlare& mod, const SpatialFrame& frame)
{
    FlareSetup s;
    s.unit = std::max(frame.halfDiagonal(), 1.0f);
    s.sx = frame.cx - 0.22f * frame.contentWidth;
    s.sy = frame.cy - 0.2f * frame.contentHeight;
    if (const ImageModVariableDataPixel* handle = mod.pixelAt(1)) {
        if (!handle->points.empty() && !ImageModVariableDataPixel::isUnset(handle->points[0])) {
            s.sx = frame.toBufferX(handle->points[0].x);
            s.sy = frame.toBufferY(handle->points[0].y);
        }
    }
    s.glowRadius = 0.05f * s.unit;
    s.spriteRadius = 0.45f * s.unit;
    const float variation = mod.floatValue(2);
    const float ax = frame.cx - s.sx, ay = frame.cy - s.sy;
    for (int32_t i = 0; i < ImageModLensFlare::ghostCount; ++i) {
        Ghost& g = s.ghosts[i];
        // Spread along the axis from just past the source to well beyond the centre.
        const float t
            = 0.35f + 1.9f * (float(i) + ghostParam(variation, i, 0)) / float(ImageModLensFlare::ghostCount);
        g.x = s.sx + ax * t;
        g.y = s.sy + ay * t;
        g.radius = s.unit * (0.025f + 0.11f * ghostParam(variation, i, 1) * ghostParam(variation, i, 1));
        g.ring = ghostParam(variation, i, 2) > 0.7f ? 1.0f : 0.0f;
        const float hue = std::fmod(
            240.0f + 180.0f * ghostParam(variation, i, 3) * 0.9f + float(i) * 0.1f * 180.0f, 360.0f);
        const float strength = 0.25f + 0.45f * ghostParam(variation, i, 4);
        float r, gg, b;
        hsvToRgb(hue, 0.55f, 1.0f, r, gg, b);
        // Small ghosts are brighter, large ones fainter, as the light spreads.
        const float spread = 0.04f / (0.025f + g.radius / s.unit);
        g.rgb[0] = r * strength * spread;
        g.rgb[1] = gg * strength * spread;
        g.rgb[2] = b * strength * spread;
    }
    return s;
}

static inline float spriteAt(const FlexImageFloat& sp, float u, float v)
{
    // u, v in -1..1 over the sprite; bilinear, 0 outside.
    const float half = float(ImageModLensFlare::spriteSize) * 0.5f;
    const float fx = u * half + half - 0.5f, fy = v * half + half - 0.5f;
    if (!(fx >= 0.0f && fy >= 0.0f && fx < float(sp.width - 1) && fy < float(sp.height - 1)))
        return 0.0f;
    const int32_t ix = int32_t(fx), iy = int32_t(fy);
    const float tx = fx - float(ix), ty = fy - float(iy);
    const float* r0 = sp.data + iy * sp.width + ix;
    const float* r1 = r0 + sp.width;
    const float top = r0[0] + (r0[1] - r0[0]) * tx;
    const float bottom = r1[0] + (r1[1] - r1[0]) * tx;
    return top + (bottom - top) * ty;
}

// Light falling on one pixel, 0..255 per channel before the Amount.
static inline void flareLight(const FlareSetup& s, const FlexImageFloat& sp, float x, float y, float light[3])
{
    const float dx = x - s.sx, dy = y - s.sy;
    const float d2 = dx * dx + dy * dy;
    const float glow = 1.0f / (1.0f + d2 / (s.glowRadius * s.glowRadius));
    const float star = spriteAt(sp, dx / s.spriteRadius, dy / s.spriteRadius);
    const float source = std::min(1.0f, glow * 0.9f + star * 0.8f);
    // Warm white at the source.
    light[0] = 255.0f * source;
    light[1] = 240.0f * source;
    light[2] = 215.0f * source;
    for (const Ghost& g : s.ghosts) {
        const float gx = x - g.x, gy = y - g.y;
        const float d = std::sqrt(gx * gx + gy * gy) / g.radius;
        if (d >= 1.0f)
            continue;
        float shape = smoothRamp((1.0f - d) * 3.0f, 2.0f); // soft edge over the outer third
        if (g.ring > 0.0f)
            shape *= 0.25f + 0.75f * smoothRamp((d - 0.55f) * 3.0f, 2.0f);
        light[0] += g.rgb[0] * shape;
        light[1] += g.rgb[1] * shape;
        light[2] += g.rgb[2] * shape;
    }
}

template <typename Sample>
void applyFlare(const ImageModLensFlare& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float amount = mod.floatValue(0);
    if (amount == 0.0f)
        return;
    const SpatialFrame frame = spatialFrameOf(*image, context);
    const FlareSetup setup = flareSetup(mod, frame);
    const FlexImageFloat& sp = ImageModLensFlare::sprite();
    const int32_t w = image->width;
    const int32_t ch = image->channels;
    const int32_t cc = std::min(image->colorChannels, 3);
    const ImageModSelector* selector = context ? context->selector : nullptr;
    parallelFor(image->height, [&](int32_t y) {
        Sample* row = image->row(y);
        for (int32_t x = 0; x < w; ++x) {
            Sample* p = row + x * ch;
            const float a = selector ? maskRuleB(amount, maskAt(selector, image, x, y, context)) : amount;
            if (a == 0.0f)
                continue;
            float light[3];
            flareLight(setup, sp, float(x) + 0.5f, float(y) + 0.5f, light);
            for (int32_t c = 0; c < cc; ++c) {
                // Screen blend: light adds towards white and never darkens.
                const float l = std::min(light[cc < 3 ? 1 : c] * a, 255.0f) / 255.0f;
                p[c] = storeClamped<Sample>(255.0f - (255.0f - float(p[c])) * (1.0f - l));
            }
        }
    });
}

} // namespace

void ImageModLensFlare::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyFlare(*this, image, context);
}

void ImageModLensFlare::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyFlare(*this, image, context);
}
