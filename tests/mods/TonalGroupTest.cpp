#include "TonalTestHelpers.h"

#include "core/ImageModSelectorPointerArray.h"
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

namespace {

// One non-neutral tile of every tonal class, versions mixed.
std::vector<std::unique_ptr<ImageMod>> tonalTiles()
{
    std::vector<std::unique_ptr<ImageMod>> tiles;
    tiles.push_back(std::make_unique<ImageModSaturation>(2, 1.4f));
    tiles.push_back(std::make_unique<ImageModSaturation>(1, 0.6f));
    tiles.push_back(std::make_unique<ImageModExposure>(0.7f));
    tiles.push_back(std::make_unique<ImageModGammaLegacy>(1.3f));
    tiles.push_back(std::make_unique<ImageModBrightness>(1.2f));
    tiles.push_back(std::make_unique<ImageModContrast>(1, 1.3f, 120.0f));
    tiles.push_back(std::make_unique<ImageModLuminanceContrast>(0.8f));
    tiles.push_back(std::make_unique<ImageModAdvancedContrast>(1.4f, 90.0f, 2));
    tiles.push_back(std::make_unique<ImageModAdvancedContrast>(1.4f, 90.0f, 3));
    tiles.push_back(std::make_unique<ImageModContrastAndSaturation>(1.3f));
    tiles.push_back(std::make_unique<ImageModShadows>(2, 1.5f));
    tiles.push_back(std::make_unique<ImageModHighlights>(1, 0.5f));
    auto smh = std::make_unique<ImageModShadowsMidsHighs>();
    smh->variableAt(1)->setFloatValue(0.3f);
    smh->variableChanged(1);
    tiles.push_back(std::move(smh));
    auto multi = std::make_unique<ImageModMultiTool>();
    multi->variableAt(0)->setFloatValue(65.0f);
    multi->variableAt(2)->setFloatValue(30.0f);
    tiles.push_back(std::move(multi));
    return tiles;
}

// The card run whole, and the same card run one row at a time, must agree sample for sample.
template <typename Image>
void expectRowsIndependent(ImageMod& mod)
{
    auto whole = curveTestCard<Image>();
    auto rows = curveTestCopy(*whole);
    mod.apply(whole.get(), nullptr);
    for (int32_t y = 0; y < rows->height; ++y) {
        Image line;
        line.wrap(rows->row(y), rows->width, 1, rows->channels);
        mod.apply(&line, nullptr);
    }
    EXPECT_TRUE(curveTestSame(*whole, *rows)) << mod.name;
}

} // namespace

TEST(TonalGroup, ClonesRenderAlike)
{
    for (const auto& tile : tonalTiles()) {
        std::unique_ptr<ImageMod> clone = cloneMod(*tile);
        EXPECT_TRUE(clone->isEqual(*tile)) << tile->name;
        auto a = curveTestCard<FlexImageFloat>();
        auto b = curveTestCopy(*a);
        tile->apply(a.get(), nullptr);
        clone->apply(b.get(), nullptr);
        EXPECT_TRUE(curveTestSame(*a, *b)) << tile->name;
        auto a8 = curveTestCard<FlexImage8>();
        auto b8 = curveTestCopy(*a8);
        tile->apply(a8.get(), nullptr);
        clone->apply(b8.get(), nullptr);
        EXPECT_TRUE(curveTestSame(*a8, *b8)) << tile->name;
    }
}

TEST(TonalGroup, RowsMatchSingleRowRuns)
{
    for (const auto& tile : tonalTiles()) {
        expectRowsIndependent<FlexImageFloat>(*tile);
        expectRowsIndependent<FlexImage8>(*tile);
    }
}

TEST(TonalGroup, SeveralMasksMultiply)
{
    // Two masks of 0.5 act as one of 0.25.
    CurveTestMask a(0.5f);
    CurveTestMask b(0.5f);
    ImageModSelectorPointerArray both({&a, &b});
    CurveTestMask quarter(0.25f);
    for (const auto& tile : tonalTiles()) {
        auto x = curveTestCard<FlexImageFloat>();
        auto y = curveTestCopy(*x);
        ImageModApplyContext pair = maskContext(&both);
        ImageModApplyContext single = maskContext(&quarter);
        tile->apply(x.get(), &pair);
        tile->apply(y.get(), &single);
        EXPECT_TRUE(curveTestSame(*x, *y)) << tile->name;
    }
}
