#pragma once
#include "CurveTestHelpers.h"

#include <array>

// Helpers for the tonal tile tests; the images, masks and comparisons come from the curve tests.

using TonalPixel = std::array<float, 3>;

// Runs mod on a one-pixel RGB image of the given depth and returns the result as floats.
template <typename Image>
TonalPixel tonalApply(ImageMod& mod, TonalPixel in, ImageModSelector* mask = nullptr)
{
    auto img = curveTestImage<Image>({{in[0], in[1], in[2]}});
    ImageModApplyContext context = maskContext(mask);
    mod.apply(img.get(), &context);
    return {float(img->data[0]), float(img->data[1]), float(img->data[2])};
}

inline void expectPixelNear(const TonalPixel& got, const TonalPixel& want, float tolerance = 1e-3f)
{
    EXPECT_NEAR(got[0], want[0], tolerance);
    EXPECT_NEAR(got[1], want[1], tolerance);
    EXPECT_NEAR(got[2], want[2], tolerance);
}

inline void expectPixelEq(const TonalPixel& got, const TonalPixel& want)
{
    EXPECT_EQ(got[0], want[0]);
    EXPECT_EQ(got[1], want[1]);
    EXPECT_EQ(got[2], want[2]);
}

// Applies mod to the test card at both depths and reports whether each came back unchanged.
inline void expectCardUntouched(ImageMod& mod, ImageModSelector* mask = nullptr)
{
    ImageModApplyContext context = maskContext(mask);
    auto f = curveTestCard<FlexImageFloat>();
    auto fRef = curveTestCopy(*f);
    mod.apply(f.get(), &context);
    EXPECT_TRUE(curveTestSame(*f, *fRef)) << mod.name << " float";
    auto b = curveTestCard<FlexImage8>();
    auto bRef = curveTestCopy(*b);
    mod.apply(b.get(), &context);
    EXPECT_TRUE(curveTestSame(*b, *bRef)) << mod.name << " 8-bit";
}

// Applies mod to the test card at both depths and checks that something changed.
inline void expectCardChanged(ImageMod& mod)
{
    auto f = curveTestCard<FlexImageFloat>();
    auto fRef = curveTestCopy(*f);
    mod.apply(f.get(), nullptr);
    EXPECT_FALSE(curveTestSame(*f, *fRef)) << mod.name << " float";
    auto b = curveTestCard<FlexImage8>();
    auto bRef = curveTestCopy(*b);
    mod.apply(b.get(), nullptr);
    EXPECT_FALSE(curveTestSame(*b, *bRef)) << mod.name << " 8-bit";
}
