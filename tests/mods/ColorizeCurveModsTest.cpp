#include "core/ImageModVariableDataCurve.h"
#include "mods/ColorSteps.h"
#include "mods/ColorizeCurveMods.h"
#include "mods/ImageModColorizeCurve.h"
#include "tests/mods/ColourTestHelpers.h"

#include <cmath>

namespace {

// A colorize curve at a constant table value, so that w = 2 * Amount * (t - 0.5) everywhere.
std::unique_ptr<ImageModColorizeCurve> flatCurve(float t, float amount, int32_t method)
{
    auto m = std::make_unique<ImageModColorizeCurve>();
    const std::string y = std::to_string(t);
    m->setCurve("0 " + y + " 1 " + y);
    m->setAmount(amount);
    m->setMethod(method);
    m->setColor(200.0f, 100.0f, 0.0f);
    return m;
}

} // namespace

TEST(ColorizeCurve, WeightSignPicksColourOrComplement)
{
    // t = 1: w = Amount towards the colour; t = 0: w = -Amount towards the complement.
    auto up = flatCurve(1.0f, 0.5f, kColorMethodColorize);
    EXPECT_PIXEL_NEAR(colourApplyFloat(*up, {100.0f, 100.0f, 100.0f}), 150.0f, 100.0f, 50.0f, 0.0f);
    auto down = flatCurve(0.0f, 0.5f, kColorMethodColorize);
    EXPECT_PIXEL_NEAR(colourApplyFloat(*down, {100.0f, 100.0f, 100.0f}), 50.0f, 100.0f, 150.0f, 0.0f);
    EXPECT_EQ(colourApply8(*down, {100, 100, 100}), (std::vector<int>{50, 100, 150}));

    auto tint = flatCurve(0.0f, 0.5f, kColorMethodTint);
    EXPECT_PIXEL_NEAR(colourApplyFloat(*tint, {100.0f, 100.0f, 100.0f}), 77.5f, 127.5f, 177.5f, 0.0f);
    auto balance = flatCurve(0.0f, 0.25f, kColorMethodBalance);
    EXPECT_PIXEL_NEAR(colourApplyFloat(*balance, {100.0f, 100.0f, 100.0f}), 50.0f, 75.0f, 100.0f, 0.0f);
    auto multiply = flatCurve(1.0f, 1.0f, kColorMethodMultiply);
    EXPECT_PIXEL_NEAR(colourApplyFloat(*multiply, {100.0f, 100.0f, 100.0f}), 100.0f * 200.0f / 255.0f,
                      100.0f * 100.0f / 255.0f, 0.0f, 1e-3f);
}

TEST(ColorizeCurve, DefaultCurveLeavesBlackAndWhite)
{
    // The default region is 0.5 at both ends: weight 0 at black and white.
    ImageModColorizeCurve m;
    m.setMethod(kColorMethodTint);
    EXPECT_PIXEL_NEAR(colourApplyFloat(m, {0.0f, 0.0f, 0.0f}), 0.0f, 0.0f, 0.0f, 0.0f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(m, {255.0f, 255.0f, 255.0f}), 255.0f, 255.0f, 255.0f, 0.0f);
    const std::vector<float> mid = colourApplyFloat(m, {128.0f, 128.0f, 128.0f});
    EXPECT_GT(mid[0], mid[2]); // towards the orange default colour
}

TEST(ColorizeCurve, EveryMethodAtWeightZeroAndUnderAZeroMaskLeavesThePixel)
{
    CurveTestMask zero(0.0f);
    const ImageModApplyContext z = maskContext(&zero);
    for (int32_t method = 0; method < kColorMethodCount; ++method) {
        for (int32_t version : {1, 2}) {
            // Weight exactly 0 from the curve (the dye still runs, and must not move the pixel).
            auto flat = flatCurve(0.5f, 1.0f, method);
            flat->version = version;
            auto cardF = curveTestCard<FlexImageFloat>();
            auto beforeF = curveTestCopy(*cardF);
            flat->apply(cardF.get(), nullptr);
            EXPECT_TRUE(curveTestSame(*cardF, *beforeF)) << method;
            // A strong weight under a zero mask.
            auto strong = flatCurve(1.0f, 1.0f, method);
            strong->version = version;
            auto card8 = curveTestCard<FlexImage8>(4);
            auto before8 = curveTestCopy(*card8);
            strong->apply(card8.get(), &z);
            EXPECT_TRUE(curveTestSame(*card8, *before8)) << method;
        }
    }
}

TEST(ColorizeCurve, MaskMultipliesTheSignedWeight)
{
    auto m = flatCurve(0.0f, 1.0f, kColorMethodColorize);
    CurveTestMask half(0.5f);
    const ImageModApplyContext h = maskContext(&half);
    auto ref = flatCurve(0.0f, 0.5f, kColorMethodColorize);
    EXPECT_EQ(colourApplyFloat(*m, {100.0f, 100.0f, 100.0f}, &h), colourApplyFloat(*ref, {100.0f, 100.0f, 100.0f}));
}

TEST(ColorizeCurve, DyeFollowsTheVersion)
{
    auto m = flatCurve(1.0f, 1.0f, kColorMethodDye);
    m->setColor(255.0f, 0.0f, 0.0f);
    m->version = 2;
    EXPECT_PIXEL_NEAR(colourApplyFloat(*m, {102.0f, 102.0f, 102.0f}), 102.0f, 0.0f, 0.0f, 1e-3f);
    m->version = 1;
    EXPECT_PIXEL_NEAR(colourApplyFloat(*m, {102.0f, 102.0f, 102.0f}), 102.0f, 40.8f, 40.8f, 1e-3f);
}

TEST(ColorizeNoCurve, WeightEqualsAmountEverywhere)
{
    ImageModColorizeNoCurve m;
    setColour(m, 0, 200.0f, 100.0f, 0.0f);
    for (float grey : {0.0f, 100.0f, 255.0f}) {
        const std::vector<float> px = colourApplyFloat(m, {grey, grey, grey});
        EXPECT_NEAR(px[0], std::fmin(grey + 50.0f, 255.0f), 1e-4f) << grey;
        EXPECT_NEAR(px[2], std::fmax(grey - 50.0f, 0.0f), 1e-4f) << grey;
    }
    // The method goes through as well.
    m.variableAt(2)->asChoice()->index = kColorMethodTint;
    EXPECT_PIXEL_NEAR(colourApplyFloat(m, {100.0f, 100.0f, 100.0f}), 150.0f, 100.0f, 50.0f, 1e-4f);
}

TEST(ColorTemperature, VersionsBuildTheirCurveColourAndAmount)
{
    ImageModColorTemperature t;
    ImageModColorizeCurve inner;
    EXPECT_FALSE(t.configure(0.0f, inner));

    // Version 4 squares t with its sign; version 3 takes it as it is.
    ASSERT_TRUE(t.configure(-0.5f, inner));
    EXPECT_EQ(inner.floatValue(2), 0.25f);
    EXPECT_EQ(inner.curveAt(0)->points[2].y, 0.0f); // the cool curve dips to 0 at mid grey
    EXPECT_EQ(inner.colorAt(1)->green, 170.0f);
    t.version = 3;
    ASSERT_TRUE(t.configure(0.5f, inner));
    EXPECT_EQ(inner.floatValue(2), 0.5f);
    EXPECT_EQ(inner.curveAt(0)->points[2].y, 1.0f);

    t.version = 2;
    ASSERT_TRUE(t.configure(0.5f, inner));
    EXPECT_EQ(inner.floatValue(2), 1.0f);
    EXPECT_EQ(inner.colorAt(1)->red, 63.75f);
    EXPECT_EQ(inner.colorAt(1)->green, 31.875f);
    EXPECT_EQ(inner.colorAt(1)->blue, 0.0f);
    ASSERT_TRUE(t.configure(-0.5f, inner));
    EXPECT_EQ(inner.colorAt(1)->red, 0.0f);
    EXPECT_EQ(inner.colorAt(1)->blue, 63.75f);

    t.version = 1;
    ASSERT_TRUE(t.configure(0.25f, inner));
    EXPECT_NEAR(inner.floatValue(2), 0.125f, 1e-7f);
    EXPECT_EQ(inner.colorAt(1)->red, 0.0f);
    EXPECT_EQ(inner.colorAt(1)->blue, 255.0f);
    EXPECT_EQ(inner.curveAt(0)->pointCount(), 4);
}

TEST(ColorTemperature, ApplyWarmsAndCoolsAndVersionsDiffer)
{
    auto run = [](int32_t version, float temp) {
        ImageModColorTemperature t;
        t.version = version;
        setValue(t, 0, temp);
        return colourApplyFloat(t, {128.0f, 128.0f, 128.0f});
    };
    const std::vector<float> warm = run(4, 0.8f);
    EXPECT_GT(warm[0], warm[2]);
    const std::vector<float> cool = run(4, -0.8f);
    EXPECT_LT(cool[0], cool[2]);
    EXPECT_NE(run(4, 0.5f), run(3, 0.5f));
    EXPECT_EQ(run(4, 1.0f), run(3, 1.0f)); // 1 * |1| = 1
    // A mask of 0 reaches the inner curve.
    ImageModColorTemperature t;
    setValue(t, 0, 1.0f);
    CurveTestMask zero(0.0f);
    const ImageModApplyContext z = maskContext(&zero);
    EXPECT_EQ(colourApplyFloat(t, {128.0f, 128.0f, 128.0f}, &z), (std::vector<float>{128.0f, 128.0f, 128.0f}));
}

TEST(ColorWheels, UpdateCopiesColourAndStrengthIntoTheInnerCurves)
{
    ImageModColorWheels w;
    setColour(w, 1, 10.0f, 20.0f, 30.0f, 127.5f);
    setColour(w, 3, 200.0f, 0.0f, 0.0f, 255.0f);
    w.variableAt(4)->asChoice()->index = kColorMethodScreen;
    w.variableChanged(1);
    EXPECT_EQ(w.wheel(0).floatValue(2), 0.0f);
    EXPECT_NEAR(w.wheel(1).floatValue(2), std::pow(0.5, 1.7), 1e-6);
    EXPECT_EQ(w.wheel(1).colorAt(1)->alpha, 255.0f);
    EXPECT_EQ(w.wheel(1).colorAt(1)->blue, 30.0f);
    EXPECT_EQ(w.wheel(3).floatValue(2), 1.0f);
    for (int32_t i = 0; i < 4; ++i)
        EXPECT_EQ(w.wheel(i).choiceIndex(3), kColorMethodScreen);
    // A clone carries the state through copyFrom.
    auto clone = cloneMod(w);
    auto* cw = dynamic_cast<ImageModColorWheels*>(clone.get());
    ASSERT_NE(cw, nullptr);
    EXPECT_EQ(cw->wheel(3).floatValue(2), 1.0f);
    EXPECT_EQ(cw->wheel(2).curveAt(0)->pointCount(), 7);
}

TEST(ColorWheels, FullAllWheelEqualsOneColorizePass)
{
    ImageModColorWheels w;
    setColour(w, 0, 200.0f, 100.0f, 0.0f, 255.0f);
    auto ref = flatCurve(1.0f, 1.0f, kColorMethodColorize);
    auto a = curveTestCard<FlexImageFloat>();
    auto b = curveTestCopy(*a);
    w.apply(a.get(), nullptr);
    ref->apply(b.get(), nullptr);
    EXPECT_TRUE(curveTestSame(*a, *b));
}
