#include "mods/ImageModBlur.h"

#include "core/ParallelFor.h"
#include "mods/SpatialKernels.h"
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <thread>
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

// Splits [0, count) into a few contiguous chunks, one job each, so that a job allocates its
// scratch once however finely the pool would otherwise cut the range.
static void forEachChunk(int32_t count, int32_t perChunkMin, const std::function<void(int32_t, int32_t)>& body)
{
    if (count <= 0)
        return;
    const int32_t threads = int32_t(std::max(1u, std::thread::hardware_concurrency()));
    const int32_t chunks = std::clamp(count / std::max(perChunkMin, 1), 1, 4 * threads);
    parallelFor(chunks, [&](int32_t c) {
        const int32_t begin = int32_t(int64_t(count) * c / chunks);
        const int32_t end = int32_t(int64_t(count) * (c + 1) / chunks);
        if (begin < end)
            body(begin, end);
    });
}

// From this reach on the Gaussian runs as three boxes: below it the taps are few, and the box
// widths, whole pixels plus fractional ends, would follow the sampled cone less closely.
constexpr int32_t kThreeBoxReach = 12;

// One flat window of a running-sum pass: weight `flat` over |d| < reach, `end` at |d| == reach.
struct BoxPass {
    int32_t reach = 0;
    float flat = 0.0f;
    float end = 0.0f;
};

// The two kernels of the separable blur, held once per apply.
struct LineKernel {
    std::vector<float> taps;
    int32_t reach = 0;
    // Box: a flat run of weight `flat` over |d| < reach, `end` at |d| == reach. Summed as a
    // running window, O(1) per sample whatever the reach.
    bool flatRun = false;
    float flat = 0.0f;
    float end = 0.0f;
    // Wide "Gaussian": its cone is the convolution of three boxes (widths r/2, r and r/2), so three
    // running windows give it at O(1) per sample. Lines are then padded by the three reaches.
    bool threeBoxes = false;
    BoxPass boxes[3];
    // Edge-repeat padding on each side of a line.
    int32_t padReach() const { return threeBoxes ? boxes[0].reach + boxes[1].reach + boxes[2].reach : reach; }
};

// Scratch lines between the three box passes of one job, sized once.
struct LineScratch {
    std::vector<float> first;
    std::vector<float> second;
    void size(const LineKernel& k, int32_t width, int32_t count)
    {
        if (!k.threeBoxes)
            return;
        first.resize(size_t(count + 2 * (k.boxes[1].reach + k.boxes[2].reach)) * size_t(width));
        second.resize(size_t(count + 2 * k.boxes[2].reach) * size_t(width));
    }
};

// A box of continuous width `width` sampled over whole pixels: weight 1 inside, the overlap at the
// two ends, normalised. The cell sampling adds a twelfth of a pixel squared of variance to each box,
// taken back from its width so the three together keep the cone's spread.
static BoxPass boxForWidth(float width)
{
    const float w = width > 1.0f ? std::sqrt(width * width - 1.0f) : 1.0f;
    const float half = std::max(0.5f, 0.5f * w);
    BoxPass b;
    b.reach = std::max(1, int32_t(std::floor(half + 0.5f)));
    const float endWeight = std::clamp(half + 0.5f - float(b.reach), 0.0f, 1.0f);
    const float total = float(2 * b.reach - 1) + 2.0f * endWeight;
    b.flat = 1.0f / total;
    b.end = endWeight / total;
    return b;
}

// Running window over |d| < reach plus the two end taps, per lane, in double so long lines do not
// drift. src holds count + 2 reach positions.
static void runningBox(const BoxPass& b, const float* src, int32_t width, int32_t count, float* dst)
{
    const int32_t reach = b.reach;
    constexpr int32_t kLanes = 256;
    double sum[kLanes];
    for (int32_t l0 = 0; l0 < width; l0 += kLanes) {
        const int32_t lanes = std::min(kLanes, width - l0);
        const float* s = src + l0;
        float* d = dst + l0;
        for (int32_t l = 0; l < lanes; ++l)
            sum[l] = 0.0;
        for (int32_t i = 1; i < 2 * reach; ++i)
            for (int32_t l = 0; l < lanes; ++l)
                sum[l] += double(s[size_t(i) * size_t(width) + size_t(l)]);
        const double flat = b.flat;
        const float end = b.end;
        for (int32_t p = 0; p < count; ++p) {
            const float* first = s + size_t(p) * size_t(width);
            const float* last = first + size_t(2 * reach) * size_t(width);
            const float* leaving = first + size_t(width);
            float* out = d + size_t(p) * size_t(width);
            for (int32_t l = 0; l < lanes; ++l) {
                out[l] = float(sum[l] * flat + double(end * (first[l] + last[l])));
                sum[l] += double(last[l]) - double(leaving[l]);
            }
        }
    }
}

// Convolves `count` samples of stride-`step` lines laid side by side: src holds 2 R + count
// positions of `width` floats each (R the kernel's padReach, edge-repeated already), dst receives
// `count` positions. Horizontal pass: width = channels, positions = pixels. Vertical pass: width =
// a block of columns, positions = rows. Symmetric taps are paired, so each pair costs one multiply.
static void convolveLines(const LineKernel& k, const float* src, int32_t width, int32_t count, float* dst,
    LineScratch& scratch)
{
    const int32_t reach = k.reach;
    if (k.threeBoxes) {
        // Each pass eats its own reach of the padding: count + 2 (r2 + r3), count + 2 r3, count.
        const int32_t r2 = k.boxes[1].reach, r3 = k.boxes[2].reach;
        runningBox(k.boxes[0], src, width, count + 2 * (r2 + r3), scratch.first.data());
        runningBox(k.boxes[1], scratch.first.data(), width, count + 2 * r3, scratch.second.data());
        runningBox(k.boxes[2], scratch.second.data(), width, count, dst);
        return;
    }
    if (k.flatRun) {
        BoxPass b;
        b.reach = reach;
        b.flat = k.flat;
        b.end = k.end;
        runningBox(b, src, width, count, dst);
        return;
    }
    const float* tap = k.taps.data();
    // Tiles of the output small enough to stay in L1 while every tap passes over them.
    constexpr int32_t kTile = 1024;
    const size_t total = size_t(count) * size_t(width);
    const size_t step = size_t(width);
    for (size_t t0 = 0; t0 < total; t0 += kTile) {
        const size_t len = std::min(size_t(kTile), total - t0);
        float* out = dst + t0;
        const float* centre = src + t0 + size_t(reach) * step;
        const float tc = tap[reach];
        for (size_t j = 0; j < len; ++j)
            out[j] = tc * centre[j];
        for (int32_t i = 0; i < reach; ++i) {
            const float t = tap[i];
            const float* lo = src + t0 + size_t(i) * step;
            const float* hi = src + t0 + size_t(2 * reach - i) * step;
            for (size_t j = 0; j < len; ++j)
                out[j] += t * (lo[j] + hi[j]);
        }
    }
}

// Separable Gaussian or Box, in place: each row through a padded scratch row, then blocks of
// columns through a padded scratch block, the result stored clamped.
template <typename Sample> void separableInPlace(FlexImageT<Sample>* image, const LineKernel& k)
{
    const int32_t reach = k.padReach();
    const int32_t w = image->width;
    const int32_t h = image->height;
    const int32_t ch = image->channels;
    const int32_t n = w * ch;

    forEachChunk(h, 8, [&](int32_t begin, int32_t end) {
        std::vector<float> pad(size_t(w + 2 * reach) * size_t(ch));
        std::vector<float> out(static_cast<size_t>(n));
        LineScratch scratch;
        scratch.size(k, ch, w);
        for (int32_t y = begin; y < end; ++y) {
            Sample* row = image->row(y);
            padRow(row, w, ch, reach, pad.data());
            convolveLines(k, pad.data(), ch, w, out.data(), scratch);
            for (int32_t i = 0; i < n; ++i)
                row[i] = storeRaw<Sample>(out[size_t(i)]);
        }
    });

    // Column blocks of 64 samples: a block's rows stay in cache while every tap passes over them.
    constexpr int32_t kBlock = 64;
    const int32_t blocks = (n + kBlock - 1) / kBlock;
    const int32_t padH = h + 2 * reach;
    forEachChunk(blocks, 1, [&](int32_t begin, int32_t end) {
        std::vector<float> column(size_t(padH) * size_t(kBlock));
        std::vector<float> out(size_t(h) * size_t(kBlock));
        LineScratch scratch;
        scratch.size(k, kBlock, h);
        for (int32_t b = begin; b < end; ++b) {
            const int32_t k0 = b * kBlock;
            const int32_t width = std::min(kBlock, n - k0);
            float* col = column.data();
            for (int32_t y = 0; y < padH; ++y) {
                const Sample* src = image->row(std::clamp(y - reach, 0, h - 1)) + k0;
                float* dst = col + size_t(y) * size_t(width);
                for (int32_t j = 0; j < width; ++j)
                    dst[j] = float(src[j]);
            }
            convolveLines(k, col, width, h, out.data(), scratch);
            for (int32_t y = 0; y < h; ++y) {
                Sample* dst = image->row(y) + k0;
                const float* src = out.data() + size_t(y) * size_t(width);
                for (int32_t j = 0; j < width; ++j)
                    dst[j] = storeClamped<Sample>(src[j]);
            }
        }
    });
}

// Merges a blurred copy over the image: mix with the original, then the mask.
template <typename Sample>
void mergeBlurred(FlexImageT<Sample>* image, const FlexImageT<Sample>& blurred, float mix,
    const ImageModApplyContext* context)
{
    const int32_t w = image->width;
    const int32_t ch = image->channels;
    const ImageModSelector* selector = context ? context->selector : nullptr;
    parallelForRanges(image->height, [&](int32_t begin, int32_t end) {
        for (int32_t y = begin; y < end; ++y) {
            Sample* row = image->row(y);
            const Sample* b = blurred.row(y);
            if (!selector) {
                for (int32_t k = 0; k < w * ch; ++k)
                    row[k] = blendStore<Sample>(float(row[k]), float(b[k]), mix, 1.0f);
                continue;
            }
            for (int32_t x = 0; x < w; ++x) {
                const float q = maskAt(selector, image, x, y, context);
                for (int32_t c = 0; c < ch; ++c)
                    row[x * ch + c] = blendStore<Sample>(float(row[x * ch + c]), float(b[x * ch + c]), mix, q);
            }
        }
    });
}

// Separable Gaussian or Box. Without mix or mask the image is blurred in place; otherwise a copy
// is blurred and merged over the original.
template <typename Sample>
void separableBlur(
    FlexImageT<Sample>* image, float r, int32_t method, float mix, const ImageModApplyContext* context)
{
    LineKernel k;
    k.reach = blurReach(r);
    k.taps.resize(size_t(2 * k.reach + 1));
    if (fillBlurTaps(k.taps.data(), k.reach, r, method) <= 0.0f)
        return;
    if (method == ImageModBlur::Box && k.reach >= 1) {
        // Every inner tap equal: the window form gives the same weights.
        k.flatRun = true;
        k.flat = k.taps[size_t(k.reach)];
        k.end = k.taps[0];
        for (int32_t i = 1; i < 2 * k.reach; ++i)
            k.flatRun = k.flatRun && k.taps[size_t(i)] == k.flat;
    }
    if (method == ImageModBlur::Gaussian && k.reach >= kThreeBoxReach) {
        k.threeBoxes = true;
        k.boxes[0] = boxForWidth(0.5f * r);
        k.boxes[1] = boxForWidth(r);
        k.boxes[2] = k.boxes[0];
    }
    const bool merge = mix < 1.0f || (context && context->selector);
    if (!merge) {
        separableInPlace(image, k);
        return;
    }
    FlexImageT<Sample> blurred;
    blurred.copyFrom(*image, true);
    separableInPlace(&blurred, k);
    mergeBlurred(image, blurred, mix, context);
}

// Circle: the flat part of each disc row is a difference of a row prefix, the rim tap by tap.
// A job keeps a ring of the padded rows (and their prefixes) its disc covers, so each source row
// is padded and prefixed once per job, not once per disc row. Same weights as the tap-by-tap
// convolution; sums differ only by float rounding.
template <typename Sample>
void circleBlur(FlexImageT<Sample>* image, float r, float mix, const ImageModApplyContext* context)
{
    const int32_t reach = blurReach(r);
    const int32_t w = image->width;
    const int32_t h = image->height;
    const int32_t ch = image->channels;
    DiscKernel disc;
    disc.build(r - 1.0f, reach);
    if (!(disc.total > 0.0f) || disc.rows.empty())
        return;
    const float inv = 1.0f / disc.total;
    const int32_t n = w * ch;
    const size_t padLen = size_t(w + 2 * reach) * size_t(ch);
    const size_t prefixLen = padLen + size_t(ch);
    const int32_t maxDy = disc.rows.back().dy;
    const int32_t ring = 2 * maxDy + 1;

    // The image is written in place, row by row. A job reads its own rows into the ring before it
    // writes them; the maxDy rows above and below it belong to its neighbours, so they are copied
    // out before any job starts (a copy of the whole image was 288 MB at 24 megapixels).
    const int32_t threads = int32_t(std::max(1u, std::thread::hardware_concurrency()));
    const int32_t jobs = std::clamp(h / 32, 1, 4 * threads);
    auto jobBegin = [&](int32_t j) { return int32_t(int64_t(h) * j / jobs); };
    const size_t rowLen = size_t(n);
    std::vector<float> halos(size_t(jobs) * size_t(2 * maxDy) * rowLen);
    parallelFor(jobs, [&](int32_t j) {
        const int32_t begin = jobBegin(j), end = jobBegin(j + 1);
        float* halo = halos.data() + size_t(j) * size_t(2 * maxDy) * rowLen;
        for (int32_t i = 0; i < maxDy; ++i) {
            const Sample* above = image->row(std::max(begin - maxDy + i, 0));
            const Sample* below = image->row(std::min(end + i, h - 1));
            for (size_t k = 0; k < rowLen; ++k) {
                halo[size_t(i) * rowLen + k] = float(above[k]);
                halo[size_t(maxDy + i) * rowLen + k] = float(below[k]);
            }
        }
    });
    parallelFor(jobs, [&](int32_t j) {
        const int32_t begin = jobBegin(j), end = jobBegin(j + 1);
        if (begin >= end)
            return;
        const float* halo = halos.data() + size_t(j) * size_t(2 * maxDy) * rowLen;
        std::vector<float> pads(size_t(ring) * padLen);
        // Double prefix: long rows would otherwise lose the low bits of each span.
        std::vector<double> prefixes(size_t(ring) * prefixLen);
        std::vector<float> acc(static_cast<size_t>(n));
        auto slotOf = [&](int32_t v) { return size_t(((v % ring) + ring) % ring); };
        auto load = [&](int32_t v) {
            const size_t slot = slotOf(v);
            float* s = pads.data() + slot * padLen;
            const int32_t clamped = std::clamp(v, 0, h - 1);
            if (clamped < begin)
                padRow(halo + size_t(v - begin + maxDy) * rowLen, w, ch, reach, s);
            else if (clamped >= end)
                padRow(halo + size_t(maxDy + v - end) * rowLen, w, ch, reach, s);
            else
                padRow(image->row(clamped), w, ch, reach, s);
            double* q = prefixes.data() + slot * prefixLen;
            for (int32_t c = 0; c < ch; ++c)
                q[c] = 0.0;
            for (size_t k = 0; k < padLen; ++k)
                q[k + size_t(ch)] = q[k] + double(s[k]);
        };
        for (int32_t v = begin - maxDy; v < begin + maxDy; ++v)
            load(v);
        for (int32_t y = begin; y < end; ++y) {
            load(y + maxDy);
            std::fill(acc.begin(), acc.end(), 0.0f);
            float* a = acc.data();
            for (const DiscRow& dr : disc.rows) {
                const float* below = pads.data() + slotOf(y + dr.dy) * padLen;
                const double* qBelow = prefixes.data() + slotOf(y + dr.dy) * prefixLen;
                const float* above = pads.data() + slotOf(y - dr.dy) * padLen;
                const double* qAbove = prefixes.data() + slotOf(y - dr.dy) * prefixLen;
                const bool pair = dr.dy > 0;
                if (dr.span >= 0) {
                    const int32_t hi = (reach + dr.span + 1) * ch;
                    const int32_t lo = (reach - dr.span) * ch;
                    if (pair) {
                        for (int32_t k = 0; k < n; ++k)
                            a[k] += float((qBelow[k + hi] - qBelow[k + lo]) + (qAbove[k + hi] - qAbove[k + lo]));
                    } else {
                        for (int32_t k = 0; k < n; ++k)
                            a[k] += float(qBelow[k + hi] - qBelow[k + lo]);
                    }
                }
                for (int32_t e = 0; e < dr.rimCount; ++e) {
                    const DiscRim& rim = disc.rim[size_t(dr.rimBegin + e)];
                    const float wt = rim.weight;
                    const int32_t right = (reach + rim.dx) * ch;
                    const int32_t left = (reach - rim.dx) * ch;
                    if (!pair && rim.dx == 0) {
                        for (int32_t k = 0; k < n; ++k)
                            a[k] += wt * below[k + right];
                    } else if (!pair) {
                        for (int32_t k = 0; k < n; ++k)
                            a[k] += wt * (below[k + right] + below[k + left]);
                    } else if (rim.dx == 0) {
                        for (int32_t k = 0; k < n; ++k)
                            a[k] += wt * (below[k + right] + above[k + right]);
                    } else {
                        for (int32_t k = 0; k < n; ++k)
                            a[k] += wt * ((below[k + right] + below[k + left]) + (above[k + right] + above[k + left]));
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
