#include "mods/ImageModGrainFast.h"

#include "core/ColorMath.h"
#include "core/ParallelFor.h"
#include "mods/FilmNoise.h"
#include "mods/ImageModBlur.h"
#include "mods/ImageModGrainLegacy.h"
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <array>
#include <cmath>

// Design of the grain tile (the parts a reader cannot guess):
// - Randomness is a hash of (cell, pass), never rand(): the tile is the same on every run and
//   thread, so a preview and the save show the same grain.
// - Two stamping passes over the same grid: the first adds stamps, the second subtracts them, so
//   the grain swings both ways around the original. 15% of the cells stay empty.
// - The disc profile rises as pow(2.78 p, 1.7) near the rim and falls off as 1 - 0.64 pow(., 1.7)
//   towards the core, meeting at p = 0.36.
// - The stamps are clamped to the amplitude (1); the finished tile is shifted to mean 0 and
//   scaled to an RMS of 0.35, so Scale and Uniformity change the grain's look, not its strength.
// - Response tables: version 2 weighs grain by a plain midtone parabola; version 3 lets it peak
//   in the lower midtones and keeps a little in deep shadows and highlights, as film does.

ImageModGrainFast::ImageModGrainFast()
    : ImageMod("Grain", "Grain")
{
    toolTip = "Apply film grain to the image.";
    version = 3;
    ImageModVariable* amount = addFloat("Amount", 25.0f, 0.0f, 100.0f);
    ImageModVariable* scale = addFloat("Scale", 25.0f, 0.0f, 100.0f);
    ImageModVariable* uniformity = addFloat("Uniformity", 50.0f, 0.0f, 100.0f);
    addAnimator(amount, "60 20 60", 2.348f);
    addAnimator(scale, "30 75 30", 3.577f);
    addAnimator(uniformity, "0 100 0", 3.0f);
}

void ImageModGrainFast::copyFrom(const ImageMod& other)
{
    ImageMod::copyFrom(other);
    if (const auto* o = dynamic_cast<const ImageModGrainFast*>(&other)) {
        std::shared_ptr<const GrainTile> shared = o->currentTile();
        std::lock_guard<std::mutex> lock(tileMutex);
        tile = std::move(shared);
    }
}

std::shared_ptr<const GrainTile> ImageModGrainFast::currentTile() const
{
    std::lock_guard<std::mutex> lock(tileMutex);
    return tile;
}

namespace
{

constexpr int32_t kStampCount = 17;
constexpr float kTileRms = 0.35f;
constexpr uint32_t kSkipPerMille = 150;

struct GrainGeometry {
    float s = 1.0f;
    float amount = 0.0f; // a after the scale corrections
    float radius = 0.5f; // floored z
    float tileSide = 0.0f;
    float blurRadius = 0.0f;
};

GrainGeometry grainGeometry(float amountVar, float scaleVar, const SpatialFrame& frame)
{
    GrainGeometry g;
    g.s = frame.scale;
    const float W = float(frame.frameWidth), H = float(frame.frameHeight);
    float a = amountVar * 0.01f;
    a = a * std::sqrt(a);
    const float z = (std::max(W * g.s, H * g.s) * 0.00125f * scaleVar * 0.01f + 0.5f) / g.s;
    if (g.s > 1.0f) {
        float c = 0.5f / (g.s * 1.5f - 0.5f) + 0.5f;
        if (z < 1.0f)
            c *= std::sqrt(z);
        a *= c;
    }
    g.amount = a;
    g.radius = z <= 0.5f ? 0.5f : z;
    g.tileSide = std::max(W, H) * 0.397f;
    if (g.radius > 1.0f) {
        g.blurRadius = (g.radius - 1.0f) * 0.43f + 0.5f;
        if (a < 0.25f)
            g.blurRadius *= a * 4.0f;
    }
    return g;
}

// Disc profile at p = (R0 - d) / R0.
static inline float discProfile(float p)
{
    if (p <= 0.0f)
        return 0.0f;
    if (p >= 1.0f)
        return 1.0f;
    if (p < 0.36f)
        return std::pow(p * 2.7777777f, 1.7f) * 0.36f;
    return 1.0f - 0.64f * std::pow(1.5625f - 1.5625f * p, 1.7f);
}

// Strength of a stamp from a uniform t through (0, 0), (0.125, 0.125), (0.5625 + 0.4375 u,
// 0.5625 - 0.4375 u) and on to (1, 1 - 0.875 u).
static inline float stampWeight(float t, float u)
{
    const float x2 = 0.5625f + 0.4375f * u, y2 = 0.5625f - 0.4375f * u;
    if (t <= 0.125f)
        return t;
    if (t <= x2)
        return 0.125f + (t - 0.125f) * (y2 - 0.125f) / (x2 - 0.125f);
    const float y3 = 1.0f - 0.875f * u;
    return x2 < 1.0f ? y2 + (t - x2) * (y3 - y2) / (1.0f - x2) : y2;
}

static inline int32_t wrapIndex(int32_t i, int32_t n)
{
    const int32_t m = i % n;
    return m < 0 ? m + n : m;
}

// Weight of the grain by the pixel's brightness, 256 entries.
const std::array<float, 256>& responseTable(int32_t version)
{
    static const std::array<float, 256> older = [] {
        std::array<float, 256> t {};
        for (int32_t i = 0; i < 256; ++i) {
            const float m = float(i) / 127.5f - 1.0f;
            t[size_t(i)] = 0.35f + 0.65f * (1.0f - m * m);
        }
        return t;
    }();
    static const std::array<float, 256> film = [] {
        std::array<float, 256> t {};
        for (int32_t i = 0; i < 256; ++i) {
            const float x = std::pow(float(i) / 255.0f, 0.8f);
            t[size_t(i)] = 0.2f + 0.8f * std::pow(4.0f * x * (1.0f - x), 0.75f);
        }
        return t;
    }();
    return version < 3 ? older : film;
}

} // namespace

std::shared_ptr<const GrainTile> ImageModGrainFast::buildTile(float r, float amplitude, float side, float u)
{
    auto t = std::make_shared<GrainTile>();
    t->radius = r;
    t->amplitude = amplitude;
    t->requestedSide = side;
    t->uniformity = u;
    const int32_t n = std::max(16, int32_t(side - std::fmod(side, r)));
    t->size = n;
    t->values.assign(size_t(n) * size_t(n), 0.0f);
    const int32_t cells = std::max(1, int32_t(float(n) / r + 0.5f));
    const float step = float(n) / float(cells);
    const int32_t cr = int32_t(std::ceil(r));
    const int32_t stampSide = 2 * cr + 1;

    // Stamps: two displaced soft discs each, shrinking a little with the stamp's index.
    std::vector<float> stamps(size_t(kStampCount) * size_t(stampSide * stampSide), 0.0f);
    for (int32_t k = 0; k < kStampCount; ++k) {
        float r0 = (r + 0.5f) * 0.7f;
        r0 -= float(k) * 0.0625f * r0 * 0.3f;
        const float room = r + 0.5f - r0;
        float* st = stamps.data() + size_t(k) * size_t(stampSide * stampSide);
        for (int32_t disc = 0; disc < 2; ++disc) {
            float ox = 0.0f, oy = 0.0f;
            if (r0 < r + 0.5f) {
                ox = float(mixHash(uint32_t(k), uint32_t(disc), 11u) % 10000u) * room * 0.0002f - room;
                oy = float(mixHash(uint32_t(k), uint32_t(disc), 12u) % 10000u) * room * 0.0002f - room;
            }
            for (int32_t sy = 0; sy < stampSide; ++sy)
                for (int32_t sx = 0; sx < stampSide; ++sx) {
                    const float dx = float(sx - cr) - ox, dy = float(sy - cr) - oy;
                    const float d = std::sqrt(dx * dx + dy * dy);
                    st[sy * stampSide + sx] += discProfile((r0 - d) / r0);
                }
        }
        for (int32_t i = 0; i < stampSide * stampSide; ++i)
            st[i] = std::clamp(st[i], 0.0f, amplitude);
    }

    // Stamping by bands of grid rows: bands two apart never reach the same tile rows, so the even
    // bands run together, then the odd ones.
    float* tileData = t->values.data();
    auto stampBand = [&](int32_t rowBegin, int32_t rowEnd) {
        for (int32_t pass = 0; pass < 2; ++pass) {
            const float sign = pass == 0 ? 1.0f : -1.0f;
            for (int32_t j = rowBegin; j < rowEnd; ++j)
                for (int32_t i = 0; i < cells; ++i) {
                    uint32_t h = mixHash(uint32_t(i), uint32_t(j), uint32_t(pass) + 101u);
                    if (h % 1000u < kSkipPerMille)
                        continue;
                    h = mixHash(h);
                    const float jx = (unitFloat(h) - 0.5f) * step;
                    h = mixHash(h);
                    const float jy = (unitFloat(h) - 0.5f) * step;
                    h = mixHash(h);
                    const float* st
                        = stamps.data() + size_t(h % uint32_t(kStampCount)) * size_t(stampSide * stampSide);
                    h = mixHash(h);
                    const float strength = sign * stampWeight(unitFloat(h), u);
                    const int32_t left = int32_t(std::lround((float(i) + 0.5f) * step + jx)) - cr;
                    const int32_t top = int32_t(std::lround((float(j) + 0.5f) * step + jy)) - cr;
                    for (int32_t sy = 0; sy < stampSide; ++sy) {
                        float* trow = tileData + size_t(wrapIndex(top + sy, n)) * size_t(n);
                        const float* srow = st + sy * stampSide;
                        for (int32_t sx = 0; sx < stampSide; ++sx)
                            trow[wrapIndex(left + sx, n)] += strength * srow[sx];
                    }
                }
        }
    };
    const int32_t rowsPerBand = int32_t(std::ceil(float(2 * cr + 2) / step)) + 2;
    int32_t bands = cells / rowsPerBand;
    if (bands % 2 == 1)
        --bands;
    if (bands < 2) {
        stampBand(0, cells);
    } else {
        for (int32_t phase = 0; phase < 2; ++phase)
            parallelFor(bands / 2, [&](int32_t b) {
                const int32_t band = 2 * b + phase;
                stampBand(band * cells / bands, (band + 1) * cells / bands);
            });
    }

    double sum = 0.0, sum2 = 0.0;
    for (float v : t->values) {
        sum += v;
        sum2 += double(v) * v;
    }
    const double count = double(t->values.size());
    const double mean = sum / count;
    const double var = sum2 / count - mean * mean;
    const float gain = var > 0.0 ? float(double(kTileRms * amplitude) / std::sqrt(var)) : 0.0f;
    for (float& v : t->values)
        v = (v - float(mean)) * gain;
    return t;
}

std::shared_ptr<const GrainTile> ImageModGrainFast::tileFor(float r, float amplitude, float side, float u)
{
    {
        std::lock_guard<std::mutex> lock(tileMutex);
        if (tile && tile->matches(r, amplitude, side, u))
            return tile;
    }
    // Built outside the lock: the build runs its own parallel loop, and a pool thread waiting in
    // it could otherwise pick up another apply of this mod that blocks on the same lock.
    std::shared_ptr<const GrainTile> built = buildTile(r, amplitude, side, u);
    std::lock_guard<std::mutex> lock(tileMutex);
    tile = built;
    return built;
}

int32_t ImageModGrainFast::paddingNeeded(int32_t width, int32_t height, float scale) const
{
    if (version == 1 || floatValue(0) == 0.0f)
        return 0;
    SpatialFrame f;
    f.scale = scale > 0.0f ? scale : 1.0f;
    f.frameWidth = width;
    f.frameHeight = height;
    const GrainGeometry g = grainGeometry(floatValue(0), floatValue(1), f);
    return g.blurRadius > 0.0f ? int32_t(std::ceil(g.blurRadius)) : 0;
}

template <typename Sample>
void ImageModGrainFast::applyDepth(FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    if (version == 1) {
        ImageModGrainLegacy legacy;
        for (int32_t i = 0; i < 3; ++i)
            legacy.variableAt(i)->setFloatValue(floatValue(i));
        legacy.apply(image, context);
        return;
    }
    const int32_t pass = context ? context->pass : -1;
    const float amountVar = floatValue(0);
    const SpatialFrame frame = spatialFrameOf(*image, context);
    const GrainGeometry g = grainGeometry(amountVar, floatValue(1), frame);
    const float u = 1.0f - floatValue(2) * 0.01f;
    if (!std::isfinite(g.radius) || !(g.tileSide >= 1.0f))
        return;
    if (pass == 0) {
        tileFor(g.radius, 1.0f, g.tileSide, u);
        return;
    }
    if (g.amount == 0.0f || !std::isfinite(g.amount))
        return;
    const std::shared_ptr<const GrainTile> grain = tileFor(g.radius, 1.0f, g.tileSide, u);
    const int32_t n = grain->size;
    const float* tileData = grain->values.data();

    // A video frame shifts the pattern; a panned view keeps it anchored to the frame.
    const int32_t frameNumber = context ? context->frame : 0;
    const float W = float(std::max(frame.frameWidth, 1)), H = float(std::max(frame.frameHeight, 1));
    const int32_t x0 = int32_t(std::fmod(float(frameNumber) * 0.679f * W, W)) + frame.bufferX;
    const int32_t y0 = int32_t(std::fmod(float(frameNumber) * 0.433f * H, H)) + frame.bufferY;

    const ImageModSelector* selector = context ? context->selector : nullptr;
    FlexImageT<Sample> work;
    FlexImageT<Sample>* target = image;
    if (selector) {
        work.copyFrom(*image, true);
        target = &work;
    }
    const std::array<float, 256>& response = responseTable(version);
    const float gain = g.amount * 255.0f;
    const int32_t w = target->width;
    const int32_t ch = target->channels;
    const int32_t cc = target->colorChannels;
    parallelFor(target->height, [&](int32_t y) {
        Sample* row = target->row(y);
        const float* trow = tileData + size_t(wrapIndex(y + y0, n)) * size_t(n);
        int32_t tx = wrapIndex(x0, n);
        for (int32_t x = 0; x < w; ++x) {
            Sample* p = row + x * ch;
            const float Y = cc < 3 ? float(p[0]) : luminance(float(p[0]), float(p[1]), float(p[2]));
            const float t = response[size_t(std::clamp(int32_t(Y), 0, 255))];
            const float add = trow[tx] * t * gain;
            for (int32_t c = 0; c < cc; ++c)
                p[c] = storeClamped<Sample>(float(p[c]) + add);
            if (++tx == n)
                tx = 0;
        }
    });
    if (g.blurRadius > 0.0f)
        ImageModBlur::blurWithRadius(target, g.blurRadius, ImageModBlur::Box, 1.0f, nullptr);
    if (!selector)
        return;
    const int32_t ich = image->channels;
    parallelFor(image->height, [&](int32_t y) {
        Sample* row = image->row(y);
        const Sample* grained = work.row(y);
        for (int32_t x = 0; x < image->width; ++x) {
            const float q = maskAt(selector, image, x, y, context);
            Sample* p = row + x * ich;
            for (int32_t c = 0; c < ich; ++c)
                p[c] = storeClamped<Sample>(float(p[c]) * (1.0f - q) + float(grained[x * ich + c]) * q);
        }
    });
}

void ImageModGrainFast::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyDepth(image, context);
}

void ImageModGrainFast::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyDepth(image, context);
}
