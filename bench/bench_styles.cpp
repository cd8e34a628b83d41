#include "bench/BenchSupport.h"
#include "mods/styles/CameraStyles.h"

#include <benchmark/benchmark.h>

// The Saloon style (five stages, one of them the serial legacy gamma) on a 6000 x 4000 float RGB
// image, against the plain per-pixel pass (luminance into all three channels) in the same run.
// Each iteration restores the picture untimed, so every pass sees the same pixels.

namespace {

template <typename Sample>
void fill(FlexImageT<Sample>& img)
{
    for (int32_t y = 0; y < img.height; ++y) {
        Sample* p = img.row(y);
        for (int32_t x = 0; x < img.width; ++x, p += 3) {
            p[0] = Sample((x * 255) / kBenchWidth);
            p[1] = Sample((y * 255) / kBenchHeight);
            p[2] = Sample(((x + y) * 37) % 256);
        }
    }
}

template <typename Sample>
void runSaloon(benchmark::State& state)
{
    FlexImageT<Sample> source(kBenchWidth, kBenchHeight, 3);
    fill(source);
    FlexImageT<Sample> img(kBenchWidth, kBenchHeight, 3);
    ImageModSaloon saloon;
    saloon.variableAt(ImageModStyle::varVariation)->setFloatValue(-1234.5f);
    for (auto _ : state) {
        state.PauseTiming();
        img.copyFrom(source, true);
        state.ResumeTiming();
        saloon.apply(&img, nullptr);
        benchmark::ClobberMemory();
    }
}

} // namespace

static void BM_PlainPerPixel(benchmark::State& state)
{
    FlexImageFloat img(kBenchWidth, kBenchHeight, 3);
    fill(img);
    runLuminancePass(state, img);
}
BENCHMARK(BM_PlainPerPixel)->Unit(benchmark::kMillisecond)->UseRealTime();

static void BM_SaloonFloat(benchmark::State& state)
{
    runSaloon<float>(state);
}
BENCHMARK(BM_SaloonFloat)->Unit(benchmark::kMillisecond)->UseRealTime();

// The 8-bit route: float copy, the same recipe, rounding back.
static void BM_Saloon8(benchmark::State& state)
{
    runSaloon<uint8_t>(state);
}
BENCHMARK(BM_Saloon8)->Unit(benchmark::kMillisecond)->UseRealTime();
