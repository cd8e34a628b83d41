#include "mods/ImageModContrast.h"
#include "mods/ImageModLuminanceContrast.h"
#include "mods/PowerPairTable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

// The table stands in for powerPair on the contrast tile's float path, so every value it gives is
// held against powerPair itself: densely across the scale, at the kinks and ends, and outside it.
TEST(PowerPairTable, StaysWithinAThousandthOfALevelEverywhere)
{
    auto table = std::make_unique<PowerPairTable>();
    for (float amount : {0.02f, 0.3f, 0.5f, 0.9f, 0.999f, 1.001f, 1.1f, 1.5f, 1.9f, 1.99f}) {
        for (float center : {0.0f, 1.0f, 90.0f, 127.5f, 200.0f, 255.0f}) {
            const float e = powerPairExponent(amount);
            table->build(center, e);
            double worst = 0.0;
            // A step of 0.0017 puts about 36 samples into every table step.
            for (int32_t i = 0; i <= 150000; ++i) {
                const float x = float(i) * 0.0017f;
                worst = std::max(worst, std::abs(double((*table)(x)) - double(powerPair(x, center, e))));
            }
            EXPECT_LE(worst, 1e-3) << "amount " << amount << " center " << center;
        }
    }
}

TEST(PowerPairTable, EndsCenterAndOutOfScaleSamplesAreExact)
{
    auto table = std::make_unique<PowerPairTable>();
    const float e = powerPairExponent(1.5f); // 2
    table->build(90.0f, e);
    EXPECT_EQ((*table)(0.0f), 0.0f);
    EXPECT_EQ((*table)(90.0f), 90.0f);
    EXPECT_EQ((*table)(255.0f), 255.0f);
    // Out of scale the pair itself answers: the squares fold 300 back and lift -10.
    EXPECT_EQ((*table)(300.0f), powerPair(300.0f, 90.0f, e));
    EXPECT_EQ((*table)(-10.0f), powerPair(-10.0f, 90.0f, e));
    EXPECT_TRUE(std::isnan((*table)(std::numeric_limits<float>::quiet_NaN())));
    // An infinite exponent (Amount 2) leaves every step to the pair: ends and center, all else to
    // the nearer end.
    table->build(90.0f, powerPairExponent(2.0f));
    EXPECT_EQ((*table)(45.0f), powerPair(45.0f, 90.0f, powerPairExponent(2.0f)));
    EXPECT_EQ((*table)(200.0f), powerPair(200.0f, 90.0f, powerPairExponent(2.0f)));
}

TEST(PowerPairTable, RunOfSamplesEqualsOneByOne)
{
    // The four-lane form must give exactly what the single lookup gives, including groups that
    // mix in samples out of scale, NaN, the center and marked steps, and a tail of fewer than four.
    auto table = std::make_unique<PowerPairTable>();
    table->build(90.0f, powerPairExponent(0.4f));
    std::vector<float> run;
    for (int32_t i = 0; i < 1003; ++i)
        run.push_back(float((i * 7919) % 26000) * 0.01f - 1.5f);
    run[17] = std::numeric_limits<float>::quiet_NaN();
    run[40] = 90.0f;
    run[41] = 0.0f;
    run[42] = 255.0f;
    run[43] = 1000.0f;
    std::vector<float> one = run;
    table->apply(run.data(), int64_t(run.size()));
    for (size_t i = 0; i < one.size(); ++i) {
        const float expected = (*table)(one[i]);
        if (std::isnan(expected))
            EXPECT_TRUE(std::isnan(run[i])) << i;
        else
            EXPECT_EQ(run[i], expected) << i;
    }
}

TEST(PowerPairTable, ContrastTileFloatPathMatchesThePerSampleFormula)
{
    // A whole image through the tile, rows of RGB and of RGBA (alpha untouched).
    for (int32_t channels : {3, 4}) {
        FlexImageFloat image(61, 7, channels);
        for (int64_t i = 0; i < image.sampleCount(); ++i)
            image.data[i] = float((i * 7919) % 25600) * 0.01f - 0.5f; // a little below 0 and up to 255.49
        FlexImageFloat before(0, 0, channels);
        before.copyFrom(image, true);
        ImageModContrast mod(ImageModContrast::newestVersion, 1.3f);
        mod.apply(&image, nullptr);
        const float e = powerPairExponent(1.3f);
        for (int64_t i = 0; i < image.sampleCount(); ++i) {
            const float expected = powerPair(before.data[i], 90.0f, e);
            if (channels == 4 && i % 4 == 3)
                EXPECT_EQ(image.data[i], before.data[i]);
            else if (std::isnan(expected)) // a negative sample to a fractional power, as before
                EXPECT_TRUE(std::isnan(image.data[i])) << i;
            else
                EXPECT_NEAR(image.data[i], expected, 1e-3f) << i;
        }
    }
}

TEST(PowerPairTable, LuminanceContrastFloatPathMatchesThePerPixelFormula)
{
    FlexImageFloat image(53, 9, 3);
    for (int64_t i = 0; i < image.sampleCount(); ++i)
        image.data[i] = float((i * 4099) % 25500) * 0.01f;
    FlexImageFloat before(0, 0, 3);
    before.copyFrom(image, true);
    ImageModLuminanceContrast mod(0.7f, 120.0f);
    mod.apply(&image, nullptr);
    const float e = powerPairExponent(0.7f);
    for (int64_t i = 0; i < image.sampleCount(); i += 3) {
        float expected[3] = {before.data[i], before.data[i + 1], before.data[i + 2]};
        luminanceContrastPixel(expected, 3, 3, 120.0f, e);
        for (int32_t c = 0; c < 3; ++c)
            EXPECT_NEAR(image.data[i + c], expected[c], 2e-3f) << i;
    }
}
