#include "TonalTestHelpers.h"

#include "mods/ImageModBrightness.h"
#include "mods/ImageModExposure.h"
#include "mods/ImageModGammaLegacy.h"
#include "mods/ImageModSaturation.h"

namespace {
template <typename Mod>
std::unique_ptr<Mod> withAmount(float a, int32_t version = -1)
{
    auto mod = std::make_unique<Mod>();
    mod->variableAt(0)->setFloatValue(a);
    if (version >= 0)
        mod->setVersion(version);
    return mod;
}
} // namespace

TEST(TonalSaturation, VersionsAnchorDifferently)
{
    // Amount 0 greys a pure red: version 2 on sqrt(0.299) * 255, version 1 on 0.299 * 255.
    auto current = withAmount<ImageModSaturation>(0.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(*current, {255, 0, 0}), {139.436276f, 139.436276f, 139.436276f});
    expectPixelEq(tonalApply<FlexImage8>(*current, {255, 0, 0}), {139, 139, 139});
    auto legacy = withAmount<ImageModSaturation>(0.0f, 1);
    expectPixelNear(tonalApply<FlexImageFloat>(*legacy, {255, 0, 0}), {76.245f, 76.245f, 76.245f});
    expectPixelEq(tonalApply<FlexImage8>(*legacy, {255, 0, 0}), {76, 76, 76});
}

TEST(TonalSaturation, AmountTwoActsAsHugeFactorAndClamps)
{
    // Anchor of (200, 100, 50) is 134.59; a factor near 100000 throws every channel to a bound.
    auto mod = withAmount<ImageModSaturation>(2.0f);
    expectPixelEq(tonalApply<FlexImageFloat>(*mod, {200, 100, 50}), {255, 0, 0});
    expectPixelEq(tonalApply<FlexImage8>(*mod, {200, 100, 50}), {255, 0, 0});
    // Amount 1.5 doubles the distance from the anchor, clamped.
    auto stronger = withAmount<ImageModSaturation>(1.5f, 1);
    expectPixelNear(tonalApply<FlexImageFloat>(*stronger, {200, 100, 50}), {255, 75.8f, 0});
}

TEST(TonalSaturation, MaskBendsTheAmount)
{
    auto mod = withAmount<ImageModSaturation>(0.0f, 1);
    CurveTestMask none(0.0f);
    expectPixelEq(tonalApply<FlexImageFloat>(*mod, {200, 100, 50}, &none), {200, 100, 50});
    expectPixelEq(tonalApply<FlexImage8>(*mod, {200, 100, 50}, &none), {200, 100, 50});
    // Rule A: amount 0 at mask 0.5 acts as 0.5.
    CurveTestMask half(0.5f);
    expectPixelNear(tonalApply<FlexImageFloat>(*mod, {200, 100, 50}, &half), {162.1f, 112.1f, 87.1f});
    expectPixelEq(tonalApply<FlexImage8>(*mod, {200, 100, 50}, &half), {162, 112, 87});
    // Per-pixel masks: even columns change, odd ones don't.
    auto img = curveTestImage<FlexImage8>({{200, 100, 50}, {200, 100, 50}});
    CurveTestStripeMask stripes;
    ImageModApplyContext context = maskContext(&stripes);
    mod->apply(img.get(), &context);
    EXPECT_EQ(img->data[0], 124);
    EXPECT_EQ(img->data[3], 200);
}

TEST(TonalSaturation, GreyAndFourChannelImages)
{
    // Version 2 needs three channels; a grey image is left alone. Version 1 anchors on channel 0.
    for (int32_t version : {1, 2}) {
        auto mod = withAmount<ImageModSaturation>(0.3f, version);
        FlexImageFloat grey(3, 1, 1);
        for (int32_t i = 0; i < 3; ++i)
            grey.data[i] = 77.0f;
        mod->apply(&grey, nullptr);
        EXPECT_EQ(grey.data[2], 77.0f);
    }
    auto mod = withAmount<ImageModSaturation>(0.0f);
    auto rgba = curveTestImage<FlexImage8>({{255, 0, 0, 200}}, 4);
    mod->apply(rgba.get(), nullptr);
    EXPECT_EQ(rgba->data[0], 139);
    EXPECT_EQ(rgba->data[3], 200);
}

TEST(TonalExposure, FloatBrightensFromFlooredBlack)
{
    auto mod = withAmount<ImageModExposure>(1.5f);  // exponent 2
    expectPixelNear(tonalApply<FlexImageFloat>(*mod, {0, 127.5f, 255}), {0.0999902f, 191.25f, 255});
}

TEST(TonalExposure, FloatDarkensFromCappedWhiteAndDesaturates)
{
    // Gamma with exponent 2, then saturation towards Y with factor 0.5^0.4.
    auto mod = withAmount<ImageModExposure>(0.5f);
    expectPixelNear(tonalApply<FlexImageFloat>(*mod, {255, 127.5f, 0}), {220.694185f, 75.829567f, 27.516102f});
    const TonalPixel white = tonalApply<FlexImageFloat>(*mod, {255, 255, 255});
    EXPECT_LT(white[0], 255.0f);
    EXPECT_NEAR(white[0], 254.9000098f, 1e-3f);
}

TEST(TonalExposure, EightBitInheritsIntegerGamma)
{
    // Darkening blacks out every channel; brightening whitens everything that is not black.
    auto darker = withAmount<ImageModExposure>(0.9f);
    expectPixelEq(tonalApply<FlexImage8>(*darker, {255, 128, 1}), {0, 0, 0});
    auto brighter = withAmount<ImageModExposure>(1.1f);
    expectPixelEq(tonalApply<FlexImage8>(*brighter, {0, 1, 254}), {0, 255, 255});
}

TEST(TonalExposure, MaskBendsTheAmount)
{
    auto mod = withAmount<ImageModExposure>(2.0f);
    CurveTestMask none(0.0f);
    expectPixelEq(tonalApply<FlexImageFloat>(*mod, {10, 20, 30}, &none), {10, 20, 30});
    expectPixelEq(tonalApply<FlexImage8>(*mod, {10, 20, 30}, &none), {10, 20, 30});
    // Amount 2 at mask 0.5 acts as 1.5.
    CurveTestMask half(0.5f);
    expectPixelNear(tonalApply<FlexImageFloat>(*mod, {0, 127.5f, 255}, &half), {0.0999902f, 191.25f, 255});
}

TEST(TonalGamma, FloatVersionTwoCapsAndFloors)
{
    auto darker = withAmount<ImageModGammaLegacy>(0.5f);
    expectPixelNear(tonalApply<FlexImageFloat>(*darker, {255, 127.5f, 0}), {254.9000098f, 63.75f, 0});
    auto brighter = withAmount<ImageModGammaLegacy>(1.5f);
    expectPixelNear(tonalApply<FlexImageFloat>(*brighter, {0, 127.5f, 255}), {0.0999902f, 191.25f, 255});
}

TEST(TonalGamma, FloatVersionOneIsPlainPower)
{
    // Amount 1.5: exponent 0.5. Amount 0.5: exponent 2. White and black stay exactly.
    auto brighter = withAmount<ImageModGammaLegacy>(1.5f, 1);
    expectPixelNear(tonalApply<FlexImageFloat>(*brighter, {0, 63.75f, 255}), {0, 127.5f, 255});
    auto darker = withAmount<ImageModGammaLegacy>(0.5f, 1);
    expectPixelNear(tonalApply<FlexImageFloat>(*darker, {0, 127.5f, 255}), {0, 63.75f, 255}, 1e-4f);
}

TEST(TonalGamma, EightBitIntegerDivisionIsKept)
{
    // Version 2 below 1: black everywhere, white included.
    auto v2Dark = withAmount<ImageModGammaLegacy>(0.5f);
    expectPixelEq(tonalApply<FlexImage8>(*v2Dark, {255, 128, 0}), {0, 0, 0});
    // Version 2 above 1: black stays, the rest goes white.
    auto v2Bright = withAmount<ImageModGammaLegacy>(1.5f);
    expectPixelEq(tonalApply<FlexImage8>(*v2Bright, {0, 1, 200}), {0, 255, 255});
    // Version 1: only white survives; exponent 0 (Amount 2) makes every channel white.
    auto v1 = withAmount<ImageModGammaLegacy>(0.5f, 1);
    expectPixelEq(tonalApply<FlexImage8>(*v1, {255, 254, 0}), {255, 0, 0});
    auto v1Top = withAmount<ImageModGammaLegacy>(2.0f, 1);
    expectPixelEq(tonalApply<FlexImage8>(*v1Top, {255, 254, 0}), {255, 255, 255});
}

TEST(TonalGamma, MaskIsNotRead)
{
    auto mod = withAmount<ImageModGammaLegacy>(1.5f, 1);
    CurveTestMask none(0.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(*mod, {0, 63.75f, 255}, &none), {0, 127.5f, 255});
}

TEST(TonalBrightness, FloatReadsTheCurveWithInterpolation)
{
    // Amount 1.5 lifts black to half: the curve runs from (0, 0.5) to (1, 1).
    auto lift = withAmount<ImageModBrightness>(1.5f);
    expectPixelNear(tonalApply<FlexImageFloat>(*lift, {0, 127.5f, 255}), {127.5f, 191.25f, 255}, 0.05f);
    // Amount 0.5 lowers white to half.
    auto lower = withAmount<ImageModBrightness>(0.5f);
    expectPixelNear(tonalApply<FlexImageFloat>(*lower, {0, 200, 255}), {0, 100, 127.5f}, 0.05f);
    // Values beyond the scale read the end entries.
    expectPixelNear(tonalApply<FlexImageFloat>(*lower, {-20, 254.99998f, 300}), {0, 127.5f, 127.5f}, 0.05f);
}

TEST(TonalBrightness, EightBitReadsOnlyTheEndEntries)
{
    // Every value but 255 reads entry 0: lowering white turns everything else black.
    auto lower = withAmount<ImageModBrightness>(0.5f);
    expectPixelEq(tonalApply<FlexImage8>(*lower, {0, 200, 255}), {0, 0, 127});
    auto lift = withAmount<ImageModBrightness>(1.5f);
    expectPixelEq(tonalApply<FlexImage8>(*lift, {0, 100, 255}), {127, 127, 255});
}

TEST(TonalBrightness, MaskScalesStrength)
{
    auto lift = withAmount<ImageModBrightness>(1.5f);
    CurveTestMask none(0.0f);
    expectPixelEq(tonalApply<FlexImageFloat>(*lift, {0, 100, 255}, &none), {0, 100, 255});
    expectPixelEq(tonalApply<FlexImage8>(*lift, {0, 100, 255}, &none), {0, 100, 255});
    // Rule B: strength 0.5 blends half the lift in.
    CurveTestMask half(0.5f);
    expectPixelNear(tonalApply<FlexImageFloat>(*lift, {0, 0, 0}, &half), {63.75f, 63.75f, 63.75f}, 0.05f);
    expectPixelEq(tonalApply<FlexImage8>(*lift, {0, 100, 255}, &half), {63, 113, 255});
}
