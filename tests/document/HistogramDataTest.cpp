#include "document/core/HistogramData.h"

#include "core/ColorMath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

void fill(FlexImageFloat& img, float value)
{
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        img.data[i] = value;
}

void setPixel(FlexImageFloat& img, int32_t x, int32_t y, float r, float g, float b)
{
    float* p = img.row(y) + int64_t(x) * img.channels;
    p[0] = r;
    p[1] = g;
    p[2] = b;
}

int64_t total(const std::vector<int32_t>& bins)
{
    return std::accumulate(bins.begin(), bins.end(), int64_t(0));
}

uint32_t scopeAt(const HistogramData& d, int32_t x, int32_t y)
{
    return d.scope[size_t(y) * size_t(d.scopeWidth) + size_t(x)];
}

int32_t countNonZero(const HistogramData& d)
{
    int32_t n = 0;
    for (uint32_t w : d.scope)
        n += w != 0u;
    return n;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Histograms

TEST(HistogramDataHistograms, BlackImageFillsBinZeroAboveThePeak)
{
    FlexImageFloat img(100, 100, 3);
    fill(img, 0.0f);
    HistogramData d;
    ASSERT_TRUE(d.compute(img, HistogramData::LuminanceHistogram, 200, 100));
    ASSERT_EQ(d.lumaBins.size(), 256u);
    EXPECT_EQ(d.lumaBins[0], 10000);
    EXPECT_EQ(total(d.lumaBins), 10000);
    // truncate(10000 / 255) * 4: a flat histogram's height times four.
    EXPECT_EQ(d.peakCount, 156);
    EXPECT_GT(d.lumaBins[0], d.peakCount);
    EXPECT_TRUE(d.redBins.empty());
    EXPECT_TRUE(d.scope.empty());
}

TEST(HistogramDataHistograms, LuminanceWeightsPickTheirBins)
{
    FlexImageFloat img(4, 1, 3);
    fill(img, 0.0f);
    setPixel(img, 0, 0, 100.0f, 0.0f, 0.0f);   // 29.9
    setPixel(img, 1, 0, 0.0f, 100.0f, 0.0f);   // 58.7
    setPixel(img, 2, 0, 0.0f, 0.0f, 100.0f);   // 11.4
    setPixel(img, 3, 0, 255.0f, 255.0f, 255.0f);
    HistogramData d;
    ASSERT_TRUE(d.compute(img, HistogramData::LuminanceHistogram, 0, 0));
    EXPECT_EQ(d.lumaBins[29], 1);
    EXPECT_EQ(d.lumaBins[58], 1);
    EXPECT_EQ(d.lumaBins[11], 1);
    EXPECT_EQ(d.lumaBins[255], 1);
    EXPECT_EQ(total(d.lumaBins), 4);
    EXPECT_EQ(d.peakCount, 0); // fewer pixels than bins
}

TEST(HistogramDataHistograms, SingleChannelUsesItsOnlySample)
{
    FlexImageFloat img(3, 1, 1);
    fill(img, 0.0f);
    img.data[0] = 7.9f;
    img.data[1] = 200.0f;
    img.data[2] = 200.5f;
    HistogramData d;
    ASSERT_TRUE(d.compute(img, HistogramData::LuminanceHistogram, 0, 0));
    EXPECT_EQ(d.lumaBins[7], 1);
    EXPECT_EQ(d.lumaBins[200], 2);
    ASSERT_TRUE(d.compute(img, HistogramData::RgbHistogram, 0, 0));
    EXPECT_EQ(d.redBins[200], 2);
    EXPECT_EQ(d.greenBins[200], 2);
    EXPECT_EQ(d.blueBins[7], 1);
    EXPECT_TRUE(d.lumaBins.empty());
}

TEST(HistogramDataHistograms, RampGivesExactBinsPerChannel)
{
    // 256 columns and 300 rows (more rows than bands, uneven split): red rises, green falls,
    // blue rises at half speed with a fraction that must truncate.
    const int32_t rows = 300;
    FlexImageFloat img(256, rows, 4);
    for (int32_t y = 0; y < rows; ++y)
        for (int32_t x = 0; x < 256; ++x) {
            float* p = img.row(y) + x * 4;
            p[0] = float(x) + 0.99f;
            p[1] = float(255 - x);
            p[2] = float(x) * 0.5f;
            p[3] = 255.0f;
        }
    HistogramData d;
    ASSERT_TRUE(d.compute(img, HistogramData::RgbHistogram, 0, 0));
    for (int32_t i = 0; i < 256; ++i) {
        ASSERT_EQ(d.redBins[size_t(i)], rows) << i;
        ASSERT_EQ(d.greenBins[size_t(i)], rows) << i;
        ASSERT_EQ(d.blueBins[size_t(i)], i < 128 ? 2 * rows : 0) << i;
    }
    EXPECT_EQ(d.peakCount, 256 * rows / 255 * 4);
}

TEST(HistogramDataHistograms, OutOfRangeSamplesCountNowhere)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const float values[] = {-0.5f, -1.0f, -20.0f, 255.9f, 256.0f, 1000.0f, nan, inf, -inf};
    FlexImageFloat img(9, 1, 3);
    for (int32_t x = 0; x < 9; ++x)
        setPixel(img, x, 0, values[x], values[x], values[x]);
    HistogramData d;
    ASSERT_TRUE(d.compute(img, HistogramData::RgbHistogram, 0, 0));
    // -0.5 truncates into bin 0 and 255.9 into bin 255; the rest fall outside.
    for (const auto* bins : {&d.redBins, &d.greenBins, &d.blueBins}) {
        EXPECT_EQ(total(*bins), 2);
        EXPECT_EQ((*bins)[0], 1);
        EXPECT_EQ((*bins)[255], 1);
    }
    ASSERT_TRUE(d.compute(img, HistogramData::LuminanceHistogram, 0, 0));
    EXPECT_EQ(total(d.lumaBins), 2);
}

TEST(HistogramDataHistograms, RefusesWhatItCannotMeasure)
{
    HistogramData d;
    FlexImageFloat empty;
    EXPECT_FALSE(d.compute(empty, HistogramData::LuminanceHistogram, 10, 10));
    FlexImageFloat img(4, 4, 3);
    fill(img, 10.0f);
    ASSERT_TRUE(d.compute(img, HistogramData::LuminanceHistogram, 10, 10));
    EXPECT_FALSE(d.compute(img, 5, 10, 10));
    EXPECT_TRUE(d.lumaBins.empty()); // a refused pass leaves nothing from the last one
    EXPECT_FALSE(d.compute(img, -1, 10, 10));
    EXPECT_FALSE(d.compute(img, HistogramData::LuminanceWaveform, 1, 10));
    EXPECT_FALSE(d.compute(img, HistogramData::ChrominanceChart, 10, 1));
    EXPECT_TRUE(d.scope.empty());
}

// ---------------------------------------------------------------------------------------------
// Waveforms

TEST(HistogramDataWaveform, HitsLandOnTheirRowsWithTheirBrightness)
{
    using Px = std::array<float, 3>;
    struct Hit {
        int32_t x, y;
        uint32_t word;
    };
    struct Case {
        const char* what;
        int32_t w, h;
        std::vector<Px> pixels; // row by row
        int32_t graph, scopeWidth;
        std::vector<Hit> hits;  // and nothing else is lit
    };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Px k{0, 0, 0}, grey{100, 100, 100}, green{0, 100, 0}, white{255, 255, 255}, light{200, 200, 200};
    const Px over{300, 300, 300}, under{-50, -50, -50}, nanRed{nan, 0, 0}, mixed{10, 20, 30.5f}, even{50, 50, 50};
    const uint32_t one = 0xff141414u, three = 0xff3c3c3cu, rgbOne = 0xff0a0a0au;
    const Case cases[] = {
        // Three rows alike: each hit adds 20 to the grey; green alone weighs 58.7.
        {"luma", 4, 3, {k, grey, green, white, k, grey, green, white, k, grey, green, white},
         HistogramData::LuminanceWaveform, 4, {{0, 255, three}, {1, 155, three}, {2, 197, three}, {3, 0, three}}},
        // Out of range clamps to the edges, NaN to black.
        {"luma clamps", 3, 1, {over, under, nanRed}, HistogramData::LuminanceWaveform, 3,
         {{0, 0, one}, {1, 255, one}, {2, 255, one}}},
        {"rgb clamps", 3, 1, {over, under, nanRed}, HistogramData::RgbWaveform, 3,
         {{0, 0, rgbOne}, {1, 255, rgbOne}, {2, 255, rgbOne}}},
        // A one-pixel-wide image feeds every scope column.
        {"one column", 1, 2, {k, light}, HistogramData::LuminanceWaveform, 5,
         {{0, 255, one}, {1, 255, one}, {2, 255, one}, {3, 255, one}, {4, 255, one},
          {0, 55, one}, {1, 55, one}, {2, 55, one}, {3, 55, one}, {4, 55, one}}},
        // RGB raises only the channel hit; all three on one row make a grey of two hits each.
        {"rgb", 2, 2, {mixed, even, mixed, even}, HistogramData::RgbWaveform, 2,
         {{0, 245, 0xff140000u}, {0, 235, 0xff001400u}, {0, 225, 0xff000014u}, {1, 205, one}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        FlexImageFloat img(c.w, c.h, 3);
        for (int32_t i = 0; i < c.w * c.h; ++i)
            setPixel(img, i % c.w, i / c.w, c.pixels[size_t(i)][0], c.pixels[size_t(i)][1], c.pixels[size_t(i)][2]);
        HistogramData d;
        ASSERT_TRUE(d.compute(img, c.graph, c.scopeWidth, 50));
        EXPECT_EQ(d.scopeWidth, c.scopeWidth);
        EXPECT_EQ(d.scopeHeight, 256);
        ASSERT_EQ(d.scope.size(), size_t(c.scopeWidth * 256));
        for (const Hit& h : c.hits)
            EXPECT_EQ(scopeAt(d, h.x, h.y), h.word) << h.x << "," << h.y;
        EXPECT_EQ(countNonZero(d), int32_t(c.hits.size()));
    }
}

TEST(HistogramDataWaveform, HitsSaturateAt255)
{
    // Grey: 13 hits of 20 is 260, limited to 255. RGB: 26 hits of 10 per channel.
    FlexImageFloat grey(2, 13, 3), rgb(2, 30, 3);
    fill(grey, 128.0f);
    fill(rgb, 90.0f);
    HistogramData d;
    ASSERT_TRUE(d.compute(grey, HistogramData::LuminanceWaveform, 2, 0));
    EXPECT_EQ(scopeAt(d, 0, 127), 0xffffffffu);
    EXPECT_EQ(scopeAt(d, 1, 127), 0xffffffffu);
    ASSERT_TRUE(d.compute(rgb, HistogramData::RgbWaveform, 2, 0));
    EXPECT_EQ(scopeAt(d, 0, 165), 0xffffffffu);
}

// ---------------------------------------------------------------------------------------------
// Chrominance chart

TEST(HistogramDataChart, HueIsTheColumnAndChromaTheHeight)
{
    struct Case {
        float r, g, b;
        int32_t x, y;
    };
    const Case cases[] = {
        {255, 0, 0, 180, 0},     // red, shifted half way round
        {0, 0, 255, 60, 0},      // blue: 240 + 180 - 360
        {255, 255, 0, 240, 0},   // yellow
        {0, 255, 255, 359, 0},   // cyan: 360 is held at the last column
        {128, 128, 128, 180, 100}, // grey: hue 0, bottom row
        // Red 255 against 120: cr = 135 * (1 - 0.299) * 0.71327 = 67.5, so 2 cr / 255 of the
        // height is 52.94 rows up from the bottom.
        {255, 120, 120, 180, 100 - 52},
    };
    for (const Case& c : cases) {
        int32_t x = -1, y = -1;
        ASSERT_TRUE(HistogramData::chartPosition(c.r, c.g, c.b, 360, 101, x, y));
        EXPECT_EQ(x, c.x) << c.r << "," << c.g << "," << c.b;
        EXPECT_EQ(y, c.y) << c.r << "," << c.g << "," << c.b;
    }
}

TEST(HistogramDataChart, OutOfRangeStaysOnTheChart)
{
    int32_t x = -7, y = -7;
    const float inf = std::numeric_limits<float>::infinity();
    ASSERT_TRUE(HistogramData::chartPosition(2000.0f, -500.0f, 0.0f, 100, 50, x, y));
    EXPECT_GE(x, 0);
    EXPECT_LT(x, 100);
    EXPECT_EQ(y, 0);
    ASSERT_TRUE(HistogramData::chartPosition(inf, inf, 0.0f, 100, 50, x, y));
    EXPECT_GE(x, 0);
    EXPECT_LT(x, 100);
    EXPECT_GE(y, 0);
    EXPECT_LT(y, 50);
    EXPECT_FALSE(HistogramData::chartPosition(std::numeric_limits<float>::quiet_NaN(), 0.0f, 0.0f, 100, 50, x, y));
}

TEST(HistogramDataChart, RepeatedHitsBlendTowardsTheColourAndGrowOpaque)
{
    FlexImageFloat img(3, 1, 3);
    fill(img, 0.0f);
    setPixel(img, 0, 0, 255.0f, 0.0f, 0.0f);
    setPixel(img, 1, 0, 255.0f, 0.0f, 0.0f);
    setPixel(img, 2, 0, 0.0f, 0.0f, 255.0f);
    HistogramData d;
    ASSERT_TRUE(d.compute(img, HistogramData::ChrominanceChart, 360, 101));
    EXPECT_EQ(d.scopeWidth, 360);
    EXPECT_EQ(d.scopeHeight, 101);
    // Red twice: 0.4 * 255 = 102, then 0.4 * 255 + 0.6 * 102 = 163.2; alpha 127, then 191.
    EXPECT_EQ(scopeAt(d, 180, 0), 0xbfa30000u);
    // Blue once.
    EXPECT_EQ(scopeAt(d, 60, 0), 0x7f000066u);
    EXPECT_EQ(countNonZero(d), 2);
}

// ---------------------------------------------------------------------------------------------
// The parallel passes against one plain serial walk, on a busy picture where many pixels land on
// the same scope word: the order of hits must not depend on the threads.

namespace {

void noisyPicture(FlexImageFloat& img)
{
    uint32_t s = 99u;
    for (int64_t i = 0; i < img.sampleCount(); ++i) {
        s = s * 1664525u + 1013904223u;
        // Mostly in range, some beyond both ends.
        img.data[i] = float(int32_t(s >> 23) % 300) - 20.0f + float((s >> 8) & 7u) * 0.125f;
    }
}

uint32_t serialBlend(uint32_t o, float r, float g, float b)
{
    auto clamp = [](float v) { return v > 0.0f ? (v < 255.0f ? v : 255.0f) : 0.0f; };
    const uint32_t nr = uint32_t(0.4f * clamp(r) + 0.6f * float((o >> 16) & 0xffu));
    const uint32_t ng = uint32_t(0.4f * clamp(g) + 0.6f * float((o >> 8) & 0xffu));
    const uint32_t nb = uint32_t(0.4f * clamp(b) + 0.6f * float(o & 0xffu));
    const uint32_t na = uint32_t(255.0f - 0.5f * (255.0f - float(o >> 24)));
    return (na << 24) | (nr << 16) | (ng << 8) | nb;
}

} // namespace

TEST(HistogramDataParallel, ChartMatchesOneSerialWalk)
{
    FlexImageFloat img(301, 203, 3);
    noisyPicture(img);
    const int32_t W = 97, H = 61;
    std::vector<uint32_t> expected(size_t(W) * H, 0u);
    for (int32_t y = 0; y < img.height; ++y)
        for (int32_t x = 0; x < img.width; ++x) {
            const float* p = img.row(y) + x * 3;
            int32_t cx, cy;
            if (HistogramData::chartPosition(p[0], p[1], p[2], W, H, cx, cy))
                expected[size_t(cy) * W + size_t(cx)] = serialBlend(expected[size_t(cy) * W + size_t(cx)], p[0], p[1], p[2]);
        }
    HistogramData d;
    for (int run = 0; run < 3; ++run) {
        ASSERT_TRUE(d.compute(img, HistogramData::ChrominanceChart, W, H));
        ASSERT_EQ(d.scope, expected) << "run " << run;
    }
}

TEST(HistogramDataParallel, WaveformsMatchOneSerialWalk)
{
    FlexImageFloat img(257, 130, 3);
    noisyPicture(img);
    const int32_t W = 100;
    std::vector<uint32_t> luma(size_t(W) * 256, 0u), rgb(size_t(W) * 256, 0u);
    auto row = [](float v) { return 255 - int32_t(v > 0.0f ? (v < 255.0f ? v : 255.0f) : 0.0f); };
    auto bump = [](uint32_t w, int shift, uint32_t step) {
        const uint32_t now = std::min<uint32_t>(255u, ((w >> shift) & 0xffu) + step);
        return (w & ~(0xffu << shift)) | (now << shift) | 0xff000000u;
    };
    for (int32_t y = 0; y < img.height; ++y)
        for (int32_t x = 0; x < W; ++x) {
            const float* p = img.row(y) + (x * (img.width - 1) / (W - 1)) * 3;
            uint32_t& l = luma[size_t(row(pixelLuminance(p, 3))) * W + size_t(x)];
            const uint32_t g = std::min<uint32_t>(255u, ((l >> 16) & 0xffu) + 20u);
            l = 0xff000000u | (g << 16) | (g << 8) | g;
            for (int k = 0; k < 3; ++k) {
                uint32_t& w = rgb[size_t(row(p[k])) * W + size_t(x)];
                w = bump(w, 16 - 8 * k, 10u);
            }
        }
    HistogramData d;
    ASSERT_TRUE(d.compute(img, HistogramData::LuminanceWaveform, W, 0));
    EXPECT_EQ(d.scope, luma);
    ASSERT_TRUE(d.compute(img, HistogramData::RgbWaveform, W, 0));
    EXPECT_EQ(d.scope, rgb);
}
