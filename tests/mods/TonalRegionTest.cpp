#include "TonalTestHelpers.h"

#include "core/ColorMath.h"
#include "core/ToneCurve.h"
#include "mods/CurveSteps.h"
#include "mods/ImageModHighlights.h"
#include "mods/ImageModShadows.h"
#include "mods/ImageModShadowsMidsHighs.h"
#include "mods/ImageModToneCurve.h"

namespace {

// Grey level after the version 2 step at strength t: value through the table, blended by t.
float valueStepGrey(const ToneCurve& curve, float grey, float t)
{
    const float v = float(grey * kInv255);
    return ((curveReadUnit(curve.table(), v) - v) * t + v) * 255.0f;
}

// Grey level after the old step: luminance through a curve of the given points at full strength.
float luminanceStepGrey(const std::vector<ToneCurvePoint>& points, float grey)
{
    const ToneCurve curve(points);
    return 255.0f * curveRead255(curve.table(), grey);
}

void expectPoint(const ToneCurve* curve, int32_t i, float x, float y)
{
    ASSERT_NE(curve, nullptr);
    ASSERT_GT(curve->pointCount(), i);
    EXPECT_NEAR(curve->points[size_t(i)].x, x, 1e-6f) << "point " << i;
    EXPECT_NEAR(curve->points[size_t(i)].y, y, 1e-6f) << "point " << i;
}

} // namespace

TEST(TonalShadows, VersionTwoBendsValueThroughTheFixedCurves)
{
    ImageModShadows lift(2, 2.0f);
    const float up = valueStepGrey(lift.brightenCurve, 64.0f, 1.0f);
    EXPECT_GT(up, 80.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(lift, {64, 64, 64}), {up, up, up}, 1e-3f);
    EXPECT_EQ(tonalApply<FlexImage8>(lift, {64, 64, 64})[0], float(int32_t(up)));
    // Half strength on the darkening curve.
    ImageModShadows sink(2, 0.5f);
    const float down = valueStepGrey(sink.darkenCurve, 64.0f, 0.5f);
    EXPECT_LT(down, 60.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(sink, {64, 64, 64}), {down, down, down}, 1e-3f);
    // Hue and saturation are kept: every channel scales with the value.
    const TonalPixel c = tonalApply<FlexImageFloat>(lift, {80, 40, 20});
    EXPECT_NEAR(c[1] / c[0], 0.5f, 1e-5f);
    EXPECT_NEAR(c[2] / c[0], 0.25f, 1e-5f);
    // The light end is left nearly alone, black exactly.
    EXPECT_NEAR(tonalApply<FlexImageFloat>(lift, {240, 240, 240})[0], 240.0f, 1.0f);
    expectPixelEq(tonalApply<FlexImageFloat>(lift, {0, 0, 0}), {0, 0, 0});
}

TEST(TonalShadows, OtherVersionsUseTheLuminanceCurveFromAmount)
{
    // Amount 0.5: (0,0), (0.25, 0.125), (0.5, 0.5), (1, 1).
    ImageModShadows sink(1, 0.5f);
    const float down = luminanceStepGrey({{0, 0}, {0.25f, 0.125f}, {0.5f, 0.5f}, {1, 1}}, 64.0f);
    EXPECT_LT(down, 50.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(sink, {64, 64, 64}), {down, down, down}, 1e-3f);
    EXPECT_EQ(tonalApply<FlexImage8>(sink, {64, 64, 64})[0], float(int32_t(down)));
    // Amount 1.5: (0,0), (0.125, 0.25), (0.5, 0.5), (1, 1).
    ImageModShadows lift(1, 1.5f);
    const float up = luminanceStepGrey({{0, 0}, {0.125f, 0.25f}, {0.5f, 0.5f}, {1, 1}}, 64.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(lift, {64, 64, 64}), {up, up, up}, 1e-3f);
    // The two versions differ on the same setting.
    ImageModShadows current(2, 1.5f);
    EXPECT_GT(std::fabs(tonalApply<FlexImageFloat>(current, {64, 64, 64})[0] - up), 0.2f);
}

TEST(TonalHighlights, BothVersionsMoveTheLightEnd)
{
    ImageModHighlights lift(2, 2.0f);
    const float up = valueStepGrey(lift.brightenCurve, 180.0f, 1.0f);
    EXPECT_GT(up, 190.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(lift, {180, 180, 180}), {up, up, up}, 1e-3f);
    EXPECT_NEAR(tonalApply<FlexImageFloat>(lift, {20, 20, 20})[0], 20.0f, 1.0f);
    ImageModHighlights sink(2, 0.0f);
    const float down = valueStepGrey(sink.darkenCurve, 230.0f, 1.0f);
    EXPECT_LT(down, 215.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(sink, {230, 230, 230}), {down, down, down}, 1e-3f);
    // Version 1, Amount 1.5: (0,0), (0.5,0.5), (0.75, 0.875), (1,1).
    ImageModHighlights old(1, 1.5f);
    const float oldUp = luminanceStepGrey({{0, 0}, {0.5f, 0.5f}, {0.75f, 0.875f}, {1, 1}}, 180.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(old, {180, 180, 180}), {oldUp, oldUp, oldUp}, 1e-3f);
    EXPECT_EQ(tonalApply<FlexImage8>(old, {180, 180, 180})[0], float(int32_t(oldUp)));
    // Version 1, Amount 0.5: (0,0), (0.5,0.5), (0.875, 0.75), (1,1).
    ImageModHighlights oldSink(1, 0.5f);
    const float oldDown = luminanceStepGrey({{0, 0}, {0.5f, 0.5f}, {0.875f, 0.75f}, {1, 1}}, 180.0f);
    expectPixelNear(tonalApply<FlexImageFloat>(oldSink, {180, 180, 180}), {oldDown, oldDown, oldDown}, 1e-3f);
}

TEST(TonalShadowsHighlights, MaskScalesStrength)
{
    for (int32_t version : {1, 2}) {
        ImageModShadows shadows(version, 1.8f);
        ImageModHighlights highlights(version, 0.3f);
        CurveTestMask none(0.0f);
        expectCardUntouched(shadows, &none);
        expectCardUntouched(highlights, &none);
        // Stripes: even columns change, odd ones keep their value.
        auto img = curveTestImage<FlexImageFloat>({{64, 64, 64}, {64, 64, 64}});
        CurveTestStripeMask stripes;
        ImageModApplyContext context = maskContext(&stripes);
        shadows.apply(img.get(), &context);
        EXPECT_NE(img->data[0], 64.0f);
        EXPECT_EQ(img->data[3], 64.0f);
    }
    // Version 2 at mask 0.5 is half the strength of no mask.
    ImageModShadows lift(2, 2.0f);
    CurveTestMask half(0.5f);
    const float want = valueStepGrey(lift.brightenCurve, 64.0f, 0.5f);
    EXPECT_NEAR(tonalApply<FlexImageFloat>(lift, {64, 64, 64}, &half)[0], want, 1e-3f);
}

TEST(TonalShadowsMidsHighs, SlidersShapeTheCurve)
{
    ImageModShadowsMidsHighs mod;
    expectPoint(mod.curve(), 1, 0.25f, 0.25f);
    expectPoint(mod.curve(), 2, 0.5f, 0.5f);
    expectPoint(mod.curve(), 3, 0.75f, 0.75f);

    mod.variableAt(0)->setFloatValue(0.5f);
    mod.variableAt(1)->setFloatValue(0.4f);
    mod.variableAt(2)->setFloatValue(-0.5f);
    mod.variableChanged(0);
    expectPoint(mod.curve(), 0, 0.0f, 0.0f);
    expectPoint(mod.curve(), 1, 0.1f, 0.45f);
    expectPoint(mod.curve(), 2, 0.4f, 0.6f);
    expectPoint(mod.curve(), 3, 0.85f, 0.7f);
    expectPoint(mod.curve(), 4, 1.0f, 1.0f);

    // Negative shadows keep x; positive highlights keep x.
    mod.variableAt(0)->setFloatValue(-0.5f);
    mod.variableAt(2)->setFloatValue(0.5f);
    mod.variableChanged(2);
    expectPoint(mod.curve(), 1, 0.2f, 0.15f);
    expectPoint(mod.curve(), 3, 0.7f, 0.9f);
}

TEST(TonalShadowsMidsHighs, ForwardsToTheToneCurveIncludingItsEightBitRead)
{
    ImageModShadowsMidsHighs mod;
    mod.variableAt(0)->setFloatValue(0.5f);
    mod.variableChanged(0);
    ImageModToneCurve reference;
    setCurve(reference, ImageModToneCurve::varCurve, mod.curve()->toString());
    auto a = curveTestCard<FlexImageFloat>();
    auto b = curveTestCopy(*a);
    mod.apply(a.get(), nullptr);
    reference.apply(b.get(), nullptr);
    EXPECT_TRUE(curveTestSame(*a, *b));
    // The RGB branch in 8 bits reads the end entries: white stays, everything else goes to entry 0.
    expectPixelEq(tonalApply<FlexImage8>(mod, {255, 100, 0}), {255, 0, 0});
    // Mask rule of the tone curve: strength Amount * m.
    CurveTestMask none(0.0f);
    expectCardUntouched(mod, &none);
}

TEST(TonalShadowsMidsHighs, CopyAndFramesRefreshTheCurve)
{
    ImageModShadowsMidsHighs source;
    source.variableAt(1)->setFloatValue(0.4f);
    source.variableChanged(1);
    std::unique_ptr<ImageMod> copy = cloneMod(source);
    auto* clone = dynamic_cast<ImageModShadowsMidsHighs*>(copy.get());
    ASSERT_NE(clone, nullptr);
    expectPoint(clone->curve(), 2, 0.4f, 0.6f);
    // The hover animation moves all three sliders and the curve follows.
    ImageModShadowsMidsHighs animated;
    animated.setFrame(0);
    EXPECT_NEAR(animated.floatValue(0), -0.5f, 1e-6f);
    expectPoint(animated.curve(), 2, 0.5f + 0.125f, 0.5f - 0.125f);
    // Values written without a change notice still take effect at apply time.
    ImageModShadowsMidsHighs quiet;
    quiet.variableAt(1)->setFloatValue(0.4f);
    expectCardChanged(quiet);
    expectPoint(quiet.curve(), 2, 0.4f, 0.6f);
}
