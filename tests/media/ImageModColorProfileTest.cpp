#include "core/ImageModCompound.h"
#include "media/BuiltinIccProfiles.h"
#include "media/ImageModColorProfile.h"

#include <gtest/gtest.h>

TEST(ImageModColorProfileTest, DeclaresOneProfileChoiceAndStartsWithNone)
{
    ImageModColorProfile mod;
    EXPECT_EQ(mod.name, "Color Space");
    EXPECT_EQ(mod.group(), 2);
    ASSERT_EQ(mod.variableCount(), 1);
    EXPECT_EQ(mod.variableAt(0)->name, "Profile");
    EXPECT_EQ(mod.variableAt(0)->currentLabel(), "None");
    EXPECT_EQ(mod.chosenKind(), ColorSpaceKind::None);
    EXPECT_FALSE(mod.transformSet);
    EXPECT_NE(mod.toolTip.find("embedded in the image metadata as a color profile"), std::string::npos);
    ASSERT_EQ(mod.offeredKinds.size(), 5u);
    EXPECT_FALSE(mod.chooseKind(ColorSpaceKind::Custom)); // never offered
}

TEST(ImageModColorProfileTest, ChoosingAKindBuildsASharedSetAndPixelsPassUntouched)
{
    ImageModColorProfile mod;
    ASSERT_TRUE(mod.chooseKind(ColorSpaceKind::AdobeRGB));
    EXPECT_EQ(mod.variableAt(0)->currentLabel(), "Adobe RGB");
    ASSERT_TRUE(mod.transformSet);
    EXPECT_TRUE(mod.transformSet->valid);
    EXPECT_EQ(mod.transformSet->kind, ColorSpaceKind::AdobeRGB);

    std::unique_ptr<ImageMod> copy = cloneMod(mod);
    auto* c = dynamic_cast<ImageModColorProfile*>(copy.get());
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->transformSet, mod.transformSet); // shared, not rebuilt
    EXPECT_EQ(mod.transformSet.use_count(), 2);

    FlexImageFloat img(2, 1, 3);
    for (int i = 0; i < 6; ++i)
        img.data[i] = float(i * 40);
    ImageModApplyContext ctx;
    mod.apply(&img, &ctx);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(img.data[i], float(i * 40));

    // Display builds a set that converts nothing; None drops the set.
    ASSERT_TRUE(mod.chooseKind(ColorSpaceKind::Display));
    ASSERT_TRUE(mod.transformSet);
    EXPECT_FALSE(mod.transformSet->converts());
    ASSERT_TRUE(mod.chooseKind(ColorSpaceKind::None));
    EXPECT_FALSE(mod.transformSet);
    EXPECT_TRUE(c->transformSet); // the copy keeps its own reference
}

TEST(ImageModColorProfileTest, SaveProfileComesFromTheFirstEnabledConvertingTile)
{
    ImageModColorProfile plain;
    std::vector<uint8_t> icc;
    ColorSpaceKind kind = ColorSpaceKind::None;
    EXPECT_FALSE(colorProfileForSave({}, icc, kind));
    EXPECT_FALSE(colorProfileForSave({&plain}, icc, kind)); // "None": the file's own tag stays

    ImageModCompound group;
    auto inner = std::make_unique<ImageModColorProfile>();
    inner->chooseKind(ColorSpaceKind::Rec709);
    group.addChild(std::move(inner));
    EXPECT_EQ(findColorProfileMod({&group}), group.children[0].get());
    ASSERT_TRUE(colorProfileForSave({&group}, icc, kind));
    EXPECT_EQ(kind, ColorSpaceKind::Rec709);
    EXPECT_EQ(icc, builtinIccProfile(ColorSpaceKind::Rec709));

    group.children[0]->enabled = false;
    EXPECT_FALSE(colorProfileForSave({&group}, icc, kind));

    ImageModColorProfile display;
    display.chooseKind(ColorSpaceKind::Display);
    EXPECT_FALSE(colorProfileForSave({&display}, icc, kind));
}
