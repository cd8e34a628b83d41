#include "mods/ColorSteps.h"
#include "tests/mods/ColourTestHelpers.h"

#include <gtest/gtest.h>

namespace {

struct Rgb {
    float r, g, b;
};

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

TEST(ColorSteps, DyeAndHueStepsByHand)
{
    using Step = void (*)(float&, float&, float&, const ColorStepColor&, float);
    const struct {
        const char* what;
        Step step;
        Rgb in, colour;
        float w;
        Rgb out;
    } cases[] = {
        // Dye takes hue and saturation of the colour at the pixel's value.
        { "dye red", dyeStep, { 100, 50, 200 }, { 255, 0, 0 }, 1.0f, { 200, 0, 0 } },
        { "dye red half", dyeStep, { 100, 50, 200 }, { 255, 0, 0 }, 0.5f, { 150, 25, 100 } },
        // Grey colour: the pixel's value times the colour's value, in all three.
        { "dye grey", dyeStep, { 100, 50, 200 }, { 127.5f, 127.5f, 127.5f }, 1.0f, { 100, 100, 100 } },
        { "dye weight 0", dyeStep, { 100, 50, 200 }, { 255, 0, 0 }, 0.0f, { 100, 50, 200 } },
        // The legacy dye rebuilds from luminance: Y 102 gives n 0.4, value 0.4 and saturation 0.6.
        { "legacy red", dyeLegacyStep, { 102, 102, 102 }, { 255, 0, 0 }, 1.0f, { 102, 40.8f, 40.8f } },
        // A darker colour scales n: value 0.5 halves it.
        { "legacy dark red", dyeLegacyStep, { 102, 102, 102 }, { 127.5f, 0, 0 }, 1.0f, { 51, 10.2f, 10.2f } },
        { "legacy weight 0", dyeLegacyStep, { 10, 20, 30 }, { 255, 0, 0 }, 0.0f, { 10, 20, 30 } },
        // Hue keeps the pixel's saturation and value, weighted by the colour's purity.
        { "hue blue", hueStep, { 200, 50, 50 }, { 0, 0, 255 }, 1.0f, { 50, 50, 200 } },
        { "hue blue half", hueStep, { 200, 50, 50 }, { 0, 0, 255 }, 0.5f, { 125, 50, 125 } },
        { "hue pale blue", hueStep, { 200, 50, 50 }, { 127.5f, 127.5f, 255 }, 1.0f, { 125, 50, 125 } },
        { "hue grey", hueStep, { 200, 50, 50 }, { 90, 90, 90 }, 1.0f, { 200, 50, 50 } },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Rgb p = c.in;
        c.step(p.r, p.g, p.b, makeStepColor(c.colour.r, c.colour.g, c.colour.b), c.w);
        // Where nothing should change (weight 0, a grey hue colour), the pixel stays bit for bit.
        const bool exact = c.out.r == c.in.r && c.out.g == c.in.g && c.out.b == c.in.b;
        EXPECT_PIXEL_NEAR(&p.r, c.out.r, c.out.g, c.out.b, exact ? 0.0f : 1e-3f);
    }
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
    EXPECT_PIXEL_NEAR(px, 50.0f, 100.0f, 150.0f, 0);
    // Tint below 0: c * (1 + w) - complement * w.
    float t[3] = {100.0f, 100.0f, 100.0f};
    colorMethodPixel<kColorMethodTint>(t, 3, -0.5f, pos, neg, true);
    EXPECT_PIXEL_NEAR(t, 77.5f, 127.5f, 177.5f, 0);
    // Balance keeps the colour itself and the sign.
    const ColorStepColor bal = makeStepColor(40.0f, 0.0f, 20.0f);
    float b[3] = {100.0f, 100.0f, 100.0f};
    colorMethodPixel<kColorMethodBalance>(b, 3, -0.5f, bal, makeStepComplement(40.0f, 0.0f, 20.0f), true);
    EXPECT_PIXEL_NEAR(b, 80.0f, 100.0f, 90.0f, 0);
}
