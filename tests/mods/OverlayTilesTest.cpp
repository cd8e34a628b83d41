#include "OverlayTestSupport.h"

#include "core/ImageModVariableDataButton.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataFile.h"
#include "core/ImageModVariableDataPixel.h"
#include "core/ModCatalogue.h"
#include "filters/FilterFile.h"
#include "mods/ImageModBorderFile.h"
#include "mods/ImageModImageOverlay.h"
#include "mods/ImageModTextOverlay.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

class OverlayTilesTest : public ::testing::Test {
protected:
    void SetUp() override { setOverlayImageDecoder(&overlayTestDecoder); }
    void TearDown() override { setOverlayImageDecoder(nullptr); }
};

void setWatermark(ImageModImageOverlay& w, const std::string& path, float x, float y, float size, float opacity)
{
    w.variableAt(ImageModImageOverlay::fileIndex)->asFile()->path = path;
    w.variableChanged(ImageModImageOverlay::fileIndex);
    auto* pos = w.variableAt(ImageModImageOverlay::positionIndex)->asPixel();
    pos->points = { { x, y } };
    w.variableAt(ImageModImageOverlay::sizeIndex)->setFloatValue(size);
    w.variableAt(ImageModImageOverlay::opacityIndex)->setFloatValue(opacity);
}

} // namespace

TEST_F(OverlayTilesTest, WatermarkAtOpacityZeroLeavesTheImage)
{
    FlexImageFloat img;
    fillSmoothPicture(img, 120, 80);
    FlexImageFloat before;
    before.copyFrom(img, true);
    ImageModImageOverlay w;
    EXPECT_FALSE(w.passIsPure(0));
    setWatermark(w, "test:opaque-green", 60, 40, 0.5f, 0.0f);
    w.apply(&img, nullptr);
    EXPECT_EQ(std::memcmp(img.data, before.data, size_t(img.sampleCount()) * sizeof(float)), 0);

    // An unreadable file does the same, and the tool tip says why.
    setWatermark(w, "/missing/logo.png", 60, 40, 0.5f, 1.0f);
    w.apply(&img, nullptr);
    EXPECT_EQ(std::memcmp(img.data, before.data, size_t(img.sampleCount()) * sizeof(float)), 0);
    EXPECT_NE(w.toolTip.find("/missing/logo.png"), std::string::npos);
}

TEST_F(OverlayTilesTest, WatermarkCoversItsPlaceExactly)
{
    // 30 x 10 opaque green at 0.25 of a 120 px width: 30 x 10 pixels centred on (60, 40).
    FlexImageFloat img(120, 80, 3);
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        img.data[i] = 100.0f;
    ImageModImageOverlay w;
    setWatermark(w, "test:opaque-green", 60, 40, 0.25f, 1.0f);
    w.apply(&img, nullptr);
    int32_t green = 0;
    for (int32_t y = 0; y < 80; ++y)
        for (int32_t x = 0; x < 120; ++x) {
            const float* p = img.row(y) + 3 * x;
            const bool inside = x >= 45 && x < 75 && y >= 35 && y < 45;
            if (inside) {
                EXPECT_FLOAT_EQ(p[1], 255.0f) << x << " " << y;
                EXPECT_FLOAT_EQ(p[0], 0.0f);
                ++green;
            } else {
                EXPECT_FLOAT_EQ(p[1], 100.0f) << x << " " << y;
            }
        }
    EXPECT_EQ(green, 300);

    // Half opacity mixes half of the green in.
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        img.data[i] = 100.0f;
    w.variableAt(ImageModImageOverlay::opacityIndex)->setFloatValue(0.5f);
    w.apply(&img, nullptr);
    EXPECT_FLOAT_EQ(img.row(40)[3 * 60 + 1], 177.5f);
    EXPECT_FLOAT_EQ(img.row(40)[3 * 60 + 0], 50.0f);

    // The 8-bit path lands on the same pixels.
    FlexImage8 small(120, 80, 3);
    std::memset(small.data, 100, size_t(small.sampleCount()));
    w.variableAt(ImageModImageOverlay::opacityIndex)->setFloatValue(1.0f);
    w.apply(&small, nullptr);
    EXPECT_EQ(small.row(35)[3 * 45 + 1], 255);
    EXPECT_EQ(small.row(34)[3 * 45 + 1], 100);
    EXPECT_EQ(small.row(44)[3 * 74 + 1], 255);
    EXPECT_EQ(small.row(44)[3 * 75 + 1], 100);
}

TEST_F(OverlayTilesTest, WatermarkPositionIsInDocumentPixels)
{
    // A quarter-size preview: document (240, 160) is buffer (60, 40), the width is the buffer's.
    FlexImageFloat img(120, 80, 3);
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        img.data[i] = 100.0f;
    ReferenceFrame frame;
    frame.imageWidth = 120;
    frame.imageHeight = 80;
    frame.scale = 4.0f;
    ImageModApplyContext context;
    context.referenceFrame = &frame;
    ImageModImageOverlay w;
    setWatermark(w, "test:opaque-green", 240, 160, 0.25f, 1.0f);
    ImageModImageOverlay::Placement p;
    ASSERT_TRUE(w.placement(120, 80, &context, p));
    EXPECT_DOUBLE_EQ(p.x, 45.0);
    EXPECT_DOUBLE_EQ(p.y, 35.0);
    EXPECT_DOUBLE_EQ(p.width, 30.0);
    EXPECT_DOUBLE_EQ(p.height, 10.0);
    // Unset, it sits in the lower right corner, clear of the edges.
    w.variableAt(ImageModImageOverlay::positionIndex)->asPixel()->points = { { -1.0f, -1.0f } };
    ASSERT_TRUE(w.placement(120, 80, &context, p));
    EXPECT_NEAR(p.x + p.width, 120.0 - 3.6, 1e-9);
    EXPECT_NEAR(p.y + p.height, 80.0 - 3.6, 1e-9);
}

TEST_F(OverlayTilesTest, TextOverlayRefreshAndCopy)
{
    ImageModTextOverlay t;
    t.consumeRefreshRequest();
    EXPECT_FALSE(t.consumeRefreshRequest());
    t.setText("Hello");
    EXPECT_TRUE(t.consumeRefreshRequest());
    EXPECT_FALSE(t.consumeRefreshRequest());
    t.variableAt(ImageModTextOverlay::sizeIndex)->setFloatValue(0.2f);
    t.variableChanged(ImageModTextOverlay::sizeIndex);
    EXPECT_FALSE(t.consumeRefreshRequest());

    ImageModTextOverlay::setDefaultFontFamily("DejaVu Serif");
    ImageModTextOverlay fresh;
    EXPECT_EQ(fresh.fontFamily(), "DejaVu Serif");
    ImageModTextOverlay::setDefaultFontFamily("Bitstream Vera Sans");

    auto clone = t.newInstance();
    clone->copyFrom(t);
    EXPECT_TRUE(clone->isEqual(t));
    EXPECT_EQ(static_cast<ImageModTextOverlay*>(clone.get())->text(), "Hello");
    // A different text makes the tiles differ, so the driver runs the stage again.
    t.setText("Hello!");
    EXPECT_FALSE(clone->isEqual(t));
}

TEST_F(OverlayTilesTest, EveryOverlayTileRoundTripsThroughAFilterFile)
{
    const ModCatalogueContents catalogue = buildModCatalogue();
    std::vector<std::unique_ptr<ImageMod>> tiles;
    ModCatalogue borders = buildBordersSection();
    for (auto& m : borders)
        if (m->name != "Custom File Border")
            tiles.push_back(std::move(m));
    auto custom = std::make_unique<ImageModBorderFileCustom>();
    custom->variableAt(0)->asFile()->path = "/home/someone/frames/gold frame.png";
    auto mark = std::make_unique<ImageModImageOverlay>();
    setWatermark(*mark, "/home/someone/logo.png", 1200.5f, 800.25f, 0.3f, 0.65f);
    auto text = std::make_unique<ImageModTextOverlay>();
    text->setText("Été à Kyōto\r\nzweite Zeile");
    text->setFontFamily("DejaVu Serif");
    text->variableAt(ImageModTextOverlay::sizeIndex)->setFloatValue(0.125f);
    text->variableAt(ImageModTextOverlay::positionIndex)->asPixel()->points = { { 10.0f, 20.0f } };
    auto* colour = text->variableAt(ImageModTextOverlay::colorIndex)->asColor();
    colour->red = 12.0f;
    colour->alpha = 200.0f;
    tiles.push_back(std::move(custom));
    tiles.push_back(std::move(mark));
    tiles.push_back(std::move(text));

    std::vector<const ImageMod*> list;
    for (const auto& t : tiles)
        list.push_back(t.get());
    const std::string path = (std::filesystem::temp_directory_path() / "vantrel_overlay_roundtrip.vnf").string();
    ASSERT_TRUE(writeFilter(list, path));
    std::ifstream in(path);
    std::stringstream written;
    written << in.rdbuf();
    EXPECT_NE(written.str().find("<mod name=\"Paper\" version=\"1\" enabled=\"1\"></mod>"), std::string::npos);

    int32_t status = -1;
    ModList back = readFilter(path, catalogue.mods, status);
    std::remove(path.c_str());
    EXPECT_EQ(status, 0);
    ASSERT_EQ(back.size(), list.size());
    for (size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(back[i]->name, list[i]->name);
        if (list[i]->name == "Text Overlay") {
            // Line ends come back as "\n" alone.
            const auto* t = dynamic_cast<const ImageModTextOverlay*>(back[i].get());
            ASSERT_NE(t, nullptr);
            EXPECT_EQ(t->text(), "Été à Kyōto\nzweite Zeile");
            EXPECT_EQ(t->fontFamily(), "DejaVu Serif");
            EXPECT_FLOAT_EQ(t->floatValue(ImageModTextOverlay::sizeIndex), 0.125f);
            EXPECT_FLOAT_EQ(t->colorAt(ImageModTextOverlay::colorIndex)->alpha, 200.0f);
            EXPECT_EQ(t->pixelAt(ImageModTextOverlay::positionIndex)->points[0].y, 20.0f);
        } else {
            EXPECT_TRUE(back[i]->isEqual(*list[i])) << list[i]->name;
        }
        if (auto* b = dynamic_cast<const ImageModBorderFile*>(back[i].get())) {
            EXPECT_EQ(b->style().name, list[i]->name);
        }
    }
}
