#include "mods/ImageModSharpen.h"

#include "core/ParallelFor.h"
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <thread>
#include <vector>

ImageModSharpen::ImageModSharpen()
    : ImageMod("Sharpen", "Sharpen")
{
    toolTip = "Sharpen the image using the specified amount.";
    version = 2;
    ImageModVariable* amount = addFloat("Amount", 50.0f, 0.0f, 100.0f);
    addAnimator(amount, "0 100 0", 3.0f);
}

int32_t ImageModSharpen::kernelReach(float scale)
{
    if (!(scale > 0.0f) || !std::isfinite(scale))
        scale = 1.0f;
    return std::max(1, int32_t(std::ceil(0.5f / scale)));
}

float ImageModSharpen::kernelTap(float scale, int32_t v)
{
    if (!(scale > 0.0f) || !std::isfinite(scale))
        scale = 1.0f;
    return v < 2 ? -1.0f : -1.0f / scale;
}

int32_t ImageModSharpen::paddingNeeded(int32_t, int32_t, float scale) const
{
    return floatValue(0) == 0.0f ? 0 : kernelReach(scale);
}

namespace
{

template <typename Sample> static inline Sample sharpenSample(float c, float highPass, float amount)
{
    return storeClamped<Sample>(c + highPass * amount);
}

template <typename Sample>
void applySharpen(const ImageModSharpen& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    float a = mod.floatValue(0) * 0.01f;
    if (mod.version > 1)
        a = a * std::sqrt(a);
    if (a == 0.0f || !std::isfinite(a))
        return;
    const SpatialFrame frame = spatialFrameOf(*image, context);
    const int32_t reach = ImageModSharpen::kernelReach(frame.scale);
    const float v = ImageModSharpen::kernelTap(frame.scale, mod.version);
    const int32_t side = 2 * reach + 1;
    const float centre = -v * float(side * side - 1);
    const int32_t w = image->width;
    const int32_t h = image->height;
    const int32_t ch = image->channels;
    const int32_t n = w * ch;
    const ImageModSelector* selector = context ? context->selector : nullptr;

    // Every tap but the centre is v, so H = v * (sum of the square) + (centre - v) * c: the square
    // is summed as columns of padded rows, then across. The image is written in place, so a job
    // keeps its own ring of padded original rows; the few rows it shares with its neighbours are
    // padded before any job writes (a whole padded copy of a 24-megapixel photo was 288 MB).
    const int32_t padW = (w + 2 * reach) * ch;
    const size_t rowLen = size_t(padW);
    const int32_t threads = int32_t(std::max(1u, std::thread::hardware_concurrency()));
    const int32_t jobs = std::clamp(h / std::max(1, 4 * side), 1, 4 * threads);
    auto jobBegin = [&](int32_t j) { return int32_t(int64_t(h) * j / jobs); };
    // Halo of job j: the `reach` rows above its first row, then the `reach` rows below its last.
    std::vector<float> halos(size_t(jobs) * size_t(2 * reach) * rowLen);
    parallelFor(jobs, [&](int32_t j) {
        const int32_t begin = jobBegin(j), end = jobBegin(j + 1);
        float* halo = halos.data() + size_t(j) * size_t(2 * reach) * rowLen;
        for (int32_t i = 0; i < reach; ++i) {
            padRow(image->row(std::max(begin - reach + i, 0)), w, ch, reach, halo + size_t(i) * rowLen);
            padRow(image->row(std::min(end + i, h - 1)), w, ch, reach, halo + size_t(reach + i) * rowLen);
        }
    });
    const float centreExtra = centre - v;
    parallelFor(jobs, [&](int32_t j) {
        const int32_t begin = jobBegin(j), end = jobBegin(j + 1);
        if (begin >= end)
            return;
        const float* halo = halos.data() + size_t(j) * size_t(2 * reach) * rowLen;
        std::vector<float> ring(size_t(side) * rowLen);
        std::vector<float> column(rowLen);
        std::vector<float> acc(static_cast<size_t>(n));
        float* hp = acc.data();
        float* col = column.data();
        // Row u (unclamped) of the original, padded: from the halo outside the job, else from the
        // ring, which is filled from the image before the job writes that row.
        auto slot = [&](int32_t u) { return ring.data() + size_t(((u % side) + side) % side) * rowLen; };
        auto load = [&](int32_t u) {
            const int32_t clamped = std::clamp(u, 0, h - 1);
            if (clamped >= begin && clamped < end)
                padRow(image->row(clamped), w, ch, reach, slot(u));
        };
        auto rowOf = [&](int32_t u) -> const float* {
            const int32_t clamped = std::clamp(u, 0, h - 1);
            if (clamped < begin)
                return halo + size_t(reach - (begin - u)) * rowLen;
            if (clamped >= end)
                return halo + size_t(reach + (u - end)) * rowLen;
            return slot(u);
        };
        for (int32_t u = begin - reach; u < begin + reach; ++u)
            load(u);
        for (int32_t y = begin; y < end; ++y) {
            load(y + reach);
            std::fill(column.begin(), column.end(), 0.0f);
            for (int32_t i = 0; i < side; ++i) {
                const float* src = rowOf(y - reach + i);
                for (int32_t k = 0; k < padW; ++k)
                    col[k] += src[k];
            }
            const float* self = rowOf(y) + reach * ch;
            for (int32_t k = 0; k < n; ++k)
                hp[k] = centreExtra * self[k];
            for (int32_t jj = 0; jj < side; ++jj) {
                const float* src = col + jj * ch;
                for (int32_t k = 0; k < n; ++k)
                    hp[k] += v * src[k];
            }
            Sample* row = image->row(y);
            if (!selector) {
                for (int32_t k = 0; k < n; ++k)
                    row[k] = sharpenSample<Sample>(float(row[k]), hp[k], a);
                continue;
            }
            for (int32_t x = 0; x < w; ++x) {
                const float am = maskRuleB(a, maskAt(selector, image, x, y, context));
                Sample* p = row + x * ch;
                for (int32_t c = 0; c < ch; ++c)
                    p[c] = sharpenSample<Sample>(float(p[c]), hp[x * ch + c], am);
            }
        }
    });
}

} // namespace

void ImageModSharpen::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applySharpen(*this, image, context);
}

void ImageModSharpen::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applySharpen(*this, image, context);
}
