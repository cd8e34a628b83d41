#include "bench/BenchSupport.h"

#include <benchmark/benchmark.h>

// Baseline: a plain row-parallel copy of a 6000 x 4000 RGB float image.
static void BM_PlainCopy(benchmark::State& state)
{
    runPlainCopy(state);
}
BENCHMARK(BM_PlainCopy)->Unit(benchmark::kMillisecond)->UseRealTime();

// Linear luminance of every pixel written back into its three channels, in place.
static void BM_Luminance(benchmark::State& state)
{
    FlexImageFloat img(kBenchWidth, kBenchHeight, 3);
    touchSamples(img, 0.0f);
    runLuminancePass(state, img);
}
BENCHMARK(BM_Luminance)->Unit(benchmark::kMillisecond)->UseRealTime();
