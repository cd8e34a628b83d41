// Curve and hue-region tiles on a 6000 x 4000 float RGB image with a typical non-neutral setting,
// next to the plain per-pixel luminance pass as the baseline. Compare each time with BM_Baseline.
#include "bench/BenchSupport.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataCurve.h"
#include "mods/ImageModComponentCurve.h"
#include "mods/ImageModExposureCurve.h"
#include "mods/ImageModHueBrightness.h"
#include "mods/ImageModHueShift.h"
#include "mods/ImageModLabCurves.h"
#include "mods/ImageModLuminanceCurve.h"
#include "mods/ImageModRGBCombinedCurve.h"
#include "mods/ImageModRGBCurves.h"
#include "mods/ImageModSaturationCurve.h"
#include "mods/ImageModToneCurve.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <memory>

namespace {

// A photo-like spread of colours, every page written before timing.
void fillSource(FlexImageFloat& img)
{
    parallelFor(img.height, [&](int32_t y) {
        float* p = img.row(y);
        for (int32_t x = 0; x < img.width; ++x, p += 3) {
            p[0] = float((x * 7 + y * 3) % 256);
            p[1] = float((x * 3 + y * 11) % 256);
            p[2] = float((x * 13 + y * 5) % 256);
        }
    });
}

FlexImageFloat& source()
{
    static FlexImageFloat img(kBenchWidth, kBenchHeight, 3);
    static bool filled = false;
    if (!filled) {
        fillSource(img);
        filled = true;
    }
    return img;
}

void restore(FlexImageFloat& dst)
{
    const FlexImageFloat& src = source();
    parallelFor(src.height, [&](int32_t y) {
        std::memcpy(dst.row(y), src.row(y), sizeof(float) * size_t(src.width) * 3);
    });
}

void setCurvePoints(ImageMod& mod, int32_t index, const char* points, float hueOffset = 180.0f)
{
    ToneCurve& c = mod.variableAt(index)->asCurve()->curve;
    c.setFromString(points);
    c.hueOffset = hueOffset;
}

// Times apply only; the image is put back between runs so every run sees the same pixels.
void runMod(benchmark::State& state, ImageMod& mod)
{
    FlexImageFloat img(kBenchWidth, kBenchHeight, 3);
    restore(img);
    for (auto _ : state) {
        state.PauseTiming();
        restore(img);
        state.ResumeTiming();
        mod.apply(&img, nullptr);
        benchmark::ClobberMemory();
    }
}

// The tiles whose one curve is variable 1.
template <typename Mod>
void runOneCurve(benchmark::State& state, const char* points)
{
    Mod mod;
    setCurvePoints(mod, 1, points);
    runMod(state, mod);
}

const char* kSCurve = "0 0 .25 .18 .5 .5 .75 .82 1 1";
const char* kHueCurve = "0 .8 .25 .5 .5 .3 .75 .5 1 .8";

} // namespace

// Baseline: linear luminance written into all three channels, in place, row-parallel.
static void BM_Baseline(benchmark::State& state)
{
    FlexImageFloat img(kBenchWidth, kBenchHeight, 3);
    restore(img);
    for (auto _ : state) {
        state.PauseTiming();
        restore(img);
        state.ResumeTiming();
        luminancePass(img);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Baseline)->Unit(benchmark::kMillisecond)->UseRealTime();

#define ONE_CURVE_BENCH(NAME, MOD, POINTS)                                                                             \
    static void BM_##NAME(benchmark::State& state) { runOneCurve<MOD>(state, POINTS); }                               \
    BENCHMARK(BM_##NAME)->Unit(benchmark::kMillisecond)->UseRealTime();

static void BM_ToneCurve(benchmark::State& state)
{
    ImageModToneCurve mod;
    setCurvePoints(mod, 1, kSCurve);
    mod.variableAt(2)->asChoice()->index = int32_t(state.range(0));
    runMod(state, mod);
}
BENCHMARK(BM_ToneCurve)->Arg(0)->Arg(1)->Arg(2)->Arg(3)->Unit(benchmark::kMillisecond)->UseRealTime();

ONE_CURVE_BENCH(LuminanceCurve, ImageModLuminanceCurve, kSCurve)

ONE_CURVE_BENCH(RGBCombinedCurve, ImageModRGBCombinedCurve, kSCurve)

static void BM_RGBCurves(benchmark::State& state)
{
    ImageModRGBCurves mod;
    setCurvePoints(mod, 0, "0 0 .5 .6 1 1");
    setCurvePoints(mod, 2, "0 0 .5 .4 1 1");
    setCurvePoints(mod, 3, kSCurve);
    runMod(state, mod);
}
BENCHMARK(BM_RGBCurves)->Unit(benchmark::kMillisecond)->UseRealTime();

ONE_CURVE_BENCH(ComponentCurve, ImageModComponentCurve, kSCurve)

static void BM_LabCurves(benchmark::State& state)
{
    ImageModLabCurves mod;
    setCurvePoints(mod, 0, kSCurve);
    setCurvePoints(mod, 2, "0 .05 1 .95");
    runMod(state, mod);
}
BENCHMARK(BM_LabCurves)->Unit(benchmark::kMillisecond)->UseRealTime();

ONE_CURVE_BENCH(ExposureCurve, ImageModExposureCurve, "0 .7 .5 .5 1 .3")

ONE_CURVE_BENCH(SaturationCurve, ImageModSaturationCurve, kHueCurve)

static void BM_HueBrightness(benchmark::State& state)
{
    ImageModHueBrightness mod;
    mod.setVersion(int32_t(state.range(0)));
    setCurvePoints(mod, 1, kHueCurve);
    runMod(state, mod);
}
BENCHMARK(BM_HueBrightness)->Arg(1)->Arg(2)->Arg(3)->Unit(benchmark::kMillisecond)->UseRealTime();

ONE_CURVE_BENCH(HueShift, ImageModHueShift, kHueCurve)
