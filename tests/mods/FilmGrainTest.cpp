#include "mods/ImageModGrainFast.h"
#include "mods/ImageModGrainLegacy.h"
#include "mods/SpatialTestSupport.h"

#include <gtest/gtest.h>

using namespace spatialtest;

namespace
{

struct Stats {
    double mean = 0.0;
    double stddev = 0.0;
};

// Mean and standard deviation of (after - before) over all samples.
template <typename Sample> Stats deltaStats(const FlexImageT<Sample>& after, const FlexImageT<Sample>& before)
{
    double s = 0.0, s2 = 0.0;
    const int64_t n = after.sampleCount();
    for (int64_t i = 0; i < n; ++i) {
        const double d = double(after.data[i]) - double(before.data[i]);
        s += d;
        s2 += d * d;
    }
    Stats st;
    st.mean = s / double(n);
    st.stddev = std::sqrt(std::max(0.0, s2 / double(n) - st.mean * st.mean));
    return st;
}

// Grain at full size boxed down against grain laid on the quarter-size preview.
template <typename Sample> void grainPreviewStats(ImageMod& grain, Stats& fullDown, Stats& preview)
{
    FlexImageT<Sample> down, quarter;
    renderFullAndPreview(grain, 1, down, quarter);
    fullDown = deltaStats(down, sceneAt<Sample>(4));
    preview = deltaStats(quarter, sceneAt<Sample>(4));
}

} // namespace

TEST(FilmGrain, PreviewGrainMatchesFullSize)
{
    for (float scale : { 25.0f, 80.0f }) {
        ImageModGrainFast grain;
        setFloat(grain, 1, scale);
        Stats full, preview;
        grainPreviewStats<float>(grain, full, preview);
        EXPECT_NEAR(preview.stddev / full.stddev, 1.0, 0.15) << "Scale " << scale;
        EXPECT_NEAR(preview.mean, full.mean, 0.15 * full.stddev) << "Scale " << scale;
    }
}

#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataPixel.h"
#include "mods/ImageModBlur.h"
#include "mods/ImageModDiscolor.h"
#include "mods/ImageModDynamics.h"
#include "mods/ImageModLensFlare.h"
#include "mods/ImageModLightleak.h"
#include "mods/ImageModNoise.h"
#include "mods/ImageModRadialBlur.h"
#include "mods/ImageModSharpen.h"
#include "mods/ImageModVignette.h"

#include <cstdlib>

namespace
{

// Every mod of this family at a setting that changes pixels.
std::vector<std::unique_ptr<ImageMod>> everyEffect()
{
    std::vector<std::unique_ptr<ImageMod>> mods;
    for (int32_t method = 0; method < 3; ++method) {
        auto blur = std::make_unique<ImageModBlur>();
        setFloat(*blur, 0, 60.0f);
        setChoice(*blur, 2, method);
        mods.push_back(std::move(blur));
    }
    mods.push_back(std::make_unique<ImageModRadialBlur>());
    mods.push_back(std::make_unique<ImageModSharpen>());
    for (int32_t method = 0; method < 2; ++method) {
        auto dyn = std::make_unique<ImageModDynamics>();
        setFloat(*dyn, 0, 70.0f);
        setChoice(*dyn, 2, method);
        mods.push_back(std::move(dyn));
    }
    mods.push_back(std::make_unique<ImageModVignette>());
    auto grain = std::make_unique<ImageModGrainFast>();
    setFloat(*grain, 1, 90.0f); // big enough for the closing blur
    mods.push_back(std::move(grain));
    mods.push_back(std::make_unique<ImageModGrainLegacy>());
    for (int32_t v = 1; v <= 3; ++v) {
        auto noise = std::make_unique<ImageModNoise>();
        noise->version = v;
        mods.push_back(std::move(noise));
    }
    mods.push_back(std::make_unique<ImageModDiscolor>());
    mods.push_back(std::make_unique<ImageModLightleak>());
    mods.push_back(std::make_unique<ImageModLensFlare>());
    return mods;
}

template <typename Sample> void checkMaskZeroAndDeterminism()
{
    FlexImageT<Sample> src;
    paintScene(src, 160, 120);
    ReferenceFrame frame = wholeFrame(160, 120, 1.0f);
    TestSelectorLeftHalf mask;
    for (auto& mod : everyEffect()) {
        ImageModApplyContext ctx;
        ctx.referenceFrame = &frame;
        ctx.pass = -1;
        FlexImageT<Sample> a, b;
        a.copyFrom(src, true);
        b.copyFrom(src, true);
        mod->apply(&a, &ctx);
        mod->apply(&b, &ctx);
        EXPECT_TRUE(samePixels(a, b)) << mod->name << " is not repeatable";
        EXPECT_FALSE(samePixels(a, src)) << mod->name << " changed nothing";

        ctx.selector = &mask;
        FlexImageT<Sample> m;
        m.copyFrom(src, true);
        mod->apply(&m, &ctx);
        bool rightSame = true, leftChanged = false;
        for (int32_t y = 0; y < 120; ++y)
            for (int32_t x = 0; x < 160; ++x)
                for (int32_t c = 0; c < 3; ++c) {
                    const bool same = m.row(y)[x * 3 + c] == src.row(y)[x * 3 + c];
                    if (x >= 80)
                        rightSame = rightSame && same;
                    else
                        leftChanged = leftChanged || !same;
                }
        EXPECT_TRUE(rightSame) << mod->name << " touched pixels under mask 0";
        EXPECT_TRUE(leftChanged) << mod->name << " did nothing under mask 1";
        EXPECT_TRUE(allFinite(m)) << mod->name;
    }
}

} // namespace

TEST(FilmEffects, MaskZeroLeavesPixelsAndResultsRepeatAtBothDepths)
{
    checkMaskZeroAndDeterminism<float>();
    checkMaskZeroAndDeterminism<uint8_t>();
}

TEST(FilmGrain, TileIsReusedWhileOnlyAmountChangesAndSharedByClones)
{
    ImageModGrainFast grain;
    EXPECT_EQ(grain.passCount(), 2);
    EXPECT_FALSE(grain.passIsPure(0));
    EXPECT_TRUE(grain.passIsPure(1));
    FlexImageFloat img;
    paintScene(img, 200, 150);
    FlexImageFloat untouched;
    untouched.copyFrom(img, true);
    ImageModApplyContext ctx;
    ctx.pass = 0; // prepares the tile, leaves the pixels
    grain.apply(&img, &ctx);
    EXPECT_TRUE(samePixels(img, untouched));
    const std::shared_ptr<const GrainTile> first = grain.currentTile();
    ASSERT_TRUE(first);
    ctx.pass = 1;
    setFloat(grain, 0, 70.0f);
    grain.apply(&img, &ctx);
    EXPECT_EQ(grain.currentTile(), first);
    auto clone = cloneMod(grain);
    EXPECT_EQ(static_cast<ImageModGrainFast&>(*clone).currentTile(), first);
    setFloat(grain, 2, 10.0f);
    grain.apply(&img, &ctx);
    EXPECT_NE(grain.currentTile(), first);
    // The finished tile has mean 0 and the fixed RMS.
    const GrainTile& t = *grain.currentTile();
    double s = 0.0, s2 = 0.0;
    for (float v : t.values) {
        s += v;
        s2 += double(v) * v;
    }
    EXPECT_NEAR(s / double(t.values.size()), 0.0, 1e-3);
    EXPECT_NEAR(std::sqrt(s2 / double(t.values.size())), 0.35, 1e-3);
}

TEST(FilmGrain, VideoFrameShiftsThePatternByFixedFractions)
{
    ImageModGrainFast grain;
    FlexImageFloat flat0, flat1;
    flat0.resize(200, 100, 3);
    for (int64_t i = 0; i < flat0.sampleCount(); ++i)
        flat0.data[i] = 128.0f;
    flat1.copyFrom(flat0, true);
    ReferenceFrame frame = wholeFrame(200, 100, 1.0f);
    ImageModApplyContext ctx;
    ctx.referenceFrame = &frame;
    ctx.pass = 1;
    grain.apply(&flat0, &ctx);
    ctx.frame = 1;
    grain.apply(&flat1, &ctx);
    // Offsets trunc(0.679 * 200) = 135 and trunc(0.433 * 100) = 43.
    for (int32_t y = 0; y < 100 - 43; ++y)
        for (int32_t x = 0; x < 200 - 135; ++x)
            ASSERT_EQ(flat1.row(y)[x * 3], flat0.row(y + 43)[(x + 135) * 3]) << x << "," << y;
    EXPECT_FALSE(samePixels(flat0, flat1));
}

TEST(FilmGrain, VersionOneRunsTheLegacyGrain)
{
    ImageModGrainFast grain;
    grain.version = 1;
    EXPECT_EQ(grain.passCount(), 1);
    EXPECT_TRUE(grain.passIsPure(0));
    ImageModGrainLegacy legacy;
    FlexImageFloat a, b;
    paintScene(a, 120, 90);
    b.copyFrom(a, true);
    grain.apply(&a, nullptr);
    legacy.apply(&b, nullptr);
    EXPECT_TRUE(samePixels(a, b));
}

TEST(FilmLight, LightleakPhaseAndRandomise)
{
    ImageModLightleak leak;
    EXPECT_EQ(leak.variationVariables().size(), 1u);
    EXPECT_FALSE(leak.variableAt(1)->visible);
    std::srand(7);
    leak.randomizeVariation();
    const float phase = leak.floatValue(1);
    EXPECT_GE(phase, -5000.0f);
    EXPECT_LT(phase, 5000.0f);
    EXPECT_EQ(phase, std::floor(phase));

    // The Discolor it drives follows the phase exactly.
    ImageModDiscolor discolor;
    ASSERT_TRUE(ImageModLightleak::configureDiscolor(discolor, 0.5f, 0.0f));
    const double x = 248.75;
    EXPECT_FLOAT_EQ(discolor.colorAt(2)->red, float(std::cos(x * 0.08105308810215502) * 17.5 + 237.5));
    EXPECT_FLOAT_EQ(discolor.floatValue(1), 248.75f);
    EXPECT_FLOAT_EQ(discolor.floatValue(3), 1.45f);
    EXPECT_FLOAT_EQ(discolor.floatValue(0),
        float(0.5 * (std::cos(x * 0.029405306921233814) * 0.19999998807907104 + 0.699999988079071)));
    EXPECT_FALSE(ImageModLightleak::configureDiscolor(discolor, 0.0f, 0.0f));

    setFloat(leak, 0, 0.0f);
    FlexImageFloat img, before;
    paintScene(img, 64, 48);
    before.copyFrom(img, true);
    leak.apply(&img, nullptr);
    EXPECT_TRUE(samePixels(img, before));
}

TEST(FilmLight, LensFlareFollowsHandleAndVariation)
{
    ImageModLensFlare flare;
    EXPECT_EQ(flare.variationVariables().size(), 1u);
    FlexImageFloat base;
    paintScene(base, 300, 200);
    auto render = [&](ImageModLensFlare& f, FlexImageFloat& out) {
        out.copyFrom(base, true);
        f.apply(&out, nullptr);
    };
    FlexImageFloat a, b;
    render(flare, a);
    // Screen blend: nothing gets darker.
    for (int64_t i = 0; i < a.sampleCount(); ++i)
        ASSERT_GE(a.data[i], base.data[i]);
    flare.variableAt(1)->asPixel()->points[0] = { 250.0f, 40.0f };
    render(flare, b);
    EXPECT_GT(b.row(40)[250 * 3 + 2], a.row(40)[250 * 3 + 2] + 20.0f); // the source moved there
    FlexImageFloat c;
    setFloat(flare, 2, flare.floatValue(2) + 30.0f);
    render(flare, c);
    EXPECT_FALSE(samePixels(b, c));
    // The sprite is a bright core with rays, in 0..1.
    const FlexImageFloat& sp = ImageModLensFlare::sprite();
    EXPECT_GT(sp.data[128 * 256 + 128], 0.9f);
    for (int64_t i = 0; i < sp.sampleCount(); ++i)
        ASSERT_TRUE(sp.data[i] >= 0.0f && sp.data[i] <= 1.0f);
}
