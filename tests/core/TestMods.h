#pragma once
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
