#include "mods/TonalSteps.h"
#include "tests/mods/CurveTestHelpers.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(TonalSteps, PowerPairKeepsEndsAndCenterAndBendsBothSides)
{
    const float e = powerPairExponent(1.5f);
    EXPECT_FLOAT_EQ(e, 2.0f);
    EXPECT_FLOAT_EQ(powerPairExponent(0.5f), 0.5f);
    EXPECT_TRUE(std::isinf(powerPairExponent(2.0f)));
    EXPECT_EQ(powerPair(0.0f, 90.0f, e), 0.0f);
    EXPECT_EQ(powerPair(90.0f, 90.0f, e), 90.0f);
    EXPECT_EQ(powerPair(255.0f, 90.0f, e), 255.0f);
    EXPECT_NEAR(powerPair(200.0f, 90.0f, e), 236.666667f, 1e-3f);
    EXPECT_NEAR(powerPair(45.0f, 90.0f, e), 22.5f, 1e-4f);
    // Exponent below 1 flattens towards the center instead.
    EXPECT_NEAR(powerPair(45.0f, 90.0f, 0.5f), std::sqrt(0.5f) * 90.0f, 1e-3f);
    EXPECT_EQ(powerPair8(200, 90.0f, e), 236);
    EXPECT_EQ(powerPair8(45, 90.0f, e), 22);
    // On the unit scale, as the value and lightness methods use it.
    EXPECT_NEAR(powerPair(0.75f, 0.5f, 2.0f, 1.0f), 0.875f, 1e-6f);
}

TEST(TonalSteps, LuminanceSettingScalesTowardsBlackOrWhite)
{
    // Y of (100, 50, 20) is 61.53.
    float down[3] = {100.0f, 50.0f, 20.0f};
    setLuminance(down, 3, 61.53f, 40.0f);
    EXPECT_PIXEL_NEAR(down, 65.008939f, 32.504469f, 13.001788f, 1e-3f);
    float up[3] = {100.0f, 50.0f, 20.0f};
    setLuminance(up, 3, 61.53f, 200.0f);
    EXPECT_PIXEL_NEAR(up, 210.936321f, 196.722231f, 188.193777f, 1e-3f);

    uint8_t down8[3] = {100, 50, 20};
    setLuminance8(down8, 3, pixelLuminance8(down8, 3), 40.0f);
    EXPECT_PIXEL_NEAR(down8, 65, 32, 13, 0);
    uint8_t up8[3] = {100, 50, 20};
    setLuminance(up8, 3, pixelLuminance(up8, 3), 200.0f);
    EXPECT_PIXEL_NEAR(up8, 210, 196, 188, 0);
}

TEST(TonalSteps, LuminanceSettingOnBlackOrWhiteWritesTargetEverywhere)
{
    float black[3] = {0.0f, 0.0f, 0.0f};
    setLuminance(black, 3, 0.0f, 77.5f);
    EXPECT_EQ(black[0], 77.5f);
    EXPECT_EQ(black[2], 77.5f);
    uint8_t white[3] = {255, 255, 255};
    setLuminance8(white, 3, 255.0f, 100.9f);
    EXPECT_PIXEL_NEAR(white, 100, 100, 100, 0);
    // Only the colour channels move; the fourth sample is alpha.
    float rgba[4] = {10.0f, 20.0f, 30.0f, 255.0f};
    setLuminance(rgba, 3, luminance(10.0f, 20.0f, 30.0f), 0.0f);
    EXPECT_EQ(rgba[0], 0.0f);
    EXPECT_EQ(rgba[3], 255.0f);
}

TEST(TonalSteps, LegacySaturationAnchorsOnLinearLuminanceAndClamps)
{
    // Y of (200, 100, 50) is 124.2.
    float grey[3] = {200.0f, 100.0f, 50.0f};
    legacySaturate(grey, 3, 3, 0.0f);
    EXPECT_NEAR(grey[0], 124.2f, 1e-4f);
    EXPECT_EQ(grey[0], grey[1]);
    EXPECT_EQ(grey[1], grey[2]);
    float loud[3] = {200.0f, 100.0f, 50.0f};
    legacySaturate(loud, 3, 3, 2.0f);
    EXPECT_EQ(loud[0], 255.0f);
    EXPECT_NEAR(loud[1], 75.8f, 1e-4f);
    EXPECT_EQ(loud[2], 0.0f);
    uint8_t half[3] = {200, 100, 50};
    legacySaturate8(half, 3, 3, 0.5f);
    EXPECT_PIXEL_NEAR(half, 162, 112, 87, 0);
    // A grey image anchors on its one channel, so nothing moves.
    float single[1] = {42.0f};
    legacySaturate(single, 1, 1, 1.8f);
    EXPECT_EQ(single[0], 42.0f);
}

TEST(TonalSteps, RootSaturationAnchorsOnRootOfSquares)
{
    // Pure red: the anchor is 255 * sqrt(0.299), not 0.299 * 255.
    float red[3] = {255.0f, 0.0f, 0.0f};
    rootSaturate(red, 0.0f);
    EXPECT_NEAR(red[0], 139.436276f, 1e-3f);
    EXPECT_EQ(red[1], red[0]);
    uint8_t red8[3] = {255, 0, 0};
    rootSaturate8(red8, 0.0f);
    EXPECT_EQ(red8[0], 139);
    uint8_t legacy8[3] = {255, 0, 0};
    legacySaturate8(legacy8, 3, 3, 0.0f);
    EXPECT_EQ(legacy8[0], 76);
}

TEST(TonalSteps, SaturationFactorCapsBelowTwo)
{
    EXPECT_EQ(saturationFactor(0.0f), 0.0f);
    EXPECT_EQ(saturationFactor(0.5f), 0.5f);
    EXPECT_EQ(saturationFactor(1.0f), 1.0f);
    EXPECT_FLOAT_EQ(saturationFactor(1.5f), 2.0f);
    const float top = saturationFactor(2.0f);
    EXPECT_TRUE(std::isfinite(top));
    EXPECT_GT(top, 90000.0f);
    EXPECT_EQ(top, saturationFactor(5.0f));
}

TEST(TonalSteps, GammaStepsCapFloorAndEightBitIntegerBase)
{
    // Floored black still lifts a little; capped white still drops a little.
    EXPECT_NEAR(gammaBrighten(0.0f, 2.0f), 0.0999902f, 1e-5f);
    EXPECT_GT(gammaBrighten(0.0f, 2.0f), 0.0f);
    EXPECT_EQ(gammaBrighten(255.0f, 2.0f), 255.0f);
    EXPECT_LT(gammaDarken(255.0f, 2.0f), 255.0f);
    EXPECT_NEAR(gammaDarken(255.0f, 2.0f), 254.9000098f, 1e-3f);
    EXPECT_NEAR(gammaDarken(127.5f, 2.0f), 63.75f, 1e-4f);
    // 8 bits: darkening is black everywhere, brightening white everywhere but black.
    for (int32_t c : {0, 1, 128, 254, 255}) {
        EXPECT_EQ(gammaDarken8(uint8_t(c), 2.0f), 0) << c;
        EXPECT_EQ(gammaBrighten8(uint8_t(c), 2.0f), c == 0 ? 0 : 255) << c;
    }
}
