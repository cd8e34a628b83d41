#include "document/core/HistogramData.h"

#include "core/ColorMath.h"
#include "core/ParallelFor.h"

#include <algorithm>
#include <thread>

namespace {

// Rows are split into this many bands at most, each counting into its own bins.
constexpr int32_t kMaxBands = 32;
constexpr int32_t kBinSets = 4; // luma, red, green, blue
constexpr int32_t kMaxWaveformBands = 8;
// Every chart part scans all targets, so there are no more parts than cores.
const int32_t kChartParts = std::clamp(int32_t(std::thread::hardware_concurrency()), 1, 8);

// The truncated sample as a bin, or -1: values from -1 (exclusive) to 256 (exclusive) truncate
// into 0..255; everything else, NaN included, counts nowhere.
static inline int32_t binIndex(float v)
{
    return v > -1.0f && v < 256.0f ? int32_t(v) : -1;
}

// A sample clamped to 0..255 for the waveforms; NaN lands at the bottom.
static inline float clampSample(float v)
{
    return v > 0.0f ? (v < 255.0f ? v : 255.0f) : 0.0f;
}

// Scope word index of a waveform sample: clamped, the top row for 255.
static inline size_t waveformIndex(float v, int32_t W, int32_t x)
{
    return size_t(255 - int32_t(clampSample(v))) * size_t(W) + size_t(x);
}

static inline void countHit(uint8_t& hits)
{
    hits = uint8_t(hits + (hits < 255u ? 1u : 0u));
}

// Luminance waveform: each hit brightens the grey by 20, up to white.
static inline uint32_t lumaWaveformWord(int32_t hits)
{
    if (hits == 0)
        return 0u;
    const uint32_t g = uint32_t(std::min(255, 20 * hits));
    return 0xff000000u | (g << 16) | (g << 8) | g;
}

// RGB waveform: each channel rises by 10 per hit in its own byte; a hit pixel is opaque.
static inline uint32_t rgbWaveformWord(int32_t r, int32_t g, int32_t b)
{
    if ((r | g | b) == 0)
        return 0u;
    const uint32_t R = uint32_t(std::min(255, 10 * r)), G = uint32_t(std::min(255, 10 * g)),
                   B = uint32_t(std::min(255, 10 * b));
    return 0xff000000u | (R << 16) | (G << 8) | B;
}

// Hue in degrees, 0 for a grey, on samples already divided by 255.
static inline float hueOf(float r, float g, float b)
{
    const float mx = maxOf3(r, g, b);
    const float d = mx - minOf3(r, g, b);
    if (d == 0.0f)
        return 0.0f;
    const float m = 60.0f / d;
    float h;
    if (mx == r)
        h = (g - b) * m;
    else if (mx == g)
        h = (b - r) * m + 120.0f;
    else
        h = (r - g) * m + 240.0f;
    if (h < 0.0f)
        h += 360.0f;
    return h;
}

static inline uint32_t chartBlend(uint32_t old, const float* p, int32_t channels)
{
    const float r = clampSample(p[0]);
    const float g = channels < 3 ? r : clampSample(p[1]);
    const float b = channels < 3 ? r : clampSample(p[2]);
    const uint32_t nr = uint32_t(0.4f * r + 0.6f * float((old >> 16) & 0xffu));
    const uint32_t ng = uint32_t(0.4f * g + 0.6f * float((old >> 8) & 0xffu));
    const uint32_t nb = uint32_t(0.4f * b + 0.6f * float(old & 0xffu));
    // Repeated hits grow stronger: each halves what is left of the transparency.
    const uint32_t na = uint32_t(255.0f - 0.5f * (255.0f - float(old >> 24)));
    return (na << 24) | (nr << 16) | (ng << 8) | nb;
}

} // namespace

void HistogramData::clear()
{
    lumaBins.clear();
    redBins.clear();
    greenBins.clear();
    blueBins.clear();
    peakCount = 0;
    scope.clear();
    scopeWidth = scopeHeight = 0;
}

bool HistogramData::compute(const FlexImageFloat& image, int32_t graph, int32_t width, int32_t height)
{
    clear();
    if (image.isEmpty() || image.channels < 1 || graph < LuminanceHistogram || graph > ChrominanceChart)
        return false;
    switch (graph) {
    case LuminanceHistogram:
    case RgbHistogram:
        computeHistograms(image, graph == RgbHistogram);
        return true;
    case LuminanceWaveform:
    case RgbWaveform:
        if (width < 2)
            return false;
        scopeWidth = width;
        scopeHeight = waveformHeight;
        computeWaveform(image, graph == RgbWaveform);
        return true;
    default:
        if (width < 2 || height < 2)
            return false;
        scopeWidth = width;
        scopeHeight = height;
        computeChart(image);
        return true;
    }
}

void HistogramData::computeHistograms(const FlexImageFloat& image, bool rgb)
{
    const int32_t h = image.height, w = image.width, c = image.channels;
    const int32_t bands = std::min(h, kMaxBands);
    bandBins.assign(size_t(bands) * kBinSets * binCount, 0);
    const bool colour = rgb && c >= 3;
    parallelFor(bands, [&](int32_t band) {
        int32_t* bins = bandBins.data() + size_t(band) * kBinSets * binCount;
        int32_t* luma = bins;
        int32_t* red = bins + binCount;
        int32_t* green = bins + 2 * binCount;
        int32_t* blue = bins + 3 * binCount;
        const int32_t y0 = int32_t(int64_t(h) * band / bands), y1 = int32_t(int64_t(h) * (band + 1) / bands);
        for (int32_t y = y0; y < y1; ++y) {
            const float* p = image.row(y);
            for (int32_t x = 0; x < w; ++x, p += c) {
                if (!rgb) {
                    const int32_t i = binIndex(pixelLuminance(p, c));
                    if (i >= 0)
                        ++luma[i];
                    continue;
                }
                const int32_t ir = binIndex(p[0]);
                const int32_t ig = binIndex(colour ? p[1] : p[0]);
                const int32_t ib = binIndex(colour ? p[2] : p[0]);
                if (ir >= 0)
                    ++red[ir];
                if (ig >= 0)
                    ++green[ig];
                if (ib >= 0)
                    ++blue[ib];
            }
        }
    });
    auto merge = [&](std::vector<int32_t>& out, int32_t set) {
        out.assign(binCount, 0);
        for (int32_t band = 0; band < bands; ++band) {
            const int32_t* src = bandBins.data() + (size_t(band) * kBinSets + size_t(set)) * binCount;
            for (int32_t i = 0; i < binCount; ++i)
                out[size_t(i)] += src[i];
        }
    };
    if (rgb) {
        merge(redBins, 1);
        merge(greenBins, 2);
        merge(blueBins, 3);
    } else {
        merge(lumaBins, 0);
    }
    const int64_t n = int64_t(w) * h;
    peakCount = int32_t(std::min<int64_t>(n / 255 * 4, INT32_MAX));
}

void HistogramData::computeWaveform(const FlexImageFloat& image, bool rgb)
{
    const int32_t W = scopeWidth, h = image.height, w = image.width, c = image.channels;
    const int32_t planes = rgb ? 3 : 1;
    const size_t plane = size_t(W) * waveformHeight;
    scope.assign(plane, 0u);
    columnOffsets.resize(size_t(W));
    for (int32_t x = 0; x < W; ++x)
        columnOffsets[size_t(x)] = int32_t(int64_t(x) * (w - 1) / (W - 1)) * c;
    // Every hit only adds a fixed step up to 255, so counting hits per band of rows and adding the
    // bands afterwards gives exactly what one serial walk would.
    const int32_t bands = std::min(h, kMaxWaveformBands);
    const size_t bandSize = plane * size_t(planes);
    bandHits.assign(bandSize * size_t(bands), 0);
    parallelFor(bands, [&](int32_t band) {
        uint8_t* hits = bandHits.data() + bandSize * size_t(band);
        const int32_t y0 = int32_t(int64_t(h) * band / bands), y1 = int32_t(int64_t(h) * (band + 1) / bands);
        const int32_t* columns = columnOffsets.data();
        for (int32_t y = y0; y < y1; ++y) {
            const float* row = image.row(y);
            for (int32_t x = 0; x < W; ++x) {
                const float* p = row + columns[x];
                if (!rgb) {
                    countHit(hits[waveformIndex(pixelLuminance(p, c), W, x)]);
                    continue;
                }
                const float r = p[0], g = c >= 3 ? p[1] : p[0], b = c >= 3 ? p[2] : p[0];
                countHit(hits[waveformIndex(r, W, x)]);
                countHit(hits[plane + waveformIndex(g, W, x)]);
                countHit(hits[2 * plane + waveformIndex(b, W, x)]);
            }
        }
    });
    parallelFor(waveformHeight, [&](int32_t sy) {
        uint32_t* out = scope.data() + size_t(sy) * size_t(W);
        const size_t rowStart = size_t(sy) * size_t(W);
        for (int32_t x = 0; x < W; ++x) {
            int32_t n[3] = {0, 0, 0};
            for (int32_t band = 0; band < bands; ++band) {
                const uint8_t* hits = bandHits.data() + bandSize * size_t(band) + rowStart + size_t(x);
                for (int32_t k = 0; k < planes; ++k)
                    n[k] += hits[size_t(k) * plane];
            }
            out[x] = rgb ? rgbWaveformWord(n[0], n[1], n[2]) : lumaWaveformWord(n[0]);
        }
    });
}

bool HistogramData::chartPosition(float r, float g, float b, int32_t W, int32_t H, int32_t& x, int32_t& y)
{
    if (r != r || g != g || b != b || W < 1 || H < 1)
        return false;
    float hue = hueOf(float(r * kInv255), float(g * kInv255), float(b * kInv255)) + 180.0f;
    if (hue > 360.0f)
        hue -= 360.0f;
    const float fx = hue * float(W) * 0.002777777777777778f;
    x = fx > 0.0f ? std::min(int32_t(std::min(fx, float(W))), W - 1) : 0;
    const float luma = 0.299f * r + 0.587f * g + 0.114f * b;
    const float cb = (b - luma) * 0.5643340857787811f;
    const float cr = (r - luma) * 0.7132667617689015f;
    float v = float(H - 1) * 0.003921569f * std::max(2.0f * std::abs(cr), 2.0f * std::abs(cb));
    // Samples above 255 may reach past the top (or give NaN when infinite); they stay on the top row.
    if (v != v || v > float(H - 1))
        v = float(H - 1);
    y = std::clamp(H - 1 - int32_t(v), 0, H - 1);
    return true;
}

void HistogramData::computeChart(const FlexImageFloat& image)
{
    const int32_t W = scopeWidth, H = scopeHeight, w = image.width, h = image.height, c = image.channels;
    scope.assign(size_t(W) * size_t(H), 0u);
    chartTargets.resize(size_t(w) * size_t(h));
    // The colour maths runs row-parallel; the blending that follows depends on the order of
    // hits, so it keeps the source's row order to give the same chart on any number of threads.
    parallelFor(h, [&](int32_t y) {
        const float* p = image.row(y);
        int32_t* target = chartTargets.data() + size_t(y) * size_t(w);
        for (int32_t x = 0; x < w; ++x, p += c) {
            int32_t cx, cy;
            const float r = p[0], g = c >= 3 ? p[1] : p[0], b = c >= 3 ? p[2] : p[0];
            target[x] = chartPosition(r, g, b, W, H, cx, cy) ? cy * W + cx : -1;
        }
    });
    // Each part owns a band of chart rows and applies the hits that land there in source order.
    const int32_t parts = std::min(H, kChartParts);
    parallelFor(parts, [&](int32_t part) {
        const int32_t lo = int32_t(int64_t(H) * part / parts) * W;
        const int32_t hi = int32_t(int64_t(H) * (part + 1) / parts) * W;
        uint32_t* out = scope.data();
        const int32_t* target = chartTargets.data();
        for (int32_t y = 0; y < h; ++y) {
            const float* p = image.row(y);
            for (int32_t x = 0; x < w; ++x, p += c, ++target)
                if (*target >= lo && *target < hi)
                    out[*target] = chartBlend(out[*target], p, c);
        }
    });
}
