#pragma once
#include "core/ImageMod.h"
#include "core/ImageModVariableDataButton.h"
#include "core/ImageModVariableDataChoice.h"

#include <memory>
#include <vector>

// Stand-ins with the names, versions and variables of real tiles, for the file tests.
class FilterTestHueMask : public ImageMod {
public:
    FilterTestHueMask() : ImageMod("Hue Mask", "")
    {
        addMultiChoice("Hue", { "255 0 0", "255 127 0", "255 255 0", "0 255 0", "0 0 255" }, {});
    }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<FilterTestHueMask>(); }
    int32_t kind() const override { return 4; }
};

class FilterTestColorizeCurve : public ImageMod {
public:
    FilterTestColorizeCurve() : ImageMod("Colorize Curve", "Coloring Curve")
    {
        version = 2;
        addCurve("Luminance Region", "0 0.5 0.5 0.5 1 0.5");
        addColor("Color", 255.0f, 128.0f, 0.0f);
        addFloat("Amount", 1.0f, 0.0f, 1.0f);
        addChoice("Color Method", { "Colorize", "Tint", "Overlay" }, 1);
    }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<FilterTestColorizeCurve>(); }
};

class FilterTestRgbSwap : public ImageMod {
public:
    FilterTestRgbSwap() : ImageMod("RGB Swap", "")
    {
        version = 2;
        addColor("Red", 0.0f, 0.0f, 0.0f, 10.0f);
        addColor("Green", 0.0f, 0.0f, 0.0f, 10.0f);
        addColor("Blue", 0.0f, 0.0f, 0.0f, 10.0f);
    }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<FilterTestRgbSwap>(); }
};

class FilterTestPaper : public ImageMod {
public:
    FilterTestPaper() : ImageMod("Paper", "") {}
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<FilterTestPaper>(); }
};

// One variable of every kind, plus one with no value.
class FilterTestEveryKind : public ImageMod {
public:
    FilterTestEveryKind() : ImageMod("Every Kind", "")
    {
        version = 3;
        addFloat("Amount", 0.5f, 0.0f, 2.0f);
        addCurve("Curve", "0 0 1 1");
        addHueCurve("Hue Curve", "0 0.5 0.5 0.5 1 0.5");
        addColor("Color", 1.0f, 2.0f, 3.0f, 4.0f);
        addButton("Button", 7);
        ImageModVariable* choice = addChoice("Method", { "Soft", "Hard", "Both" }, 0);
        static_cast<ImageModVariableDataChoice*>(choice->data.get())->labelSets.push_back({ "Gentle", "Strong", "All" });
        addMultiChoice("Picks", { "a", "b", "c", "d" }, { 2 });
        addFile("Image", "", "*.png");
        addPixel("Point");
        addBoundary("Edges", 0.0f, 0.0f, 1.0f, 1.0f);
        addVariable(ImageModVariable("Nothing"));
    }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<FilterTestEveryKind>(); }
    void variableChanged(int32_t index) override { changed.push_back(index); }
    std::vector<int32_t> changed;
};
