#include "TonalTestHelpers.h"

#include "mods/ImageModAdvancedContrast.h"
#include "mods/ImageModContrast.h"
#include "mods/ImageModContrastAndSaturation.h"
#include "mods/ImageModLuminanceContrast.h"
#include "mods/ImageModSaturation.h"

// Amount 1.5 gives exponent 2 throughout.

TEST(TonalContrast, CurrentVersionIgnoresCenter)
{
    ImageModContrast mod(2, 1.5f, 200.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(mod, {200, 45, 90}), {236.666667f, 22.5f, 90});
    expectPixelEq(tonalApply<FlexImage8>(mod, {200, 45, 90}), {236, 22, 90});
    expectPixelEq(tonalApply<FlexImageFloat>(mod, {0, 255, 90}), {0, 255, 90});
}

TEST(TonalContrast, VersionOneUsesCenter)
{
    ImageModContrast mod(1, 1.5f, 200.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(mod, {45, 220, 200}), {10.125f, 232.727273f, 200});
    expectPixelEq(tonalApply<FlexImage8>(mod, {45, 220, 200}), {10, 232, 200});
    // Center 0: everything above takes the upper branch, 0 stays.
    ImageModContrast zero(1, 1.5f, 0.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(zero, {0, 100, 255}), {0, 160.784314f, 255});
    // Center 255 never divides by zero inside the 8-bit range.
    ImageModContrast top(1, 1.5f, 255.0f);
    expectPixelEq(tonalApply<FlexImage8>(top, {255, 0, 51}), {255, 0, 10});
}

TEST(TonalContrast, FloatIsNotClamped)
{
    // Out-of-scale input is neither clamped on the way in nor on the way out: with exponent 2 the
    // squares fold 300 back to 242.73 and -10 up to 1.11.
    ImageModContrast mod(2, 1.5f, 90.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(mod, {300, -10, 90}), {242.727273f, 1.111111f, 90});
}

TEST(TonalContrast, MaskBendsTheAmount)
{
    ImageModContrast mod(2, 1.5f);
    CurveTestMask none(0.0f);
    expectPixelEq(tonalApply<FlexImage8>(mod, {200, 45, 90}, &none), {200, 45, 90});
    expectPixelEq(tonalApply<FlexImageFloat>(mod, {200, 45, 90}, &none), {200, 45, 90});
    // Mask 0.5 gives 1.25, exponent 4/3.
    CurveTestMask half(0.5f);
    EXPECT_NEAR(tonalApply<FlexImageFloat>(mod, {45, 45, 45}, &half)[0], 35.716524f, 1e-3f);
    EXPECT_EQ(tonalApply<FlexImage8>(mod, {45, 45, 45}, &half)[0], 35.0f);
}

TEST(TonalLuminanceContrast, MovesLuminanceKeepingRatios)
{
    // Y of (100, 50, 20) is 61.53 and goes to 42.066; channels scale by 0.68367.
    ImageModLuminanceContrast mod(1.5f, 90.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(mod, {100, 50, 20}), {68.366667f, 34.183333f, 13.673333f});
    expectPixelEq(tonalApply<FlexImage8>(mod, {100, 50, 20}), {68, 34, 13});
    // Y exactly 0 or 255 is written into every channel.
    expectPixelEq(tonalApply<FlexImageFloat>(mod, {255, 255, 255}), {255, 255, 255});
    CurveTestMask none(0.0f);
    expectPixelEq(tonalApply<FlexImage8>(mod, {100, 50, 20}, &none), {100, 50, 20});
}

TEST(TonalAdvancedContrast, MethodsGiveTheirOwnResults)
{
    ImageModAdvancedContrast mod(1.5f, 90.0f);
    // RGB: the per-channel pair.
    expectPixelNear(tonalApply<FlexImageFloat>(mod, {200, 45, 90}), {236.666667f, 22.5f, 90});
    // Luminance: the luminance contrast step.
    setChoice(mod, 2, ImageModAdvancedContrast::methodLuminance);
    expectPixelNear(tonalApply<FlexImageFloat>(mod, {100, 50, 20}), {68.366667f, 34.183333f, 13.673333f});
    expectPixelEq(tonalApply<FlexImage8>(mod, {100, 50, 20}), {68, 34, 13});
    // Value: V 0.7843 goes to 0.9281 with hue and saturation kept.
    setChoice(mod, 2, ImageModAdvancedContrast::methodValue);
    expectPixelNear(tonalApply<FlexImageFloat>(mod, {200, 100, 50}), {236.666667f, 118.333333f, 59.166667f});
    expectPixelEq(tonalApply<FlexImage8>(mod, {200, 100, 50}), {236, 118, 59});
    // Lightness: L 0.4902 goes to 0.5983, rebuilt through HSL.
    setChoice(mod, 2, ImageModAdvancedContrast::methodLightness);
    expectPixelNear(tonalApply<FlexImageFloat>(mod, {200, 100, 50}), {214.030303f, 132.090909f, 91.121212f});
    expectPixelEq(tonalApply<FlexImage8>(mod, {200, 100, 50}), {214, 132, 91});
    // An unknown method leaves the image alone.
    mod.variableAt(2)->asChoice()->index = 7;
    expectCardUntouched(mod);
}

TEST(TonalAdvancedContrast, MaskBendsTheAmountForEveryMethod)
{
    for (int32_t method = 0; method < 4; ++method) {
        ImageModAdvancedContrast mod(1.8f, 90.0f, method);
        CurveTestMask none(0.0f);
        expectCardUntouched(mod, &none);
        expectCardChanged(mod);
    }
}

TEST(TonalContrastAndSaturation, ContrastThenFallingSaturation)
{
    // Contrast to (236.67, 109.39, 27.78), then version 1 saturation at (1 - 1.5) * 0.44 + 1 = 0.78.
    ImageModContrastAndSaturation mod(1.5f, 90.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(mod, {200, 100, 50}), {214.991733f, 115.719006f, 52.0584f});
    expectPixelEq(tonalApply<FlexImage8>(mod, {200, 100, 50}), {214, 115, 51});
    // Center is honoured: the inner contrast runs at version 1.
    ImageModContrastAndSaturation centered(1.5f, 200.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(centered, {45, 45, 45}), {10.125f, 10.125f, 10.125f});
}

TEST(TonalContrastAndSaturation, MaskReachesBothStages)
{
    ImageModContrastAndSaturation mod(1.5f, 90.0f);
    CurveTestMask none(0.0f);
    expectCardUntouched(mod, &none);
    // At mask 0.5 each stage bends its own amount: the result equals running both halves by hand.
    CurveTestMask half(0.5f);
    const TonalPixel got = tonalApply<FlexImageFloat>(mod, {200, 100, 50}, &half);
    ImageModContrast contrast(1, 1.5f, 90.0f);
    ImageModSaturation saturation(1, 0.78f);
    auto img = curveTestImage<FlexImageFloat>({{200, 100, 50}});
    ImageModApplyContext context = maskContext(&half);
    contrast.apply(img.get(), &context);
    saturation.apply(img.get(), &context);
    expectPixelEq(got, {img->data[0], img->data[1], img->data[2]});
    EXPECT_NE(got[0], 214.991733f);
}
