#include "LutTestSupport.h"

#include "core/ImageModVariableDataFile.h"
#include "core/ModExtraFactories.h"
#include "mods/ImageModLUT3D.h"
#include "tests/mods/CurveTestHelpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

std::shared_ptr<ImageModLUT3DTable> tableFrom(const std::string& text)
{
    auto t = std::make_shared<ImageModLUT3DTable>();
    std::string message;
    EXPECT_TRUE(parseCubeText(text, *t, message)) << message;
    return t;
}

std::unique_ptr<ImageModLUT3D> modWith(const std::string& text, float amount = 100.0f)
{
    auto mod = std::make_unique<ImageModLUT3D>();
    mod->setTable(tableFrom(text));
    mod->variables[0]->setFloatValue(amount);
    return mod;
}

// Independent reference: trilinear interpolation straight from the rows of fn on the lattice,
// in double, with the input clamped to the unit cube.
void referenceTrilinear(int n, const LutFunction& fn, double r, double g, double b, double out[3])
{
    auto lattice = [&](int i, int j, int k, int c) {
        double v[3];
        fn(double(i) / (n - 1), double(j) / (n - 1), double(k) / (n - 1), v);
        return double(float(v[c]));
    };
    const double in[3] = {r, g, b};
    int lo[3];
    double f[3];
    for (int c = 0; c < 3; ++c) {
        const double x = std::clamp(in[c] / 255.0, 0.0, 1.0) * (n - 1);
        lo[c] = std::min(int(x), n - 2);
        f[c] = x - lo[c];
    }
    for (int c = 0; c < 3; ++c) {
        double sum = 0.0;
        for (int corner = 0; corner < 8; ++corner) {
            const int di = corner & 1, dj = (corner >> 1) & 1, dk = (corner >> 2) & 1;
            const double w = (di ? f[0] : 1 - f[0]) * (dj ? f[1] : 1 - f[1]) * (dk ? f[2] : 1 - f[2]);
            sum += w * lattice(lo[0] + di, lo[1] + dj, lo[2] + dk, c);
        }
        out[c] = sum * 255.0;
    }
}

void scrambleFn(double r, double g, double b, double out[3])
{
    // Arbitrary, far from smooth, so a wrong corner or weight shows.
    out[0] = std::fmod(r * 7.3 + g * 2.1 + b * 0.7, 1.0);
    out[1] = std::fmod(r * 0.3 + g * 5.9 + b * 3.3, 1.0);
    out[2] = std::fmod(r * 4.1 + g * 0.2 + b * 8.8, 1.0) * 1.2 - 0.1;
}

} // namespace

TEST(ImageModLUT3D, StartsWithoutATableAndFilesFindItByName)
{
    ImageModLUT3D mod;
    ASSERT_NE(mod.fileAt(1), nullptr);
    EXPECT_EQ(mod.table(), nullptr);
    // Full Amount must scale to exactly 1, or lattice outputs would not be exact.
    EXPECT_EQ(mod.floatValue(0) * 0.01f, 1.0f);

    // Not in the panel, but the filter reader finds it by name.
    const ImageMod* factory = findExtraModFactory("LUT");
    ASSERT_NE(factory, nullptr);
    EXPECT_NE(dynamic_cast<const ImageModLUT3D*>(factory), nullptr);
    EXPECT_EQ(findExtraModFactory("3D LUT"), nullptr);
    EXPECT_EQ(findExtraModFactory("Exposure"), nullptr);
}

TEST(ImageModLUT3D, LatticePointsAreExact)
{
    // Sizes whose lattice step 255 / (N - 1) is a float: 33 (7.96875), 16 (17), 2 (255).
    for (int n : {2, 16, 33}) {
        const std::string text = cubeText(n, scrambleFn);
        auto mod = modWith(text);
        const ImageModLUT3DTable* t = mod->table();
        const float step = 255.0f / float(n - 1);
        FlexImageFloat img(n, n, 3);
        for (int k = 0; k < n; ++k) {
            for (int j = 0; j < n; ++j)
                for (int i = 0; i < n; ++i) {
                    float* p = img.row(j) + 3 * i;
                    p[0] = float(i) * step;
                    p[1] = float(j) * step;
                    p[2] = float(k) * step;
                }
            mod->apply(&img, nullptr);
            for (int j = 0; j < n; ++j)
                for (int i = 0; i < n; ++i)
                    for (int c = 0; c < 3; ++c)
                        ASSERT_EQ(img.row(j)[3 * i + c], t->slices[size_t(k)]->row(j)[3 * i + c])
                            << "n " << n << " at " << i << "," << j << "," << k;
        }
    }
}

TEST(ImageModLUT3D, RandomPixelsMatchAnIndependentTrilinearReference)
{
    for (int n : {2, 5, 16, 33}) {
        auto mod = modWith(cubeText(n, scrambleFn));
        FlexImageFloat img(97, 31, 3);
        fillRandom(img, 100u + uint32_t(n), -20.0f, 275.0f); // outside 0..255 the table's edge holds
        FlexImageFloat before(0, 0, 3);
        before.copyFrom(img, true);
        mod->apply(&img, nullptr);
        for (int64_t p = 0; p < int64_t(img.width) * img.height; ++p) {
            const float* in = before.data + 3 * p;
            double ref[3];
            referenceTrilinear(n, scrambleFn, in[0], in[1], in[2], ref);
            for (int c = 0; c < 3; ++c)
                ASSERT_NEAR(img.data[3 * p + c], ref[c], 2e-3) << "n " << n << " pixel " << p;
        }
    }
}

TEST(ImageModLUT3D, SizeTwoCellAndTheTopEdge)
{
    // Value = r + 2g + 4b over 7, so every corner differs.
    auto mod = modWith(cubeText(2, [](double r, double g, double b, double out[3]) {
        out[0] = (r + 2 * g + 4 * b) / 7.0;
        out[1] = r;
        out[2] = 1.0 - b;
    }));
    FlexImageFloat img(3, 1, 3);
    const float in[9] = {127.5f, 127.5f, 127.5f, 255.0f, 255.0f, 255.0f, 255.0f, 0.0f, 63.75f};
    std::copy(in, in + 9, img.data);
    mod->apply(&img, nullptr);
    EXPECT_NEAR(img.data[0], 127.5f, 1e-4); // centre: mean of all eight corners
    EXPECT_NEAR(img.data[2], 127.5f, 1e-4);
    EXPECT_PIXEL_NEAR(img.data + 3, 255.0f, 255.0f, 0.0f, 0); // 255 reads the last lattice point with fraction 1
    EXPECT_NEAR(img.data[6], (1.0f + 4.0f * 0.25f) / 7.0f * 255.0f, 1e-4);
    EXPECT_NEAR(img.data[8], 0.75f * 255.0f, 1e-4);
}

TEST(ImageModLUT3D, DomainRescalesTheInput)
{
    // The table maps its own lattice coordinate to the output, so the output shows where an input
    // landed: (in / 255 - min) / (max - min), held to 0..1.
    const std::string header = "DOMAIN_MIN 0.2 0 -1\nDOMAIN_MAX 0.6 0.5 1\n";
    auto mod = modWith(cubeText(9, identityFn, header));
    FlexImageFloat img(4, 1, 3);
    const float in[12] = {51.0f, 0.0f, 0.0f, 102.0f, 63.75f, 127.5f, 153.0f, 127.5f, 255.0f, 255.0f, 200.0f, 12.75f};
    std::copy(in, in + 12, img.data);
    mod->apply(&img, nullptr);
    const double lo[3] = {0.2, 0.0, -1.0}, hi[3] = {0.6, 0.5, 1.0};
    for (int p = 0; p < 4; ++p)
        for (int c = 0; c < 3; ++c) {
            const double expected = std::clamp((in[3 * p + c] / 255.0 - lo[c]) / (hi[c] - lo[c]), 0.0, 1.0) * 255.0;
            EXPECT_NEAR(img.data[3 * p + c], expected, 1e-3) << p << "," << c;
        }
}

TEST(ImageModLUT3D, OneDimensionalTableActsPerChannel)
{
    // Red squared, green inverted, blue a step at the middle entry.
    std::string text = "LUT_1D_SIZE 5\n";
    for (int i = 0; i < 5; ++i) {
        const double x = i / 4.0;
        text += std::to_string(x * x) + " " + std::to_string(1.0 - x) + " " + (i >= 2 ? "1" : "0") + "\n";
    }
    auto mod = modWith(text);
    FlexImage8 img8(2, 1, 4);
    const uint8_t in8[8] = {255, 0, 0, 9, 51, 100, 127, 200};
    std::copy(in8, in8 + 8, img8.data);
    FlexImageFloat img(2, 1, 4);
    std::copy(in8, in8 + 8, img.data);
    mod->apply(&img, nullptr);
    mod->apply(&img8, nullptr);
    EXPECT_PIXEL_NEAR(img.data, 255.0f, 255.0f, 0.0f, 0);
    EXPECT_EQ(img.data[3], 9.0f); // alpha untouched
    // 51 is 0.8 of the first step: 0.8 * 0.0625 * 255.
    EXPECT_NEAR(img.data[4], 0.05f * 255.0f, 1e-4);
    EXPECT_NEAR(img.data[5], (1.0f - 100.0f / 255.0f) * 255.0f, 1e-3);
    EXPECT_NEAR(img.data[6], (127.0f / 63.75f - 1.0f) * 255.0f, 1e-3);
    EXPECT_EQ(img.data[7], 200.0f);
    for (int i = 0; i < 8; ++i) // 8-bit stores the truncation of the same values
        EXPECT_EQ(int(img8.data[i]), int(img.data[i])) << i;
}

TEST(ImageModLUT3D, AmountMaskAndEightBitClamp)
{
    const std::string invert = cubeText(3, [](double r, double g, double b, double out[3]) {
        out[0] = 1.0 - r;
        out[1] = 1.0 - g;
        out[2] = 1.3 * b - 0.15; // leaves 0..1 at both ends
    });
    // Amount 50: halfway between pixel and table.
    auto half = modWith(invert, 50.0f);
    FlexImageFloat img(4, 2, 3);
    fillImage3(img, 40.0f, 100.0f, 255.0f);
    half->apply(&img, nullptr);
    EXPECT_NEAR(img.data[0], 127.5f, 1e-4);
    EXPECT_NEAR(img.data[1], 127.5f, 1e-4);
    EXPECT_NEAR(img.data[2], (255.0f + 1.15f * 255.0f) * 0.5f, 1e-3);

    // Amount 0 and a mask that is 0 leave the image exactly as it was.
    auto none = modWith(invert, 0.0f);
    fillImage3(img, 40.0f, 100.0f, 250.0f);
    none->apply(&img, nullptr);
    EXPECT_EQ(img.data[0], 40.0f);

    auto full = modWith(invert);
    TestSelectorLeftHalf mask;
    ImageModApplyContext context;
    context.selector = &mask;
    fillImage3(img, 40.0f, 100.0f, 250.0f);
    full->apply(&img, &context);
    EXPECT_NEAR(img.row(1)[0], 215.0f, 1e-3);         // left half: inverted
    EXPECT_EQ(img.row(1)[3 * 3 + 0], 40.0f);          // right half: untouched
    EXPECT_EQ(img.row(0)[3 * 2 + 1], 100.0f);

    // 8-bit: above 255 and below 0 clamp, fractions truncate.
    FlexImage8 img8(2, 1, 3);
    const uint8_t in8[6] = {40, 100, 255, 0, 0, 0};
    std::copy(in8, in8 + 6, img8.data);
    full->apply(&img8, nullptr);
    EXPECT_PIXEL_NEAR(img8.data, 215, 155, 255, 0);
    EXPECT_EQ(img8.data[5], 0);
    FlexImage8 masked8(4, 1, 3);
    std::fill(masked8.data, masked8.data + 12, uint8_t(40));
    full->apply(&masked8, &context);
    EXPECT_EQ(masked8.data[0], 215);
    EXPECT_EQ(masked8.data[9], 40);

    // No table: nothing happens; fewer than three channels: nothing happens.
    ImageModLUT3D empty;
    fillImage3(img, 1.0f, 2.0f, 3.0f);
    empty.apply(&img, nullptr);
    EXPECT_EQ(img.data[2], 3.0f);
    FlexImageFloat grey(2, 2, 1);
    std::fill(grey.data, grey.data + 4, 9.0f);
    full->apply(&grey, nullptr);
    EXPECT_EQ(grey.data[3], 9.0f);
    FlexImageFloat nothing(0, 0, 3);
    full->apply(&nothing, nullptr);
}

TEST(ImageModLUT3D, FileVariableLoadsCopiesAndReleases)
{
    LutTempDir dir;
    const std::string good = dir.write("invert.cube", cubeText(2, [](double r, double g, double b, double out[3]) {
        out[0] = 1 - r;
        out[1] = 1 - g;
        out[2] = 1 - b;
    }));
    const std::string bad = dir.write("bad.cube", "LUT_3D_SIZE 2\n0 0 0\n");

    ImageModLUT3D mod;
    mod.variables[1]->asFile()->path = good;
    mod.variableChanged(0); // not the file: nothing read
    EXPECT_EQ(mod.table(), nullptr);
    mod.variableChanged(1);
    ASSERT_NE(mod.table(), nullptr);
    EXPECT_TRUE(mod.loadMessage().empty());
    const ImageModLUT3DTable* first = mod.table();
    mod.variableChanged(1); // same path: the table stays
    EXPECT_EQ(mod.table(), first);

    // A clone shares the table without reading the disk and applies the same.
    std::unique_ptr<ImageMod> clone = cloneMod(mod);
    auto* lutClone = dynamic_cast<ImageModLUT3D*>(clone.get());
    ASSERT_NE(lutClone, nullptr);
    EXPECT_EQ(lutClone->table(), first);
    EXPECT_TRUE(lutClone->isEqual(mod));
    FlexImageFloat img(2, 1, 3);
    fillImage3(img, 10.0f, 20.0f, 30.0f);
    clone->apply(&img, nullptr);
    EXPECT_NEAR(img.data[0], 245.0f, 1e-4);

    // A bad file leaves no table, and a message for the caller.
    mod.variables[1]->asFile()->path = bad;
    mod.variableChanged(1);
    EXPECT_EQ(mod.table(), nullptr);
    EXPECT_FALSE(mod.loadMessage().empty());
    fillImage3(img, 10.0f, 20.0f, 30.0f);
    mod.apply(&img, nullptr);
    EXPECT_EQ(img.data[0], 10.0f);
    EXPECT_NE(lutClone->table(), nullptr); // the clone keeps its own reference

    // releaseResources drops the table; loadResources reads the current path again.
    lutClone->releaseResources();
    EXPECT_EQ(lutClone->table(), nullptr);
    lutClone->loadResources();
    ASSERT_NE(lutClone->table(), nullptr);
    fillImage3(img, 10.0f, 20.0f, 30.0f);
    clone->apply(&img, nullptr);
    EXPECT_NEAR(img.data[2], 225.0f, 1e-4);

    // An empty path (or the old files' lone NUL) means no table and no message.
    mod.variables[1]->asFile()->path = std::string(1, '\0');
    mod.variableChanged(1);
    EXPECT_EQ(mod.table(), nullptr);
    EXPECT_TRUE(mod.loadMessage().empty());
}

TEST(ImageModLUT3D, TestdataTablesApply)
{
    const std::string base = std::string(VANTREL_TESTDATA) + "/";
    if (!std::filesystem::exists(base + "grayscale_32.cube"))
        GTEST_SKIP() << "test data is absent";
    FlexImageFloat img(40, 20, 3);
    fillRandom(img, 5u);
    FlexImageFloat before(0, 0, 3);
    before.copyFrom(img, true);

    ImageModLUT3D grey;
    grey.variables[1]->asFile()->path = base + "grayscale_32.cube";
    grey.loadResources();
    ASSERT_NE(grey.table(), nullptr) << grey.loadMessage();
    grey.apply(&img, nullptr);
    for (int64_t p = 0; p < 40 * 20; ++p) {
        EXPECT_NEAR(img.data[3 * p], img.data[3 * p + 1], 0.01f);
        EXPECT_NEAR(img.data[3 * p], img.data[3 * p + 2], 0.01f);
    }

    ImageModLUT3D identity;
    identity.variables[1]->asFile()->path = base + "identity_1d_32.cube";
    identity.loadResources();
    ASSERT_NE(identity.table(), nullptr) << identity.loadMessage();
    img.copyFrom(before, true);
    identity.apply(&img, nullptr);
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        ASSERT_NEAR(img.data[i], before.data[i], 0.01f); // the file's entries carry six digits

    // Values below 0 in the table clamp at 8 bits.
    ImageModLUT3D teal;
    teal.variables[1]->asFile()->path = base + "TEAL_ORANGE_16.cube";
    teal.loadResources();
    ASSERT_NE(teal.table(), nullptr) << teal.loadMessage();
    FlexImage8 black(1, 1, 3);
    std::fill(black.data, black.data + 3, uint8_t(0));
    teal.apply(&black, nullptr);
    EXPECT_EQ(black.data[0], 0);
    FlexImageFloat blackF(1, 1, 3);
    std::fill(blackF.data, blackF.data + 3, 0.0f);
    teal.apply(&blackF, nullptr);
    EXPECT_LT(blackF.data[0], 0.0f);
}
