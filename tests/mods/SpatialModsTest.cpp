#include "core/ImageModVariableDataPixel.h"
#include "mods/ImageModBlur.h"
#include "mods/ImageModDynamics.h"
#include "mods/ImageModRadialBlur.h"
#include "mods/ImageModSharpen.h"
#include "mods/ImageModVignette.h"
#include "mods/SpatialTestSupport.h"

#include <gtest/gtest.h>

using namespace spatialtest;

#include <algorithm>
#include <vector>

namespace
{

// Deterministic pseudo-random test picture.
template <typename Sample>
void fillNoise(FlexImageT<Sample>& img, int32_t w, int32_t h, int32_t ch, uint32_t seed = 1)
{
    img.resize(w, h, ch);
    uint32_t s = seed;
    for (int64_t i = 0; i < img.sampleCount(); ++i) {
        s = s * 1664525u + 1013904223u;
        img.data[i] = Sample(float((s >> 8) % 256u));
    }
}

// Direct 2-D convolution with edge repeat, in double: the reference the fast paths must meet.
std::vector<double> convolveReference(
    const FlexImageFloat& img, const std::vector<double>& kernel, int32_t reach)
{
    const int32_t w = img.width, h = img.height, ch = img.channels, side = 2 * reach + 1;
    std::vector<double> out(size_t(img.sampleCount()));
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x)
            for (int32_t c = 0; c < ch; ++c) {
                double s = 0.0;
                for (int32_t j = 0; j < side; ++j)
                    for (int32_t i = 0; i < side; ++i) {
                        const int32_t sx = std::clamp(x - reach + i, 0, w - 1);
                        const int32_t sy = std::clamp(y - reach + j, 0, h - 1);
                        s += kernel[size_t(j * side + i)] * img.row(sy)[sx * ch + c];
                    }
                out[size_t((y * w + x) * ch + c)] = std::clamp(s, 0.0, 255.0);
            }
    return out;
}

// The kernels written out from their definitions, normalised.
std::vector<double> referenceKernel(int32_t method, double r, int32_t reach)
{
    const int32_t side = 2 * reach + 1;
    std::vector<double> k(size_t(side * side));
    std::vector<double> line(static_cast<size_t>(side));
    for (int32_t i = 0; i < side; ++i) {
        const double d = std::abs(i - reach);
        if (method == 0) {
            const double t = 1.0 - d / r;
            line[size_t(i)] = d / r > 1.0 ? 0.0
                : t < 0.5                 ? 0.5 * (2 * t) * (2 * t)
                                          : 1.0 - 0.5 * (2 - 2 * t) * (2 - 2 * t);
        } else {
            line[size_t(i)] = d < r - 1 ? 1.0 : d < r ? r - d : 0.0;
        }
    }
    double sum = 0.0;
    for (int32_t j = 0; j < side; ++j)
        for (int32_t i = 0; i < side; ++i) {
            double v;
            if (method == 2) {
                const double d = std::sqrt(double((i - reach) * (i - reach) + (j - reach) * (j - reach)));
                v = d < r - 1 ? 1.0 : d < r ? r - d : 0.0;
            } else {
                v = line[size_t(i)] * line[size_t(j)];
            }
            k[size_t(j * side + i)] = v;
            sum += v;
        }
    for (double& v : k)
        v /= sum;
    return k;
}

// Largest distance of any sample from the reference.
template <typename Sample>
double worstOff(const FlexImageT<Sample>& img, const std::vector<double>& ref)
{
    double worst = 0.0;
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        worst = std::max(worst, std::fabs(double(img.data[i]) - ref[size_t(i)]));
    return worst;
}

void fillFlat(FlexImageFloat& img, int32_t w, int32_t h, float level)
{
    img.resize(w, h, 3);
    std::fill(img.data, img.data + img.sampleCount(), level);
}

} // namespace

TEST(SpatialBlur, RadiusReachAndPadding)
{
    // Amount 1 on a frame 1000 wide: r = 0.0001 * 0.03 * 1000 + 1 = 1.003, three taps.
    EXPECT_NEAR(ImageModBlur::radiusFor(1.0f, 0, 1000, 300), 1.003f, 1e-6f);
    EXPECT_NEAR(ImageModBlur::radiusFor(50.0f, 1, 2400, 1600), 0.25f * 0.02f * 2400.0f + 1.0f, 1e-4f);
    ImageModBlur blur;
    EXPECT_EQ(blur.paddingNeeded(1000, 300, 1.0f), 0); // Amount 0
    setFloat(blur, 0, 1.0f);
    EXPECT_EQ(blur.paddingNeeded(1000, 300, 1.0f), 1);
    setFloat(blur, 0, 50.0f);
    EXPECT_EQ(blur.paddingNeeded(2400, 1600, 1.0f), 18); // r = 19
    // A quarter preview of the same frame reaches a quarter as far.
    EXPECT_EQ(blur.paddingNeeded(600, 400, 4.0f), 5); // r = 5.5
}

TEST(SpatialBlur, EveryMethodMatchesDirectConvolutionWithEdgeRepeat)
{
    // The last row is a circle over 75 rows of 630 samples: more than one row job, each with its own
    // ring of padded rows and prefixes. No seam between jobs may show.
    const struct {
        int32_t method, w, h;
        uint32_t seed;
        float r;
    } cases[] = { { 0, 23, 17, 1, 4.6f }, { 1, 23, 17, 1, 4.6f }, { 2, 23, 17, 1, 4.6f }, { 2, 210, 75, 5, 6.3f } };
    for (const auto& c : cases) {
        FlexImageFloat src;
        fillNoise(src, c.w, c.h, 3, c.seed);
        const int32_t reach = int32_t(std::ceil(c.r - 1.0f));
        const std::vector<double> ref = convolveReference(src, referenceKernel(c.method, c.r, reach), reach);
        FlexImageFloat img;
        img.copyFrom(src, true);
        ImageModBlur::blurWithRadius(&img, c.r, c.method, 1.0f, nullptr);
        EXPECT_LT(worstOff(img, ref), 2e-3) << "method " << c.method << " width " << c.w;
        // The 8-bit path truncates each pass, so it stays within two levels of the exact result.
        FlexImage8 img8;
        img8.copyFromOtherDepth(src, true);
        ImageModBlur::blurWithRadius(&img8, c.r, c.method, 1.0f, nullptr);
        EXPECT_LE(worstOff(img8, ref), 2.0) << "method " << c.method << " width " << c.w;
    }
}

TEST(SpatialBlur, WideGaussianAsThreeBoxesFollowsTheConeTaps)
{
    // From reach 12 on the cone runs as three running windows; it must stay close to the cone's own
    // taps, at the edges (repeat) as well as inside, at both depths.
    for (float r : {13.5f, 30.0f}) {
        const int32_t reach = int32_t(std::ceil(r - 1.0f));
        FlexImageFloat noise;
        fillNoise(noise, 70, 52, 3, 7);
        FlexImageFloat img;
        img.copyFrom(noise, true);
        ImageModBlur::blurWithRadius(&img, r, 0, 1.0f, nullptr);
        const std::vector<double> ref = convolveReference(noise, referenceKernel(0, r, reach), reach);
        double worst = 0.0, sumSq = 0.0;
        for (int64_t i = 0; i < img.sampleCount(); ++i) {
            const double d = double(img.data[i]) - ref[size_t(i)];
            worst = std::max(worst, std::fabs(d));
            sumSq += d * d;
        }
        // Measured: 0.08 of a level at worst for r 13.5 and 0.02 for r 30 on this noise, a few
        // hundredths on average; the bounds leave room for rounding, not for a wrong box width.
        EXPECT_LT(worst, 0.15) << "r " << r;
        EXPECT_LT(std::sqrt(sumSq / double(img.sampleCount())), 0.03) << "r " << r;

        FlexImage8 img8;
        img8.copyFromOtherDepth(noise, true);
        ImageModBlur::blurWithRadius(&img8, r, 0, 1.0f, nullptr);
        EXPECT_LE(worstOff(img8, ref), 2.0) << "r " << r;
    }
}

TEST(SpatialBlur, MixBlendsWithTheOriginal)
{
    FlexImageFloat src, full, half;
    fillNoise(src, 30, 20, 3);
    full.copyFrom(src, true);
    half.copyFrom(src, true);
    ImageModBlur::blurWithRadius(&full, 3.0f, 0, 1.0f, nullptr);
    ImageModBlur::blurWithRadius(&half, 3.0f, 0, 0.25f, nullptr);
    for (int64_t i = 0; i < src.sampleCount(); ++i)
        ASSERT_NEAR(half.data[i], src.data[i] * 0.75f + full.data[i] * 0.25f, 1e-3f);
}

// A bright left column must not show up on the right edge: borders repeat, they never wrap.
TEST(SpatialEdges, BordersRepeatAndNeverWrap)
{
    auto brightLeft = [](FlexImageFloat& img) {
        img.resize(40, 12, 3);
        for (int32_t y = 0; y < 12; ++y)
            for (int32_t x = 0; x < 40; ++x)
                for (int32_t c = 0; c < 3; ++c)
                    img.row(y)[x * 3 + c] = x == 0 ? 255.0f : 20.0f;
    };
    std::vector<std::unique_ptr<ImageMod>> mods;
    for (int32_t method = 0; method < 3; ++method) {
        auto blur = std::make_unique<ImageModBlur>();
        setFloat(*blur, 0, 100.0f); // r = 0.03 * 40 + 1 = 2.2 (Gaussian), 1.8 otherwise
        setChoice(*blur, 2, method);
        mods.push_back(std::move(blur));
    }
    mods.push_back(std::make_unique<ImageModSharpen>());
    for (auto& mod : mods) {
        FlexImageFloat img;
        brightLeft(img);
        mod->apply(&img, nullptr);
        for (int32_t y = 0; y < 12; ++y) {
            EXPECT_EQ(img.row(y)[39 * 3], 20.0f) << mod->name;
            EXPECT_GT(img.row(y)[0], 100.0f) << mod->name; // the edge pixel sees itself repeated
        }
        // Rows are all alike, so the top and bottom rows, which repeat, equal the middle one.
        for (int32_t x = 0; x < 40; ++x)
            EXPECT_FLOAT_EQ(img.row(0)[x * 3], img.row(6)[x * 3]) << mod->name;
    }
}

TEST(SpatialSharpen, InPlaceJobsMatchDirectConvolution)
{
    // Tall enough for several row jobs, so rows shared between jobs are read as they were before
    // any job wrote; scale 1 (3 x 3 of -1) and 0.25 (5 x 5 of -4), both depths.
    for (float scale : {1.0f, 0.25f}) {
        FlexImageFloat src;
        fillNoise(src, 37, 131, 3, 11);
        src.scale = scale;
        const int32_t reach = ImageModSharpen::kernelReach(scale);
        const int32_t side = 2 * reach + 1;
        // The pixel itself plus a times the high-pass, whose centre balances its other taps.
        const double a = 0.5 * std::sqrt(0.5); // Amount 50, version 2
        const double tap = a * ImageModSharpen::kernelTap(scale, 2); // every tap alike
        std::vector<double> kernel(size_t(side * side), tap);
        kernel[size_t(reach * side + reach)] = 1.0 - tap * double(side * side - 1);
        const std::vector<double> ref = convolveReference(src, kernel, reach);
        ImageModSharpen sharpen;
        setFloat(sharpen, 0, 50.0f);
        FlexImageFloat img;
        img.copyFrom(src, true);
        sharpen.apply(&img, nullptr);
        EXPECT_LT(worstOff(img, ref), 1e-3) << "scale " << scale;
        FlexImage8 img8;
        img8.copyFromOtherDepth(src, true);
        img8.scale = scale;
        sharpen.apply(&img8, nullptr);
        EXPECT_LT(worstOff(img8, ref), 1.0) << "scale " << scale; // truncated on the store
    }
}

TEST(SpatialSharpen, KernelWidensAndStrengthensOnSmallerScales)
{
    EXPECT_EQ(ImageModSharpen::kernelReach(1.0f), 1);
    EXPECT_EQ(ImageModSharpen::kernelTap(1.0f, 2), -1.0f); // 3 x 3, centre 8
    EXPECT_EQ(ImageModSharpen::kernelReach(0.25f), 2);
    EXPECT_EQ(ImageModSharpen::kernelTap(0.25f, 2), -4.0f);
    EXPECT_EQ(ImageModSharpen::kernelTap(0.25f, 1), -1.0f);
    EXPECT_EQ(ImageModSharpen::kernelReach(4.0f), 1);

    // One bright pixel on grey at scale 1: the eight-neighbour high-pass, amount 0.5 * sqrt(0.5).
    auto spot = [](FlexImageFloat& img, float scale) {
        fillFlat(img, 9, 9, 50.0f);
        for (int32_t c = 0; c < 3; ++c)
            img.row(4)[4 * 3 + c] = 60.0f;
        img.scale = scale;
    };
    FlexImageFloat img;
    spot(img, 1.0f);
    ImageModSharpen sharpen;
    sharpen.apply(&img, nullptr);
    const float a = 0.5f * std::sqrt(0.5f);
    EXPECT_NEAR(img.row(4)[4 * 3], 60.0f + 80.0f * a, 1e-4f);
    EXPECT_NEAR(img.row(3)[3 * 3], 50.0f - 10.0f * a, 1e-4f);
    EXPECT_EQ(img.row(4)[6 * 3], 50.0f);

    // Version 1 at scale 0.25: a 5 x 5 kernel of -1 with centre 24, amount 0.5.
    spot(img, 0.25f);
    sharpen.version = 1;
    sharpen.apply(&img, nullptr);
    EXPECT_NEAR(img.row(4)[4 * 3], 60.0f + 240.0f * 0.5f, 1e-4f);
    EXPECT_NEAR(img.row(2)[6 * 3], 50.0f - 10.0f * 0.5f, 1e-4f);
    EXPECT_EQ(img.row(4)[7 * 3], 50.0f);
}

TEST(SpatialVignette, CentreCornersAndHardStep)
{
    for (float sharpness : { 50.0f, 100.0f }) {
        ImageModVignette vignette;
        setFloat(vignette, 1, sharpness);
        FlexImageFloat img;
        fillFlat(img, 101, 61, 200.0f);
        vignette.apply(&img, nullptr);
        EXPECT_TRUE(allFinite(img));
        EXPECT_EQ(img.row(30)[50 * 3], 200.0f);
        if (sharpness < 100.0f)
            EXPECT_LT(img.row(0)[0], 150.0f);
        else // at 100 the ramp is a hard step at f = 0.5 / 1.05: the corners (f 0.5) are black
            EXPECT_EQ(img.row(0)[0], 0.0f);

        FlexImage8 img8;
        img8.copyFromOtherDepth(sceneAt<float>(4), true);
        vignette.apply(&img8, nullptr);
        EXPECT_LT(img8.row(0)[0], sceneAt<float>(4).row(0)[0]);
    }
    // A negative Amount lightens the corners; Amount 0 does nothing.
    ImageModVignette vignette;
    setFloat(vignette, 0, -0.5f);
    FlexImageFloat img;
    img.copyFrom(sceneAt<float>(4), true);
    vignette.apply(&img, nullptr);
    EXPECT_GT(img.row(0)[0], sceneAt<float>(4).row(0)[0]);
    setFloat(vignette, 0, 0.0f);
    img.copyFrom(sceneAt<float>(4), true);
    vignette.apply(&img, nullptr);
    EXPECT_TRUE(samePixels(img, sceneAt<float>(4)));
}

TEST(SpatialVignette, CenterPointFollowsTheFrame)
{
    // The point is in document pixels: on a quarter preview with a frame it lands a quarter as far.
    ImageModVignette vignette;
    setFloat(vignette, 1, 80.0f);
    vignette.variableAt(3)->asPixel()->points[0] = { 400.0f, 200.0f };
    FlexImageFloat img;
    fillFlat(img, 200, 100, 200.0f);
    ReferenceFrame frame = wholeFrame(200, 100, 4.0f);
    ImageModApplyContext ctx;
    ctx.referenceFrame = &frame;
    vignette.apply(&img, &ctx);
    EXPECT_EQ(img.row(50)[100 * 3], 200.0f);
    EXPECT_LT(img.row(0)[199 * 3], 200.0f);
}

TEST(SpatialRadialBlur, SharpCentreBlurredEdgesAndPadding)
{
    for (int32_t method = 0; method < 3; ++method) {
        ImageModRadialBlur blur;
        setFloat(blur, 0, 1.0f);
        setChoice(blur, 3, method);
        FlexImageFloat src, img;
        fillNoise(src, 120, 80, 3);
        img.copyFrom(src, true);
        blur.apply(&img, nullptr);
        EXPECT_EQ(img.row(40)[60 * 3], src.row(40)[60 * 3]) << method;
        double before = 0.0, after = 0.0; // blur lowers the local variation in the corner
        for (int32_t x = 1; x < 10; ++x) {
            before += std::fabs(src.row(2)[x * 3] - src.row(2)[(x - 1) * 3]);
            after += std::fabs(img.row(2)[x * 3] - img.row(2)[(x - 1) * 3]);
        }
        EXPECT_LT(after, before * 0.5) << method;
        EXPECT_GT(blur.paddingNeeded(2400, 1600, 1.0f), 0);
    }
}

TEST(SpatialDynamics, LocalContrastAroundTheNeighbourhood)
{
    // Overlay lifts a dark flat field and lowers a bright one; Amount 0 does nothing.
    ImageModDynamics dyn;
    for (float level : { 60.0f, 200.0f }) {
        FlexImageFloat img;
        fillFlat(img, 40, 30, level);
        FlexImageFloat untouched;
        untouched.copyFrom(img, true);
        dyn.apply(&img, nullptr);
        EXPECT_TRUE(samePixels(img, untouched));
        setFloat(dyn, 0, 50.0f);
        dyn.apply(&img, nullptr);
        if (level < 127.5f)
            EXPECT_GT(img.row(10)[10 * 3], level);
        else
            EXPECT_LT(img.row(10)[10 * 3], level);
        setFloat(dyn, 0, 0.0f);
    }
    // Luminance: a flat field is its own average and stays; an edge gets steeper.
    setFloat(dyn, 0, 80.0f);
    setChoice(dyn, 2, 1);
    FlexImageFloat img;
    img.resize(60, 20, 3);
    for (int32_t y = 0; y < 20; ++y)
        for (int32_t x = 0; x < 60; ++x)
            for (int32_t c = 0; c < 3; ++c)
                img.row(y)[x * 3 + c] = x < 30 ? 90.0f : 150.0f;
    dyn.apply(&img, nullptr);
    EXPECT_NEAR(img.row(10)[0], 90.0f, 1e-3f);
    EXPECT_LT(img.row(10)[29 * 3], 90.0f);
    EXPECT_GT(img.row(10)[30 * 3], 150.0f);
    // The inner blur takes Radius as its Amount, also through copies.
    setFloat(dyn, 1, 70.0f);
    dyn.variableChanged(1);
    auto copy = cloneMod(dyn);
    EXPECT_EQ(static_cast<ImageModDynamics&>(*copy).innerBlur().floatValue(0), 70.0f);
}
