#include "mods/ImageModSharpen.h"

#include "core/ParallelFor.h"
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <cmath>
#include <memory>
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
    // is summed as columns of padded rows, then across. Padded rows are made once per pass.
    const int32_t padW = (w + 2 * reach) * ch;
    // Not zero-filled first: every sample is written by the padding pass, in parallel.
    const std::unique_ptr<float[]> paddedRows(new float[size_t(padW) * size_t(h)]);
    float* const padded = paddedRows.get();
    parallelForRanges(h, [&](int32_t begin, int32_t end) {
        for (int32_t y = begin; y < end; ++y)
            padRow(image->row(y), w, ch, reach, padded + size_t(y) * size_t(padW));
    });
    const float centreExtra = centre - v;
    parallelForRanges(h, [&](int32_t begin, int32_t end) {
        std::vector<float> column(static_cast<size_t>(padW));
        std::vector<float> acc(static_cast<size_t>(n));
        float* hp = acc.data();
        float* col = column.data();
        for (int32_t y = begin; y < end; ++y) {
            std::fill(column.begin(), column.end(), 0.0f);
            for (int32_t i = 0; i < side; ++i) {
                const float* src = padded + size_t(std::clamp(y - reach + i, 0, h - 1)) * size_t(padW);
                for (int32_t k = 0; k < padW; ++k)
                    col[k] += src[k];
            }
            const float* self = padded + size_t(y) * size_t(padW) + reach * ch;
            for (int32_t k = 0; k < n; ++k)
                hp[k] = centreExtra * self[k];
            for (int32_t j = 0; j < side; ++j) {
                const float* src = col + j * ch;
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
