#include "OverlayTestSupport.h"

#include "core/ImageModVariableDataFile.h"
#include "core/ModCatalogue.h"
#include "document/core/GeometryResampling.h"
#include "mods/GeometryCalculation.h"
#include "mods/ImageModBorderFile.h"

#include <gtest/gtest.h>

#include <set>

namespace {

class BorderFileTest : public ::testing::Test {
protected:
    void SetUp() override { setOverlayImageDecoder(&overlayTestDecoder); }
    void TearDown() override { setOverlayImageDecoder(nullptr); }
};

// Output pixel (x, y) is red band art.
bool isRed(const FlexImageFloat& img, int32_t x, int32_t y)
{
    const float* p = img.row(y) + img.channels * x;
    return p[0] > 250.0f && p[1] < 5.0f && p[2] < 5.0f;
}

} // namespace

TEST_F(BorderFileTest, FourteenBuiltInsInTheBordersSection)
{
    const ModCatalogue borders = buildBordersSection();
    std::vector<std::string> names;
    for (const auto& m : borders)
        names.push_back(m->name);
    const std::vector<std::string> head { "Custom Rounded", "Custom Straight", "Fill Out", "Custom File Border" };
    ASSERT_EQ(names.size(), head.size() + 14);
    EXPECT_EQ(std::vector<std::string>(names.begin(), names.begin() + 4), head);
    std::set<std::string> unique(names.begin(), names.end());
    EXPECT_EQ(unique.size(), names.size());
    EXPECT_NE(unique.count("Paper"), 0u);
    for (const auto& m : borders) {
        EXPECT_EQ(m->kind(), 1) << m->name;
        EXPECT_EQ(m->group(), 2) << m->name;
        EXPECT_EQ(m->borderMod(), m.get()) << m->name;
        EXPECT_FALSE(m->isPlainAdjustment()) << m->name;
    }
    // A built-in is named by its label and has no variables; clones keep their style.
    const ImageMod* paper = findInCatalogue(borders, "Paper");
    ASSERT_NE(paper, nullptr);
    EXPECT_EQ(paper->displayName, "Paper");
    EXPECT_EQ(paper->variableCount(), 0);
    const ImageMod* torn = findInCatalogue(borders, "Torn Edge");
    ASSERT_NE(torn, nullptr);
    auto clone = torn->newInstance();
    EXPECT_EQ(clone->name, "Torn Edge");
    EXPECT_TRUE(clone->isEqual(*torn));
    EXPECT_FALSE(paper->isEqual(*torn));
    const ImageMod* custom = findInCatalogue(borders, "Custom File Border");
    ASSERT_NE(custom, nullptr);
    EXPECT_EQ(custom->displayName, "Image Border");
}

TEST_F(BorderFileTest, BandsFollowTheShorterSideOfThePicture)
{
    ImageModBorderFile paper(0); // 190 picture pixels a side at a 3000 px shorter side
    std::vector<ImageMod*> list { &paper };
    GeometryResult g = computeGeometry(4500, 3000, list);
    EXPECT_EQ(wh(g), wh(4500 + 380, 3000 + 380));
    g = computeGeometry(3000, 4500, list);
    EXPECT_EQ(wh(g), wh(3380, 4880));
    // Half the picture, half the bands.
    g = computeGeometry(2250, 1500, list);
    EXPECT_EQ(wh(g), wh(2250 + 190, 1500 + 190));

    ImageModBorderFile instant(1); // bottom band 458 of 3000 against 128 on the other sides
    std::vector<ImageMod*> one { &instant };
    g = computeGeometry(3000, 3000, one);
    EXPECT_EQ(wh(g), wh(3256, 3000 + 128 + 458));

    ImageModBorderFile burned(11); // lies wholly over the photo
    std::vector<ImageMod*> over { &burned };
    g = computeGeometry(3000, 2000, over);
    EXPECT_EQ(wh(g), wh(3000, 2000));
}

TEST_F(BorderFileTest, PhotoUntouchedInsideTheFrameAndArtOnTheBands)
{
    FlexImageFloat photo;
    fillSmoothPicture(photo, 600, 400);
    ImageModBorderFile paper(0); // bands equal the pieces: nothing of the art reaches the photo
    std::vector<ImageMod*> list { &paper };
    FlexImageFloat out;
    ASSERT_TRUE(geometryResample(photo, out, list, 0, 0, true));
    const int32_t band = int32_t(190.0 * 400 / 3000 + 0.5); // 25.33 -> the photo starts at 25
    ASSERT_EQ(out.width, 600 + 50);
    ASSERT_EQ(out.height, 400 + 50);
    for (int32_t y = 0; y < 400; y += 7)
        for (int32_t x = 0; x < 600; x += 5)
            for (int32_t c = 0; c < 3; ++c)
                ASSERT_EQ(out.row(y + band)[(x + band) * 3 + c], photo.row(y)[x * 3 + c]) << x << " " << y;
    // The art's red covers the bands, corners included.
    EXPECT_TRUE(isRed(out, 0, 0));
    EXPECT_TRUE(isRed(out, out.width - 1, out.height - 1));
    EXPECT_TRUE(isRed(out, out.width / 2, 10));
    EXPECT_TRUE(isRed(out, 10, out.height / 2));
    EXPECT_TRUE(isRed(out, out.width - 10, out.height / 2));
}

TEST_F(BorderFileTest, WithoutADecoderOnlyTheBackdropIsDrawn)
{
    setOverlayImageDecoder(nullptr);
    FlexImageFloat photo;
    fillSmoothPicture(photo, 300, 300);
    ImageModBorderFile film(2); // film strip: black-brown backdrop
    std::vector<ImageMod*> list { &film };
    FlexImageFloat out;
    ASSERT_TRUE(geometryResample(photo, out, list, 0, 0, true));
    EXPECT_EQ(wh(out), wh(300 + 2 * 7, 300 + 2 * 33));
    const float* p = out.row(5);
    EXPECT_EQ(p[0], 20.0f);
    EXPECT_EQ(p[1], 18.0f);
    EXPECT_EQ(p[2], 16.0f);
}

TEST_F(BorderFileTest, QuarterPreviewMatchesTheFullSaveForEveryStyle)
{
    FlexImageFloat full;
    fillSmoothPicture(full, 800, 600);
    FlexImageFloat quarter;
    boxDownBy(full, 4, quarter);
    for (int32_t i = 0; i < kBorderFileStyleCount; ++i) {
        ImageModBorderFile b(i);
        std::vector<ImageMod*> list { &b };
        FlexImageFloat saved, preview, savedSmall;
        ASSERT_TRUE(geometryResample(full, saved, list, 0, 0, true)) << b.name;
        ASSERT_TRUE(geometryResample(quarter, preview, list, 0, 0, true)) << b.name;
        boxDownBy(saved, 4, savedSmall);
        // The preview may be a pixel larger where the quarter size rounds up.
        ASSERT_LE(std::abs(preview.width - savedSmall.width), 1) << b.name;
        ASSERT_LE(std::abs(preview.height - savedSmall.height), 1) << b.name;
        FlexImageFloat a, c;
        const int32_t w = std::min(preview.width, savedSmall.width);
        const int32_t h = std::min(preview.height, savedSmall.height);
        a.resize(w, h, 3);
        c.resize(w, h, 3);
        for (int32_t y = 0; y < h; ++y) {
            std::copy(preview.row(y), preview.row(y) + 3 * w, a.row(y));
            std::copy(savedSmall.row(y), savedSmall.row(y) + 3 * w, c.row(y));
        }
        EXPECT_GE(psnrOf(a, c), 30.0) << b.name;
    }
}

TEST_F(BorderFileTest, CustomFileStretchesOverThePhoto)
{
    ImageModBorderFileCustom custom;
    custom.variableAt(ImageModBorderFileCustom::fileIndex)->asFile()->path = "test:half-blue";
    custom.variableChanged(ImageModBorderFileCustom::fileIndex);
    EXPECT_TRUE(custom.loadMessage().empty());
    ASSERT_NE(custom.picture(), nullptr);

    FlexImageFloat photo(200, 100, 3);
    for (int64_t i = 0; i < photo.sampleCount(); ++i)
        photo.data[i] = 200.0f;
    std::vector<ImageMod*> list { &custom };
    EXPECT_EQ(computeGeometry(200, 100, list).width, 200); // the canvas keeps its size
    FlexImageFloat out;
    ASSERT_TRUE(geometryResample(photo, out, list, 0, 0, true));
    ASSERT_EQ(out.width, 200);
    // Half coverage of blue over 200 grey: (0, 0, 255) * 128/255 + 200 * (1 - 128/255).
    const float keep = 1.0f - 128.0f / 255.0f;
    const float blue = float(uint8_t((255u * 128u + 127u) / 255u));
    for (int32_t y : { 0, 50, 99 })
        for (int32_t x : { 0, 100, 199 }) {
            const float* p = out.row(y) + 3 * x;
            EXPECT_NEAR(p[0], 200.0f * keep, 0.01f);
            EXPECT_NEAR(p[2], blue + 200.0f * keep, 0.01f);
        }
}

TEST_F(BorderFileTest, MissingFileLeavesTheImageAndSaysWhy)
{
    ImageModBorderFileCustom custom;
    const std::string plainTip = custom.toolTip;
    custom.variableAt(ImageModBorderFileCustom::fileIndex)->asFile()->path = "/nowhere/frame.png";
    custom.variableChanged(ImageModBorderFileCustom::fileIndex);
    EXPECT_EQ(custom.picture(), nullptr);
    EXPECT_NE(custom.loadMessage().find("/nowhere/frame.png"), std::string::npos);
    EXPECT_NE(custom.toolTip.find(custom.loadMessage()), std::string::npos);
    EXPECT_EQ(custom.toolTip.rfind(plainTip, 0), 0u);

    FlexImageFloat photo;
    fillSmoothPicture(photo, 64, 48);
    FlexImageFloat out, plain;
    std::vector<ImageMod*> list { &custom };
    ASSERT_TRUE(geometryResample(photo, out, list, 0, 0, true));
    ASSERT_TRUE(geometryResample(photo, plain, {}, 0, 0, true));
    ASSERT_EQ(out.sampleCount(), plain.sampleCount());
    EXPECT_EQ(std::memcmp(out.data, plain.data, size_t(out.sampleCount()) * sizeof(float)), 0);

    // Choosing a readable file again clears the message and the tool tip.
    custom.variableAt(ImageModBorderFileCustom::fileIndex)->asFile()->path = "test:opaque-green";
    custom.variableChanged(ImageModBorderFileCustom::fileIndex);
    EXPECT_TRUE(custom.loadMessage().empty());
    EXPECT_EQ(custom.toolTip, plainTip);
    // A clone for the worker shares the picture.
    auto clone = custom.newInstance();
    clone->copyFrom(custom);
    EXPECT_EQ(static_cast<ImageModBorderFileCustom*>(clone.get())->picture(), custom.picture());
}
