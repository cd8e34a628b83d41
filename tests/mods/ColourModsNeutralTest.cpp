#include "mods/ChannelMixerMods.h"
#include "mods/ColorCastMods.h"
#include "mods/ColorizeCurveMods.h"
#include "mods/ImageModColorizeCurve.h"
#include "mods/ImageModSelectiveColor.h"
#include "mods/ImageModSplitTone.h"
#include "mods/ImageModWhitePoint.h"
#include "tests/mods/ColourTestHelpers.h"

#include <functional>

namespace {

struct NeutralCase {
    const char* label;
    std::function<std::unique_ptr<ImageMod>()> make;
};

// Each class at its neutral setting: the factory defaults where those are neutral, else the one
// value that is.
std::vector<NeutralCase> neutralCases()
{
    return {
        {"Dye v2", [] { return std::make_unique<ImageModDye>(); }},
        {"Dye v1", [] { return std::make_unique<ImageModDye>(1); }},
        {"Tint", [] { return std::make_unique<ImageModTint>(); }},
        {"Color Filter", [] { return std::make_unique<ImageModColorFilter>(); }},
        {"Colorize", [] { return std::make_unique<ImageModColorize>(); }},
        {"White Balance", [] { return std::make_unique<ImageModWhiteBalance>(); }},
        {"Color Balance", [] { return std::make_unique<ImageModColorBalance>(); }},
        {"Color Correction", [] { return std::make_unique<ImageModColorCorrector>(); }},
        {"Temperature", [] { return std::make_unique<ImageModColorTemperature>(); }},
        {"White Point", [] { return std::make_unique<ImageModWhitePoint>(); }},
        {"Selective Saturation",
         [] {
             auto m = std::make_unique<ImageModSelectiveColor>();
             m->variableAt(2)->setFloatValue(1.0f);
             return m;
         }},
        {"Color Mixer", [] { return std::make_unique<ImageModChannelMixer>(); }},
        {"RGB Swap", [] { return std::make_unique<ImageModRGBSwap>(); }},
        {"Split Tone",
         [] {
             auto m = std::make_unique<ImageModSplitTone>();
             m->variableAt(0)->setFloatValue(0.0f);
             return m;
         }},
        {"Coloring",
         [] {
             auto m = std::make_unique<ImageModColorizeNoCurve>();
             m->variableAt(1)->setFloatValue(0.0f);
             return m;
         }},
        {"Color Wheels", [] { return std::make_unique<ImageModColorWheels>(); }},
        {"Coloring Curve",
         [] {
             auto m = std::make_unique<ImageModColorizeCurve>();
             m->setAmount(0.0f);
             return m;
         }},
    };
}

} // namespace

TEST(ColourModsNeutral, LeaveBothDepthsBitIdentical)
{
    for (const NeutralCase& nc : neutralCases()) {
        for (int32_t channels : {3, 4}) {
            auto card8 = curveTestCard<FlexImage8>(channels);
            auto before8 = curveTestCopy(*card8);
            auto cardF = curveTestCard<FlexImageFloat>(channels);
            // Out-of-range float samples would be clamped by any pass that ran.
            cardF->data[0] = -3.0f;
            cardF->data[1] = 300.0f;
            auto beforeF = curveTestCopy(*cardF);
            auto mod = nc.make();
            mod->apply(card8.get(), nullptr);
            mod->apply(cardF.get(), nullptr);
            EXPECT_TRUE(curveTestSame(*card8, *before8)) << nc.label << " 8-bit, channels " << channels;
            EXPECT_TRUE(curveTestSame(*cardF, *beforeF)) << nc.label << " float, channels " << channels;
        }
    }
}

TEST(ColourModsNeutral, EmptyAndGreyImagesAreSafe)
{
    for (const NeutralCase& nc : neutralCases()) {
        auto mod = nc.make();
        FlexImageFloat empty(0, 0, 3);
        mod->apply(&empty, nullptr);
        mod->apply(static_cast<FlexImageFloat*>(nullptr), nullptr);
        EXPECT_EQ(empty.data, nullptr) << nc.label;
    }
    // Non-neutral colour tiles on a one-channel image: the RGB-only ones pass it through.
    FlexImageFloat grey(4, 1, 1);
    for (int32_t i = 0; i < 4; ++i)
        grey.data[i] = 100.0f;
    ImageModDye dye;
    dye.variableAt(0)->setFloatValue(1.0f);
    dye.apply(&grey, nullptr);
    ImageModChannelMixerGreyscale mixer;
    mixer.apply(&grey, nullptr);
    ImageModRGBSwap swap;
    setColour(swap, 0, 0.0f, 0.0f, 255.0f);
    swap.apply(&grey, nullptr);
    for (int32_t i = 0; i < 4; ++i)
        EXPECT_EQ(grey.data[i], 100.0f);
}

namespace {

struct Identity {
    std::function<std::unique_ptr<ImageMod>()> make;
    const char* name;
    const char* display;
    int32_t version;
    std::vector<std::string> variables;
};

} // namespace

TEST(ColourModsIdentity, NamesLabelsVersionsAndVariableOrder)
{
    const std::vector<Identity> rows = {
        {[] { return std::make_unique<ImageModDye>(); }, "Dye", "Dye", 2, {"Amount", "Color"}},
        {[] { return std::make_unique<ImageModTint>(); }, "Tint", "Tint", 1, {"Amount", "Color"}},
        {[] { return std::make_unique<ImageModColorFilter>(); }, "Color Filter", "Color Filter", 1, {"Amount", "Color"}},
        {[] { return std::make_unique<ImageModColorize>(); }, "Colorize", "Colorize", 1, {"Amount", "Color"}},
        {[] { return std::make_unique<ImageModWhiteBalance>(); }, "White Balance", "White Balance", 1,
         {"Amount", "Color"}},
        {[] { return std::make_unique<ImageModColorBalance>(); }, "Color Balance", "Color Balance", 1,
         {"Amount", "Red", "Green", "Blue"}},
        {[] { return std::make_unique<ImageModColorCorrector>(); }, "Color Correction", "Color Correction", 1,
         {"Amount", "Shadows", "Midtones", "Highlights"}},
        {[] { return std::make_unique<ImageModColorTemperature>(); }, "Colorize Temperature", "Temperature", 4,
         {"Temperature"}},
        {[] { return std::make_unique<ImageModWhitePoint>(); }, "White Point", "White Balance", 1,
         {"Neutral Color", "Reset", "Curve"}},
        {[] { return std::make_unique<ImageModSelectiveColor>(); }, "Selective Saturation", "Selective Saturation", 1,
         {"Color", "Tolerance", "Saturation"}},
        {[] { return std::make_unique<ImageModChannelMixer>(); }, "Color Mixer", "Color Mixer", 1,
         {"Red", "Green", "Blue", "Output Channel", "RedR", "GreenR", "BlueR", "RedG", "GreenG", "BlueG", "RedB",
          "GreenB", "BlueB"}},
        {[] { return std::make_unique<ImageModChannelMixerGreyscale>(); }, "Greyscale Channel Mixer",
         "Greyscale Mixer", 1, {"Red", "Green", "Blue"}},
        {[] { return std::make_unique<ImageModFilteredBW>(); }, "Filtered B+W", "Filtered B+W", 1, {"Amount", "Hue"}},
        {[] { return std::make_unique<ImageModRGBSwap>(); }, "RGB Swap", "RGB Swap", 1, {"Red", "Green", "Blue"}},
        {[] { return std::make_unique<ImageModSplitTone>(); }, "Split Tone", "Split Tone", 1,
         {"Amount", "Dark Color", "Light Color"}},
        {[] { return std::make_unique<ImageModColorizeNoCurve>(); }, "Colorize Basic", "Coloring", 1,
         {"Color", "Amount", "Color Method"}},
        {[] { return std::make_unique<ImageModColorWheels>(); }, "Color Wheels", "Color Wheels", 1,
         {"All", "Shadows", "Midtones", "Highlights", "Color Method"}},
        {[] { return std::make_unique<ImageModColorizeCurve>(); }, "Colorize Curve", "Coloring Curve", 2,
         {"Luminance Region", "Color", "Amount", "Color Method"}},
    };
    for (const Identity& row : rows) {
        auto mod = row.make();
        EXPECT_EQ(mod->name, row.name);
        EXPECT_EQ(mod->displayName, row.display) << row.name;
        EXPECT_EQ(mod->version, row.version) << row.name;
        EXPECT_FALSE(mod->toolTip.empty()) << row.name;
        ASSERT_EQ(mod->variableCount(), int32_t(row.variables.size())) << row.name;
        for (size_t i = 0; i < row.variables.size(); ++i)
            EXPECT_EQ(mod->variables[i]->name, row.variables[i]) << row.name;
        // A clone is an equal, independent tile.
        auto clone = cloneMod(*mod);
        EXPECT_TRUE(clone->isEqual(*mod)) << row.name;
    }
}

TEST(ColourModsIdentity, AmountOutOfPlaceAndDyeVersionKept)
{
    // The curve tile's Amount is its third variable, and the mixer's rows start as the identity.
    ImageModColorizeCurve curve;
    EXPECT_EQ(curve.amountVariable(), curve.variableAt(2));
    ImageModChannelMixer mixer;
    EXPECT_EQ(mixer.floatValue(ImageModChannelMixer::rowVariable(1, 1)), 100.0f);
    EXPECT_EQ(mixer.floatValue(ImageModChannelMixer::rowVariable(1, 0)), 0.0f);

    // A new Dye tile keeps the version of the tile it is made from.
    ImageModDye old(1);
    EXPECT_EQ(old.newInstance()->version, 1);
    EXPECT_EQ(ImageModDye().newInstance()->version, 2);
}
