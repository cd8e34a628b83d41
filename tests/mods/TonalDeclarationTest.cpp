#include "TonalTestHelpers.h"

#include "mods/ImageModAdvancedContrast.h"
#include "mods/ImageModBrightness.h"
#include "mods/ImageModContrast.h"
#include "mods/ImageModContrastAndSaturation.h"
#include "mods/ImageModExposure.h"
#include "mods/ImageModGammaLegacy.h"
#include "mods/ImageModHighlights.h"
#include "mods/ImageModLuminanceContrast.h"
#include "mods/ImageModMultiTool.h"
#include "mods/ImageModSaturation.h"
#include "mods/ImageModShadows.h"
#include "mods/ImageModShadowsMidsHighs.h"

#include <cmath>
#include <functional>
#include <limits>

namespace {

struct TonalDeclaration {
    std::function<std::unique_ptr<ImageMod>()> make;
    const char* name;
    const char* display;
    int32_t version;
    std::vector<std::string> variables;
    size_t animators;
};

std::vector<TonalDeclaration> tonalDeclarations()
{
    return {
        {[] { return std::make_unique<ImageModSaturation>(); }, "Saturation", "Saturation", 2, {"Amount"}, 1},
        {[] { return std::make_unique<ImageModExposure>(); }, "Exposure", "Exposure", 1, {"Amount"}, 1},
        {[] { return std::make_unique<ImageModGammaLegacy>(); }, "Gamma", "Exposure", 2, {"Amount"}, 0},
        {[] { return std::make_unique<ImageModBrightness>(); }, "Brightness", "Brightness", 1, {"Amount"}, 1},
        {[] { return std::make_unique<ImageModContrast>(); }, "Contrast", "Contrast", 2, {"Amount", "Center"}, 2},
        {[] { return std::make_unique<ImageModLuminanceContrast>(); }, "Luminance Contrast", "Luminance Contrast", 1,
         {"Amount", "Center"}, 2},
        {[] { return std::make_unique<ImageModAdvancedContrast>(); }, "Advanced Contrast", "Advanced Contrast", 1,
         {"Amount", "Center", "Method"}, 2},
        {[] { return std::make_unique<ImageModContrastAndSaturation>(); }, "Contrast Saturation", "Contrast", 1,
         {"Amount", "Center"}, 0},
        {[] { return std::make_unique<ImageModShadows>(); }, "Shadows", "Shadows", 1, {"Amount"}, 1},
        {[] { return std::make_unique<ImageModHighlights>(); }, "Highlights", "Highlights", 1, {"Amount"}, 1},
        {[] { return std::make_unique<ImageModShadowsMidsHighs>(); }, "Shadows/Highlights", "Shadows/Highlights", 1,
         {"Shadows", "Midtones", "Highlights"}, 3},
        {[] { return std::make_unique<ImageModMultiTool>(); }, "Multi Tool", "Multi Tool", 3,
         {"Exposure", "Contrast", "Saturation"}, 3},
    };
}

} // namespace

TEST(TonalDeclarations, NamesVariablesVersionsAndAnimators)
{
    for (const TonalDeclaration& d : tonalDeclarations()) {
        std::unique_ptr<ImageMod> mod = d.make();
        SCOPED_TRACE(d.name);
        EXPECT_EQ(mod->name, d.name);
        EXPECT_EQ(mod->displayName, d.display);
        EXPECT_EQ(mod->version, d.version);
        EXPECT_FALSE(mod->toolTip.empty());
        ASSERT_EQ(size_t(mod->variableCount()), d.variables.size());
        for (size_t i = 0; i < d.variables.size(); ++i)
            EXPECT_EQ(mod->variableAt(int32_t(i))->name, d.variables[i]);
        EXPECT_EQ(mod->animators.size(), d.animators);
        // A fresh instance is the same class at the newest version, equal to the factory one.
        std::unique_ptr<ImageMod> fresh = mod->newInstance();
        EXPECT_TRUE(fresh->isEqual(*mod));
        // Clones keep the version of an old tile.
        mod->setVersion(1);
        EXPECT_EQ(cloneMod(*mod)->version, 1);
    }
}

TEST(TonalDeclarations, ContrastVersionSwapsCenterAndToolTip)
{
    ImageModContrast contrast;
    EXPECT_FALSE(contrast.variableAt(1)->visible);
    EXPECT_EQ(contrast.toolTip, "Adjust contrast between the light and dark regions of your image.");
    contrast.setVersion(1);
    EXPECT_TRUE(contrast.variableAt(1)->visible);
    EXPECT_EQ(contrast.toolTip, "Adjust contrast. The Contrast Origin slider determines the brightness value from "
                                "which the contrast emanates.");
    contrast.setVersion(2);
    EXPECT_FALSE(contrast.variableAt(1)->visible);
}

TEST(TonalDeclarations, NeutralSettingsLeaveBothDepthsBitIdentical)
{
    for (const TonalDeclaration& d : tonalDeclarations()) {
        std::unique_ptr<ImageMod> mod = d.make();
        expectCardUntouched(*mod);
        // Old versions are neutral at rest too.
        mod->setVersion(1);
        expectCardUntouched(*mod);
        // A mask does not make a neutral tile act.
        CurveTestMask half(0.5f);
        expectCardUntouched(*mod, &half);
    }
}

TEST(TonalDeclarations, EmptyOrNullImagesAreIgnored)
{
    for (const TonalDeclaration& d : tonalDeclarations()) {
        std::unique_ptr<ImageMod> mod = d.make();
        if (mod->variableAt(0)->name == "Amount")
            mod->variableAt(0)->setFloatValue(1.5f);
        else
            mod->variableAt(0)->setFloatValue(mod->name == "Multi Tool" ? 80.0f : 0.5f);
        mod->variableChanged(0);
        FlexImageFloat empty;
        FlexImage8 empty8;
        mod->apply(&empty, nullptr);
        mod->apply(&empty8, nullptr);
        mod->apply(static_cast<FlexImageFloat*>(nullptr), nullptr);
        mod->apply(static_cast<FlexImage8*>(nullptr), nullptr);
        expectCardChanged(*mod);
    }
}

TEST(TonalDeclarations, MaskZeroLeavesEveryMaskedTileAlone)
{
    for (const TonalDeclaration& d : tonalDeclarations()) {
        std::unique_ptr<ImageMod> mod = d.make();
        if (mod->name == "Gamma")
            continue;  // reads no mask
        for (int32_t i = 0; i < mod->variableCount(); ++i) {
            ImageModVariable* v = mod->variableAt(i);
            if (v->name == "Amount")
                v->setFloatValue(0.4f);
            else if (mod->name == "Multi Tool")
                v->setFloatValue(85.0f);
            else if (mod->name == "Shadows/Highlights")
                v->setFloatValue(0.6f);
            mod->variableChanged(i);
        }
        CurveTestMask none(0.0f);
        expectCardUntouched(*mod, &none);
        // Multi Tool below version 2 runs the old gamma stage, which reads no mask either.
        const bool regionTile = mod->name == "Shadows" || mod->name == "Highlights";
        mod->setVersion(regionTile || mod->name == "Multi Tool" ? 2 : 1);
        expectCardUntouched(*mod, &none);
        expectCardChanged(*mod);
    }
}

TEST(TonalDeclarations, NonFiniteValuesLeaveTheImageAlone)
{
    for (const TonalDeclaration& d : tonalDeclarations()) {
        std::unique_ptr<ImageMod> mod = d.make();
        if (mod->variableAt(0)->name != "Amount")
            continue;
        mod->variableAt(0)->setFloatValue(std::nanf(""));
        expectCardUntouched(*mod);
        mod->variableAt(0)->setFloatValue(1.5f);
        if (mod->variableCount() > 1 && mod->variableAt(1)->name == "Center") {
            mod->variableAt(1)->data->value = std::numeric_limits<float>::infinity();
            mod->setVersion(1);
            expectCardUntouched(*mod);
        }
    }
}
