#include "core/ImageModCompound.h"
#include "core/ModCatalogue.h"
#include "mods/ImageModContrast.h"
#include "mods/ImageModCrop.h"
#include "mods/ImageModSaturation.h"
#include "mods/ImageModSize2.h"
#include "mods/styles/CameraStyles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <typeinfo>

TEST(ModCatalogue, SectionsStandInPanelOrderWithTheirIcons)
{
    const ModCatalogueContents c = buildModCatalogue();
    ASSERT_EQ(c.sections.size(), 7u);
    const char* titles[] = { "Basics", "Advanced Light", "Advanced Color", "Photographic", "Masks", "Borders", "Utility" };
    const char* icons[] = { ":/img/tools_icon_basics.png", ":/img/tools_icon_light.png", ":/img/tools_icon_color.png",
        ":/img/tools_icon_photographic.png", ":/img/tools_icon_selectors.png", ":/img/tools_icon_borders.png",
        ":/img/tools_icon_utility.png" };
    size_t next = 0;
    for (size_t i = 0; i < 7; ++i) {
        EXPECT_EQ(c.sections[i].title, titles[i]);
        EXPECT_EQ(c.sections[i].icon, icons[i]);
        // Contiguous, in order, then the unlisted mods, then the styles.
        EXPECT_EQ(c.sections[i].first, next);
        next += c.sections[i].count;
    }
    EXPECT_EQ(c.unlisted.first, next);
    EXPECT_EQ(c.styles.first, next + c.unlisted.count);
    EXPECT_EQ(c.styles.first + c.styles.count, c.mods.size());
    // The rows end where the styles begin; the styles describe themselves.
    EXPECT_EQ(c.styles.first, modCatalogueRows().size());
    EXPECT_EQ(c.styles.count, 20u);
}

TEST(ModCatalogue, NamesAreUniqueWithinEachSectionAndAcrossTheWhole)
{
    const ModCatalogueContents c = buildModCatalogue();
    std::set<std::string> all;
    auto parts = c.sections;
    parts.push_back(c.unlisted);
    parts.push_back(c.styles);
    for (const auto& part : parts) {
        std::set<std::string> seen;
        for (const ImageMod* mod : c.modsIn(part)) {
            ASSERT_NE(mod, nullptr);
            EXPECT_FALSE(mod->name.empty());
            EXPECT_TRUE(seen.insert(mod->name).second) << part.title << ": " << mod->name;
            EXPECT_TRUE(all.insert(mod->name).second) << mod->name;
        }
    }
}

TEST(ModCatalogue, EveryInstanceCarriesItsRow)
{
    const ModCatalogueContents c = buildModCatalogue();
    const auto& rows = modCatalogueRows();
    ASSERT_EQ(rows.size(), c.styles.first);
    for (size_t i = 0; i < rows.size(); ++i) {
        const ImageMod& mod = *c.mods[i];
        EXPECT_EQ(mod.name, rows[i].name);
        // Two classes name their tile by version; the newest version's label stands.
        if (mod.name == "Exposure Curve")
            EXPECT_EQ(mod.displayName, "Gamma Curve");
        else if (mod.name == "Hue Brightness")
            EXPECT_EQ(mod.displayName, "Hue Exposure");
        else
            EXPECT_EQ(mod.displayName, rows[i].label) << mod.name;
        EXPECT_EQ(mod.version, rows[i].version) << mod.name;
        EXPECT_EQ(mod.toolTip, rows[i].toolTip) << mod.name;
    }
}

TEST(ModCatalogue, MasksAreSelectorsAndNoCompoundIsListed)
{
    const ModCatalogueContents c = buildModCatalogue();
    const auto masks = c.modsIn(c.sections[4]);
    ASSERT_EQ(masks.size(), 4u);
    for (const ImageMod* m : masks)
        EXPECT_EQ(m->kind(), 4) << m->name;
    for (const auto& m : c.mods)
        EXPECT_NE(m->kind(), ImageModCompound::compoundKind) << m->name;
    for (const ImageMod* m : c.modsIn(c.styles))
        EXPECT_EQ(m->kind(), 2) << m->name;
}

TEST(ModCatalogue, FindIsByteExact)
{
    const ModCatalogueContents c = buildModCatalogue();
    EXPECT_NE(findInCatalogue(c.mods, "Saturation"), nullptr);
    EXPECT_EQ(findInCatalogue(c.mods, "saturation"), nullptr);
    EXPECT_EQ(findInCatalogue(c.mods, "Saturation "), nullptr);
    EXPECT_EQ(findInCatalogue(c.mods, " Saturation"), nullptr);
    EXPECT_EQ(findInCatalogue(c.mods, "Saturatio"), nullptr);
    EXPECT_EQ(findInCatalogue(c.mods, std::string("Saturation\0x", 12)), nullptr);
    EXPECT_EQ(findInCatalogue(c.mods, ""), nullptr);
    EXPECT_EQ(findInCatalogue(c.mods, "Shadows/highlights"), nullptr);
    EXPECT_NE(findInCatalogue(c.mods, "Shadows/Highlights"), nullptr);
    EXPECT_EQ(createMod(c.mods, "TONE CURVE"), nullptr);
    ModCatalogue empty;
    EXPECT_EQ(findInCatalogue(empty, "Saturation"), nullptr);
}

TEST(ModCatalogue, TheLastMatchWins)
{
    ModCatalogue cat;
    cat.push_back(std::make_unique<ImageModContrast>(2));
    cat.push_back(std::make_unique<ImageModSaturation>());
    cat.push_back(std::make_unique<ImageModContrast>(1));
    cat.push_back(nullptr); // a hole is passed over
    EXPECT_EQ(findInCatalogue(cat, "Contrast"), cat[2].get());

    // The newest version that createMod gives is the winning instance's.
    auto made = createMod(cat, "Contrast");
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->version, 1);
    std::swap(cat[0], cat[2]);
    made = createMod(cat, "Contrast");
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->version, 2);
}

TEST(ModCatalogue, CreateModGivesAFreshTileOfTheSameClass)
{
    const ModCatalogueContents c = buildModCatalogue();
    for (const auto& factory : c.mods) {
        auto mod = createMod(c.mods, factory->name);
        ASSERT_NE(mod, nullptr) << factory->name;
        EXPECT_NE(mod.get(), factory.get());
        EXPECT_EQ(typeid(*mod), typeid(*factory)) << factory->name;
        EXPECT_EQ(mod->name, factory->name);
        EXPECT_EQ(mod->version, factory->version) << factory->name;
        EXPECT_EQ(mod->displayName, factory->displayName) << factory->name;
        EXPECT_EQ(mod->toolTip, factory->toolTip) << factory->name;
        EXPECT_TRUE(mod->isEqual(*factory)) << factory->name;
        EXPECT_TRUE(mod->enabled);
    }
}

TEST(ModCatalogue, CreateModStartsFromTheFactoryVariablesAsTheyStand)
{
    // A factory instance whose variable was changed still gives neutral values: newInstance, not a clone.
    ModCatalogueContents c = buildModCatalogue();
    auto it = std::find_if(c.mods.begin(), c.mods.end(), [](const auto& m) { return m->name == "Exposure"; });
    ASSERT_NE(it, c.mods.end());
    ImageMod* factory = it->get();
    const float neutral = factory->floatValue(0);
    factory->variableAt(0)->setFloatValue(neutral + 0.5f);
    auto mod = createMod(c.mods, "Exposure");
    ASSERT_NE(mod, nullptr);
    EXPECT_EQ(mod->floatValue(0), neutral);
}

TEST(ModCatalogue, GroupsOfTheFileComeBeforeTheCatalogue)
{
    const ModCatalogueContents c = buildModCatalogue();
    ImageModCompound first("Saturation");
    first.children.push_back(std::make_unique<ImageModContrast>());
    ImageModCompound second("Saturation");
    second.children.push_back(std::make_unique<ImageModContrast>());
    second.children.push_back(std::make_unique<ImageModContrast>());
    ImageModCompound other("Other");

    std::vector<const ImageMod*> defined { &first, nullptr, &second, &other };
    auto mod = createModForFile(defined, c.mods, "Saturation");
    ASSERT_NE(mod, nullptr);
    ASSERT_EQ(mod->kind(), ImageModCompound::compoundKind);
    EXPECT_EQ(static_cast<ImageModCompound&>(*mod).children.size(), 2u); // the later group

    // Nothing defined under the name: the catalogue answers; neither: null.
    mod = createModForFile(defined, c.mods, "Contrast");
    ASSERT_NE(mod, nullptr);
    EXPECT_EQ(typeid(*mod), typeid(ImageModContrast));
    EXPECT_EQ(createModForFile(defined, c.mods, "saturation"), nullptr);
    EXPECT_EQ(createModForFile({}, c.mods, "No Such Tile"), nullptr);
}

TEST(ModCatalogue, TilesOutsideThePanelAreFoundAfterTheCatalogue)
{
    // The 3D LUT, the old grain and the colour space tile load from files without being listed.
    const ModCatalogueContents c = buildModCatalogue();
    for (const char* name : { "LUT", "Grain Legacy", "Color Space" }) {
        for (const auto& m : c.mods)
            EXPECT_NE(m->name, name);
        const ImageMod* found = findInCatalogue(c.mods, name);
        ASSERT_NE(found, nullptr) << name;
        auto mod = createMod(c.mods, name);
        ASSERT_NE(mod, nullptr) << name;
        EXPECT_EQ(mod->name, name);
        EXPECT_EQ(typeid(*mod), typeid(*found));
    }
    EXPECT_EQ(findInCatalogue(c.mods, "lut"), nullptr);

    // A catalogue instance of the same name comes first.
    ModCatalogue own;
    own.push_back(std::make_unique<ImageModSaturation>());
    own.back()->name = "LUT";
    EXPECT_EQ(findInCatalogue(own, "LUT"), own.back().get());
}

TEST(ModCatalogue, UtilityHoldsTheDeadPixelAndSizeTilesAndCropIsUnlisted)
{
    const ModCatalogueContents c = buildModCatalogue();
    std::vector<std::string> utility;
    for (const ImageMod* m : c.modsIn(c.sections[6]))
        utility.push_back(m->name);
    const std::vector<std::string> expected { "Text Overlay", "Watermark", "Dead Pixel", "Aspect Ratio",
                                              "Output Size Exact", "Output Size" };
    EXPECT_EQ(utility, expected);
    // The size tiles carry the tag the driver looks for; the overlays and the dead pixel fix don't.
    const auto tiles = c.modsIn(c.sections[6]);
    for (size_t i = 0; i < tiles.size(); ++i)
        EXPECT_EQ(modHasTag(*tiles[i], kTagSize), i >= 3) << tiles[i]->name;

    const ImageMod* crop = findInCatalogue(c.mods, "Crop");
    ASSERT_NE(crop, nullptr);
    EXPECT_NE(dynamic_cast<const ImageModCrop*>(crop), nullptr);
    EXPECT_TRUE(modHasTag(*crop, kTagCrop));
    const auto unlisted = c.modsIn(c.unlisted);
    EXPECT_NE(std::find(unlisted.begin(), unlisted.end(), crop), unlisted.end());
    EXPECT_EQ(unlisted[3], crop); // after Highlights, as the table lists it
}

TEST(ModCatalogue, TheStylesCloseTheCatalogueInPanelOrder)
{
    const ModCatalogueContents c = buildModCatalogue();
    const auto list = c.modsIn(c.styles);
    const auto section = buildStyleSection();
    ASSERT_EQ(list.size(), section.size());
    for (size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(typeid(*list[i]), typeid(*section[i])) << section[i]->name;
        EXPECT_EQ(list[i]->name, section[i]->name);
        EXPECT_EQ(list[i]->version, section[i]->version) << section[i]->name;
        EXPECT_EQ(list[i]->toolTip, section[i]->toolTip) << section[i]->name;
        EXPECT_EQ(findInCatalogue(c.mods, section[i]->name), list[i]);
    }
}
