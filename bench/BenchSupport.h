#pragma once
// What the pixel benchmarks share: the picture size and the plain per-pixel pass that every
// family is read against, run in the same binary so both see the same machine load.
#include "core/ColorMath.h"
#include "core/FlexImage.h"
#include "core/ParallelFor.h"

#include <benchmark/benchmark.h>
#include <cstring>

inline constexpr int32_t kBenchWidth = 6000;
inline constexpr int32_t kBenchHeight = 4000;

// Every sample written before timing, so no run pays first-touch faults: value + i % 251.
inline void touchSamples(FlexImageFloat& img, float value)
{
    float* p = img.data;
    const int64_t n = img.sampleCount();
    for (int64_t i = 0; i < n; ++i)
        p[i] = value + float(i % 251);
}

// A varied picture with every page touched: (i * 37) % 256.
inline void fillStriped(FlexImageFloat& img)
{
    float* p = img.data;
    const int64_t n = img.sampleCount();
    for (int64_t i = 0; i < n; ++i)
        p[i] = float((i * 37) % 256);
}

static inline void luminanceToAllChannels(float* p)
{
    const float y = luminance(p[0], p[1], p[2]);
    p[0] = y;
    p[1] = y;
    p[2] = y;
}

// The baseline: linear luminance written back into the three channels, in place, row-parallel.
inline void luminancePass(FlexImageFloat& img)
{
    parallelFor(img.height, [&](int32_t y) {
        float* p = img.row(y);
        const int32_t w = img.width;
        for (int32_t x = 0; x < w; ++x)
            luminanceToAllChannels(p + 3 * x);
    });
}

// Times the baseline on `img` as it stands.
inline void runLuminancePass(benchmark::State& state, FlexImageFloat& img)
{
    for (auto _ : state) {
        luminancePass(img);
        benchmark::ClobberMemory();
    }
}

// A plain row-parallel copy of a 6000 x 4000 RGB float image: the memory bandwidth floor.
inline void runPlainCopy(benchmark::State& state)
{
    FlexImageFloat src(kBenchWidth, kBenchHeight, 3);
    FlexImageFloat dst(kBenchWidth, kBenchHeight, 3);
    touchSamples(src, 0.0f);
    touchSamples(dst, 1.0f);
    for (auto _ : state) {
        parallelFor(src.height, [&](int32_t y) {
            std::memcpy(dst.row(y), src.row(y), sizeof(float) * size_t(src.width) * 3);
        });
        benchmark::ClobberMemory();
    }
}
