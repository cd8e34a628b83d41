#pragma once
#include "core/FlexImage.h"

#include <cstdint>
#include <vector>

// The numbers behind the scopes, without any widget: histogram bins and the scope image of the
// waveforms and the chrominance chart, computed from a processed float image (samples 0..255).
//
// One object is reused pass after pass: its buffers keep their capacity, so a pass allocates
// nothing once the sizes have settled.
class HistogramData {
public:
    enum Graph : int32_t {
        LuminanceHistogram = 0,
        RgbHistogram = 1,
        LuminanceWaveform = 2,
        RgbWaveform = 3,
        ChrominanceChart = 4,
    };
    static constexpr int32_t binCount = 256;
    static constexpr int32_t waveformHeight = 256;

    // Bins of the two histograms; empty when the graph doesn't use them.
    std::vector<int32_t> lumaBins, redBins, greenBins, blueBins;
    // The count at the top of a histogram: four times the height of a flat one.
    int32_t peakCount = 0;
    // ARGB words (0xAARRGGBB, not premultiplied), scopeWidth by scopeHeight, top row first.
    std::vector<uint32_t> scope;
    int32_t scopeWidth = 0;
    int32_t scopeHeight = 0;

    // Fills the fields that graph uses and empties the others. width and height size the scope
    // image: waveforms use width columns by 256 rows, the chart width by height. Returns false
    // (and leaves everything cleared) for an empty image, an unknown graph, or a scope graph with
    // a size below 2 by 2.
    bool compute(const FlexImageFloat& image, int32_t graph, int32_t width, int32_t height);
    void clear();

    // Where a pixel lands on the chart, or false for a sample that isn't a number. Exposed for tests.
    static bool chartPosition(float r, float g, float b, int32_t width, int32_t height, int32_t& x, int32_t& y);

private:
    void computeHistograms(const FlexImageFloat& image, bool rgb);
    void computeWaveform(const FlexImageFloat& image, bool rgb);
    void computeChart(const FlexImageFloat& image);

    // Per-band partial bins, merged after the parallel loop.
    std::vector<int32_t> bandBins;
    // Waveforms: sample offset of each scope column's source column, and per-band hit counts.
    std::vector<int32_t> columnOffsets;
    std::vector<uint8_t> bandHits;
    // Chart: scope index of each source pixel, -1 for none.
    std::vector<int32_t> chartTargets;
};
