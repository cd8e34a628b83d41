#include "core/ImageModVariableDataChoice.h"
#include "mods/ChannelMixerMods.h"
#include "tests/mods/ColourTestHelpers.h"

namespace {

void setRow(ImageModChannelMixer& m, int32_t out, float r, float g, float b)
{
    setValue(m, ImageModChannelMixer::rowVariable(out, 0), r);
    setValue(m, ImageModChannelMixer::rowVariable(out, 1), g);
    setValue(m, ImageModChannelMixer::rowVariable(out, 2), b);
}

} // namespace

TEST(ChannelMixer, RowsMixClampAndTheMaskBlends)
{
    ImageModChannelMixer m;
    setRow(m, 0, 50.0f, 50.0f, 0.0f);
    setRow(m, 2, 0.0f, 0.0f, -100.0f);
    // out R = 0.5 R + 0.5 G; G unchanged; B = -B, clamped to 0.
    EXPECT_PIXEL_NEAR(colourApplyFloat(m, {100.0f, 200.0f, 30.0f}), 150.0f, 200.0f, 0.0f, 1e-4f);
    EXPECT_EQ(colourApply8(m, {101, 200, 30, 77}), (std::vector<int>{150, 200, 0, 77}));
    setRow(m, 0, 200.0f, 0.0f, 0.0f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(m, {200.0f, 0.0f, 0.0f}), 255.0f, 0.0f, 0.0f, 0.0f);

    setRow(m, 0, 50.0f, 50.0f, 0.0f);
    CurveTestMask half(0.5f), zero(0.0f);
    const ImageModApplyContext h = maskContext(&half), z = maskContext(&zero);
    EXPECT_PIXEL_NEAR(colourApplyFloat(m, {100.0f, 200.0f, 30.0f}, &h), 125.0f, 200.0f, 15.0f, 1e-4f);
    EXPECT_EQ(colourApplyFloat(m, {100.0f, 200.0f, 30.0f}, &z), (std::vector<float>{100.0f, 200.0f, 30.0f}));
}

TEST(ChannelMixer, IdentityRowsExitBeforeAnyWork)
{
    // Out-of-range samples would be clamped by any pass: the identity leaves them alone.
    ImageModChannelMixer m;
    EXPECT_EQ(colourApplyFloat(m, {300.0f, -5.0f, 12.5f}), (std::vector<float>{300.0f, -5.0f, 12.5f}));
    // The sliders alone don't count: only the nine row weights are read.
    setValue(m, 0, 0.0f);
    EXPECT_EQ(colourApplyFloat(m, {300.0f, -5.0f, 12.5f}), (std::vector<float>{300.0f, -5.0f, 12.5f}));
    // Any other weight makes it run.
    setValue(m, ImageModChannelMixer::rowVariable(1, 1), 99.0f);
    EXPECT_EQ(colourApplyFloat(m, {300.0f, -5.0f, 12.5f})[0], 255.0f);
}

TEST(ChannelMixer, SlidersAndHiddenRowsStayInStep)
{
    ImageModChannelMixer m;
    // A slider edits the shown row (red output by default).
    setValue(m, ImageModChannelMixer::kSliderGreen, 40.0f);
    m.variableChanged(ImageModChannelMixer::kSliderGreen);
    EXPECT_EQ(m.floatValue(ImageModChannelMixer::rowVariable(0, 1)), 40.0f);
    // Choosing the green output shows its row.
    m.variableAt(ImageModChannelMixer::kOutputChannel)->asChoice()->index = 1;
    m.variableChanged(ImageModChannelMixer::kOutputChannel);
    EXPECT_EQ(m.floatValue(0), 0.0f);
    EXPECT_EQ(m.floatValue(1), 100.0f);
    EXPECT_EQ(m.floatValue(2), 0.0f);
    setValue(m, ImageModChannelMixer::kSliderRed, -30.0f);
    m.variableChanged(ImageModChannelMixer::kSliderRed);
    EXPECT_EQ(m.floatValue(ImageModChannelMixer::rowVariable(1, 0)), -30.0f);
    EXPECT_EQ(m.floatValue(ImageModChannelMixer::rowVariable(0, 1)), 40.0f); // red row kept
    // A hidden weight of the shown row moves its slider; one of another row doesn't.
    setValue(m, ImageModChannelMixer::rowVariable(1, 2), 25.0f);
    m.variableChanged(ImageModChannelMixer::rowVariable(1, 2));
    EXPECT_EQ(m.floatValue(ImageModChannelMixer::kSliderBlue), 25.0f);
    setValue(m, ImageModChannelMixer::rowVariable(2, 0), 60.0f);
    m.variableChanged(ImageModChannelMixer::rowVariable(2, 0));
    EXPECT_EQ(m.floatValue(ImageModChannelMixer::kSliderRed), -30.0f);
    // Animation frames write the sliders and keep the rows in step.
    ImageModChannelMixer anim;
    anim.setFrame(23);
    EXPECT_NE(anim.floatValue(ImageModChannelMixer::rowVariable(0, 0)), 100.0f);
    EXPECT_EQ(anim.floatValue(ImageModChannelMixer::rowVariable(0, 0)), anim.floatValue(0));
    EXPECT_EQ(anim.floatValue(ImageModChannelMixer::rowVariable(0, 2)), anim.floatValue(2));
}

TEST(GreyscaleMixer, OneRowToAllThreeChannels)
{
    ImageModChannelMixerGreyscale m;
    EXPECT_PIXEL_NEAR(colourApplyFloat(m, {100.0f, 200.0f, 30.0f}), 151.3f, 151.3f, 151.3f, 1e-3f);
    EXPECT_EQ(colourApply8(m, {100, 200, 30}), (std::vector<int>{151, 151, 151}));
    m.setWeights(100.0f, 100.0f, 0.0f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(m, {200.0f, 100.0f, 0.0f}), 255.0f, 255.0f, 255.0f, 0.0f);
    CurveTestMask half(0.5f);
    const ImageModApplyContext h = maskContext(&half);
    m.setWeights(0.0f, 0.0f, 100.0f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(m, {100.0f, 200.0f, 30.0f}, &h), 65.0f, 115.0f, 30.0f, 1e-4f);
}

TEST(FilteredBW, HueGivesNormalisedWeights)
{
    float r, g, b;
    ImageModFilteredBW::hueWeights(0.0f, r, g, b);
    EXPECT_FLOAT_EQ(r, 100.0f);
    EXPECT_EQ(g, 0.0f);
    EXPECT_EQ(b, 0.0f);
    ImageModFilteredBW::hueWeights(60.0f, r, g, b);
    EXPECT_FLOAT_EQ(r, 50.0f);
    EXPECT_FLOAT_EQ(g, 50.0f);
    ImageModFilteredBW::hueWeights(180.0f, r, g, b);
    EXPECT_EQ(r, 0.0f);
    EXPECT_FLOAT_EQ(g + b, 100.0f);
}

TEST(FilteredBW, FullAmountSkipsSaturationAndMixesThroughTheFilter)
{
    ImageModFilteredBW bw;
    setValue(bw, 1, 0.0f); // red filter: the red channel becomes the grey
    EXPECT_PIXEL_NEAR(colourApplyFloat(bw, {180.0f, 40.0f, 90.0f}), 180.0f, 180.0f, 180.0f, 1e-3f);
    // Amount 0: colour is taken out first (root-of-squares grey), so the filter sees grey.
    setValue(bw, 0, 0.0f);
    const std::vector<float> grey = colourApplyFloat(bw, {180.0f, 40.0f, 90.0f});
    EXPECT_NEAR(grey[0], grey[2], 1e-3f);
    EXPECT_LT(grey[0], 180.0f);
    // The mask reaches both stages.
    setValue(bw, 0, 30.0f);
    CurveTestMask zero(0.0f);
    const ImageModApplyContext z = maskContext(&zero);
    EXPECT_EQ(colourApplyFloat(bw, {180.0f, 40.0f, 90.0f}, &z), (std::vector<float>{180.0f, 40.0f, 90.0f}));
}

TEST(RGBSwap, NormAndSwapHandValues)
{
    ImageModRGBSwap s;
    EXPECT_EQ(s.norm(), 1.0f);
    // Three white colours: every norm is 255 / 765 and the output is the channel mean.
    for (int32_t i = 0; i < 3; ++i)
        setColour(s, i, 255.0f, 255.0f, 255.0f);
    EXPECT_EQ(s.norm(), 255.0f / 765.0f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(s, {255.0f, 0.0f, 0.0f}), 85.0f, 85.0f, 85.0f, 1e-3f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(s, {30.0f, 60.0f, 90.0f}), 60.0f, 60.0f, 60.0f, 1e-3f);
    // Red and blue exchanged: norm 1.
    setColour(s, 0, 0.0f, 0.0f, 255.0f);
    setColour(s, 1, 0.0f, 255.0f, 0.0f);
    setColour(s, 2, 255.0f, 0.0f, 0.0f);
    EXPECT_EQ(s.norm(), 1.0f);
    EXPECT_PIXEL_NEAR(colourApplyFloat(s, {10.0f, 20.0f, 30.0f}), 30.0f, 20.0f, 10.0f, 1e-4f);
    // Samples past the third come out zero.
    EXPECT_EQ(colourApplyFloat(s, {10.0f, 20.0f, 30.0f, 255.0f})[3], 0.0f);
    EXPECT_EQ(colourApply8(s, {10, 20, 30, 255}), (std::vector<int>{30, 20, 10, 0}));
    // The pure triple with alpha 255 exits, alpha and all; another alpha doesn't.
    ImageModRGBSwap pure;
    EXPECT_EQ(colourApplyFloat(pure, {10.0f, 20.0f, 30.0f, 255.0f})[3], 255.0f);
    setColour(pure, 0, 255.0f, 0.0f, 0.0f, 128.0f);
    EXPECT_EQ(colourApplyFloat(pure, {10.0f, 20.0f, 30.0f, 255.0f})[3], 0.0f);
    // All black: no finite norm, black out.
    for (int32_t i = 0; i < 3; ++i)
        setColour(s, i, 0.0f, 0.0f, 0.0f);
    EXPECT_EQ(colourApplyFloat(s, {10.0f, 20.0f, 30.0f}), (std::vector<float>{0.0f, 0.0f, 0.0f}));
}
