#pragma once
#include "core/ImageModSelector.h"

#include <memory>

// Test masks shared by the core and tile suites.

// A mask with the same value everywhere.
class TestSelectorConst : public ImageModSelector {
public:
    explicit TestSelectorConst(float v = 1.0f, bool on = true) : ImageModSelector("Test Const Mask"), value(v)
    {
        enabled = on;
    }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestSelectorConst>(value); }
    float maskValue(const FlexImageFloat*, int32_t, int32_t, const ReferenceFrame*) const override { return value; }
    float maskValue(const FlexImage8*, int32_t, int32_t, const ReferenceFrame*) const override { return value; }
    float value;
};

// A mask that is 1 on the left half of the image and 0 on the right, from the pixel position.
class TestSelectorLeftHalf : public ImageModSelector {
public:
    TestSelectorLeftHalf() : ImageModSelector("Test Left Half") {}
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestSelectorLeftHalf>(); }
    float maskValue(const FlexImageFloat* img, int32_t x, int32_t, const ReferenceFrame*) const override
    {
        return x < img->width / 2 ? 1.0f : 0.0f;
    }
    float maskValue(const FlexImage8* img, int32_t x, int32_t, const ReferenceFrame*) const override
    {
        return x < img->width / 2 ? 1.0f : 0.0f;
    }
};

// A mask that reads the red sample: red / 255. Changes as the image changes.
class TestSelectorRed : public ImageModSelector {
public:
    TestSelectorRed() : ImageModSelector("Test Red") {}
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<TestSelectorRed>(); }
    float maskValue(const FlexImageFloat* img, int32_t x, int32_t y, const ReferenceFrame*) const override
    {
        return img->data[(y * img->width + x) * img->channels] / 255.0f;
    }
    float maskValue(const FlexImage8* img, int32_t x, int32_t y, const ReferenceFrame*) const override
    {
        return float(img->data[(y * img->width + x) * img->channels]) / 255.0f;
    }
};
