#include "mods/CurveSteps.h"
#include "mods/ImageModToneCurve.h"
#include "tests/mods/CurveTestHelpers.h"

#include "core/ColorMath.h"

#include <limits>

TEST(CurveSteps, TableReadsEndsAndInterpolation)
{
    ToneCurve rising("0 .2 1 .6");
    const float* t = rising.table();
    EXPECT_EQ(curveRead255(t, 255.0f), t[2047]);
    EXPECT_EQ(curveRead255(t, 300.0f), t[2047]);
    EXPECT_EQ(curveRead255(t, 0.0f), t[0]);
    EXPECT_EQ(curveRead255(t, -4.0f), t[0]);
    EXPECT_EQ(curveReadUnit(t, 1.0f), t[2047]);
    EXPECT_EQ(curveReadUnit(t, 0.0f), t[0]);
    // Just below the top the index must stay inside the table.
    const float below = std::nextafter(255.0f, 0.0f);
    EXPECT_NEAR(curveRead255(t, below), t[2047], 1e-5);
    EXPECT_NEAR(curveRead255(t, 127.5f), 0.4f, 1e-5);
    EXPECT_NEAR(curveReadUnit(t, 0.25f), 0.3f, 1e-5);
    // Halfway between two entries: the mean of both.
    const float mid = 10.5f / kCurveIndexScale;
    EXPECT_NEAR(curveRead255(t, mid), 0.5f * (t[10] + t[11]), 1e-6);
    // The 8-bit RGB read looks at the ends only.
    EXPECT_EQ(curveRead8Plain(t, 255), t[2047]);
    EXPECT_EQ(curveRead8Plain(t, 254), t[0]);
    EXPECT_EQ(curveRead8Plain(t, 128), t[0]);
}

// The read as first written, with the division, to hold the faster form to the same bits.
static float curveRead255Reference(const float* table, float c)
{
    const float u = c / 255.0f;
    if (u >= 1.0f)
        return table[2047];
    if (!(u > 0.0f))
        return table[0];
    return curveLerpAt(table, c * kCurveIndexScale);
}

TEST(CurveSteps, FastReadMatchesDivisionFormBitForBit)
{
    ToneCurve curve("0 .13 .3 .2 .6 .9 1 .77");
    const float* t = curve.table();
    int64_t mismatches = 0;
    // Every float on a 1/65536 grid over -1..257, then the floats next to the ends and tiny values.
    for (int32_t k = -65536; k <= 257 * 65536; ++k) {
        const float c = float(k) / 65536.0f;
        mismatches += curveRead255(t, c) != curveRead255Reference(t, c);
    }
    EXPECT_EQ(mismatches, 0);
    const float specials[] = {255.0f, std::nextafter(255.0f, 0.0f), std::nextafter(255.0f, 300.0f), 0.0f, -0.0f,
                              std::numeric_limits<float>::denorm_min(), 1e-45f, 3e-43f, 1e-40f, 1e-38f, 1e-30f,
                              std::nextafter(1e-30f, 1.0f), std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()};
    for (float c : specials)
        EXPECT_EQ(curveRead255(t, c), curveRead255Reference(t, c)) << c;
}

TEST(CurveSteps, IdentityListIsExactComparison)
{
    EXPECT_TRUE(curveIsIdentity(ToneCurve("0 0 1 1")));
    EXPECT_FALSE(curveIsIdentity(ToneCurve("0 0 .5 .5 1 1")));
    EXPECT_FALSE(curveIsIdentity(ToneCurve("0 0 1 .999999")));
    EXPECT_TRUE(curveIsFlatHalf(ToneCurve("0 .5 .25 .5 1 .5")));
    EXPECT_FALSE(curveIsFlatHalf(ToneCurve("0 .5 .25 .51 1 .5")));
}

TEST(ToneCurveMod, DeclaresVariablesInOrder)
{
    ImageModToneCurve mod;
    EXPECT_EQ(mod.name, "Tone Curve");
    ASSERT_EQ(mod.variableCount(), 3);
    EXPECT_EQ(mod.variableAt(0)->name, "Amount");
    EXPECT_EQ(mod.variableAt(0)->data->hardMax, 1.0f);
    EXPECT_EQ(mod.variableAt(1)->name, "Curve");
    EXPECT_EQ(mod.variableAt(2)->name, "Method");
    EXPECT_EQ(mod.variableAt(2)->asChoice()->labelSets[0].size(), 4u);
    EXPECT_FALSE(mod.toolTip.empty());
    EXPECT_EQ(mod.animators.size(), 1u);
    // Frame 0 of the animator sets four points: the first at (0, 0), the last at (1, 1).
    mod.setFrame(0);
    EXPECT_EQ(mod.curveAt(1)->pointCount(), 4);
    EXPECT_EQ(mod.curveAt(1)->points[1].x, 0.3f);
}

template <typename Image>
void expectToneCurveIdentityUntouched()
{
    for (int32_t method = 0; method < 4; ++method) {
        ImageModToneCurve mod;
        setChoice(mod, 2, method);
        auto img = curveTestCard<Image>();
        auto ref = curveTestCopy(*img);
        mod.apply(img.get(), nullptr);
        EXPECT_TRUE(curveTestSame(*img, *ref)) << method;
        // Amount 0 with a real curve: nothing either.
        setCurve(mod, 1, "0 .3 1 .7");
        mod.variableAt(0)->setFloatValue(0.0f);
        mod.apply(img.get(), nullptr);
        EXPECT_TRUE(curveTestSame(*img, *ref)) << method;
    }
}

TEST(ToneCurveMod, IdentityAndZeroAmountLeaveBothDepths)
{
    expectToneCurveIdentityUntouched<FlexImageFloat>();
    expectToneCurveIdentityUntouched<FlexImage8>();
}

TEST(ToneCurveMod, RgbMethodFloatInterpolatesAndEightBitReadsEnds)
{
    ImageModToneCurve mod;
    setCurve(mod, 1, "0 .2 1 .6");
    mod.variableAt(0)->setFloatValue(0.5f);
    auto f = curveTestImage<FlexImageFloat>({{127.5f, 0.0f, 255.0f}});
    mod.apply(f.get(), nullptr);
    // 127.5 * 0.5 + 0.4 * 0.5 * 255; 0 -> 0.2 * 127.5; 255 -> 127.5 + 0.6 * 127.5.
    EXPECT_NEAR(f->data[0], 63.75f + 51.0f, 1e-3);
    EXPECT_NEAR(f->data[1], 25.5f, 1e-4);
    EXPECT_NEAR(f->data[2], 204.0f, 1e-4);

    auto b = curveTestImage<FlexImage8>({{128.0f, 0.0f, 255.0f}});
    mod.apply(b.get(), nullptr);
    // 128 reads entry 0 (0.2), not 0.4: 64 + 25.5 = 89.5 -> 89.
    EXPECT_PIXEL_NEAR(b->data, 89, 25, 204, 0);
}

TEST(ToneCurveMod, LuminanceMethodMovesLuminanceKeepingRatios)
{
    ImageModToneCurve mod;
    setCurve(mod, 1, "0 0 1 .5");   // halves luminance
    setChoice(mod, 2, ImageModToneCurve::methodLuminance);
    auto f = curveTestImage<FlexImageFloat>({{200.0f, 100.0f, 50.0f}});
    const float y = luminance(200.0f, 100.0f, 50.0f);
    mod.apply(f.get(), nullptr);
    EXPECT_NEAR(luminance(f->data[0], f->data[1], f->data[2]), y * 0.5f, 0.01f);
    EXPECT_NEAR(f->data[0] / f->data[1], 2.0f, 1e-4);

    // 8-bit reads the table with the fractional index too and truncates.
    auto b = curveTestImage<FlexImage8>({{200.0f, 100.0f, 50.0f}});
    mod.apply(b.get(), nullptr);
    EXPECT_EQ(b->data[0], uint8_t(int32_t(f->data[0])));
    EXPECT_EQ(b->data[1], uint8_t(int32_t(f->data[1])));
    EXPECT_EQ(b->data[2], uint8_t(int32_t(f->data[2])));
}

TEST(ToneCurveMod, ValueAndLightnessMethodsDiffer)
{
    const std::vector<std::vector<float>> px = {{200.0f, 100.0f, 50.0f}, {80.0f, 80.0f, 80.0f}, {0, 0, 0}};
    std::vector<std::unique_ptr<FlexImageFloat>> out;
    for (int32_t method = 0; method < 4; ++method) {
        ImageModToneCurve mod;
        setCurve(mod, 1, "0 0 .5 .7 1 1");
        setChoice(mod, 2, method);
        out.push_back(curveTestImage<FlexImageFloat>(px));
        mod.apply(out.back().get(), nullptr);
    }
    for (int32_t i = 0; i < 4; ++i)
        for (int32_t j = i + 1; j < 4; ++j)
            EXPECT_FALSE(curveTestSame(*out[size_t(i)], *out[size_t(j)])) << i << " " << j;
    // Value: hue and saturation stay; V goes through the table.
    ToneCurve c("0 0 .5 .7 1 1");
    float h, s, v;
    rgbToHsvInline(200.0f, 100.0f, 50.0f, h, s, v);
    float h2, s2, v2;
    rgbToHsvInline(out[2]->data[0], out[2]->data[1], out[2]->data[2], h2, s2, v2);
    EXPECT_NEAR(v2, curveReadUnit(c.table(), v), 1e-5);
    EXPECT_NEAR(h2, h, 1e-3);
    EXPECT_NEAR(s2, s, 1e-5);
    // A grey stays grey under Value; black stays black in every method.
    EXPECT_EQ(out[2]->data[3], out[2]->data[4]);
    EXPECT_NEAR(out[2]->data[3], curveReadUnit(c.table(), 80.0f / 255.0f) * 255.0f, 1e-3);
    for (int32_t m = 0; m < 4; ++m)
        EXPECT_EQ(out[size_t(m)]->data[6], 0.0f) << m;
    // Lightness: HSL lightness goes through the table.
    float hl, sl, l, hl2, sl2, l2;
    rgbToHsl(200.0f, 100.0f, 50.0f, hl, sl, l);
    rgbToHsl(out[3]->data[0], out[3]->data[1], out[3]->data[2], hl2, sl2, l2);
    EXPECT_NEAR(l2, curveReadUnit(c.table(), l), 1e-5);
}

template <typename Image>
void expectToneCurveMask()
{
    ImageModToneCurve mod;
    setCurve(mod, 1, "0 .5 1 .5");
    auto img = curveTestImage<Image>({{100, 100, 100}, {100, 100, 100}, {255, 255, 255}});
    CurveTestStripeMask stripes;
    auto ctx = maskContext(&stripes);
    mod.apply(img.get(), &ctx);
    // Even columns: full strength to 127.5 (127 in 8 bits); odd column untouched.
    EXPECT_NEAR(float(img->data[0]), 127.5f, 0.51f);
    EXPECT_EQ(float(img->data[3]), 100.0f);
    EXPECT_NEAR(float(img->data[6]), 127.5f, 0.51f);
    // A half mask halves the strength: s = Amount * m.
    CurveTestMask half(0.5f);
    auto ctx2 = maskContext(&half);
    auto img2 = curveTestImage<Image>({{200, 200, 200}});
    mod.variableAt(0)->setFloatValue(0.5f);
    mod.apply(img2.get(), &ctx2);
    // s = 0.25: 200 * 0.75 + 0.5 * 0.25 * 255 = 181.875.
    EXPECT_NEAR(float(img2->data[0]), 181.875f, 0.9f);
}

TEST(ToneCurveMod, MaskScalesStrength)
{
    expectToneCurveMask<FlexImageFloat>();
    expectToneCurveMask<FlexImage8>();
}

TEST(ToneCurveMod, IdentityIsDecidedByPointsNotByShape)
{
    // The straight line through a middle point is not the identity list, so the 8-bit RGB branch
    // runs and reads entry 0 for every channel below 255: the pixel goes black. The two-point
    // identity skips all work and leaves it.
    ImageModToneCurve mod;
    auto b = curveTestImage<FlexImage8>({{10.0f, 128.0f, 255.0f}});
    mod.apply(b.get(), nullptr);
    EXPECT_EQ(b->data[0], 10);
    setCurve(mod, 1, "0 0 .5 .5 1 1");
    mod.apply(b.get(), nullptr);
    EXPECT_PIXEL_NEAR(b->data, 0, 0, 255, 0);
    // The float branch interpolates and stays close to the input.
    auto f = curveTestImage<FlexImageFloat>({{10.0f, 128.0f, 255.0f}});
    mod.apply(f.get(), nullptr);
    EXPECT_NEAR(f->data[0], 10.0f, 0.01f);
    EXPECT_NEAR(f->data[1], 128.0f, 0.01f);
}

TEST(ToneCurveMod, GreyImageUsesChannelZero)
{
    for (int32_t method = 0; method < 4; ++method) {
        ImageModToneCurve mod;
        setCurve(mod, 1, "0 .5 1 .5");
        setChoice(mod, 2, method);
        FlexImageFloat grey(2, 1, 1);
        grey.data[0] = 40.0f;
        grey.data[1] = 200.0f;
        mod.apply(&grey, nullptr);
        EXPECT_NEAR(grey.data[0], 127.5f, 1e-3) << method;
        EXPECT_NEAR(grey.data[1], 127.5f, 1e-3) << method;
    }
}
