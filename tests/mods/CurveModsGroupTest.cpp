#include "core/ImageModSelectorPointerArray.h"
#include "core/ImageModSelectorWalk.h"
#include "mods/ImageModComponentCurve.h"
#include "mods/ImageModExposureCurve.h"
#include "mods/ImageModHueBrightness.h"
#include "mods/ImageModHueShift.h"
#include "mods/ImageModLabCurves.h"
#include "mods/ImageModLuminanceCurve.h"
#include "mods/ImageModRGBCombinedCurve.h"
#include "mods/ImageModRGBCurves.h"
#include "mods/ImageModSaturationCurve.h"
#include "mods/ImageModToneCurve.h"
#include "tests/mods/CurveTestHelpers.h"

#include <functional>

namespace {

// Every tile of the family with a non-neutral setting, at an old version where it has one.
std::vector<std::unique_ptr<ImageMod>> configuredMods()
{
    std::vector<std::unique_ptr<ImageMod>> mods;
    auto tone = std::make_unique<ImageModToneCurve>();
    setCurve(*tone, 1, "0 .1 .5 .6 1 .9");
    setChoice(*tone, 2, 2);
    mods.push_back(std::move(tone));
    auto lum = std::make_unique<ImageModLuminanceCurve>();
    setCurve(*lum, 1, "0 .1 .5 .6 1 .9");
    mods.push_back(std::move(lum));
    auto comb = std::make_unique<ImageModRGBCombinedCurve>();
    setCurve(*comb, 1, "0 .1 .5 .6 1 .9");
    mods.push_back(std::move(comb));
    auto rgb = std::make_unique<ImageModRGBCurves>();
    setCurve(*rgb, 2, "0 .1 .5 .6 1 .9");
    mods.push_back(std::move(rgb));
    auto comp = std::make_unique<ImageModComponentCurve>();
    setCurve(*comp, 1, "0 .1 .5 .6 1 .9");
    setChoice(*comp, 2, 5);
    mods.push_back(std::move(comp));
    auto lab = std::make_unique<ImageModLabCurves>();
    setCurve(*lab, 1, "0 .2 1 .8");
    mods.push_back(std::move(lab));
    auto exp = std::make_unique<ImageModExposureCurve>();
    exp->setVersion(1);
    setCurve(*exp, 1, "0 .2 1 .8");
    mods.push_back(std::move(exp));
    auto sat = std::make_unique<ImageModSaturationCurve>();
    sat->setVersion(1);
    setCurve(*sat, 1, "0 .8 .5 .2 1 .8");
    mods.push_back(std::move(sat));
    auto hb = std::make_unique<ImageModHueBrightness>();
    hb->setVersion(2);
    setCurve(*hb, 1, "0 .8 .5 .2 1 .8");
    mods.push_back(std::move(hb));
    auto shift = std::make_unique<ImageModHueShift>();
    shift->setVersion(1);
    setCurve(*shift, 1, "0 .8 .5 .2 1 .8");
    setHueOffset(*shift, 1, 45.0f);
    mods.push_back(std::move(shift));
    return mods;
}

template <typename Image>
void expectCloneRendersAlike()
{
    for (const auto& mod : configuredMods()) {
        auto copy = cloneMod(*mod);
        EXPECT_EQ(copy->version, mod->version) << mod->name;
        auto a = curveTestCard<Image>();
        auto b = curveTestCopy(*a);
        auto ref = curveTestCopy(*a);
        mod->apply(a.get(), nullptr);
        copy->apply(b.get(), nullptr);
        EXPECT_TRUE(curveTestSame(*a, *b)) << mod->name;
        EXPECT_FALSE(curveTestSame(*a, *ref)) << mod->name << " should change the card";
    }
}

} // namespace

TEST(CurveModsGroup, ClonesCarryVersionAndRenderTheSameBits)
{
    expectCloneRendersAlike<FlexImageFloat>();
    expectCloneRendersAlike<FlexImage8>();
}

TEST(CurveModsGroup, RowsInParallelMatchOneRowAtATime)
{
    // A card split into single-row images gives the same bits as the whole card.
    for (const auto& mod : configuredMods()) {
        auto whole = curveTestCard<FlexImageFloat>();
        auto parts = curveTestCopy(*whole);
        mod->apply(whole.get(), nullptr);
        for (int32_t y = 0; y < parts->height; ++y) {
            FlexImageFloat row;
            row.wrap(parts->row(y), parts->width, 1, parts->channels);
            mod->apply(&row, nullptr);
        }
        EXPECT_TRUE(curveTestSame(*whole, *parts)) << mod->name;
    }
}

TEST(CurveModsGroup, SeveralMasksMultiplyAndDisabledOnesDropOut)
{
    // Tray: [half mask, disabled zero mask, stripes, tone curve]. The run gives half * stripes.
    CurveTestMask half(0.5f);
    CurveTestMask zero(0.0f);
    zero.enabled = false;
    CurveTestStripeMask stripes;
    ImageModToneCurve tone;
    setCurve(tone, 1, "0 1 1 1");
    std::vector<ImageMod*> tray = {&half, &zero, &stripes, &tone};
    const std::vector<ImageModSelector*> list = selectorsForTile(tray, 3);
    ASSERT_EQ(list.size(), 2u);
    ImageModSelectorPointerArray wrapper;
    ImageModApplyContext ctx;
    ctx.selector = selectorForList(list, wrapper);
    auto f = curveTestImage<FlexImageFloat>({{100.0f, 100.0f, 100.0f}, {100.0f, 100.0f, 100.0f}});
    tone.apply(f.get(), &ctx);
    // s = 0.5: 100 * 0.5 + 255 * 0.5.
    EXPECT_NEAR(f->data[0], 177.5f, 1e-4);
    EXPECT_EQ(f->data[3], 100.0f);
    // Tiles that ignore masks change the masked-out pixel too.
    ImageModRGBCombinedCurve comb;
    setCurve(comb, 1, "0 1 1 1");
    auto g = curveTestImage<FlexImageFloat>({{100.0f, 100.0f, 100.0f}, {100.0f, 100.0f, 100.0f}});
    comb.apply(g.get(), &ctx);
    EXPECT_EQ(g->data[0], 255.0f);
    EXPECT_EQ(g->data[3], 255.0f);
}
