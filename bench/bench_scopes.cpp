// The scopes on a 1920 by 1080 float picture, each against a plain single-threaded loop that
// computes the same thing, so the ratio can be read from one run.
#include "core/ColorMath.h"
#include "core/FlexImage.h"
#include "document/core/HistogramData.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

constexpr int32_t kWidth = 1920;
constexpr int32_t kHeight = 1080;
constexpr int32_t kScopeWidth = 340;
constexpr int32_t kScopeHeight = 212;

// Varied, photo-like values, touched before timing.
void fillPicture(FlexImageFloat& img)
{
    uint32_t s = 12345u;
    for (int32_t y = 0; y < img.height; ++y) {
        float* p = img.row(y);
        for (int32_t x = 0; x < img.width; ++x, p += 3) {
            s = s * 1664525u + 1013904223u;
            const float base = float((x * 255) / img.width);
            p[0] = std::min(255.0f, base * 0.8f + float(s >> 27));
            p[1] = std::min(255.0f, float((y * 255) / img.height) + float((s >> 20) & 15u));
            p[2] = std::min(255.0f, 0.5f * (base + p[1]));
        }
    }
}

const FlexImageFloat& picture()
{
    static FlexImageFloat img(kWidth, kHeight, 3);
    static const bool filled = [] {
        fillPicture(img);
        return true;
    }();
    (void)filled;
    return img;
}

void BM_Scope(benchmark::State& state)
{
    const FlexImageFloat& img = picture();
    HistogramData data;
    const int32_t graph = int32_t(state.range(0));
    for (auto _ : state) {
        data.compute(img, graph, kScopeWidth, kScopeHeight);
        benchmark::DoNotOptimize(data.scope.data());
        benchmark::DoNotOptimize(data.lumaBins.data());
    }
    state.SetLabel(graph == 0 ? "luma histogram" : graph == 1 ? "rgb histogram" : graph == 2 ? "luma waveform"
                   : graph == 3 ? "rgb waveform" : "chroma chart");
    state.SetItemsProcessed(state.iterations() * int64_t(kWidth) * kHeight);
}
BENCHMARK(BM_Scope)->DenseRange(0, 4)->Unit(benchmark::kMillisecond)->UseRealTime();

// Baselines: the obvious serial loops.
void BM_BaselineLumaHistogram(benchmark::State& state)
{
    const FlexImageFloat& img = picture();
    std::vector<int32_t> bins(256);
    for (auto _ : state) {
        std::fill(bins.begin(), bins.end(), 0);
        for (int32_t y = 0; y < img.height; ++y) {
            const float* p = img.row(y);
            for (int32_t x = 0; x < img.width; ++x, p += 3) {
                const float v = luminance(p[0], p[1], p[2]);
                if (v > -1.0f && v < 256.0f)
                    ++bins[size_t(int32_t(v))];
            }
        }
        benchmark::DoNotOptimize(bins.data());
    }
    state.SetItemsProcessed(state.iterations() * int64_t(kWidth) * kHeight);
}
BENCHMARK(BM_BaselineLumaHistogram)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_BaselineRgbHistogram(benchmark::State& state)
{
    const FlexImageFloat& img = picture();
    std::vector<int32_t> r(256), g(256), b(256);
    for (auto _ : state) {
        std::fill(r.begin(), r.end(), 0);
        std::fill(g.begin(), g.end(), 0);
        std::fill(b.begin(), b.end(), 0);
        for (int32_t y = 0; y < img.height; ++y) {
            const float* p = img.row(y);
            for (int32_t x = 0; x < img.width; ++x, p += 3) {
                if (p[0] > -1.0f && p[0] < 256.0f)
                    ++r[size_t(int32_t(p[0]))];
                if (p[1] > -1.0f && p[1] < 256.0f)
                    ++g[size_t(int32_t(p[1]))];
                if (p[2] > -1.0f && p[2] < 256.0f)
                    ++b[size_t(int32_t(p[2]))];
            }
        }
        benchmark::DoNotOptimize(r.data());
        benchmark::DoNotOptimize(g.data());
        benchmark::DoNotOptimize(b.data());
    }
    state.SetItemsProcessed(state.iterations() * int64_t(kWidth) * kHeight);
}
BENCHMARK(BM_BaselineRgbHistogram)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_BaselineLumaWaveform(benchmark::State& state)
{
    const FlexImageFloat& img = picture();
    std::vector<uint32_t> scope(size_t(kScopeWidth) * 256);
    for (auto _ : state) {
        std::fill(scope.begin(), scope.end(), 0u);
        for (int32_t y = 0; y < img.height; ++y) {
            const float* row = img.row(y);
            for (int32_t x = 0; x < kScopeWidth; ++x) {
                const float* p = row + int64_t(x) * (img.width - 1) / (kScopeWidth - 1) * 3;
                const float v = std::clamp(luminance(p[0], p[1], p[2]), 0.0f, 255.0f);
                uint32_t& w = scope[size_t(255 - int32_t(v)) * kScopeWidth + size_t(x)];
                const uint32_t g = std::min<uint32_t>(255u, ((w >> 16) & 0xffu) + 20u);
                w = 0xff000000u | (g << 16) | (g << 8) | g;
            }
        }
        benchmark::DoNotOptimize(scope.data());
    }
    state.SetItemsProcessed(state.iterations() * int64_t(kWidth) * kHeight);
}
BENCHMARK(BM_BaselineLumaWaveform)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

namespace {

void BM_BaselineChart(benchmark::State& state)
{
    const FlexImageFloat& img = picture();
    std::vector<uint32_t> scope(size_t(kScopeWidth) * kScopeHeight);
    for (auto _ : state) {
        std::fill(scope.begin(), scope.end(), 0u);
        for (int32_t y = 0; y < img.height; ++y) {
            const float* p = img.row(y);
            for (int32_t x = 0; x < img.width; ++x, p += 3) {
                int32_t cx, cy;
                if (!HistogramData::chartPosition(p[0], p[1], p[2], kScopeWidth, kScopeHeight, cx, cy))
                    continue;
                uint32_t& o = scope[size_t(cy) * kScopeWidth + size_t(cx)];
                const uint32_t r = uint32_t(0.4f * std::clamp(p[0], 0.0f, 255.0f) + 0.6f * float((o >> 16) & 0xffu));
                const uint32_t g = uint32_t(0.4f * std::clamp(p[1], 0.0f, 255.0f) + 0.6f * float((o >> 8) & 0xffu));
                const uint32_t b = uint32_t(0.4f * std::clamp(p[2], 0.0f, 255.0f) + 0.6f * float(o & 0xffu));
                const uint32_t a = uint32_t(255.0f - 0.5f * (255.0f - float(o >> 24)));
                o = (a << 24) | (r << 16) | (g << 8) | b;
            }
        }
        benchmark::DoNotOptimize(scope.data());
    }
    state.SetItemsProcessed(state.iterations() * int64_t(kWidth) * kHeight);
}
BENCHMARK(BM_BaselineChart)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
