#include "core/FlexImage.h"
#include "core/ParallelFor.h"

#include <benchmark/benchmark.h>
#include <cstring>

// Baseline: a plain row-parallel copy of a 6000 x 4000 RGB float image.
static void BM_PlainCopy(benchmark::State& state)
{
    FlexImageFloat src(6000, 4000, 3);
    FlexImageFloat dst(6000, 4000, 3);
    std::memset(src.data, 0, sizeof(float) * size_t(src.sampleCount()));
    for (auto _ : state) {
        parallelFor(src.height, [&](int32_t y) {
            std::memcpy(dst.row(y), src.row(y), sizeof(float) * size_t(src.width) * 3);
        });
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_PlainCopy)->Unit(benchmark::kMillisecond)->UseRealTime();
