#include "core/ImageModVariableDataBoundary.h"
#include "core/ImageModVariableDataButton.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ImageModVariableDataFile.h"
#include "core/ImageModVariableDataMultiChoice.h"
#include "core/ImageModVariableDataPixel.h"
#include "core/ModCatalogue.h"
#include "core/ModExtraFactories.h"
#include "filters/FilterFile.h"
#include "filters/XmlNode.h"
#include "mods/ImageModSaturation.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>
#include <typeinfo>

namespace {

// Moves every variable off its neutral value to one that "%f" writes exactly.
void perturb(ImageMod& mod)
{
    for (int32_t i = 0; i < mod.variableCount(); ++i) {
        ImageModVariable* v = mod.variableAt(i);
        if (!v || !v->data)
            continue;
        if (v->asFloat()) {
            v->setFloatValue(v->floatValue() == 0.375f ? 0.625f : 0.375f);
        } else if (auto* c = v->asChoice()) {
            if (c->labelCount() > 1)
                c->index = (c->index + 1) % c->labelCount();
        } else if (auto* m = v->asMultiChoice()) {
            m->selected.clear();
            if (!m->labels.empty())
                m->selected.push_back(int32_t(m->labels.size()) - 1);
        } else if (auto* col = v->asColor()) {
            col->red = 12.5f;
            col->green = 200.25f;
            col->blue = 64.0f;
            col->alpha = 128.0f;
        } else if (auto* cv = v->asCurve()) {
            cv->curve.setFromString("0 0.25 0.5 0.625 1 0.875");
        } else if (auto* p = v->asPixel()) {
            p->points = { { 10.5f, 20.25f }, { 3.0f, 4.0f } };
        } else if (auto* b = v->asBoundary()) {
            b->left = 0.125f;
            b->top = 0.25f;
            b->right = 0.75f;
            b->bottom = 0.875f;
        } else if (auto* f = v->asFile()) {
            f->path = "/tmp/some file.png";
        }
    }
}

class CatalogueFileTest : public ::testing::Test {
protected:
    // Saves the tiles, loads them back and checks each comes back as the same class and value.
    ModList roundTrip(const ModList& saved, const std::string& file)
    {
        EXPECT_TRUE(writeFilter(saved, file));
        int32_t status = -1;
        ModList loaded = readFilter(file, catalogue.mods, status);
        EXPECT_EQ(status, kFilterReadOk);
        EXPECT_EQ(loaded.size(), saved.size());
        for (size_t i = 0; i < std::min(saved.size(), loaded.size()); ++i) {
            EXPECT_EQ(typeid(*loaded[i]), typeid(*saved[i])) << saved[i]->name;
            EXPECT_TRUE(loaded[i]->isEqual(*saved[i])) << saved[i]->name;
        }
        return loaded;
    }
    ModList parse(const char* text, int32_t& status)
    {
        XmlNode root;
        root.readText(text);
        return filterFromXml(root, catalogue.mods, status);
    }
    std::string path(const char* name) const { return dir.filePath(name).toStdString(); }

    QTemporaryDir dir;
    ModCatalogueContents catalogue = buildModCatalogue();
};

} // namespace

TEST_F(CatalogueFileTest, EveryFreshTileSurvivesASaveAndLoad)
{
    ASSERT_TRUE(dir.isValid());
    ModList saved;
    for (const auto& factory : catalogue.mods) {
        auto made = createMod(catalogue.mods, factory->name);
        ASSERT_NE(made, nullptr) << factory->name;
        saved.push_back(made->newInstance());
        saved.back()->setVersion(made->version);
    }
    roundTrip(saved, path("fresh.vnf"));
}

TEST_F(CatalogueFileTest, EveryClassKeepsChangedValuesThroughASaveAndLoad)
{
    ASSERT_TRUE(dir.isValid());
    ModList saved;
    std::vector<const ImageMod*> factories;
    for (const auto& factory : catalogue.mods)
        factories.push_back(factory.get());
    // Tiles outside the panel that files still hold.
    for (const auto& factory : extraModFactories())
        factories.push_back(factory.get());
    for (const ImageMod* factory : factories) {
        auto mod = createMod(catalogue.mods, factory->name);
        ASSERT_NE(mod, nullptr) << factory->name;
        perturb(*mod);
        mod->enabled = saved.size() % 3 != 1;
        // Perturbing must change something, or the round trip proves nothing.
        if (mod->variableCount() > 0) {
            EXPECT_FALSE(mod->isEqual(*factory)) << factory->name;
        }
        saved.push_back(std::move(mod));
    }
    const ModList loaded = roundTrip(saved, path("all.vnf"));

    // Writing what was read gives the same bytes.
    ASSERT_TRUE(writeFilter(loaded, path("again.vnf")));
    XmlNode a, b;
    ASSERT_TRUE(a.readFile(path("all.vnf")));
    ASSERT_TRUE(b.readFile(path("again.vnf")));
    EXPECT_EQ(a.toText(), b.toText());
}

TEST_F(CatalogueFileTest, OldVersionsAreKeptNamesCompareExactlyAndGroupsWin)
{
    int32_t status = -1;
    ModList mods = parse("<filter version=\"4\"><mod name=\"Saturation\" version=\"1\" enabled=\"0\">"
                         "<var name=\"Amount\" type=\"float\">0.500000</var></mod></filter>",
        status);
    EXPECT_EQ(status, kFilterReadOk);
    ASSERT_EQ(mods.size(), 1u);
    ASSERT_NE(dynamic_cast<ImageModSaturation*>(mods[0].get()), nullptr);
    EXPECT_EQ(mods[0]->version, 1);
    EXPECT_FALSE(mods[0]->enabled);
    EXPECT_EQ(mods[0]->floatValue(0), 0.5f);

    mods = parse("<filter version=\"4\"><mod name=\"saturation\"></mod><mod name=\"Contrast\"></mod></filter>", status);
    EXPECT_EQ(status, kFilterReadDamaged);
    ASSERT_EQ(mods.size(), 1u);
    EXPECT_EQ(mods[0]->name, "Contrast");
    EXPECT_EQ(mods[0]->version, 1); // absent version reads as 1, not the newest

    // A group of the file wins over the catalogue's tile of that name.
    mods = parse("<filter version=\"4\"><submod name=\"Contrast\"><mod name=\"Exposure\"></mod>"
                 "<mod name=\"Tint\"></mod></submod><mod name=\"Contrast\"></mod></filter>",
        status);
    EXPECT_EQ(status, kFilterReadOk);
    ASSERT_EQ(mods.size(), 2u);
    EXPECT_EQ(mods[1]->kind(), 3);
    EXPECT_TRUE(mods[1]->isEqual(*mods[0]));
}
