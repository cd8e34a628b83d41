#pragma once
#include <algorithm>
#include <cmath>
#include <cstdint>

// Reads one pixel of an interleaved image at a fractional position, where integer positions are
// pixel centres. `out` gets `n` samples (n <= 4). Positions outside the picture read its edge.

template <typename Sample>
static inline void storeSample(Sample& dst, double v)
{
    if constexpr (sizeof(Sample) == 1) {
        v = std::min(v, 255.0);
        v = std::max(v, 0.0);
        dst = Sample(int32_t(v + 0.5));
    } else {
        dst = Sample(v);
    }
}

// Index for a whole-numbered position, clamped to 0..size-1 before any conversion (NaN gives 0).
static inline int32_t clampIndex(double i, int32_t size)
{
    if (!(i > 0.0))
        return 0;
    if (i >= double(size - 1))
        return size - 1;
    return int32_t(i);
}

// The pixel whose centre is nearest, clamped to the image.
template <typename Sample>
static inline void sampleNearest(const Sample* data, int32_t width, int32_t height, int32_t channels, double x,
                                 double y, int32_t n, Sample* out)
{
    const int32_t ix = clampIndex(std::floor(x + 0.5), width);
    const int32_t iy = clampIndex(std::floor(y + 0.5), height);
    const Sample* p = data + (int64_t(iy) * width + ix) * channels;
    for (int32_t c = 0; c < n; ++c)
        out[c] = p[c];
}

// Bilinear between the four neighbours; the lower index is clamped to size - 2 so the upper one
// stays inside.
template <typename Sample>
static inline void sampleBilinear(const Sample* data, int32_t width, int32_t height, int32_t channels, double x,
                                  double y, int32_t n, Sample* out)
{
    const int32_t x0 = clampIndex(std::floor(x), std::max(width - 1, 1));
    const int32_t y0 = clampIndex(std::floor(y), std::max(height - 1, 1));
    const int32_t x1 = std::min(x0 + 1, width - 1);
    const int32_t y1 = std::min(y0 + 1, height - 1);
    const double fx = std::min(std::max(x - x0, 0.0), 1.0);
    const double fy = std::min(std::max(y - y0, 0.0), 1.0);
    const Sample* p00 = data + (int64_t(y0) * width + x0) * channels;
    const Sample* p10 = data + (int64_t(y0) * width + x1) * channels;
    const Sample* p01 = data + (int64_t(y1) * width + x0) * channels;
    const Sample* p11 = data + (int64_t(y1) * width + x1) * channels;
    for (int32_t c = 0; c < n; ++c) {
        const double top = double(p00[c]) + (double(p10[c]) - double(p00[c])) * fx;
        const double bottom = double(p01[c]) + (double(p11[c]) - double(p01[c])) * fx;
        storeSample(out[c], top + (bottom - top) * fy);
    }
}

// Covered span of one axis: the box [centre - side/2, centre + side/2] cut to the image, whose
// pixel i covers [i - 0.5, i + 0.5]. Empty when the box misses the image.
struct BoxSpan {
    double lo;
    double hi;
    int32_t first;
    int32_t last;
};

static inline BoxSpan boxSpan(double centre, double side, int32_t size)
{
    BoxSpan s;
    s.lo = std::max(centre - side * 0.5, -0.5);
    s.hi = std::min(centre + side * 0.5, double(size) - 0.5);
    s.first = clampIndex(std::floor(s.lo + 0.5), size);
    s.last = clampIndex(std::floor(s.hi + 0.5), size);
    return s;
}

// Share of pixel i that the span covers: 1 inside, the covered fraction at the two edges.
static inline double boxWeight(const BoxSpan& s, int32_t i)
{
    return std::max(0.0, std::min(s.hi, i + 0.5) - std::max(s.lo, i - 0.5));
}

// Mean over a box of side `side` centred on (x, y), each pixel weighted by the part of it the box
// covers. A box that misses the image reads the nearest edge pixel.
template <typename Sample>
static inline void sampleBox(const Sample* data, int32_t width, int32_t height, int32_t channels, double x, double y,
                             double side, int32_t n, Sample* out)
{
    const BoxSpan sx = boxSpan(x, side, width);
    const BoxSpan sy = boxSpan(y, side, height);
    if (!(sx.hi > sx.lo) || !(sy.hi > sy.lo)) {
        sampleNearest(data, width, height, channels, x, y, n, out);
        return;
    }
    double acc[4] = {0.0, 0.0, 0.0, 0.0};
    double total = 0.0;
    for (int32_t j = sy.first; j <= sy.last; ++j) {
        const double wy = boxWeight(sy, j);
        if (wy <= 0.0)
            continue;
        const Sample* row = data + int64_t(j) * width * channels;
        for (int32_t i = sx.first; i <= sx.last; ++i) {
            const double w = wy * boxWeight(sx, i);
            if (w <= 0.0)
                continue;
            const Sample* p = row + int64_t(i) * channels;
            for (int32_t c = 0; c < n; ++c)
                acc[c] += w * double(p[c]);
            total += w;
        }
    }
    if (!(total > 0.0)) {
        sampleNearest(data, width, height, channels, x, y, n, out);
        return;
    }
    const double inv = 1.0 / total;
    for (int32_t c = 0; c < n; ++c)
        storeSample(out[c], acc[c] * inv);
}

// Chooses by footprint: exactly 1 the nearest pixel, below 1 bilinear, above 1 the box.
template <typename Sample>
static inline void samplePixel(const Sample* data, int32_t width, int32_t height, int32_t channels, double x, double y,
                               double footprint, int32_t n, Sample* out)
{
    if (footprint == 1.0)
        sampleNearest(data, width, height, channels, x, y, n, out);
    else if (footprint < 1.0)
        sampleBilinear(data, width, height, channels, x, y, n, out);
    else
        sampleBox(data, width, height, channels, x, y, footprint, n, out);
}
