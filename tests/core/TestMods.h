#pragma once
#include "tests/core/TestSelectors.h"
#include "core/ImageMod.h"

#include <vector>

// Small concrete mods for the core tests.
class TestModPlain : public ImageMod {
public:
    explicit TestModPlain(int32_t extraVariables = 2) : ImageMod("Test Plain", "")
    {
        addFloat("Amount", 1.0f, 0.0f, 2.0f);
        if (extraVariables > 0)
            addChoice("Mode", {"Soft", "Hard", "Both"}, 0, "Blend Mode");
        if (extraVariables > 1)
            addColor("Tint", 10.0f, 20.0f, 30.0f);
    }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestModPlain>(); }
    void variableChanged(int32_t index) override { changed.push_back(index); }

    std::vector<int32_t> changed;
};

class TestModEmpty : public ImageMod {
public:
    TestModEmpty() : ImageMod("Test Empty", "Shown") {}
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestModEmpty>(); }
};

// Adds Amount to every colour sample, masked by rule B, at both depths.
class TestModAdd : public ImageMod {
public:
    explicit TestModAdd(float add = 10.0f) : ImageMod("Test Add", "") { addFloat("Amount", add, -255.0f, 255.0f); }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestModAdd>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};

class TestModNeedsAnalysis : public TestModEmpty {
public:
    bool needsAnalysis() const override { return true; }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestModNeedsAnalysis>(); }
};

class TestModPadded : public TestModEmpty {
public:
    explicit TestModPadded(int32_t r = 0) : radius(r) {}
    int32_t paddingNeeded(int32_t, int32_t, float) const override { return radius; }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestModPadded>(radius); }
    int32_t radius;
};

class TestModVariation : public ImageMod {
public:
    TestModVariation() : ImageMod("Test Variation", "")
    {
        addFloat("Amount", 1.0f, 0.0f, 1.0f);
        addFloat(kVariationVariableName, 0.0f, -5000.0f, 5000.0f);
    }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestModVariation>(); }
};

#include "core/ImageModSelector.h"
#include "core/ImageModSelectorWalk.h"

template <typename Image>
void fillImage(Image& img, float value)
{
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        img.data[i] = typename Image::SampleType(value);
}

// What the driver does for a flat list: each enabled tile gets the masks to its left.
template <typename Image>
void runTiles(const std::vector<ImageMod*>& tiles, Image* image, const ImageModApplyContext* base = nullptr)
{
    for (int32_t i = 0; i < int32_t(tiles.size()); ++i) {
        if (!tiles[size_t(i)]->enabled)
            continue;
        ImageModSelectorPointerArray wrapper;
        ImageModApplyContext ctx;
        if (base)
            ctx = *base;
        ctx.selector = selectorForList(selectorsForTile(tiles, i), wrapper);
        tiles[size_t(i)]->apply(image, &ctx);
    }
}

// Records the context each apply received.
class TestModRecorder : public ImageMod {
public:
    TestModRecorder() : ImageMod("Test Recorder", "") {}
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestModRecorder>(); }
    void apply(FlexImage8*, const ImageModApplyContext* c) override { seen.push_back(c ? *c : ImageModApplyContext{}); }
    void apply(FlexImageFloat*, const ImageModApplyContext* c) override { seen.push_back(c ? *c : ImageModApplyContext{}); }
    std::vector<ImageModApplyContext> seen;
};

class TestModBorder : public TestModEmpty {
public:
    int32_t kind() const override { return 1; }
    ImageMod* borderMod() override { return this; }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestModBorder>(); }
};

class TestModImpure : public TestModEmpty {
public:
    int32_t passCount() const override { return 2; }
    bool passIsPure(int32_t pass) const override { return pass == 0; }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestModImpure>(); }
};
