#include "bench/BenchSupport.h"
#include "mods/ImageModLUT3D.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

namespace {

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
    FlexImageFloat img(kBenchWidth, kBenchHeight, 3);
    fillStriped(img);
    runLuminancePass(state, img);
}
BENCHMARK(BM_PlainPerPixel)->Unit(benchmark::kMillisecond)->UseRealTime();

// The LUT tile at full Amount, trilinear through a 33-point table.
static void BM_Lut3D(benchmark::State& state)
{
    FlexImageFloat img(kBenchWidth, kBenchHeight, 3);
    fillStriped(img);
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
    FlexImageFloat img(kBenchWidth, kBenchHeight, 3);
    fillStriped(img);
    ImageModLUT3D mod;
    mod.setTable(benchTable());
    mod.variables[0]->setFloatValue(60.0f);
    for (auto _ : state) {
        mod.apply(&img, nullptr);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Lut3DBlend)->Unit(benchmark::kMillisecond)->UseRealTime();
