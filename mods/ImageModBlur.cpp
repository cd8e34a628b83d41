#include "mods/ImageModBlur.h"

#include "core/ParallelFor.h"
#include "mods/SpatialKernels.h"
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <cstring>
#include <vector>

ImageModBlur::ImageModBlur()
    : ImageMod("Blur", "Blur")
{
    toolTip = "Blur the image using the selected blurring method.";
    ImageModVariable* amount = addFloat("Amount", 0.0f, 0.0f, 100.0f);
    ImageModVariable* mix = addFloat("Mix", 100.0f, 0.0f, 100.0f);
    addChoice("Blur Method", { "Gaussian", "Box", "Circle" }, 0);
    addAnimator(amount, "65 20 65", 3.0f);
    addAnimator(mix, "100 50 100", 2.571f);
}

float ImageModBlur::radiusFor(float amount, int32_t method, int32_t w, int32_t h)
{
    const float a = amount * 0.01f;
    const float t = method == Gaussian ? 0.03f : 0.02f;
    return a * a * t * float(std::max(w, h)) + 1.0f;
}

int32_t ImageModBlur::paddingNeeded(int32_t width, int32_t height, float) const
{
    const float amount = floatValue(0);
    if (amount == 0.0f)
        return 0;
    return blurReach(radiusFor(amount, choiceIndex(2), width, height));
}

namespace
{

// Final store of every blur: mix with the original, then the mask merge over the original.
template <typename Sample>
static inline Sample blendStore(float original, float blurred, float mix, float mask)
{
    const float mixed = clamp255(original * (1.0f - mix) + clamp255(blurred) * mix);
    return storeClamped<Sample>(original * (1.0f - mask) + mixed * mask);
}

// Writes one blurred row (accumulated in `acc`, all channels interleaved) into row y of the image,
// which still holds the original there.
template <typename Sample>
void storeBlurredRow(
    FlexImageT<Sample>* image, int32_t y, const float* acc, float mix, const ImageModApplyContext* context)
{
    Sample* row = image->row(y);
    const int32_t ch = image->channels;
    const int32_t w = image->width;
    const ImageModSelector* selector = context ? context->selector : nullptr;
    if (!selector) {
        const int32_t n = w * ch;
        if (mix >= 1.0f) {
            for (int32_t k = 0; k < n; ++k)
                row[k] = storeClamped<Sample>(acc[k]);
        } else {
            for (int32_t k = 0; k < n; ++k)
                row[k] = blendStore<Sample>(float(row[k]), acc[k], mix, 1.0f);
        }
        return;
    }
    for (int32_t x = 0; x < w; ++x) {
        const float q = maskAt(selector, image, x, y, context);
        Sample* p = row + x * ch;
        const float* a = acc + x * ch;
        for (int32_t c = 0; c < ch; ++c)
            p[c] = blendStore<Sample>(float(p[c]), a[c], mix, q);
    }
}

// Separable Gaussian or Box: a horizontal pass into a private image, then a vertical pass from
// it back into the image with the clamp, mix and mask merge.
template <typename Sample>
void separableBlur(
    FlexImageT<Sample>* image, float r, int32_t method, float mix, const ImageModApplyContext* context)
{
    const int32_t reach = blurReach(r);
    const int32_t w = image->width;
    const int32_t h = image->height;
    const int32_t ch = image->channels;
    std::vector<float> taps(size_t(2 * reach + 1));
    if (fillBlurTaps(taps.data(), reach, r, method) <= 0.0f)
        return;
    const float* tap = taps.data();
    const int32_t n = w * ch;

    FlexImageT<Sample> horizontal(w, h, ch);
    parallelForRanges(h, [&](int32_t begin, int32_t end) {
        std::vector<float> pad(size_t(w + 2 * reach) * size_t(ch));
        std::vector<float> acc(static_cast<size_t>(n));
        for (int32_t y = begin; y < end; ++y) {
            padRow(image->row(y), w, ch, reach, pad.data());
            std::fill(acc.begin(), acc.end(), 0.0f);
            float* a = acc.data();
            for (int32_t i = 0; i <= 2 * reach; ++i) {
                const float t = tap[i];
                const float* src = pad.data() + i * ch;
                for (int32_t k = 0; k < n; ++k)
                    a[k] += t * src[k];
            }
            Sample* out = horizontal.row(y);
            for (int32_t k = 0; k < n; ++k)
                out[k] = storeRaw<Sample>(a[k]);
        }
    });

    parallelForRanges(h, [&](int32_t begin, int32_t end) {
        std::vector<float> acc(static_cast<size_t>(n));
        for (int32_t y = begin; y < end; ++y) {
            std::fill(acc.begin(), acc.end(), 0.0f);
            float* a = acc.data();
            for (int32_t i = 0; i <= 2 * reach; ++i) {
                const int32_t sy = std::clamp(y - reach + i, 0, h - 1);
                const Sample* src = horizontal.row(sy);
                const float t = tap[i];
                for (int32_t k = 0; k < n; ++k)
                    a[k] += t * float(src[k]);
            }
            storeBlurredRow(image, y, a, mix, context);
        }
    });
}

// Circle: the flat part of each disc row is summed from a prefix of the padded row, the rim tap
// by tap; rows at +dy and -dy share weights and are added first. Same weights as the tap-by-tap
// convolution, far fewer operations at large radii; sums differ only by float rounding.
template <typename Sample>
void circleBlur(FlexImageT<Sample>* image, float r, float mix, const ImageModApplyContext* context)
{
    const int32_t reach = blurReach(r);
    const int32_t w = image->width;
    const int32_t h = image->height;
    const int32_t ch = image->channels;
    DiscKernel disc;
    disc.build(r - 1.0f, reach);
    if (!(disc.total > 0.0f))
        return;
    const float inv = 1.0f / disc.total;
    const int32_t n = w * ch;
    const int32_t padded = w + 2 * reach;

    FlexImageT<Sample> original;
    original.copyFrom(*image, true);
    parallelForRanges(h, [&](int32_t begin, int32_t end) {
        std::vector<float> sum(size_t(padded) * size_t(ch));
        std::vector<float> other(size_t(padded) * size_t(ch));
        std::vector<double> prefix(size_t(padded + 1) * size_t(ch));
        std::vector<float> acc(static_cast<size_t>(n));
        for (int32_t y = begin; y < end; ++y) {
            std::fill(acc.begin(), acc.end(), 0.0f);
            float* a = acc.data();
            for (const DiscRow& dr : disc.rows) {
                padRow(original.row(std::clamp(y + dr.dy, 0, h - 1)), w, ch, reach, sum.data());
                if (dr.dy > 0) {
                    padRow(original.row(std::clamp(y - dr.dy, 0, h - 1)), w, ch, reach, other.data());
                    for (size_t k = 0; k < sum.size(); ++k)
                        sum[k] += other[k];
                }
                const float* s = sum.data();
                if (dr.span >= 0) {
                    // Double prefix: long rows would otherwise lose the low bits of each span.
                    double* q = prefix.data();
                    for (int32_t c = 0; c < ch; ++c)
                        q[c] = 0.0;
                    for (int32_t k = 0; k < padded * ch; ++k)
                        q[k + ch] = q[k] + double(s[k]);
                    const int32_t hi = (reach + dr.span + 1) * ch;
                    const int32_t lo = (reach - dr.span) * ch;
                    for (int32_t k = 0; k < n; ++k)
                        a[k] += float(q[k + hi] - q[k + lo]);
                }
                for (int32_t e = 0; e < dr.rimCount; ++e) {
                    const DiscRim& rim = disc.rim[size_t(dr.rimBegin + e)];
                    const float wt = rim.weight;
                    const float* right = s + (reach + rim.dx) * ch;
                    if (rim.dx == 0) {
                        for (int32_t k = 0; k < n; ++k)
                            a[k] += wt * right[k];
                    } else {
                        const float* left = s + (reach - rim.dx) * ch;
                        for (int32_t k = 0; k < n; ++k)
                            a[k] += wt * (right[k] + left[k]);
                    }
                }
            }
            for (int32_t k = 0; k < n; ++k)
                a[k] *= inv;
            storeBlurredRow(image, y, a, mix, context);
        }
    });
}

template <typename Sample>
void blurImage(
    FlexImageT<Sample>* image, float r, int32_t method, float mix, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty() || !(mix > 0.0f) || !(r > 1.0f) || !std::isfinite(r))
        return;
    if (blurReach(r) == 0)
        return;
    mix = std::min(mix, 1.0f);
    if (method == ImageModBlur::Circle)
        circleBlur(image, r, mix, context);
    else
        separableBlur(image, r, method == ImageModBlur::Box ? 1 : 0, mix, context);
}

template <typename Sample>
void applyBlur(const ImageModBlur& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float amount = mod.floatValue(0);
    if (amount == 0.0f)
        return;
    const float mix = mod.floatValue(1) * 0.01f;
    if (mix == 0.0f)
        return;
    const int32_t method = std::clamp(mod.choiceIndex(2), 0, 2);
    const SpatialFrame frame = spatialFrameOf(*image, context);
    const float r = ImageModBlur::radiusFor(amount, method, frame.frameWidth, frame.frameHeight);
    blurImage(image, r, method, mix, context);
}

} // namespace

void ImageModBlur::blurWithRadius(
    FlexImage8* image, float r, int32_t method, float mix, const ImageModApplyContext* context)
{
    blurImage(image, r, method, mix, context);
}

void ImageModBlur::blurWithRadius(
    FlexImageFloat* image, float r, int32_t method, float mix, const ImageModApplyContext* context)
{
    blurImage(image, r, method, mix, context);
}

void ImageModBlur::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyBlur(*this, image, context);
}

void ImageModBlur::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyBlur(*this, image, context);
}
