#include "mods/ColorSteps.h"
#include "tests/mods/ColourTestHelpers.h"

#include <gtest/gtest.h>

namespace {

struct Rgb {
    float r, g, b;
};

Rgb dyeLegacy(Rgb p, const ColorStepColor& c, float w)
{
    dyeLegacyStep(p.r, p.g, p.b, c, w);
    return p;
}

Rgb dyeCurrent(Rgb p, const ColorStepColor& c, float w)
{
    dyeStep(p.r, p.g, p.b, c, w);
    return p;
}

Rgb hue(Rgb p, const ColorStepColor& c, float w)
{
    hueStep(p.r, p.g, p.b, c, w);
    return p;
}

} // namespace

TEST(ColorSteps, ColorizeAddsDistanceFromTheColoursGreyAndClamps)
{
    const ColorStepColor c = makeStepColor(200.0f, 100.0f, 0.0f);
    EXPECT_EQ(c.mean, 100.0f);
    EXPECT_EQ(colorizeStep(100.0f, c.k[0], c.mean, 0.5f), 150.0f);
    EXPECT_EQ(colorizeStep(100.0f, c.k[1], c.mean, 0.5f), 100.0f);
    EXPECT_EQ(colorizeStep(100.0f, c.k[2], c.mean, 0.5f), 50.0f);
    EXPECT_EQ(colorizeStep(250.0f, c.k[0], c.mean, 1.0f), 255.0f);
    EXPECT_EQ(colorizeStep(20.0f, c.k[2], c.mean, 1.0f), 0.0f);
}

TEST(ColorSteps, GreyColourColorizesNothingAtAnyWeight)
{
    // Every 8-bit grey and the half step: the mean comes back exactly, so the shift is exactly 0.
    for (int g = 0; g <= 510; ++g) {
        const float k = float(g) * 0.5f;
        const ColorStepColor c = makeStepColor(k, k, k);
        ASSERT_EQ(c.mean, k) << k;
        for (float w : {0.1f, 0.5f, 1.0f, 3.0f})
            for (float px : {0.0f, 17.0f, 128.5f, 255.0f})
                ASSERT_EQ(colorizeStep(px, c.k[0], c.mean, w), px);
    }
}

TEST(ColorSteps, TintBlendsWithoutClamp)
{
    EXPECT_EQ(tintStep(100.0f, 200.0f, 0.25f), 125.0f);
    EXPECT_EQ(tintStep(300.0f, 255.0f, 0.5f), 277.5f);
    EXPECT_EQ(tintStep(100.0f, 200.0f, -0.5f), 50.0f);
    // The hoisted form is the same arithmetic.
    for (float c : {0.0f, 33.3f, 255.0f})
        EXPECT_EQ(tintStepHoisted(c, 200.0f * 0.3f, 1.0f - 0.3f), tintStep(c, 200.0f, 0.3f));
}

TEST(ColorSteps, FilterDarkensBelowAndLightensAboveTheNeutral127_5)
{
    EXPECT_EQ(filterStep(100.0f, 255.0f, 0.5f), 177.5f); // f 2: half the way to white
    EXPECT_EQ(filterStep(100.0f, 0.0f, 0.5f), 50.0f);    // f 0: half the way to black
    EXPECT_EQ(filterStep(200.0f, 63.75f, 1.0f), 100.0f); // f 0.5
    EXPECT_EQ(filterStep(250.0f, 255.0f, 3.0f), 255.0f); // clamped
    for (int c = 0; c <= 255; ++c)
        for (float w : {0.25f, 1.0f, 2.0f})
            ASSERT_EQ(filterStep(float(c), 127.5f, w), float(c)) << c;
}

TEST(ColorSteps, ScreenAndMultiply)
{
    const float white = div255(255.0f);
    EXPECT_EQ(white, 1.0f);
    EXPECT_EQ(screenStep(100.0f, white, 0.5f), 177.5f);
    EXPECT_EQ(screenStep(100.0f, white, 1.0f), 255.0f);
    // A black screen leaves the channel (up to rounding of c / 255).
    EXPECT_NEAR(screenStep(51.0f, 0.0f, 0.5f), 51.0f, 1e-4f);
    // No clamp: a channel above 255 stays above.
    EXPECT_GT(screenStep(300.0f, white, 0.5f), 255.0f);

    EXPECT_EQ(multiplyStep(200.0f, 0.5f, 1.0f), 100.0f);
    EXPECT_EQ(multiplyStep(200.0f, 0.5f, 0.5f), 150.0f);
    EXPECT_EQ(multiplyStep(300.0f, 1.0f, 1.0f), 255.0f);
}

TEST(ColorSteps, DyeCurrentTakesHueAndSaturationOfTheColourAtThePixelsValue)
{
    const ColorStepColor red = makeStepColor(255.0f, 0.0f, 0.0f);
    Rgb p = dyeCurrent({100.0f, 50.0f, 200.0f}, red, 1.0f);
    EXPECT_PIXEL_NEAR(&p.r, 200.0f, 0.0f, 0.0f, 1e-3f);
    p = dyeCurrent({100.0f, 50.0f, 200.0f}, red, 0.5f);
    EXPECT_PIXEL_NEAR(&p.r, 150.0f, 25.0f, 100.0f, 1e-3f);
    // Grey colour: the pixel's value times the colour's value, in all three.
    const ColorStepColor grey = makeStepColor(127.5f, 127.5f, 127.5f);
    p = dyeCurrent({100.0f, 50.0f, 200.0f}, grey, 1.0f);
    EXPECT_PIXEL_NEAR(&p.r, 100.0f, 100.0f, 100.0f, 1e-3f);
    // Weight 0 leaves the pixel exactly.
    p = dyeCurrent({100.0f, 50.0f, 200.0f}, red, 0.0f);
    EXPECT_EQ(p.r, 100.0f);
    EXPECT_EQ(p.g, 50.0f);
    EXPECT_EQ(p.b, 200.0f);
}

TEST(ColorSteps, DyeLegacyRebuildsFromLuminance)
{
    // Y 102 gives n 0.4: value 0.4 and saturation 1 - 0.4 of a red hue.
    const ColorStepColor red = makeStepColor(255.0f, 0.0f, 0.0f);
    Rgb p = dyeLegacy({102.0f, 102.0f, 102.0f}, red, 1.0f);
    EXPECT_PIXEL_NEAR(&p.r, 102.0f, 40.8f, 40.8f, 1e-3f);
    // A darker colour scales n: value 0.5 halves it.
    const ColorStepColor darkRed = makeStepColor(127.5f, 0.0f, 0.0f);
    p = dyeLegacy({102.0f, 102.0f, 102.0f}, darkRed, 1.0f);
    EXPECT_PIXEL_NEAR(&p.r, 51.0f, 51.0f * 0.2f, 51.0f * 0.2f, 1e-3f);
    p = dyeLegacy({10.0f, 20.0f, 30.0f}, red, 0.0f);
    EXPECT_EQ(p.r, 10.0f);
    EXPECT_EQ(p.b, 30.0f);
}

TEST(ColorSteps, HueKeepsPixelSaturationAndValueWeightedByColourPurity)
{
    const ColorStepColor blue = makeStepColor(0.0f, 0.0f, 255.0f);
    Rgb p = hue({200.0f, 50.0f, 50.0f}, blue, 1.0f);
    EXPECT_PIXEL_NEAR(&p.r, 50.0f, 50.0f, 200.0f, 1e-3f);
    p = hue({200.0f, 50.0f, 50.0f}, blue, 0.5f);
    EXPECT_PIXEL_NEAR(&p.r, 125.0f, 50.0f, 125.0f, 1e-3f);
    // A half-saturated colour blends half as much.
    const ColorStepColor paleBlue = makeStepColor(127.5f, 127.5f, 255.0f);
    p = hue({200.0f, 50.0f, 50.0f}, paleBlue, 1.0f);
    EXPECT_PIXEL_NEAR(&p.r, 125.0f, 50.0f, 125.0f, 1e-3f);
    // A grey colour has weight 0: the pixel stays bit for bit.
    p = hue({200.0f, 50.0f, 50.0f}, makeStepColor(90.0f, 90.0f, 90.0f), 1.0f);
    EXPECT_EQ(p.r, 200.0f);
    EXPECT_EQ(p.g, 50.0f);
    EXPECT_EQ(p.b, 50.0f);
}

TEST(ColorSteps, EightBitStoreClampsHighThenLowAndTruncates)
{
    uint8_t v = 7;
    storeSample(&v, 150.99f);
    EXPECT_EQ(v, 150);
    storeSample(&v, 300.0f);
    EXPECT_EQ(v, 255);
    storeSample(&v, -4.0f);
    EXPECT_EQ(v, 0);
    storeSample(&v, std::nanf(""));
    EXPECT_EQ(v, 0);
}

TEST(ColorSteps, ComplementAndMethodSigns)
{
    const ColorStepColor pos = makeStepColor(200.0f, 100.0f, 0.0f);
    const ColorStepColor neg = makeStepComplement(200.0f, 100.0f, 0.0f);
    EXPECT_EQ(neg.k[0], 55.0f);
    EXPECT_EQ(neg.k[2], 255.0f);
    // Colorize: a negative weight pushes the other way.
    float px[3] = {100.0f, 100.0f, 100.0f};
    colorMethodPixel<kColorMethodColorize>(px, 3, -0.5f, pos, neg, true);
    EXPECT_EQ(px[0], 50.0f);
    EXPECT_EQ(px[1], 100.0f);
    EXPECT_EQ(px[2], 150.0f);
    // Tint below 0: c * (1 + w) - complement * w.
    float t[3] = {100.0f, 100.0f, 100.0f};
    colorMethodPixel<kColorMethodTint>(t, 3, -0.5f, pos, neg, true);
    EXPECT_EQ(t[0], 77.5f);
    EXPECT_EQ(t[1], 127.5f);
    EXPECT_EQ(t[2], 177.5f);
    // Balance keeps the colour itself and the sign.
    const ColorStepColor bal = makeStepColor(40.0f, 0.0f, 20.0f);
    float b[3] = {100.0f, 100.0f, 100.0f};
    colorMethodPixel<kColorMethodBalance>(b, 3, -0.5f, bal, makeStepComplement(40.0f, 0.0f, 20.0f), true);
    EXPECT_EQ(b[0], 80.0f);
    EXPECT_EQ(b[1], 100.0f);
    EXPECT_EQ(b[2], 90.0f);
}
