#include "mods/ColorCastMods.h"
#include "mods/CurveSteps.h"
#include "tests/mods/ColourTestHelpers.h"

TEST(ColorCastMods, TintFilterColorizeHandValuesAtBothDepths)
{
    ImageModTint tint;
    setValue(tint, 0, 0.5f);
    setColour(tint, 1, 201.0f, 0.0f, 100.0f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(tint, {100.0f, 100.0f, 300.0f}), 150.5f, 50.0f, 200.0f, 0.0f);
    const std::vector<int> t8 = colourApply8(tint, {100, 100, 255});
    EXPECT_EQ(t8, (std::vector<int>{150, 50, 177}));

    ImageModColorFilter filter;
    setValue(filter, 0, 0.5f);
    setColour(filter, 1, 255.0f, 127.5f, 0.0f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(filter, {100.0f, 100.0f, 100.0f}), 177.5f, 100.0f, 50.0f, 0.0f);
    EXPECT_EQ(colourApply8(filter, {100, 200, 101}), (std::vector<int>{177, 200, 50}));

    ImageModColorize colorize;
    setValue(colorize, 0, 0.5f);
    setColour(colorize, 1, 200.0f, 100.0f, 0.0f, 12.0f); // the picker's alpha plays no part
    EXPECT_PIXEL_NEAR(colourApplyFloat(colorize, {100.0f, 100.0f, 10.0f}), 150.0f, 100.0f, 0.0f, 0.0f);
    // The alpha channel of a four-channel image is left alone.
    const std::vector<float> rgba = colourApplyFloat(colorize, {100.0f, 100.0f, 100.0f, 77.0f});
    EXPECT_EQ(rgba[3], 77.0f);
}

TEST(ColorCastMods, GreyColoursAndTheNeutralFilterLeaveImagesAtAnyAmount)
{
    for (int32_t channels : {3, 4}) {
        auto card8 = curveTestCard<FlexImage8>(channels);
        auto before8 = curveTestCopy(*card8);
        auto cardF = curveTestCard<FlexImageFloat>(channels);
        auto beforeF = curveTestCopy(*cardF);
        ImageModColorize colorize;
        setValue(colorize, 0, 1.0f);
        setColour(colorize, 1, 90.0f, 90.0f, 90.0f);
        ImageModColorFilter filter;
        setValue(filter, 0, 1.0f);
        setColour(filter, 1, 127.5f, 127.5f, 127.5f);
        ImageModColorCorrector corrector; // grey by default, Amount 1
        for (ImageMod* m : std::initializer_list<ImageMod*>{&colorize, &filter, &corrector}) {
            m->apply(card8.get(), nullptr);
            m->apply(cardF.get(), nullptr);
        }
        EXPECT_TRUE(curveTestSame(*card8, *before8));
        EXPECT_TRUE(curveTestSame(*cardF, *beforeF));
    }
}

TEST(ColorCastMods, DyeVersionsAndMaskScaleTheWeight)
{
    ImageModDye current;
    setValue(current, 0, 1.0f);
    ImageModDye legacy(1);
    setValue(legacy, 0, 1.0f);
    // Pure red dye on grey 102: the current dye gives (102, 0, 0); the legacy one keeps some grey.
    EXPECT_PIXEL_NEAR(colourApplyFloat(current, {102.0f, 102.0f, 102.0f}), 102.0f, 0.0f, 0.0f, 1e-3f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(legacy, {102.0f, 102.0f, 102.0f}), 102.0f, 40.8f, 40.8f, 1e-3f);
    EXPECT_EQ(colourApply8(legacy, {102, 102, 102}), (std::vector<int>{102, 40, 40}));

    CurveTestMask zero(0.0f), half(0.5f);
    const ImageModApplyContext z = maskContext(&zero), h = maskContext(&half);
    EXPECT_EQ(colourApplyFloat(current, {10.0f, 20.0f, 30.0f}, &z), (std::vector<float>{10.0f, 20.0f, 30.0f}));
    setValue(current, 0, 0.5f);
    const std::vector<float> halfAmount = colourApplyFloat(current, {102.0f, 102.0f, 102.0f});
    setValue(current, 0, 1.0f);
    EXPECT_EQ(colourApplyFloat(current, {102.0f, 102.0f, 102.0f}, &h), halfAmount);
}

TEST(ColorCastMods, WhiteBalanceMovesTowardsThePicksCastIgnoringMasks)
{
    ImageModWhiteBalance wb; // Amount 0.1
    setColour(wb, 1, 200.0f, 100.0f, 0.0f);
    CurveTestMask zero(0.0f);
    const ImageModApplyContext z = maskContext(&zero);
    EXPECT_PIXEL_NEAR(colourApplyFloat(wb, {100.0f, 100.0f, 100.0f}, &z), 110.0f, 100.0f, 90.0f, 1e-4f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(wb, {250.0f, 0.0f, 5.0f}), 255.0f, 0.0f, 0.0f, 0.0f);
    // Alpha untouched; three channels only.
    EXPECT_EQ(colourApplyFloat(wb, {100.0f, 100.0f, 100.0f, 250.0f})[3], 250.0f);
}

TEST(ColorCastMods, ColorBalanceOffsetsScaleWithAmountAndMask)
{
    ImageModColorBalance cb;
    setValue(cb, 0, 0.5f);
    setValue(cb, 1, 50.0f);
    setValue(cb, 3, -50.0f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(cb, {100.0f, 100.0f, 100.0f}), 125.0f, 100.0f, 75.0f, 0.0f);
    EXPECT_EQ(colourApply8(cb, {240, 7, 10}), (std::vector<int>{255, 7, 0}));
    CurveTestMask half(0.5f), zero(0.0f);
    const ImageModApplyContext h = maskContext(&half), z = maskContext(&zero);
    EXPECT_PIXEL_NEAR(colourApplyFloat(cb, {100.0f, 100.0f, 100.0f}, &h), 112.5f, 100.0f, 87.5f, 0.0f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(cb, {100.0f, 100.0f, 100.0f}, &z), 100.0f, 100.0f, 100.0f, 0.0f);
    // Amount 0 exits, even with offsets.
    setValue(cb, 0, 0.0f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(cb, {300.0f, 100.0f, -1.0f}), 300.0f, 100.0f, -1.0f, 0.0f);
}

TEST(ColorCastMods, ColorCorrectorRepeatsOncePerColourChannel)
{
    // Midtones only: grey 128 reads the midtone curve near its peak.
    ImageModColorCorrector cc;
    setColour(cc, 2, 228.0f, 128.0f, 28.0f); // mean 128: shifts +100, 0, -100 per unit weight
    const ToneCurve mid("0 0 0.25 0 0.5 1 0.75 0 1 0");
    const float w = float(double(curveRead255(mid.table(), 128.0f) * 1.0f) * 0.3);
    ASSERT_GT(w, 0.1f);
    // Three channels: three passes (no clamp is reached: 3 * 100 * w stays under 127).
    ASSERT_LT(3.0f * 100.0f * w, 127.0f);
    const std::vector<float> rgb = colourApplyFloat(cc, {128.0f, 128.0f, 128.0f});
    EXPECT_NEAR(rgb[0], 128.0f + 3.0f * 100.0f * w, 1e-3f);
    EXPECT_EQ(rgb[1], 128.0f);
    EXPECT_NEAR(rgb[2], 128.0f - 3.0f * 100.0f * w, 1e-3f);
    // A one-channel image runs the three regions once.
    FlexImageFloat grey(1, 1, 1);
    grey.data[0] = 128.0f;
    cc.apply(&grey, nullptr);
    EXPECT_NEAR(grey.data[0], 128.0f + 100.0f * w, 1e-3f);
    // Amount scales the weight; the mask is not read.
    setValue(cc, 0, 0.5f);
    CurveTestMask zero(0.0f);
    const ImageModApplyContext z = maskContext(&zero);
    EXPECT_NEAR(colourApplyFloat(cc, {128.0f, 128.0f, 128.0f}, &z)[0], 128.0f + 1.5f * 100.0f * w, 1e-3f);
}
