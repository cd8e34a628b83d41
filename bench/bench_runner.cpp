#include "core/ColorMath.h"
#include "core/FlexImage.h"
#include "core/ImageMod.h"
#include "core/ParallelFor.h"
#include "core/ToneCurve.h"
#include "document/core/HeadlessRender.h"
#include "document/core/ModSequenceRunner.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

// A slider drag as the viewport runs it: a screen-sized region through five simple per-pixel tiles,
// the fourth tile's value changing on every pass. The tiles are stand-ins of the usual cost shape
// (one table or a few multiplies per sample): exposure, contrast, saturation, a tone curve and a
// vignette.
namespace {

constexpr int32_t kViewWidth = 1920;
constexpr int32_t kViewHeight = 1080;

enum BenchKind { kExposure, kContrast, kSaturation, kCurve, kVignette };

static inline void exposurePixel(float* p, float gain)
{
    p[0] *= gain;
    p[1] *= gain;
    p[2] *= gain;
}

static inline void contrastPixel(float* p, float k)
{
    p[0] = (p[0] - 127.5f) * k + 127.5f;
    p[1] = (p[1] - 127.5f) * k + 127.5f;
    p[2] = (p[2] - 127.5f) * k + 127.5f;
}

static inline void saturationPixel(float* p, float s)
{
    const float y = luminance(p[0], p[1], p[2]);
    p[0] = y + (p[0] - y) * s;
    p[1] = y + (p[1] - y) * s;
    p[2] = y + (p[2] - y) * s;
}

static inline void curvePixel(float* p, const ToneCurve& curve)
{
    p[0] = curve.lookup(p[0] * (1.0f / 255.0f)) * 255.0f;
    p[1] = curve.lookup(p[1] * (1.0f / 255.0f)) * 255.0f;
    p[2] = curve.lookup(p[2] * (1.0f / 255.0f)) * 255.0f;
}

static inline void vignettePixel(float* p, float d2, float amount)
{
    const float k = 1.0f - amount * d2;
    p[0] *= k;
    p[1] *= k;
    p[2] *= k;
}

class BenchTile : public ImageMod {
public:
    explicit BenchTile(int32_t k = kExposure, float value = 1.0f) : ImageMod("Bench Tile", ""), kind(k)
    {
        addFloat("Amount", value, -10.0f, 10.0f);
        addFloat("Kind", float(k), 0.0f, 10.0f);
    }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<BenchTile>(); }
    void apply(FlexImageFloat* image, const ImageModApplyContext*) override
    {
        const float amount = floatValue(0);
        const int32_t k = int32_t(floatValue(1));
        const int32_t w = image->width;
        const int32_t h = image->height;
        const int32_t ch = image->channels;
        ToneCurve curve(std::vector<ToneCurvePoint>{{0.0f, 0.0f}, {0.25f, 0.2f + 0.01f * amount}, {1.0f, 1.0f}});
        parallelFor(h, [=, &curve](int32_t y) {
            float* p = image->row(y);
            const float dy = (float(y) - h * 0.5f) / float(h);
            for (int32_t x = 0; x < w; ++x, p += ch) {
                switch (k) {
                case kExposure: exposurePixel(p, amount); break;
                case kContrast: contrastPixel(p, amount); break;
                case kSaturation: saturationPixel(p, amount); break;
                case kCurve: curvePixel(p, curve); break;
                default: {
                    const float dx = (float(x) - w * 0.5f) / float(w);
                    vignettePixel(p, dx * dx + dy * dy, amount);
                }
                }
            }
        });
    }
    int32_t kind;
};

struct Drag {
    std::vector<std::unique_ptr<ImageMod>> tiles;
    std::vector<ImageMod*> list;
    Drag()
    {
        tiles.push_back(std::make_unique<BenchTile>(kExposure, 1.1f));
        tiles.push_back(std::make_unique<BenchTile>(kContrast, 1.2f));
        tiles.push_back(std::make_unique<BenchTile>(kSaturation, 0.8f));
        tiles.push_back(std::make_unique<BenchTile>(kCurve, 1.0f));
        tiles.push_back(std::make_unique<BenchTile>(kVignette, 0.3f));
        for (auto& t : tiles)
            list.push_back(t.get());
    }
    void move(int64_t pass) { tiles[3]->variableAt(0)->setFloatValue(float(pass % 50) * 0.1f); }
};

void fill(FlexImageFloat& img)
{
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        img.data[i] = float((i * 7) % 251);
}

void dragPasses(benchmark::State& state, bool useCache)
{
    FlexImageFloat region(kViewWidth, kViewHeight, 3);
    fill(region);
    FlexImageFloat output(kViewWidth, kViewHeight, 3);
    fill(output);
    Drag drag;
    ModSequenceRunner runner(useCache, false, 256, 0.5f);
    int64_t pass = 0;
    for (auto _ : state) {
        drag.move(pass++);
        runner.run(drag.list, &region, &output, -1, 0, nullptr);
        benchmark::ClobberMemory();
    }
    state.counters["passes/s"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

} // namespace

static void BM_DragWithCache(benchmark::State& state)
{
    dragPasses(state, true);
}
BENCHMARK(BM_DragWithCache)->Unit(benchmark::kMillisecond)->UseRealTime();

static void BM_DragWithoutCache(benchmark::State& state)
{
    dragPasses(state, false);
}
BENCHMARK(BM_DragWithoutCache)->Unit(benchmark::kMillisecond)->UseRealTime();

// Full-size render of the same five tiles on a 6000 x 4000 picture, against one plain per-pixel
// pass (the exposure tile alone) over the same picture.
static void BM_FullSizeRender(benchmark::State& state)
{
    FlexImageFloat source(6000, 4000, 3);
    fill(source);
    FlexImageFloat out(6000, 4000, 3);
    fill(out);
    Drag drag;
    for (auto _ : state) {
        renderFullSize(source, drag.list, out);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_FullSizeRender)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

static void BM_FullSizePlainPass(benchmark::State& state)
{
    FlexImageFloat img(6000, 4000, 3);
    fill(img);
    BenchTile exposure(kExposure, 1.0001f);
    for (auto _ : state) {
        exposure.apply(&img, nullptr);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_FullSizePlainPass)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
