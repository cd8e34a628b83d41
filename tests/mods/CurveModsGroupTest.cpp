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

template <typename Mod>
Mod& add(std::vector<std::unique_ptr<ImageMod>>& mods, int32_t curve, const char* points, int32_t version = 0)
{
    auto mod = std::make_unique<Mod>();
    if (version > 0)
        mod->setVersion(version);
    setCurve(*mod, curve, points);
    Mod& added = *mod;
    mods.push_back(std::move(mod));
    return added;
}

// Every tile of the family with a non-neutral setting, at an old version where it has one.
std::vector<std::unique_ptr<ImageMod>> configuredMods()
{
    const char* s = "0 .1 .5 .6 1 .9";
    const char* hue = "0 .8 .5 .2 1 .8";
    std::vector<std::unique_ptr<ImageMod>> mods;
    setChoice(add<ImageModToneCurve>(mods, 1, s), 2, 2);
    add<ImageModLuminanceCurve>(mods, 1, s);
    add<ImageModRGBCombinedCurve>(mods, 1, s);
    add<ImageModRGBCurves>(mods, 2, s);
    setChoice(add<ImageModComponentCurve>(mods, 1, s), 2, 5);
    add<ImageModLabCurves>(mods, 1, "0 .2 1 .8");
    add<ImageModExposureCurve>(mods, 1, "0 .2 1 .8", 1);
    add<ImageModSaturationCurve>(mods, 1, hue, 1);
    add<ImageModHueBrightness>(mods, 1, hue, 2);
    setHueOffset(add<ImageModHueShift>(mods, 1, hue, 1), 1, 45.0f);
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
