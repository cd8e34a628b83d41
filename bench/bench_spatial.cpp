#include "core/ImageModVariableDataChoice.h"
#include "bench/BenchSupport.h"
#include "mods/ImageModBlur.h"
#include "mods/ImageModGrainFast.h"
#include "mods/ImageModSharpen.h"

#include <benchmark/benchmark.h>

namespace
{

// A textured 6000 x 4000 RGB float picture; every page is written before timing.
void fill(FlexImageFloat& img)
{
    img.resize(kBenchWidth, kBenchHeight, 3);
    parallelFor(kBenchHeight, [&](int32_t y) {
        float* p = img.row(y);
        for (int32_t k = 0; k < kBenchWidth * 3; ++k)
            p[k] = float((k * 7 + y * 13) % 251);
    });
}

} // namespace

// Baseline: the plain per-pixel pass, luminance into all three channels, in place.
static void BM_PlainPerPixel(benchmark::State& state)
{
    FlexImageFloat img;
    fill(img);
    runLuminancePass(state, img);
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
