#include "core/ColorMath.h"
#include "core/FlexImage.h"
#include "core/ParallelFor.h"

#include <benchmark/benchmark.h>
#include <cstring>

namespace {

constexpr int32_t kWidth = 6000;
constexpr int32_t kHeight = 4000;

// Writes real values into every page before timing, so neither run pays first-touch faults.
void touch(FlexImageFloat& img, float value)
{
    float* p = img.data;
    const int64_t n = img.sampleCount();
    for (int64_t i = 0; i < n; ++i)
        p[i] = value + float(i % 251);
}

static inline void luminanceToAllChannels(float* p)
{
    const float y = luminance(p[0], p[1], p[2]);
    p[0] = y;
    p[1] = y;
    p[2] = y;
}

} // namespace

// Baseline: a plain row-parallel copy of a 6000 x 4000 RGB float image.
static void BM_PlainCopy(benchmark::State& state)
{
    FlexImageFloat src(kWidth, kHeight, 3);
    FlexImageFloat dst(kWidth, kHeight, 3);
    touch(src, 0.0f);
    touch(dst, 1.0f);
    for (auto _ : state) {
        parallelFor(src.height, [&](int32_t y) {
            std::memcpy(dst.row(y), src.row(y), sizeof(float) * size_t(src.width) * 3);
        });
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_PlainCopy)->Unit(benchmark::kMillisecond)->UseRealTime();

// Linear luminance of every pixel written back into its three channels, in place.
static void BM_Luminance(benchmark::State& state)
{
    FlexImageFloat img(kWidth, kHeight, 3);
    touch(img, 0.0f);
    for (auto _ : state) {
        parallelFor(img.height, [&](int32_t y) {
            float* p = img.row(y);
            const int32_t w = img.width;
            for (int32_t x = 0; x < w; ++x)
                luminanceToAllChannels(p + 3 * x);
        });
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Luminance)->Unit(benchmark::kMillisecond)->UseRealTime();
