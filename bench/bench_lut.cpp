#include "core/ColorMath.h"
#include "core/FlexImage.h"
#include "core/ParallelFor.h"
#include "mods/ImageModLUT3D.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

namespace {

constexpr int32_t kWidth = 6000;
constexpr int32_t kHeight = 4000;

// Real values in every page before timing, so no run pays first-touch faults.
void touch(FlexImageFloat& img)
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

// The test data's 33-point table when present, else a made-up smooth one of the same size.
std::shared_ptr<const ImageModLUT3DTable> benchTable()
{
    auto table = std::make_shared<ImageModLUT3DTable>();
    std::string message;
    if (readCubeFile(std::string(VANTREL_TESTDATA) + "/GREEN_TINT_33.cube", *table, message))
        return table;
    std::string text = "LUT_3D_SIZE 33\n";
    char line[96];
    for (int b = 0; b < 33; ++b)
        for (int g = 0; g < 33; ++g)
            for (int r = 0; r < 33; ++r) {
                std::snprintf(line, sizeof(line), "%f %f %f\n", std::sqrt(r / 32.0), g / 32.0 * 0.9 + 0.05,
                              (b / 32.0) * (b / 32.0));
                text += line;
            }
    parseCubeText(text, *table, message);
    return table;
}

} // namespace

// Baseline: linear luminance written back into the three channels, in place, row-parallel.
static void BM_PlainPerPixel(benchmark::State& state)
{
    FlexImageFloat img(kWidth, kHeight, 3);
    touch(img);
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
BENCHMARK(BM_PlainPerPixel)->Unit(benchmark::kMillisecond)->UseRealTime();

// The LUT tile at full Amount, trilinear through a 33-point table.
static void BM_Lut3D(benchmark::State& state)
{
    FlexImageFloat img(kWidth, kHeight, 3);
    touch(img);
    ImageModLUT3D mod;
    mod.setTable(benchTable());
    if (!mod.table()) {
        state.SkipWithError("no table");
        return;
    }
    for (auto _ : state) {
        mod.apply(&img, nullptr);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Lut3D)->Unit(benchmark::kMillisecond)->UseRealTime();

// The same at Amount 60, which blends each result with the pixel.
static void BM_Lut3DBlend(benchmark::State& state)
{
    FlexImageFloat img(kWidth, kHeight, 3);
    touch(img);
    ImageModLUT3D mod;
    mod.setTable(benchTable());
    mod.variables[0]->setFloatValue(60.0f);
    for (auto _ : state) {
        mod.apply(&img, nullptr);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Lut3DBlend)->Unit(benchmark::kMillisecond)->UseRealTime();
