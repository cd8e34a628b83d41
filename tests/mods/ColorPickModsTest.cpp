#include "core/ImageModVariableDataButton.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataCurve.h"
#include "mods/CurveSteps.h"
#include "mods/ImageModSelectiveColor.h"
#include "mods/ImageModSplitTone.h"
#include "mods/ImageModWhitePoint.h"
#include "tests/mods/ColourTestHelpers.h"

TEST(WhitePoint, ScaleIsOneForABlackOrWhitePick)
{
    ImageModWhitePoint wp;
    const float* table = wp.curveAt(ImageModWhitePoint::kCurve)->table();
    EXPECT_EQ(ImageModWhitePoint::pickScale(table, 0.0f), 1.0f);
    EXPECT_EQ(ImageModWhitePoint::pickScale(table, 255.0f), 1.0f);
    EXPECT_EQ(ImageModWhitePoint::pickScale(table, 300.0f), 1.0f);
    const float mid = ImageModWhitePoint::pickScale(table, 127.5f);
    EXPECT_EQ(mid, 1.0f / curveReadUnit(table, 0.5f));
    EXPECT_GT(mid, 1.0f);
}

TEST(WhitePoint, PickedColourBecomesItsOwnGrey)
{
    ImageModWhitePoint wp;
    setColour(wp, 0, 200.0f, 100.0f, 100.0f);
    const float y0 = luminance(200.0f, 100.0f, 100.0f);
    // At the pick's own luminance t * q is 1: the full cast comes off.
    const std::vector<float> px = colourApplyFloat(wp, {200.0f, 100.0f, 100.0f});
    EXPECT_PIXEL_NEAR(px, y0, y0, y0, 1e-3f);
    // Black (t = 0) is left; the mask is not read.
    CurveTestMask zero(0.0f);
    const ImageModApplyContext z = maskContext(&zero);
    EXPECT_EQ(colourApplyFloat(wp, {0.0f, 0.0f, 0.0f}, &z), (std::vector<float>{0.0f, 0.0f, 0.0f}));
    EXPECT_NE(colourApplyFloat(wp, {200.0f, 100.0f, 100.0f}, &z)[0], 200.0f);
}

TEST(WhitePoint, CapsAt255ButLetsFloatGoBelowZero)
{
    ImageModWhitePoint wp;
    setColour(wp, 0, 60.0f, 200.0f, 200.0f); // cyan cast: red rises, green and blue fall
    const std::vector<float> px = colourApplyFloat(wp, {250.0f, 90.0f, 2.0f, 255.0f});
    EXPECT_EQ(px[0], 255.0f);
    EXPECT_LT(px[2], 0.0f);
    EXPECT_EQ(px[3], 255.0f);
    const std::vector<int> p8 = colourApply8(wp, {250, 90, 2});
    EXPECT_EQ(p8[0], 255);
    EXPECT_EQ(p8[2], 0);
}

TEST(WhitePoint, OnlyAPressOfResetWritesWhite)
{
    ImageModWhitePoint wp;
    setColour(wp, 0, 10.0f, 20.0f, 30.0f, 200.0f);
    wp.variableChanged(ImageModWhitePoint::kCurve); // other variables don't reset
    // The notices a file load and a frame change send to the button are not presses.
    wp.variableChanged(ImageModWhitePoint::kReset);
    wp.setFrame(3);
    wp.pressButton(ImageModWhitePoint::kCurve); // not a button: nothing
    EXPECT_EQ(wp.colorAt(0)->red, 10.0f);
    wp.pressButton(ImageModWhitePoint::kReset);
    EXPECT_FALSE(wp.variableAt(ImageModWhitePoint::kReset)->asButton()->pressed);
    const ImageModVariableDataColor* c = wp.colorAt(0);
    EXPECT_EQ(c->red, 255.0f);
    EXPECT_EQ(c->green, 255.0f);
    EXPECT_EQ(c->blue, 255.0f);
    EXPECT_EQ(colourApplyFloat(wp, {300.0f, 20.0f, 30.0f}), (std::vector<float>{300.0f, 20.0f, 30.0f}));
}

TEST(SelectiveColor, HueDistanceWrapsAndWeightFades)
{
    EXPECT_EQ(ImageModSelectiveColor::hueDistance(350.0f, 10.0f), 20.0f);
    EXPECT_EQ(ImageModSelectiveColor::hueDistance(10.0f, 350.0f), 20.0f);
    EXPECT_EQ(ImageModSelectiveColor::hueDistance(0.0f, 180.0f), 180.0f);
    EXPECT_EQ(ImageModSelectiveColor::hueWeight(36.0f, 36.0f), 1.0f);
    EXPECT_EQ(ImageModSelectiveColor::hueWeight(54.0f, 36.0f), 0.0f);
    // Halfway through the fade: smooth(0.5, 2) = 0.5.
    EXPECT_EQ(ImageModSelectiveColor::hueWeight(45.0f, 36.0f), 0.5f);
    EXPECT_EQ(ImageModSelectiveColor::hueWeight(40.5f, 36.0f), 1.0f - 0.5f * 0.25f);
}

TEST(SelectiveColor, DesaturatesOnlyNearTheColoursHueAcrossZero)
{
    ImageModSelectiveColor sc;
    setColour(sc, 0, 255.0f, 0.0f, 42.5f); // hue 350
    setValue(sc, 1, 20.0f);                // tol 36
    setValue(sc, 2, 0.0f);                 // to grey
    // Hue 10, 20 degrees away across 0: all the way to its luminance.
    const float y = luminance(255.0f, 42.5f, 0.0f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(sc, {255.0f, 42.5f, 0.0f}), y, y, y, 1e-3f);
    // Green is far away: untouched.
    EXPECT_EQ(colourApplyFloat(sc, {10.0f, 200.0f, 20.0f}), (std::vector<float>{10.0f, 200.0f, 20.0f}));
    // Saturation above 1 stretches (1.5 gives factor 2), clamped.
    setValue(sc, 2, 1.5f);
    const std::vector<int> p8 = colourApply8(sc, {200, 100, 100});
    const float y8 = luminance(200.0f, 100.0f, 100.0f);
    EXPECT_EQ(p8[0], int(std::fmin((200.0f - y8) * 2.0f + y8, 255.0f)));
    EXPECT_EQ(p8[1], int((100.0f - y8) * 2.0f + y8));
    // A grey image is skipped.
    FlexImageFloat grey(1, 1, 1);
    grey.data[0] = 77.0f;
    sc.apply(&grey, nullptr);
    EXPECT_EQ(grey.data[0], 77.0f);
}

TEST(SplitTone, LightAndDarkWeightedByLuminance)
{
    ImageModSplitTone st;
    setColour(st, 1, 0.0f, 0.0f, 255.0f);   // dark: blue
    setColour(st, 2, 255.0f, 0.0f, 0.0f);   // light: red
    // Grey 51: Y / 255 = 0.2, so 0.2 of the light colour and 0.8 of the dark.
    const std::vector<float> px = colourApplyFloat(st, {51.0f, 51.0f, 51.0f, 255.0f});
    EXPECT_PIXEL_NEAR(px, 51.0f, 0.0f, 204.0f, 1e-3f);
    EXPECT_NEAR(px[3], 255.0f, 1e-3f); // both alphas 255
    EXPECT_EQ(colourApply8(st, {51, 51, 51}), (std::vector<int>{51, 0, 204}));
    // No clamp in float: a half amount blends.
    setValue(st, 0, 0.5f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(st, {51.0f, 51.0f, 51.0f}), 51.0f, 25.5f, 127.5f, 1e-3f);
    CurveTestMask zero(0.0f), half(0.5f);
    const ImageModApplyContext z = maskContext(&zero), h = maskContext(&half);
    EXPECT_EQ(colourApplyFloat(st, {51.0f, 51.0f, 51.0f}, &z), (std::vector<float>{51.0f, 51.0f, 51.0f}));
    setValue(st, 0, 1.0f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(st, {51.0f, 51.0f, 51.0f}, &h), 51.0f, 25.5f, 127.5f, 1e-3f);
}
