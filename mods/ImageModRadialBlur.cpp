#include "mods/ImageModRadialBlur.h"

#include "core/ParallelFor.h"
#include "mods/ImageModBlur.h"
#include "mods/ImageModVignette.h"
#include "mods/SpatialKernels.h"
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <cmath>
#include <vector>

ImageModRadialBlur::ImageModRadialBlur()
    : ImageMod("Radial Blur", "Circular Blur")
{
    toolTip = "Blur in a circle around the edges of an image. Falloff affects how quickly the blur intensity "
              "grows "
              "as it gets further from the center of the image.";
    ImageModVariable* amount = addFloat("Amount", 0.5f, 0.0f, 1.0f);
    amount->data->setDisplayScale(0.0f, 100.0f);
    ImageModVariable* falloff = addFloat("Falloff", 50.0f, 0.0f, 100.0f);
    ImageModVariable* radius = addFloat("Radius", 1.0f, 0.0f, 2.0f);
    addChoice("Blur Method", { "Gaussian", "Box", "Circle" }, 0);
    addPixel("Center");
    addAnimator(amount, "1 .25 1", 2.348f);
    addAnimator(falloff, "35 80 35", 3.343f);
    addAnimator(radius, ".75 1.2 .75", 2.844f);
}

float ImageModRadialBlur::maxRadius(float amount, int32_t method, float maxSide)
{
    const float a = method == ImageModBlur::Gaussian ? amount * 1.5f : amount;
    return a * 30.0f * 0.00083333335f * maxSide;
}

int32_t ImageModRadialBlur::paddingNeeded(int32_t width, int32_t height, float) const
{
    const float amount = floatValue(0);
    if (amount == 0.0f)
        return 0;
    return int32_t(std::ceil(maxRadius(amount, choiceIndex(3), float(std::max(width, height)))));
}

namespace
{

// Blur radius at every pixel, with the mask folded in; the mask is read once per pixel.
template <typename Sample>
void radiusMap(const FlexImageT<Sample>* image, const SpatialFrame& frame, float outer, float p, float rMax,
    const ImageModApplyContext* context, std::vector<float>& map)
{
    const int32_t w = image->width;
    const float invOuter = outer > 0.0f ? 1.0f / outer : INFINITY;
    const ImageModSelector* selector = context ? context->selector : nullptr;
    map.resize(size_t(w) * size_t(image->height));
    parallelFor(image->height, [&](int32_t y) {
        float* out = map.data() + size_t(y) * size_t(w);
        const float dy = float(y) - frame.cy;
        for (int32_t x = 0; x < w; ++x) {
            const float dx = float(x) - frame.cx;
            const float dist = std::sqrt(dx * dx + dy * dy);
            const float f = dist == 0.0f ? 0.0f : dist * invOuter;
            float g = f <= 0.0f ? 0.0f : std::min(smoothRamp(f * 1.05f, p), 1.0f);
            if (selector)
                g *= maskAt(selector, image, x, y, context);
            out[x] = g * rMax;
        }
    });
}

// Per-pixel 1-D kernel of the Gaussian or Box shape for radius r (the blur's own r is r + 1, so a
// radius of 0 is the identity and the blur grows smoothly from it). Returns the reach.
static inline int32_t pixelTaps(float r, int32_t method, float* taps)
{
    const float rr = r + 1.0f;
    const int32_t reach = blurReach(rr);
    if (reach > 0)
        fillBlurTaps(taps, reach, rr, method);
    return reach;
}

template <typename Sample>
void separableRadial(FlexImageT<Sample>* image, const std::vector<float>& map, int32_t method, float rMax)
{
    const int32_t w = image->width;
    const int32_t h = image->height;
    const int32_t ch = image->channels;
    const int32_t maxReach = blurReach(rMax + 1.0f);
    FlexImageT<Sample> copy(w, h, ch);
    // Horizontal: from the image (still the original) into the copy.
    parallelForRanges(h, [&](int32_t begin, int32_t end) {
        std::vector<float> taps(size_t(2 * maxReach + 1));
        float lastR = -1.0f;
        int32_t reach = 0;
        for (int32_t y = begin; y < end; ++y) {
            const Sample* src = image->row(y);
            Sample* dst = copy.row(y);
            const float* rRow = map.data() + size_t(y) * size_t(w);
            for (int32_t x = 0; x < w; ++x) {
                const float r = rRow[x];
                if (r != lastR) {
                    reach = r > 0.0f ? pixelTaps(r, method, taps.data()) : 0;
                    lastR = r;
                }
                for (int32_t c = 0; c < ch; ++c) {
                    if (reach == 0) {
                        dst[x * ch + c] = src[x * ch + c];
                        continue;
                    }
                    float sum = 0.0f;
                    for (int32_t i = 0; i <= 2 * reach; ++i)
                        sum += taps[size_t(i)] * float(src[std::clamp(x - reach + i, 0, w - 1) * ch + c]);
                    dst[x * ch + c] = storeRaw<Sample>(sum);
                }
            }
        }
    });
    // Vertical: from the copy back into the image, with the clamp.
    parallelForRanges(h, [&](int32_t begin, int32_t end) {
        std::vector<float> taps(size_t(2 * maxReach + 1));
        float lastR = -1.0f;
        int32_t reach = 0;
        for (int32_t y = begin; y < end; ++y) {
            Sample* dst = image->row(y);
            const float* rRow = map.data() + size_t(y) * size_t(w);
            for (int32_t x = 0; x < w; ++x) {
                const float r = rRow[x];
                if (r != lastR) {
                    reach = r > 0.0f ? pixelTaps(r, method, taps.data()) : 0;
                    lastR = r;
                }
                for (int32_t c = 0; c < ch; ++c) {
                    if (reach == 0) {
                        dst[x * ch + c] = storeClamped<Sample>(float(copy.row(y)[x * ch + c]));
                        continue;
                    }
                    float sum = 0.0f;
                    for (int32_t i = 0; i <= 2 * reach; ++i)
                        sum += taps[size_t(i)]
                            * float(copy.row(std::clamp(y - reach + i, 0, h - 1))[x * ch + c]);
                    dst[x * ch + c] = storeClamped<Sample>(sum);
                }
            }
        }
    });
}

// Method 2: a disc of radius r per pixel, convolved from the original. Each flat row of the disc
// is one difference of a row prefix (edges repeat), the soft rim is summed tap by tap.
template <typename Sample>
void circleRadial(FlexImageT<Sample>* image, const std::vector<float>& map, float rMax)
{
    const int32_t w = image->width;
    const int32_t h = image->height;
    const int32_t ch = image->channels;
    const int32_t maxReach = int32_t(std::ceil(rMax));
    FlexImageT<Sample> original;
    original.copyFrom(*image, true);
    // prefix[y][(x) * ch + c] = sum of samples 0..x-1 of row y, channel c.
    const size_t stride = size_t(w + 1) * size_t(ch);
    std::vector<double> prefix(stride * size_t(h));
    parallelFor(h, [&](int32_t y) {
        double* q = prefix.data() + stride * size_t(y);
        const Sample* row = original.row(y);
        for (int32_t c = 0; c < ch; ++c)
            q[c] = 0.0;
        for (int32_t k = 0; k < w * ch; ++k)
            q[k + ch] = q[k] + double(row[k]);
    });
    parallelForRanges(h, [&](int32_t begin, int32_t end) {
        DiscKernel disc;
        disc.reserve(maxReach);
        float sums[4];
        for (int32_t y = begin; y < end; ++y) {
            Sample* dst = image->row(y);
            const float* rRow = map.data() + size_t(y) * size_t(w);
            float lastR = -1.0f;
            for (int32_t x = 0; x < w; ++x) {
                const float r = rRow[x];
                if (!(r > 0.0f))
                    continue;
                if (r != lastR) {
                    disc.build(r, int32_t(std::ceil(r)));
                    lastR = r;
                }
                for (int32_t c = 0; c < ch; ++c)
                    sums[c] = 0.0f;
                for (const DiscRow& dr : disc.rows) {
                    for (int32_t side = 0; side < (dr.dy == 0 ? 1 : 2); ++side) {
                        const int32_t sy = std::clamp(side == 0 ? y + dr.dy : y - dr.dy, 0, h - 1);
                        const Sample* src = original.row(sy);
                        if (dr.span >= 0) {
                            const double* q = prefix.data() + stride * size_t(sy);
                            const int32_t lo = x - dr.span;
                            const int32_t hi = x + dr.span;
                            const int32_t loIn = std::max(lo, 0);
                            const int32_t hiIn = std::min(hi, w - 1);
                            for (int32_t c = 0; c < ch; ++c) {
                                // x lies inside the span, so loIn <= hiIn; the parts past the
                                // edges repeat the edge samples.
                                double s = q[(hiIn + 1) * ch + c] - q[loIn * ch + c];
                                s += double(loIn - lo) * double(src[c]);
                                s += double(hi - hiIn) * double(src[(w - 1) * ch + c]);
                                sums[c] += float(s);
                            }
                        }
                        for (int32_t e = 0; e < dr.rimCount; ++e) {
                            const DiscRim& rim = disc.rim[size_t(dr.rimBegin + e)];
                            const Sample* right = src + std::clamp(x + rim.dx, 0, w - 1) * ch;
                            const Sample* left = src + std::clamp(x - rim.dx, 0, w - 1) * ch;
                            for (int32_t c = 0; c < ch; ++c)
                                sums[c] += rim.weight
                                    * (rim.dx == 0 ? float(right[c]) : float(right[c]) + float(left[c]));
                        }
                    }
                }
                const float inv = 1.0f / disc.total;
                for (int32_t c = 0; c < ch; ++c)
                    dst[x * ch + c] = storeClamped<Sample>(sums[c] * inv);
            }
        }
    });
}

template <typename Sample>
void applyRadialBlur(
    const ImageModRadialBlur& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty() || image->channels > 4)
        return;
    const float amount = mod.floatValue(0);
    if (amount == 0.0f)
        return;
    const float p = ImageModVignette::rampExponent(mod.floatValue(1));
    const float radius = mod.floatValue(2) * 1.85f;
    const int32_t method = std::clamp(mod.choiceIndex(3), 0, 2);
    SpatialFrame frame = spatialFrameOf(*image, context);
    applyCenterPoint(frame, mod.pixelAt(4));
    const float outer = frame.halfDiagonal() * radius;
    const float rMax
        = ImageModRadialBlur::maxRadius(amount, method, std::max(frame.contentWidth, frame.contentHeight));
    if (!(rMax > 0.0f) || !std::isfinite(rMax))
        return;
    std::vector<float> map;
    radiusMap(image, frame, outer, p, rMax, context, map);
    if (method == ImageModBlur::Circle)
        circleRadial(image, map, rMax);
    else
        separableRadial(image, map, method, rMax);
}

} // namespace

void ImageModRadialBlur::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyRadialBlur(*this, image, context);
}

void ImageModRadialBlur::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyRadialBlur(*this, image, context);
}
