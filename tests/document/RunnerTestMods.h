#pragma once
#include "core/ImageMod.h"
#include "core/ImageModSelector.h"
#include "core/ImageModSourcedApply.h"
#include "core/ParallelFor.h"

#include <array>
#include <atomic>
#include <functional>

// Counts its applies per "Id" in a table shared by all clones, and adds "Amount" (times the mask)
// to every colour sample, so a stage that runs or doesn't shows in both the count and the pixels.
class TestCountMod : public ImageMod {
public:
    static std::array<std::atomic<int>, 32>& counts()
    {
        static std::array<std::atomic<int>, 32> table{};
        return table;
    }
    static std::array<std::atomic<int>, 32>& analyses()
    {
        static std::array<std::atomic<int>, 32> table{};
        return table;
    }
    static void resetCounts()
    {
        for (auto& c : counts())
            c.store(0);
        for (auto& c : analyses())
            c.store(0);
    }

    explicit TestCountMod(int32_t id = 0, float add = 1.0f) : ImageMod("Test Count", "")
    {
        addFloat("Amount", add, -255.0f, 255.0f);
        addFloat("Id", float(id), 0.0f, 31.0f);
    }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestCountMod>(); }
    int32_t id() const { return int32_t(floatValue(1)); }
    void setAmount(float v) { variableAt(0)->setFloatValue(v); }

    void analyze(FlexImageFloat*, const ImageModApplyContext*) override { analyses()[size_t(id())]++; }
    void analyze(FlexImage8*, const ImageModApplyContext*) override { analyses()[size_t(id())]++; }
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override { addTo(image, context); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override { addTo(image, context); }

private:
    template <typename Sample>
    void addTo(FlexImageT<Sample>* image, const ImageModApplyContext* context)
    {
        counts()[size_t(id())]++;
        const float add = floatValue(0);
        const ImageModSelector* selector = context ? context->selector : nullptr;
        const int32_t w = image->width;
        const int32_t ch = image->channels;
        const int32_t cc = image->colorChannels;
        parallelFor(image->height, [=](int32_t y) {
            Sample* p = image->row(y);
            for (int32_t x = 0; x < w; ++x, p += ch) {
                const float a = selector ? add * selector->maskValue(image, x, y, nullptr) : add;
                for (int32_t c = 0; c < cc; ++c) {
                    float v = float(p[c]) + a;
                    if constexpr (sizeof(Sample) == 1) {
                        v = v > 255.0f ? 255.0f : v;
                        v = v < 0.0f ? 0.0f : v;
                    }
                    p[c] = Sample(v);
                }
            }
        });
    }
};

// A counting tile that can also run from one image into another; counts those runs apart, and
// declines under a mask. Its pixels match the in-place pass exactly.
class TestSourcedMod : public TestCountMod, public ImageModSourcedApply {
public:
    explicit TestSourcedMod(int32_t id = 0, float add = 1.0f) : TestCountMod(id, add) { name = "Test Sourced"; }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestSourcedMod>(); }
    static std::atomic<int>& sourcedRuns()
    {
        static std::atomic<int> n{0};
        return n;
    }
    bool applyFrom(const FlexImageFloat& source, FlexImageFloat* dest, const ImageModApplyContext* context) override
    {
        if (context && context->selector)
            return false;
        sourcedRuns()++;
        dest->resize(source.width, source.height, source.channels);
        const float add = floatValue(0);
        const int64_t n = source.sampleCount();
        const int32_t ch = source.channels, cc = source.colorChannels;
        for (int64_t i = 0; i < n; ++i)
            dest->data[i] = int32_t(i % ch) < cc ? source.data[i] + add : source.data[i];
        dest->marginLeft = source.marginLeft;
        dest->marginRight = source.marginRight;
        dest->marginTop = source.marginTop;
        dest->marginBottom = source.marginBottom;
        dest->scale = source.scale;
        return true;
    }
};

// Needs analysis, and remembers the size and scale of the last image analysed.
class TestAnalysisMod : public TestCountMod {
public:
    explicit TestAnalysisMod(int32_t id = 0) : TestCountMod(id, 0.0f) { name = "Test Analysis"; }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestAnalysisMod>(); }
    bool needsAnalysis() const override { return true; }
    void analyze(FlexImageFloat* image, const ImageModApplyContext* context) override
    {
        seen().width.store(image->width);
        seen().height.store(image->height);
        seen().scale.store(image->scale);
        seen().frame.store(context && context->referenceFrame);
        TestCountMod::analyze(image, context);
    }
    struct Seen {
        std::atomic<int> width{0}, height{0};
        std::atomic<float> scale{0.0f};
        std::atomic<bool> frame{false};
    };
    static Seen& seen()
    {
        static Seen s;
        return s;
    }
};

// A border-family tile (kind 1) with a width that changes its equality.
class TestBorderMod : public ImageMod {
public:
    TestBorderMod() : ImageMod("Test Border", "") { addFloat("Width", 1.0f, 0.0f, 100.0f); }
    int32_t kind() const override { return 1; }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestBorderMod>(); }
};

// Calls a hook from its apply: lets a test act in the middle of a run.
class TestHookMod : public ImageMod {
public:
    TestHookMod() : ImageMod("Test Hook", "") {}
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestHookMod>(); }
    void copyFrom(const ImageMod& other) override
    {
        ImageMod::copyFrom(other);
        if (auto* h = dynamic_cast<const TestHookMod*>(&other))
            hook = h->hook;
    }
    void apply(FlexImageFloat*, const ImageModApplyContext*) override
    {
        if (hook)
            hook();
    }
    std::function<void()> hook;
};

class TestConstMask : public ImageModSelector {
public:
    explicit TestConstMask(float v = 1.0f) : ImageModSelector("Test Const Mask")
    {
        addFloat("Value", v, 0.0f, 1.0f);
    }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestConstMask>(); }
    float maskValue(const FlexImageFloat*, int32_t, int32_t, const ReferenceFrame*) const override
    {
        return floatValue(0);
    }
    float maskValue(const FlexImage8*, int32_t, int32_t, const ReferenceFrame*) const override
    {
        return floatValue(0);
    }
};

template <typename Image>
void fillGradient(Image& img)
{
    for (int32_t y = 0; y < img.height; ++y)
        for (int32_t x = 0; x < img.width; ++x)
            for (int32_t c = 0; c < img.channels; ++c)
                img.row(y)[x * img.channels + c] = typename Image::SampleType((x * 3 + y * 5 + c * 40) % 180);
}
