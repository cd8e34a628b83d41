#include "bench/BenchSupport.h"
#include "mods/ImageModAdvancedContrast.h"
#include "mods/ImageModBrightness.h"
#include "mods/ImageModContrast.h"
#include "mods/ImageModContrastAndSaturation.h"
#include "mods/ImageModExposure.h"
#include "mods/ImageModGammaLegacy.h"
#include "mods/ImageModHighlights.h"
#include "mods/ImageModLuminanceContrast.h"
#include "mods/ImageModMultiTool.h"
#include "mods/ImageModSaturation.h"
#include "mods/ImageModShadows.h"
#include "mods/ImageModShadowsMidsHighs.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <memory>

namespace {

// Each run starts from the same picture (restored outside the timed part), so repeated passes
// don't drive the values into clamps or special cases.
void runMod(benchmark::State& state, ImageMod& mod)
{
    FlexImageFloat src(kBenchWidth, kBenchHeight, 3);
    FlexImageFloat img(kBenchWidth, kBenchHeight, 3);
    touchSamples(src, 0.0f);
    touchSamples(img, 1.0f);
    for (auto _ : state) {
        state.PauseTiming();
        std::memcpy(img.data, src.data, sizeof(float) * size_t(src.sampleCount()));
        state.ResumeTiming();
        mod.apply(&img, nullptr);
        benchmark::ClobberMemory();
    }
}

template <typename Mod>
void setAmount(Mod& mod, float a)
{
    mod.variableAt(0)->setFloatValue(a);
}

} // namespace

// Baselines, as in the core benchmark: a plain row-parallel copy and an in-place luminance pass.
// The CPU column counts every worker thread, which stays meaningful on a busy machine where the
// wall time does not.
static void BM_PlainCopy(benchmark::State& state)
{
    runPlainCopy(state);
}
BENCHMARK(BM_PlainCopy)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_Luminance(benchmark::State& state)
{
    FlexImageFloat img(kBenchWidth, kBenchHeight, 3);
    touchSamples(img, 0.0f);
    runLuminancePass(state, img);
}
BENCHMARK(BM_Luminance)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_Saturation(benchmark::State& state)
{
    ImageModSaturation mod(2, 1.3f);
    runMod(state, mod);
}
BENCHMARK(BM_Saturation)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_ExposureBrighten(benchmark::State& state)
{
    ImageModExposure mod(1.3f);
    runMod(state, mod);
}
BENCHMARK(BM_ExposureBrighten)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_ExposureDarken(benchmark::State& state)
{
    ImageModExposure mod(0.7f);
    runMod(state, mod);
}
BENCHMARK(BM_ExposureDarken)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_GammaLegacy(benchmark::State& state)
{
    ImageModGammaLegacy mod(1.3f);
    runMod(state, mod);
}
BENCHMARK(BM_GammaLegacy)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_Brightness(benchmark::State& state)
{
    ImageModBrightness mod(1.2f);
    runMod(state, mod);
}
BENCHMARK(BM_Brightness)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_Contrast(benchmark::State& state)
{
    ImageModContrast mod(2, 1.3f);
    runMod(state, mod);
}
BENCHMARK(BM_Contrast)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

// The runner's restore-and-apply sweep: the same pass read from one image into another, in place of
// a copy followed by BM_Contrast.
static void BM_ContrastFromSource(benchmark::State& state)
{
    ImageModContrast mod(2, 1.3f);
    FlexImageFloat src(kBenchWidth, kBenchHeight, 3);
    FlexImageFloat dst(kBenchWidth, kBenchHeight, 3);
    touchSamples(src, 0.0f);
    touchSamples(dst, 1.0f);
    for (auto _ : state) {
        mod.applyFrom(src, &dst, nullptr);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_ContrastFromSource)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_LuminanceContrast(benchmark::State& state)
{
    ImageModLuminanceContrast mod(1.3f);
    runMod(state, mod);
}
BENCHMARK(BM_LuminanceContrast)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_AdvancedContrast(benchmark::State& state)
{
    ImageModAdvancedContrast mod(1.3f, 90.0f, int32_t(state.range(0)));
    runMod(state, mod);
}
BENCHMARK(BM_AdvancedContrast)->Arg(0)->Arg(1)->Arg(2)->Arg(3)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_ContrastAndSaturation(benchmark::State& state)
{
    ImageModContrastAndSaturation mod(1.3f);
    runMod(state, mod);
}
BENCHMARK(BM_ContrastAndSaturation)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_Shadows(benchmark::State& state)
{
    ImageModShadows mod(int32_t(state.range(0)), 1.4f);
    runMod(state, mod);
}
BENCHMARK(BM_Shadows)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_Highlights(benchmark::State& state)
{
    ImageModHighlights mod(int32_t(state.range(0)), 0.6f);
    runMod(state, mod);
}
BENCHMARK(BM_Highlights)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_ShadowsMidsHighs(benchmark::State& state)
{
    ImageModShadowsMidsHighs mod;
    mod.variableAt(0)->setFloatValue(0.3f);
    mod.variableAt(2)->setFloatValue(-0.2f);
    mod.variableChanged(0);
    runMod(state, mod);
}
BENCHMARK(BM_ShadowsMidsHighs)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

static void BM_MultiTool(benchmark::State& state)
{
    ImageModMultiTool mod;
    mod.variableAt(0)->setFloatValue(60.0f);
    mod.variableAt(1)->setFloatValue(60.0f);
    mod.variableAt(2)->setFloatValue(60.0f);
    runMod(state, mod);
}
BENCHMARK(BM_MultiTool)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
