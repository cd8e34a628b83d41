#include "TestMods.h"

#include "core/ImageModVarAnimatorColorHSVA.h"
#include "core/ImageModVarAnimatorCurve.h"
#include "core/ImageModVarAnimatorFloat.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataCurve.h"

#include <gtest/gtest.h>

TEST(ImageModVarAnimator, ParsesKeysInCLocaleForm)
{
    EXPECT_EQ(ImageModVarAnimator::parseKeys("30 70 30"), (std::vector<float>{30.0f, 70.0f, 30.0f}));
    EXPECT_EQ(ImageModVarAnimator::parseKeys(".75 1.2 .75"), (std::vector<float>{0.75f, 1.2f, 0.75f}));
    EXPECT_EQ(ImageModVarAnimator::parseKeys("  -1  +2\t3 "), (std::vector<float>{-1.0f, 2.0f, 3.0f}));
    EXPECT_EQ(ImageModVarAnimator::parseKeys("abc 2"), (std::vector<float>{0.0f, 2.0f}));
    EXPECT_TRUE(ImageModVarAnimator::parseKeys("").empty());
}

TEST(ImageModVarAnimator, ThirtySeventyThirtyOverThirtyNineFrames)
{
    TestModPlain m;
    ImageModVariable* v = m.variables[0].get();
    m.addAnimator(v, "30 70 30", 1.961f);
    auto* a = static_cast<ImageModVarAnimatorFloat*>(m.animators[0].get());
    ASSERT_EQ(a->periodFrames, 39);

    m.setFrame(0);
    EXPECT_EQ(m.floatValue(0), 30.0f);
    m.setFrame(19);
    EXPECT_EQ(m.floatValue(0), 70.0f);
    m.setFrame(38);
    EXPECT_EQ(m.floatValue(0), 30.0f);
    m.setFrame(39);
    EXPECT_EQ(m.floatValue(0), 30.0f);
    // Frame 9: x = 18/38, between keys 0 and 1, linear.
    m.setFrame(9);
    EXPECT_NEAR(m.floatValue(0), 30.0f + 40.0f * 18.0f / 38.0f, 1e-4f);
    // Frame 29: on the way back down, mirrored around the peak.
    m.setFrame(29);
    EXPECT_NEAR(m.floatValue(0), 70.0f - 40.0f * 20.0f / 38.0f, 1e-4f);
    // Next cycle repeats.
    m.setFrame(39 + 19);
    EXPECT_EQ(m.floatValue(0), 70.0f);
}

TEST(ImageModVarAnimator, PeriodUsesTheModsFrameTime)
{
    TestModPlain m;
    m.frameTimeValue = 0.1f;
    m.addAnimator(m.variables[0].get(), "0 1", 1.0f);
    EXPECT_EQ(static_cast<ImageModVarAnimatorFloat*>(m.animators[0].get())->periodFrames, 10);
}

TEST(ImageModVarAnimator, ChoiceGetsTheLastKeyRepeated)
{
    TestModPlain m;
    ImageModVariable* mode = m.variables[1].get();
    m.addAnimator(mode, "0 1 2", 1.0f); // 20 frames, keys 0 1 2 2
    auto* a = static_cast<ImageModVarAnimatorFloat*>(m.animators[0].get());
    EXPECT_EQ(a->keys, (std::vector<float>{0.0f, 1.0f, 2.0f, 2.0f}));
    std::vector<int32_t> seen;
    for (int32_t f = 0; f < 20; ++f) {
        m.setFrame(f);
        seen.push_back(m.choiceIndex(1));
    }
    // x = 3f/19 truncated: each label holds about a third of the cycle, the last one included.
    EXPECT_EQ(seen.front(), 0);
    EXPECT_EQ(seen[6], 0);
    EXPECT_EQ(seen[7], 1);
    EXPECT_EQ(seen[13], 2);
    EXPECT_EQ(seen.back(), 2);
}

TEST(ImageModVarAnimator, TargetsByValueKind)
{
    ImageModVariable nullVar("N");
    ImageModVarAnimatorFloat toNull(&nullVar, {0.25f, 0.75f}, 3);
    toNull.apply(1);
    ASSERT_NE(nullVar.asFloat(), nullptr);
    EXPECT_EQ(nullVar.floatValue(), 0.5f);

    ImageModVariable curve = ImageModVariable::makeHueCurve("Hue", "0 .5 1 .5");
    ImageModVarAnimatorFloat toCurve(&curve, {0.0f, 360.0f}, 5);
    toCurve.apply(2);
    EXPECT_EQ(curve.asCurve()->curve.hueOffset, 180.0f);

    ImageModVariable color = ImageModVariable::makeColor("C", 1, 2, 3);
    ImageModVarAnimatorFloat toColor(&color, {0.0f, 9.0f}, 5);
    toColor.apply(2);
    EXPECT_EQ(color.asColor()->red, 1.0f); // left alone
}

TEST(ImageModVarAnimator, BadPeriodsDoNotCrash)
{
    ImageModVariable v = ImageModVariable::makeFloat("A", 0.0f, 0.0f, 10.0f);
    ImageModVarAnimatorFloat zero(&v, {3.0f, 5.0f}, 0);
    zero.apply(7);
    EXPECT_EQ(v.floatValue(), 3.0f);
    ImageModVarAnimatorFloat one(&v, {4.0f, 5.0f}, 1);
    one.apply(7);
    EXPECT_EQ(v.floatValue(), 4.0f);
    ImageModVarAnimatorFloat negFrame(&v, {0.0f, 10.0f}, 11);
    negFrame.apply(-1); // phase 10 of 11
    EXPECT_EQ(v.floatValue(), 10.0f);
}

TEST(ImageModVarAnimator, ColorInterpolatesInHsv)
{
    ImageModVariable c = ImageModVariable::makeColor("Tint", 0, 0, 0);
    // Red to green through yellow over 3 frames.
    ImageModVarAnimatorColorHSVA a(&c, {0.0f, 120.0f}, {1.0f, 1.0f}, {1.0f, 1.0f}, {1.0f, 0.5f}, 3);
    a.apply(0);
    EXPECT_FLOAT_EQ(c.asColor()->red, 255.0f);
    EXPECT_FLOAT_EQ(c.asColor()->green, 0.0f);
    EXPECT_FLOAT_EQ(c.asColor()->alpha, 255.0f);
    a.apply(1); // hue 60: yellow, not the RGB midpoint (127.5, 127.5, 0)
    EXPECT_FLOAT_EQ(c.asColor()->red, 255.0f);
    EXPECT_FLOAT_EQ(c.asColor()->green, 255.0f);
    EXPECT_FLOAT_EQ(c.asColor()->blue, 0.0f);
    EXPECT_FLOAT_EQ(c.asColor()->alpha, 0.75f * 255.0f);
    a.apply(2);
    EXPECT_FLOAT_EQ(c.asColor()->red, 0.0f);
    EXPECT_FLOAT_EQ(c.asColor()->green, 255.0f);
    EXPECT_FLOAT_EQ(c.asColor()->alpha, 127.5f);
}

TEST(ImageModVarAnimator, CurveTakesThePointCountOfItsKeys)
{
    ImageModVariable v = ImageModVariable::makeCurve("Curve", "0 0 .25 .25 .5 .5 .75 .75 1 1");
    using K = ImageModVarAnimatorCurve::PointKey;
    ImageModVarAnimatorCurve a(&v, {{{0.0f, 0.0f}, {0.0f, 0.2f}}, {{0.5f, 0.5f}, {0.5f, 0.9f}}, {{1.0f, 1.0f}}},
                               {3, 5, 3});
    a.apply(2);
    const ToneCurve& c = v.asCurve()->curve;
    ASSERT_EQ(c.points.size(), 3u);
    EXPECT_FLOAT_EQ(c.points[0].y, 0.2f); // period 3: frame 2 is the end
    EXPECT_FLOAT_EQ(c.points[1].y, 0.7f); // period 5: halfway
    EXPECT_FLOAT_EQ(c.points[2].x, 1.0f);
    ImageModVarAnimatorCurve grow(&v, {{K{0, 0}}, {K{0.3f, 0.1f}}, {K{0.6f, 0.8f}}, {K{1, 1}}}, {2, 2, 2, 2});
    grow.apply(0);
    EXPECT_EQ(c.points.size(), 4u);
    EXPECT_FLOAT_EQ(c.points[2].y, 0.8f);
}

TEST(ImageModVarAnimator, ColorAndCurveFromText)
{
    TestModPlain m;
    ImageModVariable* tint = m.variables[2].get();
    m.addColorAnimator(tint, "0 1 .75 1 360 1 .75 1", 3.0f);
    ImageModVariable* curve = m.addCurve("Curve", "0 0 1 1");
    m.addCurveAnimator(curve, {"0 0 0 .1 0 0", ".5 .7 .5 .3 .5 .7", "1 1 1 .9 1 1"}, 2.0f);
    ASSERT_EQ(m.animators.size(), 2u);
    auto* color = static_cast<ImageModVarAnimatorColorHSVA*>(m.animators[0].get());
    EXPECT_EQ(color->periodFrames, 60);
    EXPECT_EQ(color->hue, (std::vector<float>{0.0f, 360.0f}));
    EXPECT_EQ(color->value, (std::vector<float>{0.75f, 0.75f}));
    auto* curves = static_cast<ImageModVarAnimatorCurve*>(m.animators[1].get());
    ASSERT_EQ(curves->pointKeys.size(), 3u);
    EXPECT_EQ(curves->pointKeys[1].size(), 3u);
    EXPECT_EQ(curves->periodFrames, (std::vector<int32_t>{40, 40, 40}));

    m.setFrame(0);
    EXPECT_FLOAT_EQ(m.colorAt(2)->red, 0.75f * 255.0f);
    EXPECT_FLOAT_EQ(m.colorAt(2)->green, 0.0f);
    const ToneCurve* c = m.curveAt(3);
    ASSERT_EQ(c->points.size(), 3u);
    EXPECT_FLOAT_EQ(c->points[1].y, 0.7f);
    // Frame 19 of 40 lies just before the middle key.
    m.setFrame(39 / 2);
    EXPECT_NEAR(c->points[1].y, 0.3f + 0.4f * (1.0f - 38.0f / 39.0f), 1e-5f);

    m.addColorAnimator(tint, "1 2 3", 1.0f); // no complete group
    EXPECT_EQ(m.animators.size(), 2u);
}
