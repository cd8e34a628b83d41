#include "core/ColorMath.h"
#include "core/FlexImage.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ParallelFor.h"
#include "mods/ImageModBlur.h"
#include "mods/ImageModGrainFast.h"
#include "mods/ImageModSharpen.h"

#include <benchmark/benchmark.h>

namespace
{

constexpr int32_t kWidth = 6000;
constexpr int32_t kHeight = 4000;

// A textured 6000 x 4000 RGB float picture; every page is written before timing.
void fill(FlexImageFloat& img)
{
    img.resize(kWidth, kHeight, 3);
    parallelFor(kHeight, [&](int32_t y) {
        float* p = img.row(y);
        for (int32_t k = 0; k < kWidth * 3; ++k)
            p[k] = float((k * 7 + y * 13) % 251);
    });
}

static inline void luminanceToAllChannels(float* p)
{
    const float y = luminance(p[0], p[1], p[2]);
    p[0] = y;
    p[1] = y;
    p[2] = y;
}

} // namespace

// Baseline: the plain per-pixel pass, luminance into all three channels, in place.
static void BM_PlainPerPixel(benchmark::State& state)
{
    FlexImageFloat img;
    fill(img);
    for (auto _ : state) {
        parallelFor(img.height, [&](int32_t y) {
            float* p = img.row(y);
            for (int32_t x = 0; x < img.width; ++x)
                luminanceToAllChannels(p + 3 * x);
        });
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_PlainPerPixel)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();

// Blur at Amount 50 on the whole frame; arg 0 Gaussian, 1 Box, 2 Circle.
static void BM_Blur(benchmark::State& state)
{
    FlexImageFloat img;
    fill(img);
    ImageModBlur blur;
    blur.variableAt(0)->setFloatValue(50.0f);
    blur.variableAt(2)->asChoice()->index = int32_t(state.range(0));
    for (auto _ : state) {
        blur.apply(&img, nullptr);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Blur)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();

// Grain at its defaults, laying pass; the tile is built once before timing, as on a slider drag.
static void BM_Grain(benchmark::State& state)
{
    FlexImageFloat img;
    fill(img);
    ImageModGrainFast grain;
    ImageModApplyContext ctx;
    ctx.pass = 0;
    grain.apply(&img, &ctx);
    ctx.pass = 1;
    for (auto _ : state) {
        grain.apply(&img, &ctx);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Grain)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();

// Building the grain tile alone (what a change of Scale or Uniformity costs).
static void BM_GrainTile(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(ImageModGrainFast::buildTile(1.25f, 1.0f, 6000.0f * 0.397f, 0.5f));
}
BENCHMARK(BM_GrainTile)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();

static void BM_Sharpen(benchmark::State& state)
{
    FlexImageFloat img;
    fill(img);
    ImageModSharpen sharpen;
    sharpen.variableAt(0)->setFloatValue(50.0f);
    for (auto _ : state) {
        sharpen.apply(&img, nullptr);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Sharpen)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
