#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "bench/BenchSupport.h"
#include "mods/ChannelMixerMods.h"
#include "mods/ColorCastMods.h"
#include "mods/ColorizeCurveMods.h"
#include "mods/ImageModColorizeCurve.h"
#include "mods/ImageModSelectiveColor.h"
#include "mods/ImageModSplitTone.h"
#include "mods/ImageModWhitePoint.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>

// Each colour family at a typical non-neutral setting on a 6000 x 4000 float RGB image, against the
// plain per-pixel pass (luminance written back into the three channels) run in the same binary.

namespace {

void setColour(ImageMod& m, int32_t i, float r, float g, float b, float a = 255.0f)
{
    ImageModVariableDataColor* c = m.variableAt(i)->asColor();
    c->red = r;
    c->green = g;
    c->blue = b;
    c->alpha = a;
}

void runMod(benchmark::State& state, const std::function<std::unique_ptr<ImageMod>()>& make)
{
    FlexImageFloat img(kBenchWidth, kBenchHeight, 3);
    fillStriped(img);
    std::unique_ptr<ImageMod> mod = make();
    for (auto _ : state) {
        mod->apply(&img, nullptr);
        benchmark::ClobberMemory();
    }
}

template <typename T>
std::unique_ptr<ImageMod> amountAndColour(float amount, float r, float g, float b)
{
    auto m = std::make_unique<T>();
    m->variableAt(0)->setFloatValue(amount);
    setColour(*m, 1, r, g, b);
    return m;
}

} // namespace

static void BM_PlainPerPixel(benchmark::State& state)
{
    FlexImageFloat img(kBenchWidth, kBenchHeight, 3);
    fillStriped(img);
    runLuminancePass(state, img);
}
BENCHMARK(BM_PlainPerPixel)->Unit(benchmark::kMillisecond)->UseRealTime();

#define COLOUR_BENCH(NAME, MAKE)                                                                                       \
    static void BM_##NAME(benchmark::State& state) { runMod(state, MAKE); }                                          \
    BENCHMARK(BM_##NAME)->Unit(benchmark::kMillisecond)->UseRealTime();

// Colour casts.
COLOUR_BENCH(Tint, [] { return amountAndColour<ImageModTint>(0.4f, 200.0f, 120.0f, 40.0f); })
COLOUR_BENCH(ColorFilter, [] { return amountAndColour<ImageModColorFilter>(0.4f, 200.0f, 120.0f, 40.0f); })
COLOUR_BENCH(Colorize, [] { return amountAndColour<ImageModColorize>(0.4f, 200.0f, 120.0f, 40.0f); })
COLOUR_BENCH(DyeCurrent, [] { return amountAndColour<ImageModDye>(0.4f, 200.0f, 120.0f, 40.0f); })
COLOUR_BENCH(DyeLegacy, [] {
    auto m = amountAndColour<ImageModDye>(0.4f, 200.0f, 120.0f, 40.0f);
    m->version = 1;
    return m;
})
COLOUR_BENCH(WhiteBalance, [] { return amountAndColour<ImageModWhiteBalance>(0.2f, 200.0f, 120.0f, 40.0f); })
COLOUR_BENCH(ColorBalance, [] {
    auto m = std::make_unique<ImageModColorBalance>();
    m->variableAt(1)->setFloatValue(20.0f);
    m->variableAt(3)->setFloatValue(-15.0f);
    return m;
})
COLOUR_BENCH(ColorCorrector, [] {
    auto m = std::make_unique<ImageModColorCorrector>();
    setColour(*m, 1, 60.0f, 80.0f, 160.0f);
    setColour(*m, 3, 230.0f, 180.0f, 120.0f);
    return m;
})

// Colorize curve and the tiles built on it.
COLOUR_BENCH(ColorizeCurveColorize, [] { return std::make_unique<ImageModColorizeCurve>(); })
COLOUR_BENCH(ColorizeCurveDye, [] {
    auto m = std::make_unique<ImageModColorizeCurve>();
    m->setMethod(3);
    return m;
})
COLOUR_BENCH(ColorizeCurveHue, [] {
    auto m = std::make_unique<ImageModColorizeCurve>();
    m->setMethod(7);
    return m;
})
COLOUR_BENCH(Coloring, [] { return std::make_unique<ImageModColorizeNoCurve>(); })
COLOUR_BENCH(Temperature, [] {
    auto m = std::make_unique<ImageModColorTemperature>();
    m->variableAt(0)->setFloatValue(0.4f);
    return m;
})
COLOUR_BENCH(ColorWheelsAllFour, [] {
    auto m = std::make_unique<ImageModColorWheels>();
    setColour(*m, 0, 250.0f, 200.0f, 150.0f, 60.0f);
    setColour(*m, 1, 40.0f, 80.0f, 200.0f, 120.0f);
    setColour(*m, 2, 200.0f, 120.0f, 60.0f, 90.0f);
    setColour(*m, 3, 255.0f, 230.0f, 150.0f, 120.0f);
    return m;
})

// Picked-colour tiles.
COLOUR_BENCH(WhitePoint, [] {
    auto m = std::make_unique<ImageModWhitePoint>();
    setColour(*m, 0, 210.0f, 190.0f, 170.0f);
    return m;
})
COLOUR_BENCH(SelectiveColor, [] { return std::make_unique<ImageModSelectiveColor>(); })
COLOUR_BENCH(SplitTone, [] { return std::make_unique<ImageModSplitTone>(); })

// Mixers.
COLOUR_BENCH(ChannelMixer, [] {
    auto m = std::make_unique<ImageModChannelMixer>();
    m->variableAt(ImageModChannelMixer::rowVariable(0, 1))->setFloatValue(20.0f);
    m->variableAt(ImageModChannelMixer::rowVariable(2, 2))->setFloatValue(80.0f);
    return m;
})
COLOUR_BENCH(GreyscaleMixer, [] { return std::make_unique<ImageModChannelMixerGreyscale>(); })
COLOUR_BENCH(FilteredBW, [] {
    auto m = std::make_unique<ImageModFilteredBW>();
    m->variableAt(0)->setFloatValue(60.0f);
    return m;
})
COLOUR_BENCH(RGBSwap, [] {
    auto m = std::make_unique<ImageModRGBSwap>();
    setColour(*m, 0, 0.0f, 0.0f, 255.0f);
    setColour(*m, 2, 255.0f, 0.0f, 0.0f);
    return m;
})
