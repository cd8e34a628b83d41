#include "core/ImageModVariableDataChoice.h"
#include "media/FreeTypeTextRenderer.h"
#include "mods/ImageModTextOverlay.h"
#include "mods/TextRendering.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace {

class TextOverlayTest : public ::testing::Test {
protected:
    void SetUp() override { installFreeTypeTextRenderer(); }
    void TearDown() override { setTextRenderer(nullptr); }
};

bool rasterFor(const std::string& text, const std::string& family, float size, TextRaster& r, int32_t align = 1)
{
    return renderText({ text, family, size, align }, r);
}

int64_t inkSum(const FlexImage8& c)
{
    int64_t sum = 0;
    for (int64_t i = 0; i < c.sampleCount(); ++i)
        sum += c.data[i];
    return sum;
}

void fillGrey(FlexImageFloat& img, int32_t w, int32_t h, float v)
{
    img.resize(w, h, 3);
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        img.data[i] = v;
}

} // namespace

TEST_F(TextOverlayTest, RenderedStringStaysInsideItsMeasuredBox)
{
    ImageModTextOverlay t;
    t.setText("Quick jumps, Vantrel!");
    t.variableAt(ImageModTextOverlay::sizeIndex)->setFloatValue(0.1f);
    t.variableAt(ImageModTextOverlay::shadowIndex)->setFloatValue(0.0f);
    FlexImageFloat img;
    fillGrey(img, 800, 400, 0.0f);
    ImageModTextOverlay::Layout lay;
    ASSERT_TRUE(t.layout(img.width, img.height, nullptr, lay));
    const TextRaster& r = *lay.raster;
    // Box of advances and lines: about the em size tall, and within the raster.
    EXPECT_GE(r.layoutHeight, 40);
    EXPECT_LE(r.layoutHeight, 52);
    EXPECT_GT(r.layoutWidth, 300);
    EXPECT_GE(r.layoutX, 0);
    EXPECT_LE(r.layoutX + r.layoutWidth, r.coverage.width);
    t.apply(&img, nullptr);
    int32_t inside = 0;
    for (int32_t y = 0; y < img.height; ++y)
        for (int32_t x = 0; x < img.width; ++x) {
            const bool lit = img.row(y)[3 * x] > 0.0f;
            const bool inBox = x >= lay.x && x < lay.x + r.coverage.width && y >= lay.y && y < lay.y + r.coverage.height;
            if (lit) {
                ASSERT_TRUE(inBox) << x << " " << y;
                ++inside;
            }
        }
    // Text covers a fair share of its box, and anti-aliasing leaves partial pixels.
    const int32_t boxArea = r.coverage.width * r.coverage.height;
    EXPECT_GT(inside, boxArea / 10);
    EXPECT_LT(inside, boxArea);
    int32_t partial = 0;
    for (int64_t i = 0; i < r.coverage.sampleCount(); ++i)
        partial += r.coverage.data[i] > 0 && r.coverage.data[i] < 255;
    EXPECT_GT(partial, 100);
    // Centred, low in the picture by default.
    EXPECT_NEAR(lay.x + r.layoutX + r.layoutWidth * 0.5, 400.0, 1.0);
    EXPECT_NEAR(lay.y + r.layoutY + r.layoutHeight * 0.5, 200.0 + 0.38 * 400.0, 1.0);
}

TEST_F(TextOverlayTest, MissingFontFallsBackToVera)
{
    EXPECT_TRUE(findFontFile("No Such Family 123").empty());
    TextRaster missing, vera;
    ASSERT_TRUE(rasterFor("Fallback", "No Such Family 123", 48.0f, missing));
    EXPECT_TRUE(missing.fellBack);
    ASSERT_TRUE(rasterFor("Fallback", "Bitstream Vera Sans", 48.0f, vera));
    EXPECT_FALSE(vera.fellBack);
    ASSERT_EQ(missing.coverage.width, vera.coverage.width);
    ASSERT_EQ(missing.coverage.height, vera.coverage.height);
    EXPECT_EQ(std::memcmp(missing.coverage.data, vera.coverage.data, size_t(vera.coverage.sampleCount())), 0);
}

TEST_F(TextOverlayTest, KerningAccentsAndLines)
{
    TextRaster av, a, v;
    ASSERT_TRUE(rasterFor("AV", "Bitstream Vera Sans", 100.0f, av));
    ASSERT_TRUE(rasterFor("A", "Bitstream Vera Sans", 100.0f, a));
    ASSERT_TRUE(rasterFor("V", "Bitstream Vera Sans", 100.0f, v));
    // The pair is set closer than the two letters side by side.
    EXPECT_LT(av.layoutWidth, a.layoutWidth + v.layoutWidth - 2);

    TextRaster plain, accented;
    ASSERT_TRUE(rasterFor("e", "Bitstream Vera Sans", 60.0f, plain));
    ASSERT_TRUE(rasterFor("é", "Bitstream Vera Sans", 60.0f, accented));
    EXPECT_GT(inkSum(accented.coverage), inkSum(plain.coverage));

    // Two lines are a line height apart; right alignment ends both lines together.
    TextRaster one, two;
    ASSERT_TRUE(rasterFor("wide line", "Bitstream Vera Sans", 40.0f, one, 2));
    ASSERT_TRUE(rasterFor("wide line\nx", "Bitstream Vera Sans", 40.0f, two, 2));
    EXPECT_EQ(two.layoutWidth, one.layoutWidth);
    EXPECT_GE(two.layoutHeight, one.layoutHeight + 40);
    // The short second line's ink sits at the right end.
    int32_t leftmost = two.coverage.width;
    for (int32_t y = two.layoutY + one.layoutHeight + 2; y < two.coverage.height; ++y)
        for (int32_t x = 0; x < two.coverage.width; ++x)
            if (two.coverage.row(y)[x] > 0)
                leftmost = std::min(leftmost, x);
    EXPECT_GT(leftmost, two.layoutX + two.layoutWidth * 3 / 4);
}

TEST_F(TextOverlayTest, CjkWhereAFontHasIt)
{
    // Characters no font has are drawn as the face's empty box; real glyphs differ from that.
    TextRaster r, missing;
    ASSERT_TRUE(rasterFor("写真", "Bitstream Vera Sans", 64.0f, r));
    ASSERT_TRUE(rasterFor("\uE000\uE001", "Bitstream Vera Sans", 64.0f, missing));
    if (r.coverage.width == missing.coverage.width && r.coverage.height == missing.coverage.height
        && std::memcmp(r.coverage.data, missing.coverage.data, size_t(r.coverage.sampleCount())) == 0)
        GTEST_SKIP() << "no installed font has these characters";
    EXPECT_GT(r.layoutWidth, 100);
}

TEST_F(TextOverlayTest, QuarterPreviewMatchesTheFullSave)
{
    ImageModTextOverlay t;
    t.setText("Preview and save");
    t.variableAt(ImageModTextOverlay::sizeIndex)->setFloatValue(0.15f);
    FlexImageFloat full, quarter;
    fillGrey(full, 1200, 800, 90.0f);
    fillGrey(quarter, 300, 200, 90.0f);
    ReferenceFrame fullFrame, quarterFrame;
    fullFrame.imageWidth = 1200;
    fullFrame.imageHeight = 800;
    quarterFrame.imageWidth = 300;
    quarterFrame.imageHeight = 200;
    quarterFrame.scale = 4.0f;
    ImageModApplyContext fc, qc;
    fc.referenceFrame = &fullFrame;
    qc.referenceFrame = &quarterFrame;
    t.apply(&full, &fc);
    auto clone = t.newInstance();
    clone->copyFrom(t);
    clone->apply(&quarter, &qc);
    double se = 0.0;
    for (int32_t y = 0; y < 200; ++y)
        for (int32_t x = 0; x < 300; ++x)
            for (int32_t c = 0; c < 3; ++c) {
                double sum = 0.0;
                for (int32_t j = 0; j < 4; ++j)
                    for (int32_t i = 0; i < 4; ++i)
                        sum += full.row(4 * y + j)[3 * (4 * x + i) + c];
                const double d = sum / 16.0 - quarter.row(y)[3 * x + c];
                se += d * d;
            }
    const double psnr = 10.0 * std::log10(255.0 * 255.0 / (se / (300.0 * 200.0 * 3.0)));
    EXPECT_GE(psnr, 30.0);
}

TEST_F(TextOverlayTest, NoRendererOrNoTextLeavesTheImage)
{
    ImageModTextOverlay t;
    FlexImageFloat img;
    fillGrey(img, 200, 100, 50.0f);
    t.setText("");
    t.apply(&img, nullptr);
    setTextRenderer(nullptr);
    t.setText("Something");
    t.apply(&img, nullptr);
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        ASSERT_EQ(img.data[i], 50.0f);
}
