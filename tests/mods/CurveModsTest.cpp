#include "mods/CurveSteps.h"
#include "mods/ImageModComponentCurve.h"
#include "mods/ImageModExposureCurve.h"
#include "mods/ImageModLabCurves.h"
#include "mods/ImageModLuminanceCurve.h"
#include "mods/ImageModRGBCombinedCurve.h"
#include "mods/ImageModRGBCurves.h"
#include "tests/core/TestSelectors.h"
#include "tests/mods/CurveTestHelpers.h"

#include "core/ColorMath.h"

#include <cmath>

namespace {

// Neutral mods leave a varied card bit-identical at both depths.
template <typename Image>
void expectNeutralUntouched(ImageMod& mod)
{
    auto img = curveTestCard<Image>();
    auto ref = curveTestCopy(*img);
    mod.apply(img.get(), nullptr);
    EXPECT_TRUE(curveTestSame(*img, *ref)) << mod.name;
    CurveTestMask full(1.0f);
    auto ctx = maskContext(&full);
    mod.apply(img.get(), &ctx);
    EXPECT_TRUE(curveTestSame(*img, *ref)) << mod.name;
}

template <typename Mod>
void expectNeutralBothDepths()
{
    Mod a;
    expectNeutralUntouched<FlexImageFloat>(a);
    Mod b;
    expectNeutralUntouched<FlexImage8>(b);
}

} // namespace

TEST(CurveMods, ExposureCurveVersionSetsLabelAndTip)
{
    ImageModExposureCurve mod;
    EXPECT_EQ(mod.version, 2);
    EXPECT_EQ(mod.displayName, "Gamma Curve");
    EXPECT_EQ(mod.toolTip, "Adjust gamma using a horizontal curve editor.");
    mod.setVersion(1);
    EXPECT_EQ(mod.displayName, "Exposure Curve");
    EXPECT_EQ(mod.toolTip, "Adjust exposure using a horizontal curve editor.");
    // A clone keeps the old version and its label.
    auto copy = cloneMod(mod);
    EXPECT_EQ(copy->version, 1);
    EXPECT_EQ(copy->displayName, "Exposure Curve");
}

TEST(CurveMods, NeutralSettingsLeaveBothDepthsBitIdentical)
{
    expectNeutralBothDepths<ImageModLuminanceCurve>();
    expectNeutralBothDepths<ImageModRGBCombinedCurve>();
    expectNeutralBothDepths<ImageModRGBCurves>();
    expectNeutralBothDepths<ImageModComponentCurve>();
    expectNeutralBothDepths<ImageModLabCurves>();
    expectNeutralBothDepths<ImageModExposureCurve>();
}

TEST(CurveMods, ZeroAmountSkipsEvenWithRealCurves)
{
    ImageModLuminanceCurve lum;
    setCurve(lum, 1, "0 .3 1 .3");
    lum.variableAt(0)->setFloatValue(0.0f);
    expectNeutralUntouched<FlexImageFloat>(lum);
    ImageModRGBCurves rgb;
    setCurve(rgb, 0, "0 .3 1 .3");
    rgb.variableAt(4)->setFloatValue(0.0f);
    // Amount 0 exits before any mask is read, although the mask alone sets the strength.
    auto img = curveTestCard<FlexImageFloat>();
    auto ref = curveTestCopy(*img);
    CurveTestMask full(1.0f);
    auto ctx = maskContext(&full);
    rgb.apply(img.get(), &ctx);
    EXPECT_TRUE(curveTestSame(*img, *ref));
    ImageModLabCurves lab;
    setCurve(lab, 0, "0 .3 1 .3");
    lab.variableAt(3)->setFloatValue(0.0f);
    expectNeutralUntouched<FlexImage8>(lab);
    ImageModExposureCurve exp;
    setCurve(exp, 1, "0 .2 1 .2");
    exp.variableAt(0)->setFloatValue(0.0f);
    expectNeutralUntouched<FlexImageFloat>(exp);
}

TEST(CurveMods, LuminanceCurveHalvesLuminanceAndIgnoresMask)
{
    ImageModLuminanceCurve mod;
    setCurve(mod, 1, "0 0 1 .5");
    CurveTestMask zero(0.0f);
    auto ctx = maskContext(&zero);
    auto f = curveTestImage<FlexImageFloat>({{200.0f, 100.0f, 50.0f}, {255.0f, 255.0f, 255.0f}});
    mod.apply(f.get(), &ctx);
    EXPECT_NEAR(f->data[0], 100.0f, 2e-3);
    EXPECT_NEAR(f->data[1], 50.0f, 1e-3);
    EXPECT_NEAR(f->data[2], 25.0f, 1e-3);
    // White has Y 255: every channel takes the target directly.
    EXPECT_NEAR(f->data[3], 127.5f, 1e-4);
    EXPECT_EQ(f->data[3], f->data[5]);
    auto b = curveTestImage<FlexImage8>({{200.0f, 100.0f, 50.0f}, {255.0f, 255.0f, 255.0f}});
    mod.apply(b.get(), &ctx);
    EXPECT_NEAR(b->data[0], 100, 1);
    EXPECT_LE(b->data[0], 100);
    EXPECT_EQ(b->data[3], 127);
}

TEST(CurveMods, CombinedCurveFloatAndEightBitEnds)
{
    ImageModRGBCombinedCurve mod;
    setCurve(mod, 1, "0 .2 1 .6");
    CurveTestMask zero(0.0f);
    auto ctx = maskContext(&zero);
    auto f = curveTestImage<FlexImageFloat>({{127.5f, 0.0f, 255.0f}});
    mod.apply(f.get(), &ctx);
    EXPECT_NEAR(f->data[0], 102.0f, 1e-3);
    EXPECT_NEAR(f->data[1], 51.0f, 1e-4);
    EXPECT_NEAR(f->data[2], 153.0f, 1e-4);
    auto b = curveTestImage<FlexImage8>({{128.0f, 254.0f, 255.0f}});
    mod.apply(b.get(), &ctx);
    EXPECT_PIXEL_NEAR(b->data, 51, 51, 153, 0);
}

TEST(CurveMods, RgbCurvesOwnCurveThenSharedCurve)
{
    ImageModRGBCurves mod;
    setCurve(mod, 0, "0 .2 1 .6");
    setCurve(mod, 3, "0 0 1 .5");
    auto f = curveTestImage<FlexImageFloat>({{127.5f, 127.5f, 127.5f}});
    mod.apply(f.get(), nullptr);
    // Red: 127.5 -> 0.4 * 255 = 102 -> 0.2 * 255 = 51 (the other order would give 76.5).
    EXPECT_PIXEL_NEAR(f->data, 51.0f, 63.75f, 63.75f, 1e-3);
    auto b = curveTestImage<FlexImage8>({{128.0f, 128.0f, 255.0f}});
    mod.apply(b.get(), nullptr);
    // 8-bit: red 128 -> entry 0 (0.2) -> 51 -> entry 0 of the shared curve (0) -> 0.
    EXPECT_PIXEL_NEAR(b->data, 0, 0, 127, 0);
}

template <typename Image>
void expectRgbCurvesMaskReplacesAmount()
{
    ImageModRGBCurves mod;
    setCurve(mod, 1, "0 .5 1 .5");
    mod.variableAt(4)->setFloatValue(0.3f);
    auto img = curveTestImage<Image>({{10, 255, 10}, {10, 255, 10}});
    CurveTestStripeMask stripes;
    auto ctx = maskContext(&stripes);
    mod.apply(img.get(), &ctx);
    // Mask 1: the full curve despite Amount 0.3; mask 0: untouched.
    EXPECT_NEAR(float(img->data[1]), 127.5f, 0.51f);
    EXPECT_EQ(float(img->data[4]), 255.0f);
    EXPECT_EQ(float(img->data[0]), 10.0f);
}

TEST(CurveMods, RgbCurvesMaskReplacesAmount)
{
    expectRgbCurvesMaskReplacesAmount<FlexImageFloat>();
    expectRgbCurvesMaskReplacesAmount<FlexImage8>();
}

TEST(CurveMods, ComponentCurveTouchesChosenChannelsOnly)
{
    const bool expected[6][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}, {0, 1, 1}, {1, 0, 1}};
    for (int32_t choice = 0; choice < 6; ++choice) {
        ImageModComponentCurve mod;
        setCurve(mod, 1, "0 .5 1 .5");
        setChoice(mod, 2, choice);
        auto f = curveTestImage<FlexImageFloat>({{40.0f, 40.0f, 40.0f}});
        auto b = curveTestImage<FlexImage8>({{40.0f, 40.0f, 40.0f}});
        mod.apply(f.get(), nullptr);
        mod.apply(b.get(), nullptr);
        for (int32_t c = 0; c < 3; ++c) {
            EXPECT_EQ(f->data[c], expected[choice][c] ? 127.5f : 40.0f) << choice << " " << c;
            EXPECT_EQ(b->data[c], expected[choice][c] ? 127 : 40) << choice << " " << c;
        }
    }
}

TEST(CurveMods, ComponentCurveMaskPassPerChannel)
{
    // A mask reading red: the green pass sees red already changed, as a pass per channel does.
    TestSelectorRed mask;
    ImageModComponentCurve mod;
    setCurve(mod, 1, "0 1 1 1");
    auto f = curveTestImage<FlexImageFloat>({{51.0f, 0.0f, 0.0f}});
    auto ctx = maskContext(&mask);
    mod.apply(f.get(), &ctx);
    // Red: m 0.2 -> 51 * 0.8 + 255 * 0.2 = 91.8. Green: m = 91.8 / 255 = 0.36 -> 91.8.
    EXPECT_NEAR(f->data[0], 91.8f, 1e-3);
    EXPECT_NEAR(f->data[1], 91.8f, 1e-3);
    EXPECT_EQ(f->data[2], 0.0f);
}

TEST(CurveMods, LabCurvesSqueezeOnlyUsedChannels)
{
    ImageModLabCurves mod;
    setCurve(mod, 2, "0 .75 1 .75");   // b to 128 * 0.75 - 64 = 32 everywhere
    auto f = curveTestImage<FlexImageFloat>({{128.0f, 128.0f, 128.0f}});
    float L0, a0, b0;
    labCurvesToLab(128.0f, 128.0f, 128.0f, L0, a0, b0);
    mod.apply(f.get(), nullptr);
    float L1, a1, b1;
    labCurvesToLab(f->data[0], f->data[1], f->data[2], L1, a1, b1);
    EXPECT_NEAR(b1, 32.0f, 0.05f);
    EXPECT_NEAR(a1, a0, 0.05f);
    EXPECT_NEAR(L1, L0, 0.05f);
    // Amount scales nothing: a quarter gives the same bits.
    auto g = curveTestImage<FlexImageFloat>({{128.0f, 128.0f, 128.0f}});
    mod.variableAt(3)->setFloatValue(0.25f);
    mod.apply(g.get(), nullptr);
    EXPECT_TRUE(curveTestSame(*f, *g));

    // A linear but non-identity a curve clips a strong red's a at 64.
    ImageModLabCurves clip;
    setCurve(clip, 1, "0 0 .5 .5 1 1");
    auto red = curveTestImage<FlexImageFloat>({{255.0f, 0.0f, 0.0f}});
    labCurvesToLab(255.0f, 0.0f, 0.0f, L0, a0, b0);
    EXPECT_GT(a0, 64.0f);
    clip.apply(red.get(), nullptr);
    float Lr, ar, br;
    labCurvesToLab(red->data[0], red->data[1], red->data[2], Lr, ar, br);
    EXPECT_LT(ar, a0 - 5.0f);

    // The L curve halves L; 8-bit stores the truncation of the float result.
    ImageModLabCurves half;
    setCurve(half, 0, "0 0 1 .5");
    auto hf = curveTestImage<FlexImageFloat>({{200.0f, 150.0f, 100.0f}});
    auto hb = curveTestImage<FlexImage8>({{200.0f, 150.0f, 100.0f}});
    half.apply(hf.get(), nullptr);
    half.apply(hb.get(), nullptr);
    labCurvesToLab(200.0f, 150.0f, 100.0f, L0, a0, b0);
    labCurvesToLab(hf->data[0], hf->data[1], hf->data[2], L1, a1, b1);
    EXPECT_NEAR(L1, L0 * 0.5f, 0.05f);
    for (int32_t c = 0; c < 3; ++c)
        EXPECT_EQ(hb->data[c], uint8_t(hf->data[c]));
}

TEST(CurveMods, LabRoundTripNearIdentity)
{
    for (float v : {0.0f, 20.0f, 128.0f, 255.0f}) {
        float L, a, b, r, g, bl;
        labCurvesToLab(v, v * 0.5f, 255.0f - v, L, a, b);
        labCurvesToRgb(L, a, b, r, g, bl);
        EXPECT_NEAR(r, v, 0.1f);
        EXPECT_NEAR(g, v * 0.5f, 0.1f);
        EXPECT_NEAR(bl, 255.0f - v, 0.1f);
    }
}

TEST(CurveMods, ExposureCurveGammaForms)
{
    // Table 0.5 everywhere: e = 1, no change, although the curve is not the identity list.
    ImageModExposureCurve flat;
    setCurve(flat, 1, "0 .5 .5 .5 1 .5");
    auto card = curveTestCard<FlexImageFloat>();
    auto ref = curveTestCopy(*card);
    flat.apply(card.get(), nullptr);
    EXPECT_TRUE(curveTestSame(*card, *ref));

    // Table 0.25: e = 0.5, exponent 2, white capped at 254.95 first.
    ImageModExposureCurve dark;
    setCurve(dark, 1, "0 .25 1 .25");
    auto f = curveTestImage<FlexImageFloat>({{127.5f, 255.0f, 0.0f}, {100.0f, 100.0f, 100.0f}});
    dark.apply(f.get(), nullptr);
    EXPECT_NEAR(f->data[0], 63.75f, 1e-3);
    EXPECT_NEAR(f->data[1], 254.95f * 254.95f / 255.0f, 1e-3);
    EXPECT_EQ(f->data[2], 0.0f);
    auto b = curveTestImage<FlexImage8>({{128.0f, 255.0f, 0.0f}});
    dark.apply(b.get(), nullptr);
    EXPECT_PIXEL_NEAR(b->data, 64, 254, 0, 0);   // 128^2 / 255 = 64.25

    // Table 0.75: e = 1.5, brightening with exponent 2; black floored at 0.05 first.
    ImageModExposureCurve bright;
    setCurve(bright, 1, "0 .75 1 .75");
    auto g = curveTestImage<FlexImageFloat>({{127.5f, 0.0f, 255.0f}});
    bright.apply(g.get(), nullptr);
    EXPECT_NEAR(g->data[0], 191.25f, 1e-3);
    EXPECT_GT(g->data[1], 0.0f);
    EXPECT_NEAR(g->data[2], 255.0f, 1e-4);

    // Older versions also desaturate where they darken, and only there.
    ImageModExposureCurve old;
    old.setVersion(1);
    setCurve(old, 1, "0 .25 1 .25");
    auto o = curveTestImage<FlexImageFloat>({{200.0f, 100.0f, 50.0f}});
    auto n = curveTestImage<FlexImageFloat>({{200.0f, 100.0f, 50.0f}});
    old.apply(o.get(), nullptr);
    dark.apply(n.get(), nullptr);
    const float v = std::pow(0.5f, 0.4f);
    const float y = luminance(n->data[0], n->data[1], n->data[2]);
    EXPECT_NEAR(o->data[0], (n->data[0] - y) * v + y, 1e-3);
    ImageModExposureCurve oldBright;
    oldBright.setVersion(1);
    setCurve(oldBright, 1, "0 .75 1 .75");
    auto ob = curveTestImage<FlexImageFloat>({{127.5f, 0.0f, 255.0f}});
    oldBright.apply(ob.get(), nullptr);
    EXPECT_TRUE(curveTestSame(*ob, *g));
}

TEST(CurveMods, ExposureCurveMaskZeroLeavesPixel)
{
    ImageModExposureCurve mod;
    setCurve(mod, 1, "0 .25 1 .25");
    CurveTestStripeMask stripes;
    auto ctx = maskContext(&stripes);
    auto b = curveTestImage<FlexImage8>({{128.0f, 128.0f, 128.0f}, {128.0f, 128.0f, 128.0f}});
    mod.apply(b.get(), &ctx);
    EXPECT_EQ(b->data[0], 64);
    EXPECT_EQ(b->data[3], 128);
}
