#pragma once
#include "tests/core/TestSelectors.h"
#include "core/FlexImage.h"
#include "core/ImageMod.h"
#include "core/ImageModApplyContext.h"
#include "core/ImageModSelector.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ParallelFor.h"

#include <cmath>
#include <cstdint>
#include <memory>

namespace spatialtest
{

// Shared fixtures of the spatial and film tests.

// A photo-like test picture at any size, the same scene at every size: soft gradients, a few
// hard-edged shapes and some texture, all placed in frame-relative coordinates.
template <typename Sample>
void paintScene(FlexImageT<Sample>& img, int32_t w, int32_t h, int32_t channels = 3)
{
    img.resize(w, h, channels);
    for (int32_t y = 0; y < h; ++y) {
        for (int32_t x = 0; x < w; ++x) {
            const float u = (float(x) + 0.5f) / float(w);
            const float v = (float(y) + 0.5f) / float(h);
            float r = 60.0f + 120.0f * u + 30.0f * std::sin(6.0f * v);
            float g = 90.0f + 80.0f * v + 25.0f * std::cos(5.0f * u + 2.0f * v);
            float b = 150.0f - 90.0f * u * v + 20.0f * std::sin(9.0f * u);
            const float dx = u - 0.35f, dy = v - 0.45f;
            if (dx * dx * 2.25f + dy * dy < 0.04f) {
                r = 230.0f;
                g = 200.0f;
                b = 40.0f;
            }
            if (u > 0.6f && u < 0.8f && v > 0.2f && v < 0.7f) {
                r *= 0.3f;
                g *= 0.4f;
                b = 220.0f;
            }
            Sample* p = img.row(y) + x * channels;
            const float c[3] = { r, g, b };
            for (int32_t k = 0; k < channels && k < 3; ++k)
                p[k] = Sample(std::fmin(std::fmax(c[k], 0.0f), 255.0f));
            if (channels == 4)
                p[3] = Sample(255);
        }
    }
}

// Box average by an integer factor.
template <typename Sample>
void boxDown(const FlexImageT<Sample>& src, FlexImageT<Sample>& dst, int32_t factor)
{
    const int32_t w = src.width / factor, h = src.height / factor, ch = src.channels;
    dst.resize(w, h, ch);
    parallelFor(h, [&](int32_t y) {
        for (int32_t x = 0; x < w; ++x)
            for (int32_t c = 0; c < ch; ++c) {
                float s = 0.0f;
                for (int32_t j = 0; j < factor; ++j)
                    for (int32_t i = 0; i < factor; ++i)
                        s += float(src.row(y * factor + j)[(x * factor + i) * ch + c]);
                dst.row(y)[x * ch + c]
                    = Sample(s / float(factor * factor) + (sizeof(Sample) == 1 ? 0.5f : 0.0f));
            }
    });
}

template <typename Sample> double psnr(const FlexImageT<Sample>& a, const FlexImageT<Sample>& b)
{
    double se = 0.0;
    const int64_t n = a.sampleCount();
    for (int64_t i = 0; i < n; ++i) {
        const double d = double(a.data[i]) - double(b.data[i]);
        se += d * d;
    }
    const double mse = se / double(n);
    return mse <= 0.0 ? 200.0 : 10.0 * std::log10(255.0 * 255.0 / mse);
}

// A frame covering a whole working image of w by h at the given scale.
inline ReferenceFrame wholeFrame(int32_t w, int32_t h, float scale)
{
    ReferenceFrame f;
    f.imageWidth = w;
    f.imageHeight = h;
    f.scale = scale;
    return f;
}

template <typename Sample> bool samePixels(const FlexImageT<Sample>& a, const FlexImageT<Sample>& b)
{
    if (a.width != b.width || a.height != b.height || a.channels != b.channels)
        return false;
    for (int64_t i = 0; i < a.sampleCount(); ++i)
        if (!(a.data[i] == b.data[i]))
            return false;
    return true;
}

template <typename Sample> bool allFinite(const FlexImageT<Sample>& a)
{
    for (int64_t i = 0; i < a.sampleCount(); ++i)
        if (!std::isfinite(float(a.data[i])))
            return false;
    return true;
}

inline void setFloat(ImageMod& mod, int32_t index, float v)
{
    mod.variableAt(index)->setFloatValue(v);
}

inline void setChoice(ImageMod& mod, int32_t index, int32_t choice)
{
    mod.variableAt(index)->asChoice()->index = choice;
}

// The scene at full size and boxed down to a quarter, painted once per depth.
template <typename Sample> const FlexImageT<Sample>& sceneAt(int32_t divisor)
{
    static FlexImageT<Sample> full, quarter;
    if (full.isEmpty()) {
        paintScene(full, 2400, 1600);
        boxDown(full, quarter, 4);
        quarter.scale = 4.0f;
    }
    return divisor == 1 ? full : quarter;
}

// Renders `mod` on the 2400 x 1600 scene at full size (no frame), boxed down to a quarter into
// `fullDown`, and on the quarter-size copy with a whole-image frame of scale 4 (document pixels per
// working pixel, as the driver fills it) into `preview`.
template <typename Sample>
void renderFullAndPreview(ImageMod& mod, int32_t pass, FlexImageT<Sample>& fullDown, FlexImageT<Sample>& preview)
{
    FlexImageT<Sample> full;
    full.copyFrom(sceneAt<Sample>(1), true);
    preview.copyFrom(sceneAt<Sample>(4), true);
    mod.apply(&full, nullptr);
    ReferenceFrame frame = wholeFrame(preview.width, preview.height, 4.0f);
    ImageModApplyContext ctx;
    ctx.referenceFrame = &frame;
    ctx.pass = pass;
    mod.apply(&preview, &ctx);
    boxDown(full, fullDown, 4);
}

// PSNR of the boxed-down full render against the preview.
template <typename Sample> double previewAgreement(ImageMod& mod)
{
    FlexImageT<Sample> fullDown, preview;
    renderFullAndPreview(mod, -1, fullDown, preview);
    return psnr(fullDown, preview);
}

} // namespace spatialtest
