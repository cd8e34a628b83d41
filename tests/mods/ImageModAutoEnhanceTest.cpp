#include "LutTestSupport.h"

#include "core/ColorMath.h"
#include "core/ImageModVariableDataChoice.h"
#include "mods/ImageModAutoEnhance.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace {

// A made-up photograph: smooth shapes, a horizon, fine texture and colour, with reflectance
// spread over 0..1. `expose` maps reflectance (0..1) to a channel value on 0..255.
void scene(FlexImageFloat& img, const std::function<float(float)>& expose)
{
    std::mt19937 rng(11u);
    std::uniform_real_distribution<float> noise(-0.04f, 0.04f);
    for (int32_t y = 0; y < img.height; ++y) {
        float* p = img.row(y);
        const float fy = float(y) / float(img.height);
        for (int32_t x = 0; x < img.width; ++x, p += img.channels) {
            const float fx = float(x) / float(img.width);
            float v = fy < 0.4f ? 0.55f + 0.4f * (0.4f - fy) : 0.15f + 0.6f * (fy - 0.4f);
            v += 0.25f * std::sin(fx * 9.0f) * std::cos(fy * 7.0f);
            const float dx = fx - 0.65f, dy = fy - 0.6f;
            if (dx * dx + dy * dy < 0.02f)
                v = 0.95f;
            v = std::clamp(v + noise(rng), 0.0f, 1.0f);
            const float tint[3] = {1.0f, 0.92f + 0.08f * fy, 0.8f + 0.2f * fx};
            for (int c = 0; c < 3; ++c)
                p[c] = expose(std::clamp(v * tint[c], 0.0f, 1.0f));
        }
    }
}

// Mean luminance, or with spread set its standard deviation.
float luminanceStat(const FlexImageFloat& img, bool spread = false)
{
    double sum = 0.0, sumSq = 0.0;
    for (int32_t y = 0; y < img.height; ++y) {
        const float* p = img.row(y);
        for (int32_t x = 0; x < img.width; ++x, p += img.channels) {
            const double l = luminance(p[0], p[1], p[2]);
            sum += l;
            sumSq += l * l;
        }
    }
    const double n = double(img.width) * img.height, mean = sum / n;
    return float(spread ? std::sqrt(std::max(0.0, sumSq / n - mean * mean)) : mean);
}

float meanAbsDifference(const FlexImageFloat& a, const FlexImageFloat& b)
{
    double sum = 0.0;
    for (int64_t i = 0; i < a.sampleCount(); ++i)
        sum += std::fabs(double(a.data[i]) - double(b.data[i]));
    return float(sum / double(a.sampleCount()));
}

struct Exposure {
    const char* name;
    std::function<float(float)> expose;
};

const Exposure kWell{"well exposed", [](float v) { return 8.0f + v * 240.0f; }};
const Exposure kDark{"dark", [](float v) { return std::pow(v, 1.8f) * 95.0f; }};
const Exposure kBright{"bright", [](float v) { return 255.0f - std::pow(1.0f - v, 1.8f) * 100.0f; }};
const Exposure kFlat{"flat", [](float v) { return 92.0f + v * 70.0f; }};

// Runs the tile as the driver does: the analysis pass on a small proxy, then apply on the image.
void runAuto(ImageModAutoEnhance& mod, FlexImageFloat& img)
{
    FlexImageFloat proxy(img.width / 4, img.height / 4, 3);
    proxy.resampleFrom(img);
    mod.analyze(&proxy, nullptr);
    mod.apply(&img, nullptr);
}

} // namespace

TEST(ImageModAutoEnhance, NeedsAnAnalysisPass)
{
    // The driver runs an analysis pass first and never caches the result as pure.
    ImageModAutoEnhance mod;
    EXPECT_TRUE(mod.needsAnalysis());
    EXPECT_FALSE(mod.passIsPure(0));
    EXPECT_FALSE(mod.hasMeasurement());
    EXPECT_TRUE(mod.hasAnimators());
}

TEST(ImageModAutoEnhance, MeasurementOfKnownHistograms)
{
    // Luminance spread evenly over 50..199 in grey: the points sit at the clip fractions.
    FlexImageFloat ramp(150, 200, 3);
    for (int32_t y = 0; y < ramp.height; ++y)
        for (int32_t x = 0; x < ramp.width; ++x)
            for (int c = 0; c < 3; ++c)
                ramp.row(y)[3 * x + c] = float(50 + x) + 0.5f;
    const ImageModAutoEnhance::Measurement m = ImageModAutoEnhance::measure(ramp);
    EXPECT_NEAR(m.lowPoint, 50.0f / 255.0f, 1.5f / 255.0f);
    EXPECT_NEAR(m.highPoint, 200.0f / 255.0f, 1.5f / 255.0f);
    EXPECT_NEAR(m.average, 0.5f, 0.01f);      // a uniform spread stays centred after levels
    EXPECT_NEAR(m.spread, 0.2887f, 0.01f);    // and uniform on 0..1 has deviation 1 / sqrt(12)

    // Ends within the tolerance of 0 and 255 are left alone.
    for (int32_t y = 0; y < ramp.height; ++y)
        for (int32_t x = 0; x < ramp.width; ++x)
            for (int c = 0; c < 3; ++c)
                ramp.row(y)[3 * x + c] = float(x) * 255.0f / 149.0f;
    const ImageModAutoEnhance::Measurement full = ImageModAutoEnhance::measure(ramp);
    EXPECT_EQ(full.lowPoint, 0.0f);
    EXPECT_EQ(full.highPoint, 1.0f);
    EXPECT_EQ(ImageModAutoEnhance::midtoneCorrection(full), 0.0f);

    // A single grey is not stretched into noise: the range stays at least 0.3 wide.
    fillImage3(ramp, 120.0f, 120.0f, 120.0f);
    const ImageModAutoEnhance::Measurement flat = ImageModAutoEnhance::measure(ramp);
    EXPECT_NEAR(flat.highPoint - flat.lowPoint, 0.3f, 1e-5f);
    EXPECT_GT(flat.lowPoint, 0.0f);

    // The same picture measures alike at 8 bits.
    FlexImage8 eight(0, 0, 3);
    FlexImageFloat photo(240, 160, 3);
    scene(photo, kDark.expose);
    eight.copyFromOtherDepth(photo, true);
    const auto m8 = ImageModAutoEnhance::measure(eight);
    const auto mf = ImageModAutoEnhance::measure(photo);
    EXPECT_NEAR(m8.lowPoint, mf.lowPoint, 2.0f / 255.0f);
    EXPECT_NEAR(m8.highPoint, mf.highPoint, 2.0f / 255.0f);
    EXPECT_NEAR(m8.average, mf.average, 0.01f);

    // Empty or absent pictures give the neutral measurement.
    FlexImageFloat none(0, 0, 3);
    const auto neutral = ImageModAutoEnhance::measure(none);
    EXPECT_EQ(neutral.lowPoint, 0.0f);
    EXPECT_EQ(neutral.highPoint, 1.0f);
}

TEST(ImageModAutoEnhance, CorrectionSigns)
{
    ImageModAutoEnhance::Measurement m;
    m.average = 0.2f;
    EXPECT_GT(ImageModAutoEnhance::midtoneCorrection(m), 0.0f); // dark: brighten
    m.average = 0.8f;
    EXPECT_LT(ImageModAutoEnhance::midtoneCorrection(m), 0.0f); // bright: darken
    m.average = 0.47f;
    EXPECT_EQ(ImageModAutoEnhance::midtoneCorrection(m), 0.0f);
    m.average = -5.0f;
    EXPECT_EQ(ImageModAutoEnhance::midtoneCorrection(m), 2.0f); // held where the curve stays monotonic
    m.average = NAN;
    EXPECT_EQ(ImageModAutoEnhance::midtoneCorrection(m), 0.0f);
    m.average = 0.5f;
    m.spread = 0.25f;
    EXPECT_EQ(ImageModAutoEnhance::contrastStrength(m), 0.0f); // healthy: no contrast stage
    m.spread = 0.1f;
    EXPECT_GT(ImageModAutoEnhance::contrastStrength(m), 0.15f);
}

TEST(ImageModAutoEnhance, ImprovesDarkBrightAndFlatPhotosAndLeavesAGoodOneNearlyAlone)
{
    for (const Exposure* e : {&kWell, &kDark, &kBright, &kFlat}) {
        FlexImageFloat img(480, 320, 3);
        scene(img, e->expose);
        FlexImageFloat before(0, 0, 3);
        before.copyFrom(img, true);
        ImageModAutoEnhance mod;
        runAuto(mod, img);
        const float meanBefore = luminanceStat(before);
        const float meanAfter = luminanceStat(img);
        const float spreadBefore = luminanceStat(before, true);
        const float spreadAfter = luminanceStat(img, true);
        SCOPED_TRACE(testing::Message() << e->name << ": mean " << meanBefore << " -> " << meanAfter << ", spread "
                                        << spreadBefore << " -> " << spreadAfter);
        if (e == &kWell) {
            EXPECT_LT(std::fabs(meanAfter - meanBefore), 4.0f);
            EXPECT_LT(meanAbsDifference(img, before), 5.0f);
        } else if (e == &kFlat) {
            EXPECT_GT(spreadAfter, spreadBefore * 1.8f);
            EXPECT_LT(std::fabs(meanAfter - 127.5f), 20.0f);
        } else {
            // At least half of the way to the middle, without overshooting past it.
            const float gapBefore = std::fabs(meanBefore - 127.5f);
            const float gapAfter = std::fabs(meanAfter - 127.5f);
            EXPECT_LT(gapAfter, gapBefore * 0.5f);
            EXPECT_EQ(meanAfter > 127.5f, meanBefore > 127.5f);
            EXPECT_GT(spreadAfter, spreadBefore);
        }
        for (int64_t i = 0; i < img.sampleCount(); ++i)
            ASSERT_TRUE(std::isfinite(img.data[i]));
    }
}

TEST(ImageModAutoEnhance, EightBitDepthCorrectsLikeFloat)
{
    for (const Exposure* e : {&kDark, &kBright}) {
        FlexImageFloat photo(480, 320, 3);
        scene(photo, e->expose);
        FlexImage8 img8(0, 0, 3);
        img8.copyFromOtherDepth(photo, true);
        FlexImageFloat img(0, 0, 3);
        img.copyFromOtherDepth(img8, true);
        FlexImage8 proxy8(120, 80, 3);
        proxy8.resampleFrom(img8);
        FlexImageFloat proxy(120, 80, 3);
        proxy.resampleFrom(img);

        ImageModAutoEnhance floatMod;
        floatMod.analyze(&proxy, nullptr);
        floatMod.apply(&img, nullptr);
        ImageModAutoEnhance mod8;
        mod8.analyze(&proxy8, nullptr);
        mod8.apply(&img8, nullptr);
        FlexImageFloat back(0, 0, 3);
        back.copyFromOtherDepth(img8, true);
        SCOPED_TRACE(e->name);
        EXPECT_NEAR(luminanceStat(back), luminanceStat(img), 2.0f);
        EXPECT_LT(meanAbsDifference(back, img), 2.0f);
    }
}

TEST(ImageModAutoEnhance, AmountMethodAndMask)
{
    FlexImageFloat photo(200, 120, 3);
    scene(photo, kDark.expose);
    FlexImageFloat img(0, 0, 3);

    // Amount 0 in colour: nothing at all.
    ImageModAutoEnhance off;
    off.variables[0]->setFloatValue(0.0f);
    img.copyFrom(photo, true);
    off.analyze(&img, nullptr);
    EXPECT_EQ(meanAbsDifference(img, photo), 0.0f);

    // Amount 0 in B+W: grey only, so the brightness barely moves.
    ImageModAutoEnhance grey;
    grey.variables[0]->setFloatValue(0.0f);
    grey.variables[1]->asChoice()->index = ImageModAutoEnhance::methodBW;
    img.copyFrom(photo, true);
    grey.analyze(&img, nullptr);
    for (int64_t p = 0; p < int64_t(img.width) * img.height; ++p) {
        ASSERT_NEAR(img.data[3 * p], img.data[3 * p + 1], 1e-3f);
        ASSERT_NEAR(img.data[3 * p], img.data[3 * p + 2], 1e-3f);
    }
    EXPECT_NEAR(luminanceStat(img), luminanceStat(photo), 6.0f);

    // B+W at the default Amount: grey and brighter.
    ImageModAutoEnhance bw;
    bw.variables[1]->asChoice()->index = ImageModAutoEnhance::methodBW;
    img.copyFrom(photo, true);
    runAuto(bw, img);
    EXPECT_NEAR(img.data[300], img.data[301], 1e-3f);
    EXPECT_GT(luminanceStat(img), luminanceStat(photo) + 40.0f);

    // More Amount, more correction.
    ImageModAutoEnhance half;
    half.variables[0]->setFloatValue(0.4f);
    ImageModAutoEnhance full;
    full.variables[0]->setFloatValue(1.0f);
    FlexImageFloat halfImg(0, 0, 3);
    halfImg.copyFrom(photo, true);
    img.copyFrom(photo, true);
    runAuto(half, halfImg);
    runAuto(full, img);
    EXPECT_GT(luminanceStat(halfImg), luminanceStat(photo) + 10.0f);
    EXPECT_GT(luminanceStat(img), luminanceStat(halfImg) + 10.0f);

    // A mask that is 0 on the right half leaves those pixels exactly as they were.
    ImageModAutoEnhance masked;
    TestSelectorLeftHalf mask;
    ImageModApplyContext context;
    context.selector = &mask;
    img.copyFrom(photo, true);
    masked.setMeasurement(ImageModAutoEnhance::measure(photo));
    masked.apply(&img, &context);
    for (int32_t y = 0; y < img.height; y += 7) {
        ASSERT_EQ(img.row(y)[3 * 150], photo.row(y)[3 * 150]);
        ASSERT_EQ(img.row(y)[3 * 199 + 2], photo.row(y)[3 * 199 + 2]);
    }
    double leftBefore = 0.0, leftAfter = 0.0;
    for (int32_t y = 0; y < img.height; ++y)
        for (int32_t i = 0; i < 3 * 100; ++i) {
            leftBefore += photo.row(y)[i];
            leftAfter += img.row(y)[i];
        }
    EXPECT_GT(leftAfter, leftBefore * 1.5);
}

TEST(ImageModAutoEnhance, MeasuresOncePerAnalysisAndUsesTheProxyWhenNeverAnalysed)
{
    FlexImageFloat photo(200, 120, 3);
    scene(photo, kDark.expose);
    FlexImageFloat proxy(50, 30, 3);
    proxy.resampleFrom(photo);

    // Apply without analysis measures the frame's proxy, exactly as an analysis of it would.
    ReferenceFrame frame;
    frame.proxy = &proxy;
    ImageModApplyContext context;
    context.referenceFrame = &frame;
    ImageModAutoEnhance lazy;
    FlexImageFloat a(0, 0, 3);
    a.copyFrom(photo, true);
    lazy.apply(&a, &context);
    ASSERT_TRUE(lazy.hasMeasurement());
    FlexImageFloat proxyCopy(0, 0, 3);
    proxyCopy.copyFrom(proxy, true);
    ImageModAutoEnhance analysed;
    analysed.analyze(&proxyCopy, nullptr);
    FlexImageFloat b(0, 0, 3);
    b.copyFrom(photo, true);
    analysed.apply(&b, nullptr);
    EXPECT_EQ(meanAbsDifference(a, b), 0.0f);

    // Regions of one picture get the same correction: the measurement belongs to the whole.
    FlexImageFloat left(100, 120, 3);
    for (int32_t y = 0; y < 120; ++y)
        std::copy(photo.row(y), photo.row(y) + 300, left.row(y));
    analysed.apply(&left, nullptr);
    for (int32_t y = 0; y < 120; y += 5)
        for (int32_t i = 0; i < 300; ++i)
            ASSERT_EQ(left.row(y)[i], b.row(y)[i]);
}
