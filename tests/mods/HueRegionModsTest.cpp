#include "mods/HueRegionSteps.h"
#include "mods/ImageModHueBrightness.h"
#include "mods/ImageModHueShift.h"
#include "mods/ImageModSaturationCurve.h"
#include "tests/mods/CurveTestHelpers.h"

#include "core/ColorMath.h"

#include <cmath>

namespace {

// Flat at y around u 0 (and so around the wrap) and at 0.5 in the middle.
std::string peakAtZero(const char* y)
{
    return std::string("0 ") + y + " .2 " + y + " .3 .5 .7 .5 .8 " + y + " 1 " + y;
}

// Version and a curve peaking at hue 0 with reading y, no offset.
void setPeak(ImageMod& mod, int32_t version, const char* y)
{
    mod.setVersion(version);
    setCurve(mod, 1, peakAtZero(y));
    setHueOffset(mod, 1, 0.0f);
}

template <typename Mod, typename Image>
void expectFlatAndZeroAmountUntouched()
{
    Mod mod;
    auto img = curveTestCard<Image>();
    auto ref = curveTestCopy(*img);
    mod.apply(img.get(), nullptr);
    EXPECT_TRUE(curveTestSame(*img, *ref)) << mod.name;
    // Any flat curve at 0.5 does no work, whatever the point count.
    setCurve(mod, 1, "0 .5 .1 .5 .9 .5 1 .5");
    mod.apply(img.get(), nullptr);
    EXPECT_TRUE(curveTestSame(*img, *ref)) << mod.name;
    setCurve(mod, 1, peakAtZero(".9"));
    mod.variableAt(0)->setFloatValue(0.0f);
    mod.apply(img.get(), nullptr);
    EXPECT_TRUE(curveTestSame(*img, *ref)) << mod.name;
    // A mask of 0 leaves every pixel at every version.
    mod.variableAt(0)->setFloatValue(1.0f);
    CurveTestMask zero(0.0f);
    auto ctx = maskContext(&zero);
    for (int32_t v = 1; v <= 3; ++v) {
        mod.setVersion(v);
        mod.apply(img.get(), &ctx);
        EXPECT_TRUE(curveTestSame(*img, *ref)) << mod.name << " v" << v;
    }
}

template <typename Mod>
void expectNeutralHueMod()
{
    expectFlatAndZeroAmountUntouched<Mod, FlexImageFloat>();
    expectFlatAndZeroAmountUntouched<Mod, FlexImage8>();
}

} // namespace

TEST(HueRegionMods, NamesVersionsAndAnimators)
{
    ImageModSaturationCurve sat;
    EXPECT_EQ(sat.variableAt(1)->controlKind, ImageModVariable::hueCurveControlKind);
    // The label follows the version; the name stays for the filter files.
    ImageModHueBrightness hb;
    EXPECT_EQ(hb.displayName, "Hue Exposure");
    hb.setVersion(2);
    EXPECT_EQ(hb.displayName, "Hue Brightness");
    EXPECT_EQ(hb.name, "Hue Brightness");
    ImageModHueShift shift;
    EXPECT_EQ(shift.animators.size(), 3u);
    // The hue offset sweeps 0..360 over three seconds; frame 30 of 60 is the middle.
    shift.setFrame(0);
    EXPECT_EQ(shift.curveAt(1)->hueOffset, 0.0f);
    EXPECT_EQ(shift.curveAt(1)->pointCount(), 5);
    shift.setFrame(59);
    EXPECT_EQ(shift.curveAt(1)->hueOffset, 360.0f);
}

TEST(HueRegionMods, NeutralSettingsAndZeroMaskLeaveBothDepths)
{
    expectNeutralHueMod<ImageModSaturationCurve>();
    expectNeutralHueMod<ImageModHueBrightness>();
    expectNeutralHueMod<ImageModHueShift>();
}

TEST(HueRegionMods, FrontWrapsHueWithOffset)
{
    ToneCurve c(peakAtZero("1"));
    c.closed = true;
    c.rebuild();
    const float* t = c.table();
    EXPECT_EQ(curveReadUnit(t, 0.0f), 1.0f);
    // Offset 120: hue 120 lands on u 0; hue 300 on u 0.5; hue 0 on u 240 / 360.
    EXPECT_EQ(hueRegionRead(t, 120.0f, 120.0f), 1.0f);
    EXPECT_EQ(hueRegionRead(t, 300.0f, 120.0f), curveReadUnit(t, 0.5f));
    EXPECT_NEAR(hueRegionRead(t, 0.0f, 120.0f), curveReadUnit(t, 240.0f / 360.0f), 1e-6);
    // Offset 0 keeps hue 359 near the top of the curve, which wraps back to the peak.
    EXPECT_NEAR(hueRegionRead(t, 359.0f, 0.0f), 1.0f, 1e-5);
    float h, s, v;
    hueRegionHsv<float>(0.0f, 255.0f, 0.0f, h, s, v);
    EXPECT_EQ(h, 120.0f);
    hueRegionHsv<double>(255.0f, 0.0f, 1.0f, h, s, v);   // just below 360 wraps into range
    EXPECT_GE(h, 359.0f);
    EXPECT_LT(h, 360.0f);
    hueRegionHsv<float>(80.0f, 80.0f, 80.0f, h, s, v);
    EXPECT_EQ(h, 0.0f);
    EXPECT_EQ(s, 0.0f);
}

TEST(HueRegionMods, HueShiftMovesSelectedHueOnly)
{
    for (int32_t version : {1, 2}) {
        ImageModHueShift mod;
        mod.setVersion(version);
        setCurve(mod, 1, peakAtZero("1"));
        setHueOffset(mod, 1, 120.0f);
        // Green sits at the peak: +180 degrees gives magenta. Magenta reads about 0.5 and keeps
        // its full red and empty green.
        auto f = curveTestImage<FlexImageFloat>({{0.0f, 255.0f, 0.0f}, {255.0f, 0.0f, 255.0f}});
        mod.apply(f.get(), nullptr);
        const float expected[5] = {255.0f, 0.0f, 255.0f, 255.0f, 0.0f};
        for (int32_t i = 0; i < 5; ++i)
            EXPECT_NEAR(f->data[i], expected[i], 1e-3) << "version " << version << " sample " << i;
        auto b = curveTestImage<FlexImage8>({{0.0f, 255.0f, 0.0f}});
        mod.apply(b.get(), nullptr);
        EXPECT_GE(b->data[0], 254);
        EXPECT_EQ(b->data[1], 0);
        EXPECT_GE(b->data[2], 254);
    }
}

TEST(HueRegionMods, HueShiftVersionsDiffer)
{
    // Reading 0.75: version 1 turns by 90 degrees, version 2 by 180 * 0.5^2 = 45.
    const float expectedHue[3] = {0.0f, 90.0f, 45.0f};
    for (int32_t version : {1, 2}) {
        ImageModHueShift mod;
        setPeak(mod, version, ".75");
        auto f = curveTestImage<FlexImageFloat>({{255.0f, 0.0f, 0.0f}});
        mod.apply(f.get(), nullptr);
        float h, s, v;
        hueRegionHsv<float>(f->data[0], f->data[1], f->data[2], h, s, v);
        EXPECT_NEAR(h, expectedHue[version], 0.05f) << version;
        EXPECT_NEAR(s, 1.0f, 1e-5);
        EXPECT_NEAR(v, 1.0f, 1e-5);
    }
}

TEST(HueRegionMods, SaturationCurveVersions)
{
    // Red-ish pixel of hue 0 under a reading of 0.75.
    const float px[3] = {200.0f, 100.0f, 100.0f};
    auto run = [&](int32_t version) {
        ImageModSaturationCurve mod;
        setPeak(mod, version, ".75");
        auto f = curveTestImage<FlexImageFloat>({{px[0], px[1], px[2]}});
        mod.apply(f.get(), nullptr);
        return f;
    };
    // Version 3: w = 0.5, v = 0.5 * sqrt(0.5), q = (v / 2 + 0.5) * 1.99999, f = 1 / (2 - q).
    const double q3 = (0.5 * std::sqrt(0.5) * 0.5 + 0.5) * 1.99999;
    const double f3 = 1.0 / (2.0 - q3);
    const double g = std::sqrt(0.299 * 200 * 200 + 0.587 * 100 * 100 + 0.114 * 100 * 100);
    auto v3 = run(3);
    EXPECT_NEAR(v3->data[0], (200.0 - g) * f3 + g, 2e-3);
    EXPECT_NEAR(v3->data[1], (100.0 - g) * f3 + g, 2e-3);
    // Version 2: q = 0.75 * 1.99999, root anchor.
    const double f2 = 1.0 / (2.0 - 0.75 * 1.99999);
    auto v2 = run(2);
    EXPECT_NEAR(v2->data[0], std::min(255.0, (200.0 - g) * f2 + g), 2e-3);
    EXPECT_NEAR(v2->data[1], (100.0 - g) * f2 + g, 2e-3);
    // Version 1: same factor, linear luminance anchor.
    const double y = 0.299 * 200 + 0.587 * 100 + 0.114 * 100;
    auto v1 = run(1);
    EXPECT_NEAR(v1->data[1], (100.0 - y) * f2 + y, 2e-3);
    EXPECT_FALSE(curveTestSame(*v1, *v2));
    // A reading below 0.5 desaturates: 0.25 * 1.99999 - 1 = -0.5 -> factor 0.5 at full strength.
    ImageModSaturationCurve low;
    setPeak(low, 2, ".25");
    auto b = curveTestImage<FlexImage8>({{200.0f, 100.0f, 100.0f}});
    low.apply(b.get(), nullptr);
    const double f = 0.25 * 1.99999;
    EXPECT_EQ(b->data[0], uint8_t((200.0 - g) * f + g));
    EXPECT_EQ(b->data[1], uint8_t((100.0 - g) * f + g));
}

TEST(HueRegionMods, HueBrightnessOldestVersionAddsWeightedWhite)
{
    ImageModHueBrightness mod;
    setPeak(mod, 1, ".75");
    // V = 200 / 255, S = 0.5: b = (1 - |2V - 1|) * 0.5, weight b * 0.5, each channel + 255 weight.
    const double v = 200.0 / 255.0;
    const double add = 255.0 * (1.0 - std::fabs(2.0 * v - 1.0)) * 0.5 * 0.5;
    auto f = curveTestImage<FlexImageFloat>({{200.0f, 100.0f, 100.0f}, {250.0f, 0.0f, 0.0f}});
    mod.apply(f.get(), nullptr);
    EXPECT_NEAR(f->data[0], 200.0 + add, 1e-3);
    EXPECT_NEAR(f->data[1], 100.0 + add, 1e-3);
    auto b = curveTestImage<FlexImage8>({{200.0f, 100.0f, 100.0f}});
    mod.apply(b.get(), nullptr);
    EXPECT_EQ(b->data[0], uint8_t(200.0 + add));
    EXPECT_EQ(b->data[2], uint8_t(100.0 + add));
}

namespace {

// One pixel through Hue Brightness version 2, worked by hand. Every input has g = b below r, so
// the hue is 0 and the peak-at-zero curve reads its first point exactly.
struct LightnessCase {
    float r, g, b;      // input
    double outR, outG;  // expected float result; blue equals green
    uint8_t r8, g8;     // expected 8-bit result (truncated)
};

// Curve reading 0.75 (w = 0.5, lightness pulled towards 1).
//  (200,100,100): L = 10/17, S = 10/21; a = 14/17 -> gL = 1 - 0.7 (3/17 / 0.7)^2 = 0.955512;
//                 gS = 1 - 0.85 (11/21 / 0.85)^2 = 0.677204; W = 0.647078;
//                 L' = (7/17) W / 2 + 10/17 = 0.721457; v = L' + S - L' S, m = 2 L' - v.
//  (40,20,20):    L = 2/17, a = 4/17 < 0.3 -> gL = a^2 * 3.3333333 = 0.184544; S = 1/3, gS = 0.477124.
//  (110,100,100): L = 7/17, S = 1/21 < 0.15 -> gS = S^2 * 6.6666665 = 0.0151172; gL = 0.955512.
//  (250,5,5):     L = 1/2, so a = 1 and gL = 1; S = 49/51, gS = 0.998191.
const LightnessCase kRaise[] = {
    {200.0f, 100.0f, 100.0f, 217.794604, 150.148428, 217, 150},
    {40.0f, 20.0f, 20.0f, 53.207590, 26.603795, 53, 26},
    {110.0f, 100.0f, 100.0f, 111.134934, 101.031759, 111, 101},
    {250.0f, 5.0f, 5.0f, 252.495477, 129.773843, 252, 129},
};

// Curve reading 0.25 (w = -0.5): L' = L (1 - W / 2), same ramps as above.
//  (200,100,100): L' = 0.397919 is now below 1/2, so v = L' (1 + S).
const LightnessCase kLower[] = {
    {200.0f, 100.0f, 100.0f, 149.787960, 53.150566, 149, 53},
    {40.0f, 20.0f, 20.0f, 38.238988, 19.119494, 38, 19},
    {110.0f, 100.0f, 100.0f, 109.205546, 99.277769, 109, 99},
    {250.0f, 5.0f, 5.0f, 125.226157, 2.504523, 125, 2},
};

template <size_t N>
void expectLightnessCases(const char* peak, const LightnessCase (&cases)[N])
{
    ImageModHueBrightness mod;
    setPeak(mod, 2, peak);
    std::vector<std::vector<float>> px;
    for (const LightnessCase& c : cases)
        px.push_back({c.r, c.g, c.b});
    auto f = curveTestImage<FlexImageFloat>(px);
    auto b = curveTestImage<FlexImage8>(px);
    mod.apply(f.get(), nullptr);
    mod.apply(b.get(), nullptr);
    for (size_t i = 0; i < N; ++i) {
        const LightnessCase& c = cases[i];
        SCOPED_TRACE(testing::Message() << peak << " pixel " << c.r << "," << c.g << "," << c.b);
        EXPECT_NEAR(f->data[3 * i], c.outR, 2e-3);
        EXPECT_NEAR(f->data[3 * i + 1], c.outG, 2e-3);
        EXPECT_NEAR(f->data[3 * i + 2], c.outG, 2e-3);
        EXPECT_EQ(b->data[3 * i], c.r8);
        EXPECT_EQ(b->data[3 * i + 1], c.g8);
        EXPECT_EQ(b->data[3 * i + 2], c.g8);
    }
}

} // namespace

TEST(HueRegionMods, HueBrightnessLightnessRaisesAndLowersByHand)
{
    expectLightnessCases(".75", kRaise);
    expectLightnessCases(".25", kLower);
}

TEST(HueRegionMods, HueBrightnessLightnessGreysStay)
{
    // S is 0 on a grey, so gS and the weight are 0: every level stays at both depths, even under a
    // curve that reads 0.9 at every hue.
    ImageModHueBrightness mod;
    mod.setVersion(2);
    setCurve(mod, 1, "0 .9 1 .9");
    FlexImage8 ramp8(256, 1, 3);
    FlexImageFloat rampF(1021, 1, 3);
    for (int32_t i = 0; i < 256; ++i)
        ramp8.data[3 * i] = ramp8.data[3 * i + 1] = ramp8.data[3 * i + 2] = uint8_t(i);
    for (int32_t i = 0; i < 1021; ++i)
        rampF.data[3 * i] = rampF.data[3 * i + 1] = rampF.data[3 * i + 2] = float(i) * 0.25f;
    auto ref8 = curveTestCopy(ramp8);
    auto refF = curveTestCopy(rampF);
    mod.apply(&ramp8, nullptr);
    mod.apply(&rampF, nullptr);
    EXPECT_TRUE(curveTestSame(ramp8, *ref8));
    EXPECT_TRUE(curveTestSame(rampF, *refF));
    // A coloured pixel beside the greys does move, so the curve is live.
    auto c = curveTestImage<FlexImageFloat>({{200.0f, 100.0f, 100.0f}});
    mod.apply(c.get(), nullptr);
    EXPECT_GT(c->data[0], 210.0f);
}

TEST(HueRegionMods, HueBrightnessLightnessFollowsMask)
{
    ImageModHueBrightness mod;
    setPeak(mod, 2, ".75");
    // Stripes: mask 1 on even columns, 0 on odd ones. Masked-out pixels keep their exact values.
    CurveTestStripeMask stripes;
    auto ctx = maskContext(&stripes);
    const std::vector<std::vector<float>> px = {
        {200.0f, 100.0f, 100.0f}, {200.0f, 100.0f, 100.0f}, {40.0f, 20.0f, 20.0f}, {37.25f, 20.5f, 20.5f}};
    auto f = curveTestImage<FlexImageFloat>(px);
    auto b = curveTestImage<FlexImage8>(px);
    mod.apply(f.get(), &ctx);
    mod.apply(b.get(), &ctx);
    for (int32_t i : {0, 2}) {
        const LightnessCase& c = kRaise[i / 2]; // the same pixels unmasked
        EXPECT_NEAR(f->data[3 * i], c.outR, 2e-3) << i;
        EXPECT_NEAR(f->data[3 * i + 1], c.outG, 2e-3) << i;
        EXPECT_EQ(b->data[3 * i], c.r8) << i;
        EXPECT_EQ(b->data[3 * i + 1], c.g8) << i;
    }
    for (int32_t i : {1, 3}) {
        for (int32_t c = 0; c < 3; ++c) {
            EXPECT_EQ(f->data[3 * i + c], px[size_t(i)][size_t(c)]) << i << "," << c;
            EXPECT_EQ(b->data[3 * i + c], uint8_t(px[size_t(i)][size_t(c)])) << i << "," << c;
        }
    }
    // Mask 0.5 halves s: W = 0.323539, L' = (7/17) W / 2 + 10/17 = 0.654846.
    CurveTestMask half(0.5f);
    auto halfCtx = maskContext(&half);
    auto hf = curveTestImage<FlexImageFloat>({{200.0f, 100.0f, 100.0f}});
    auto hb = curveTestImage<FlexImage8>({{200.0f, 100.0f, 100.0f}});
    mod.apply(hf.get(), &halfCtx);
    mod.apply(hb.get(), &halfCtx);
    EXPECT_NEAR(hf->data[0], 208.897302, 2e-3);
    EXPECT_NEAR(hf->data[1], 125.074214, 2e-3);
    EXPECT_EQ(hb->data[0], 208);
    EXPECT_EQ(hb->data[1], 125);
}

TEST(HueRegionMods, HueExposureVersionAndEightBitSteps)
{
    ImageModHueBrightness mod;   // version 3
    setPeak(mod, 3, ".75");
    auto f = curveTestImage<FlexImageFloat>({{200.0f, 100.0f, 100.0f}, {90.0f, 90.0f, 90.0f}});
    mod.apply(f.get(), nullptr);
    // W = 0.25, S = 0.5, V = 200 / 255: e above 1, brightening with exponent 1 / (2 - e).
    const double vv = 200.0 / 255.0;
    const double e = 1.0 + (1.0 - std::pow(0.5 - 1.0, 4.0)) * 0.25 * (1.0 - std::pow(vv - 1.0, 4.0));
    EXPECT_NEAR(f->data[0], 255.0 - std::pow(1.0 - 200.0 / 255.0, 1.0 / (2.0 - e)) * 255.0, 2e-3);
    EXPECT_NEAR(f->data[1], 255.0 - std::pow(1.0 - 100.0 / 255.0, 1.0 / (2.0 - e)) * 255.0, 2e-3);
    // Grey: S 0 gives e = 1 exactly.
    EXPECT_EQ(f->data[3], 90.0f);

    // The 8-bit exposure steps divide by 255 as integers: brightening sends every non-zero
    // channel to 255, darkening sends the pixel to black. Kept as old 8-bit renders were.
    auto b = curveTestImage<FlexImage8>({{200.0f, 100.0f, 0.0f}, {90.0f, 90.0f, 90.0f}});
    mod.apply(b.get(), nullptr);
    EXPECT_PIXEL_NEAR(b->data, 255, 255, 0, 0);
    EXPECT_EQ(b->data[3], 90);
    ImageModHueBrightness dark;
    setPeak(dark, 3, ".25");
    auto d = curveTestImage<FlexImage8>({{200.0f, 100.0f, 100.0f}});
    dark.apply(d.get(), nullptr);
    EXPECT_EQ(d->data[0], 0);
    EXPECT_EQ(d->data[1], 0);
    // Float darkening: capped power, then the legacy desaturation.
    auto df = curveTestImage<FlexImageFloat>({{200.0f, 100.0f, 100.0f}});
    dark.apply(df.get(), nullptr);
    const double e2 = 1.0 - (1.0 - std::pow(0.5 - 1.0, 4.0)) * 0.25 * (1.0 - std::pow(vv - 1.0, 4.0));
    const double r = std::pow(200.0 / 255.0, 1.0 / e2) * 255.0;
    const double gch = std::pow(100.0 / 255.0, 1.0 / e2) * 255.0;
    const double y = 0.299 * r + 0.587 * gch + 0.114 * gch;
    const double sat = std::pow(1.0 - std::fabs(e2 - 1.0), 0.4);
    EXPECT_NEAR(df->data[0], (r - y) * sat + y, 2e-3);
    EXPECT_NEAR(df->data[1], (gch - y) * sat + y, 2e-3);
}

TEST(HueRegionMods, MaskScalesStrength)
{
    ImageModHueShift mod;
    setPeak(mod, 1, "1");
    CurveTestMask half(0.5f);
    auto ctx = maskContext(&half);
    auto f = curveTestImage<FlexImageFloat>({{255.0f, 0.0f, 0.0f}});
    mod.apply(f.get(), &ctx);
    // Half strength turns red by 90 degrees.
    float h, s, v;
    hueRegionHsv<float>(f->data[0], f->data[1], f->data[2], h, s, v);
    EXPECT_NEAR(h, 90.0f, 0.05f);
    CurveTestStripeMask stripes;
    auto ctx2 = maskContext(&stripes);
    auto b = curveTestImage<FlexImage8>({{255.0f, 0.0f, 0.0f}, {255.0f, 0.0f, 0.0f}});
    mod.apply(b.get(), &ctx2);
    EXPECT_LE(b->data[0], 1);
    EXPECT_EQ(b->data[3], 255);
    EXPECT_EQ(b->data[4], 0);
}

TEST(HueRegionMods, WrapMatchesFmodBitForBit)
{
    // Every float from -1 to 1100 in steps that hit both fast ranges and the fallback.
    for (float x = -1.0f; x < 1100.0f; x += 0.0371f) {
        EXPECT_EQ(hueRegionWrap360(x), std::fmod(x, 360.0f)) << x;
    }
    const float edges[] = {0.0f, 359.99997f, 360.0f, 360.00003f, 719.99994f, 720.0f, -0.0f};
    for (float x : edges)
        EXPECT_EQ(hueRegionWrap360(x), std::fmod(x, 360.0f)) << x;
}
