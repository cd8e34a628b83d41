#pragma once
#include "core/FlexImage.h"
#include "core/ImageModApplyContext.h"
#include "core/ImageModSelector.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ImageMod.h"
#include "tests/core/TestSelectors.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

// Helpers for the curve tile tests.

using CurveTestMask = TestSelectorConst;

// 1 on even columns, 0 on odd ones.
class CurveTestStripeMask : public ImageModSelector {
public:
    CurveTestStripeMask() : ImageModSelector("Curve Test Stripes") {}
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<CurveTestStripeMask>(); }
    float maskValue(const FlexImageFloat*, int32_t x, int32_t, const ReferenceFrame*) const override
    {
        return x % 2 == 0 ? 1.0f : 0.0f;
    }
    float maskValue(const FlexImage8*, int32_t x, int32_t, const ReferenceFrame*) const override
    {
        return x % 2 == 0 ? 1.0f : 0.0f;
    }
};

// A one-row RGB image holding the given pixels.
template <typename Image>
std::unique_ptr<Image> curveTestImage(const std::vector<std::vector<float>>& pixels, int32_t channels = 3)
{
    auto img = std::make_unique<Image>(int32_t(pixels.size()), 1, channels);
    for (size_t i = 0; i < pixels.size(); ++i)
        for (int32_t c = 0; c < channels; ++c)
            img->data[i * size_t(channels) + size_t(c)] = typename Image::SampleType(pixels[i][size_t(c)]);
    return img;
}

// A varied test card: every combination of a few levels, including 0 and 255, plus a row of greys.
template <typename Image>
std::unique_ptr<Image> curveTestCard(int32_t channels = 3)
{
    const float levels[] = {0.0f, 1.0f, 37.0f, 90.0f, 127.0f, 128.0f, 200.0f, 254.0f, 255.0f};
    std::vector<std::vector<float>> px;
    for (float r : levels)
        for (float g : levels)
            for (float b : levels)
                px.push_back({r, g, b, 255.0f});
    const int32_t w = 27;
    const int32_t h = int32_t(px.size()) / w;
    auto img = std::make_unique<Image>(w, h, channels);
    for (int32_t i = 0; i < w * h; ++i)
        for (int32_t c = 0; c < channels; ++c)
            img->data[i * channels + c] = typename Image::SampleType(px[size_t(i)][size_t(c)]);
    return img;
}

template <typename Image>
bool curveTestSame(const Image& a, const Image& b)
{
    return a.sampleCount() == b.sampleCount()
        && std::memcmp(a.data, b.data, size_t(a.sampleCount()) * sizeof(typename Image::SampleType)) == 0;
}

template <typename Image>
std::unique_ptr<Image> curveTestCopy(const Image& src)
{
    auto img = std::make_unique<Image>(src.width, src.height, src.channels);
    img->copyFrom(src, true);
    return img;
}

inline void setCurve(ImageMod& mod, int32_t index, const std::string& points)
{
    ImageModVariable* v = mod.variableAt(index);
    ASSERT_NE(v, nullptr);
    ASSERT_NE(v->asCurve(), nullptr);
    v->asCurve()->curve.setFromString(points);
}

inline void setHueOffset(ImageMod& mod, int32_t index, float offset)
{
    mod.variableAt(index)->asCurve()->curve.hueOffset = offset;
}

inline void setChoice(ImageMod& mod, int32_t index, int32_t choice)
{
    mod.variableAt(index)->asChoice()->index = choice;
}

inline ImageModApplyContext maskContext(ImageModSelector* selector)
{
    ImageModApplyContext c;
    c.selector = selector;
    return c;
}

// The first three samples at px, each within tol (0: exactly).
#define EXPECT_PIXEL_NEAR(px, r, g, b, tol)                                                                            \
    do {                                                                                                               \
        EXPECT_NEAR((px)[0], (r), (tol));                                                                              \
        EXPECT_NEAR((px)[1], (g), (tol));                                                                              \
        EXPECT_NEAR((px)[2], (b), (tol));                                                                              \
    } while (0)
