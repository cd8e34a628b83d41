#include "core/FlexImage.h"
#include "core/ImageModApplyContext.h"
#include "core/ImageModVariableData.h"
#include "mods/styles/CameraStyles.h"
#include "SpatialTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <set>
#include <string>

using namespace spatialtest;

namespace {

// A small photo-like picture (gradients, a bright disc, a saturated block) at either depth.
template <typename Sample>
void photo(FlexImageT<Sample>& img)
{
    paintScene(img, 96, 64);
}

template <typename Sample>
double meanAbsDiff(const FlexImageT<Sample>& a, const FlexImageT<Sample>& b)
{
    double s = 0.0;
    for (int64_t i = 0; i < a.sampleCount(); ++i)
        s += std::fabs(double(a.data[i]) - double(b.data[i]));
    return s / double(a.sampleCount());
}

std::unique_ptr<ImageMod> instance(const ImageMod& style, float variation, float amount = 1.0f, int32_t version = -1)
{
    std::unique_ptr<ImageMod> m = style.newInstance();
    if (version > 0)
        m->setVersion(version);
    m->variableAt(ImageModStyle::varAmount)->setFloatValue(amount);
    m->variableAt(ImageModStyle::varVariation)->setFloatValue(variation);
    return m;
}

template <typename Sample>
void render(const ImageMod& style, float variation, FlexImageT<Sample>& out, float amount = 1.0f,
            int32_t version = -1)
{
    photo(out);
    instance(style, variation, amount, version)->apply(&out, nullptr);
}

struct Row {
    const char* name;
    int32_t version;
};

// Frozen names and newest versions, in panel order.
constexpr Row kSection[] = {{"1958", 2},     {"1962", 4},       {"1974", 3},    {"1983", 3},     {"Autochrome", 3},
                            {"Colorcross", 2}, {"Helga", 2},    {"Instant", 2}, {"Italiano", 2}, {"Lolo", 1},
                            {"Magazine", 3}, {"Matte", 4},      {"Mono", 2},    {"Poolside", 2}, {"Silver", 2},
                            {"Skater", 3},   {"Wedding", 1},    {"Hipster", 1}, {"Plastic", 1},  {"Saloon", 1}};

} // namespace

TEST(CameraStyles, SectionHoldsTwentyStylesWithFrozenNamesLabelsAndVariables)
{
    const auto styles = buildStyleSection();
    ASSERT_EQ(styles.size(), std::size(kSection));
    std::set<std::string> tips;
    for (size_t i = 0; i < styles.size(); ++i) {
        const ImageMod& m = *styles[i];
        SCOPED_TRACE(m.name);
        EXPECT_EQ(m.name, kSection[i].name);
        EXPECT_EQ(m.displayName, m.name + " Camera");
        EXPECT_EQ(m.version, kSection[i].version);
        EXPECT_EQ(m.kind(), 2);
        tips.insert(m.toolTip);
        ASSERT_EQ(m.variableCount(), 2);
        EXPECT_EQ(m.variables[0]->name, "Amount");
        EXPECT_EQ(m.variables[1]->name, "Variation");
        EXPECT_EQ(m.amountVariable(), m.variables[0].get());
        EXPECT_FLOAT_EQ(m.floatValue(0), 1.0f);
        ASSERT_EQ(m.variationVariables().size(), 1u);
        EXPECT_EQ(m.variationVariables()[0], m.variables[1].get());
        const std::unique_ptr<ImageMod> fresh = m.newInstance();
        EXPECT_EQ(fresh->name, m.name);
        EXPECT_EQ(fresh->version, m.version);
    }
    EXPECT_EQ(tips.size(), styles.size()) << "every style has its own tool tip";
    EXPECT_EQ(styles.back()->toolTip, "Old-timey fun with a white vignette.");
}

TEST(CameraStyles, EveryStyleOnBothDepthsWithAndWithoutMask)
{
    TestSelectorLeftHalf mask;
    ImageModApplyContext ctx;
    ctx.selector = &mask;
    for (const auto& style : buildStyleSection()) {
        SCOPED_TRACE(style->name);
        FlexImageFloat original, a, again, other, zero;
        FlexImage8 source, b, zero8;
        photo(original);
        photo(source);
        // Amount 0 leaves both depths bit-identical.
        render(*style, 1234.5f, zero, 0.0f);
        render(*style, 1234.5f, zero8, 0.0f);
        EXPECT_TRUE(samePixels(zero, original));
        EXPECT_TRUE(samePixels(zero8, source));

        // A visible change, the same for one Variation every time, another for another.
        render(*style, -2444.0f, a);
        render(*style, -2444.0f, again);
        render(*style, 1733.25f, other);
        EXPECT_TRUE(allFinite(a));
        EXPECT_GT(meanAbsDiff(a, original), 4.0);
        EXPECT_TRUE(samePixels(a, again));
        EXPECT_GT(meanAbsDiff(a, other), 0.2) << "Variation must change the look";

        // The 8-bit image is the float result of the same pixels, rounded: no 8-bit stage quirks.
        render(*style, 310.0f, b);
        FlexImageFloat f;
        f.copyFromOtherDepth(source, true);
        instance(*style, 310.0f)->apply(&f, nullptr);
        int32_t worst = 0;
        for (int64_t i = 0; i < b.sampleCount(); ++i) {
            const float v = std::fmin(std::fmax(f.data[i], 0.0f), 255.0f);
            worst = std::max(worst, std::abs(int32_t(b.data[i]) - int32_t(std::lround(v))));
        }
        EXPECT_EQ(worst, 0);
        EXPECT_GT(meanAbsDiff(b, source), 4.0);

        // One instance over another picture and back keeps no state: the first result comes back.
        std::unique_ptr<ImageMod> m = instance(*style, -2444.0f);
        FlexImageFloat tall, second;
        paintScene(tall, 50, 120);
        photo(second);
        m->apply(&tall, nullptr);
        m->apply(&second, nullptr);
        EXPECT_TRUE(samePixels(a, second));

        // A mask merges the whole look over the original: left half as unmasked, right half kept.
        FlexImageFloat masked;
        photo(masked);
        m->apply(&masked, &ctx);
        double leftErr = 0.0;
        bool rightKept = true;
        for (int32_t y = 0; y < masked.height; ++y)
            for (int32_t k = 0; k < masked.width * 3; ++k) {
                const float got = masked.row(y)[k];
                if (k / 3 < masked.width / 2)
                    leftErr = std::max(leftErr, double(std::fabs(got - a.row(y)[k])));
                else
                    rightKept = rightKept && got == original.row(y)[k];
            }
        EXPECT_LT(leftErr, 1e-3);
        EXPECT_TRUE(rightKept);

        // Empty and null images are ignored.
        FlexImageFloat empty;
        FlexImage8 empty8;
        style->apply(&empty, nullptr);
        style->apply(&empty8, nullptr);
        style->apply(static_cast<FlexImageFloat*>(nullptr), nullptr);
        style->apply(static_cast<FlexImage8*>(nullptr), nullptr);
        EXPECT_TRUE(empty.isEmpty());
    }
}

TEST(CameraStyles, VersionsSelectTheirRecipeBranches)
{
    // Styles whose recipe changed across versions: the old version gives another picture, and a
    // version the branch rule groups with the newest gives the same one.
    struct Case {
        std::unique_ptr<ImageMod> style;
        int32_t older;
        int32_t sameAsNewest; // 0: none to check
    };
    Case cases[] = {{std::make_unique<ImageModSkater>(), 2, 0},   {std::make_unique<ImageModPoolside>(), 1, 0},
                    {std::make_unique<ImageModMono>(), 1, 0},     {std::make_unique<ImageModMatte>(), 3, 0},
                    {std::make_unique<ImageModMagazine>(), 2, 0}, {std::make_unique<ImageModMagazine>(), 1, 0},
                    {std::make_unique<ImageMod1962>(), 2, 3}};
    for (Case& c : cases) {
        SCOPED_TRACE(c.style->name + " v" + std::to_string(c.older));
        FlexImageFloat newest, old;
        render(*c.style, 40.0f, newest);
        render(*c.style, 40.0f, old, 1.0f, c.older);
        EXPECT_GT(meanAbsDiff(newest, old), 0.5);
        if (c.sameAsNewest > 0) {
            FlexImageFloat same;
            render(*c.style, 40.0f, same, 1.0f, c.sameAsNewest);
            EXPECT_TRUE(samePixels(newest, same));
        }
    }
}

TEST(CameraStyles, SaloonScalesItsRecipeByAmount)
{
    // Half the Amount lands between the original and the full look, not on either.
    ImageModSaloon saloon;
    FlexImageFloat original, half, full;
    photo(original);
    render(saloon, 0.0f, half, 0.5f);
    render(saloon, 0.0f, full, 1.0f);
    const double toHalf = meanAbsDiff(original, half);
    const double toFull = meanAbsDiff(original, full);
    EXPECT_GT(toHalf, 2.0);
    EXPECT_LT(toHalf, toFull);
    EXPECT_GT(meanAbsDiff(half, full), 2.0);
}

TEST(CameraStyles, SaloonKeepsABrightPhotoOffWhiteAtEveryVariation)
{
    // A bright, low-contrast scene (every sample 110 or more). Its middle half must keep detail
    // for any Variation: the corners may go white, that is the look. Before the lift was capped,
    // Variation 640 left the middle at a mean of 249 with over half its samples at 250 or more.
    ImageModSaloon saloon;
    double worstMean = 0.0, worstClipped = 0.0;
    for (float v = 0.0f; v <= 2000.0f; v += 2.5f) {
        FlexImageFloat img;
        paintScene(img, 60, 40);
        for (int64_t i = 0; i < img.sampleCount(); ++i)
            img.data[i] = std::min(255.0f, img.data[i] * 0.6f + 110.0f);
        instance(saloon, v)->apply(&img, nullptr);
        double sum = 0.0;
        int64_t clipped = 0, count = 0;
        for (int32_t y = 10; y < 30; ++y)
            for (int32_t k = 15 * 3; k < 45 * 3; ++k, ++count) {
                sum += img.row(y)[k];
                clipped += img.row(y)[k] >= 250.0f ? 1 : 0;
            }
        worstMean = std::max(worstMean, sum / double(count));
        worstClipped = std::max(worstClipped, double(clipped) / double(count));
    }
    EXPECT_LT(worstMean, 240.0);
    EXPECT_LT(worstClipped, 0.35);
}

TEST(CameraStyles, RandomizedVariationFollowsTheSharedRule)
{
    ImageModHelga helga;
    std::srand(99);
    helga.randomizeVariation();
    std::srand(99);
    const float expected = float(double(std::rand() % 1000000) * -0.01 + 5000.0);
    EXPECT_FLOAT_EQ(helga.floatValue(ImageModStyle::varVariation), expected);
    EXPECT_GT(expected, -5000.0f);
    EXPECT_LE(expected, 5000.0f);
}

TEST(Colorcross, CurvesAreIdentityAtAmountZeroAndRiseInsideTheSquareOtherwise)
{
    EXPECT_NEAR(ImageModColorcross::phaseOf(3335.34f), 0.0, 1e-4);
    EXPECT_NEAR(ImageModColorcross::phaseOf(3435.34f), 0.0628318531 * 50.0, 1e-4);
    for (const auto& c : ImageModColorcross::buildCurves(0.0f, 812.0f))
        EXPECT_TRUE(c.isIdentity());
    bool someChannelsDiffer = false;
    for (float v : {-4999.0f, -812.5f, 0.0f, 33.0f, 2718.0f, 5000.0f}) {
        const auto curves = ImageModColorcross::buildCurves(1.0f, v);
        for (const ToneCurve& c : curves) {
            ASSERT_EQ(c.pointCount(), 5);
            EXPECT_GE(c.points[0].y, 0.0f);
            EXPECT_LE(c.points[4].y, 1.0f);
            for (int32_t i = 1; i < 5; ++i)
                EXPECT_GE(c.points[size_t(i)].y, c.points[size_t(i - 1)].y);
            EXPECT_FALSE(c.isIdentity());
        }
        someChannelsDiffer = someChannelsDiffer || curves[0].points[2].y != curves[2].points[2].y;
    }
    EXPECT_TRUE(someChannelsDiffer);
}

TEST(Colorcross, GreyStaysNeutralOnlyWhereTheChannelsAgree)
{
    // Cross-processing splits a grey ramp into colours: at some tone the channels must part.
    ImageModColorcross cross;
    cross.variableAt(ImageModStyle::varVariation)->setFloatValue(100.0f);
    FlexImageFloat ramp(256, 1, 3);
    for (int32_t x = 0; x < 256; ++x)
        for (int32_t c = 0; c < 3; ++c)
            ramp.row(0)[x * 3 + c] = float(x);
    cross.apply(&ramp, nullptr);
    float spread = 0.0f;
    for (int32_t x = 0; x < 256; ++x) {
        const float* p = ramp.row(0) + x * 3;
        spread = std::max(spread, std::fmax(std::fmax(p[0], p[1]), p[2]) - std::fmin(std::fmin(p[0], p[1]), p[2]));
    }
    EXPECT_GT(spread, 10.0f);
    // Black and white only ever fade inwards.
    for (int32_t c = 0; c < 3; ++c) {
        EXPECT_GE(ramp.row(0)[c], 0.0f);
        EXPECT_LE(ramp.row(0)[255 * 3 + c], 255.0f);
    }
}

TEST(CameraStyles, PaddingFollowsTheBlurStage)
{
    ImageModSkater skater;
    ImageModSaloon saloon;
    ImageModAutochrome autochrome;
    EXPECT_GT(skater.paddingNeeded(6000, 4000, 1.0f), 0);
    EXPECT_GE(autochrome.paddingNeeded(6000, 4000, 1.0f), skater.paddingNeeded(6000, 4000, 1.0f));
    EXPECT_EQ(saloon.paddingNeeded(6000, 4000, 1.0f), 0);
    skater.variableAt(ImageModStyle::varAmount)->setFloatValue(0.0f);
    EXPECT_EQ(skater.paddingNeeded(6000, 4000, 1.0f), 0);
}
