#include "core/ImageModVariableDataColor.h"
#include "core/ModCatalogue.h"
#include "document/core/GeometryResampling.h"
#include "filters/FilterFile.h"
#include "mods/GeometryCalculation.h"
#include "mods/ImageModBorderPlain.h"
#include "mods/ImageModCrop.h"
#include "mods/ImageModSize2.h"
#include "tests/mods/OverlayTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <numbers>

namespace {

void setBorder(ImageModBorderPlain& b, float width, float radius, float r = 255.0f, float g = 255.0f, float bl = 255.0f)
{
    b.variableAt(ImageModBorderPlain::widthIndex)->setFloatValue(width);
    if (b.isRounded())
        b.variableAt(ImageModBorderPlain::radiusIndex)->setFloatValue(radius);
    auto* c = b.variableAt(ImageModBorderPlain::colorIndex)->asColor();
    c->red = r;
    c->green = g;
    c->blue = bl;
}

// Deterministic texture with sharp detail, so any resampling of the photo shows.
void fillPattern(FlexImageFloat& img, int32_t w, int32_t h, int32_t ch = 3)
{
    img.resize(w, h, ch);
    uint32_t s = 12345u;
    for (int32_t y = 0; y < h; ++y) {
        float* p = img.row(y);
        for (int32_t x = 0; x < w * ch; ++x) {
            s = s * 1664525u + 1013904223u;
            p[x] = float((s >> 8) % 25600u) / 100.0f;
        }
    }
}

} // namespace

TEST(BorderPlain, FamilyIdentityAndVariables)
{
    ImageModBorderPlain rounded(true);
    ImageModBorderPlain straight(false);
    for (ImageModBorderPlain* b : { &rounded, &straight }) {
        EXPECT_EQ(b->kind(), 1);
        EXPECT_EQ(b->group(), 2);
        EXPECT_TRUE(modHasTag(*b, kTagBorder));
        EXPECT_EQ(b->borderMod(), b);
        EXPECT_FALSE(b->isPlainAdjustment());
    }
    EXPECT_EQ(rounded.variableCount(), 3);
    EXPECT_EQ(straight.variableCount(), 2);
    EXPECT_EQ(straight.cornerRadius(), 0.0f);

    // A clone keeps its kind, and the two kinds never compare equal.
    auto clone = cloneMod(straight);
    EXPECT_EQ(clone->name, "Custom Straight");
    EXPECT_TRUE(clone->isEqual(straight));
    EXPECT_FALSE(rounded.isEqual(straight));
}

TEST(BorderPlain, GeometryGrowsByTwiceTheBandOfTheShorterSide)
{
    ImageModBorderPlain b(false);
    setBorder(b, 0.05f, 0.0f);
    std::vector<ImageMod*> list { &b };

    GeometryResult g = computeGeometry(3000, 2000, list);
    EXPECT_EQ(wh(g), wh(3200, 2200));
    g = computeGeometry(2000, 3000, list);
    EXPECT_EQ(wh(g), wh(2200, 3200));

    // The band follows the cropped picture, not the source.
    ImageModCrop crop;
    crop.variableAt(1)->setFloatValue(0.25f); // cut a quarter from the left: 3000 x 2000 remains
    std::vector<ImageMod*> cropped { &crop, &b };
    g = computeGeometry(4000, 2000, cropped);
    EXPECT_EQ(wh(g), wh(3200, 2200));

    // Fitted into a bound, the whole bordered picture shrinks together.
    g = computeGeometry(3000, 2000, list, 1600, 0);
    EXPECT_EQ(wh(g), wh(1600, 1100));

    // No band, a disabled tile, or a damaged width leave the size alone.
    setBorder(b, 0.0f, 0.0f);
    g = computeGeometry(3000, 2000, list);
    EXPECT_EQ(g.width, 3000);
    setBorder(b, std::nanf(""), 0.0f);
    g = computeGeometry(3000, 2000, list);
    EXPECT_EQ(wh(g), wh(3000, 2000));
    setBorder(b, 0.05f, 0.0f);
    b.enabled = false;
    g = computeGeometry(3000, 2000, list);
    EXPECT_EQ(g.width, 3000);
}

TEST(BorderPlain, FullSizeKeepsThePhotoBitIdentical)
{
    // 301 x 199 makes a fractional band (9.95 px): the output is truncated, the photo never scaled.
    for (const auto& [w, h] : { std::pair { 300, 200 }, std::pair { 301, 199 } }) {
        FlexImageFloat src;
        fillPattern(src, w, h);
        ImageModBorderPlain b(false);
        setBorder(b, 0.05f, 0.0f, 10.0f, 20.0f, 30.0f);
        std::vector<ImageMod*> list { &b };
        FlexImageFloat dst;
        ASSERT_TRUE(geometryResample(src, dst, list, 0, 0, true));
        const double band = 0.05 * std::min(w, h);
        EXPECT_EQ(wh(dst), wh(int32_t(w + 2 * band), int32_t(h + 2 * band)));
        BorderPlacement place;
        ASSERT_TRUE(placeBorderPhoto(w, h, { band, band, band, band }, dst.width, dst.height, 0.0f, true, place));
        ASSERT_EQ(place.width, w);
        ASSERT_EQ(place.height, h);
        EXPECT_LE(std::abs(place.x - band), 0.5);
        const struct {
            int32_t x, y;
        } p { int32_t(place.x), int32_t(place.y) };
        ASSERT_EQ(double(p.x), place.x);
        int64_t photoMismatch = 0;
        int64_t bandMismatch = 0;
        const float colour[3] = { 10.0f, 20.0f, 30.0f };
        for (int32_t y = 0; y < dst.height; ++y)
            for (int32_t x = 0; x < dst.width; ++x) {
                const float* d = dst.row(y) + 3 * x;
                const bool inside = x >= p.x && x < p.x + w && y >= p.y && y < p.y + h;
                const float* s = inside ? src.row(y - p.y) + 3 * (x - p.x) : colour;
                for (int32_t c = 0; c < 3; ++c)
                    (inside ? photoMismatch : bandMismatch) += d[c] != s[c];
            }
        EXPECT_EQ(photoMismatch, 0) << w << " x " << h;
        EXPECT_EQ(bandMismatch, 0) << w << " x " << h;
    }
}

TEST(BorderPlain, RoundedCornersAreAntialiasedByArea)
{
    // Black photo, white band: each photo pixel's value is 255 times the part the band covers.
    FlexImageFloat src;
    src.resize(400, 400, 3);
    std::fill(src.data, src.data + src.sampleCount(), 0.0f);
    ImageModBorderPlain b(true);
    setBorder(b, 0.1f, 0.25f);
    std::vector<ImageMod*> list { &b };
    FlexImageFloat dst;
    ASSERT_TRUE(geometryResample(src, dst, list, 0, 0, true));
    ASSERT_EQ(dst.width, 480);
    const int32_t x0 = 40;
    const int32_t r = 100;

    // The photo's own corner pixel is band, its centre untouched.
    EXPECT_EQ(dst.row(x0)[3 * x0], 255.0f);
    EXPECT_EQ(dst.row(240)[3 * 240], 0.0f);
    EXPECT_EQ(dst.row(x0)[3 * (x0 + r)], 0.0f); // where the arc meets the straight edge

    // Along the diagonal the value falls from band to photo, with blended pixels on the arc.
    int32_t blended = 0;
    float last = 256.0f;
    for (int32_t i = 0; i < r; ++i) {
        const float v = dst.row(x0 + i)[3 * (x0 + i)];
        EXPECT_LE(v, last);
        last = v;
        blended += v > 0.0f && v < 255.0f;
    }
    EXPECT_GE(blended, 1);
    EXPECT_EQ(last, 0.0f);

    // The band's area in a corner square is exactly r^2 (1 - pi / 4), and the four corners mirror.
    double area = 0.0;
    for (int32_t y = 0; y < r; ++y)
        for (int32_t x = 0; x < r; ++x) {
            const float tl = dst.row(x0 + y)[3 * (x0 + x)];
            area += tl / 255.0;
            const int32_t mx = x0 + 399 - x;
            const int32_t my = x0 + 399 - y;
            EXPECT_NEAR(dst.row(x0 + y)[3 * mx], tl, 1e-3);
            EXPECT_NEAR(dst.row(my)[3 * (x0 + x)], tl, 1e-3);
            EXPECT_NEAR(dst.row(my)[3 * mx], tl, 1e-3);
        }
    EXPECT_NEAR(area, r * r * (1.0 - std::numbers::pi / 4.0), 0.01);
}

TEST(BorderPlain, CoverageOfSinglePixels)
{
    BorderPlacement p { 0.0, 0.0, 100.0, 100.0, 10.0 };
    EXPECT_EQ(roundedCoverage(p, 50, 50), 1.0);
    EXPECT_EQ(roundedCoverage(p, 10, 0), 1.0);
    EXPECT_EQ(roundedCoverage(p, 0, 0), 0.0);
    // Pixel (9, 9) .. (10, 10) relative to the centre (10, 10): a quarter disc of radius 10 keeps it whole.
    EXPECT_EQ(roundedCoverage(p, 9, 9), 1.0);
    // A pixel the arc cuts lies strictly between.
    const double c = roundedCoverage(p, 2, 2);
    EXPECT_GT(c, 0.0);
    EXPECT_LT(c, 1.0);
    p.radius = 0.0;
    EXPECT_EQ(roundedCoverage(p, 0, 0), 1.0);
}

TEST(BorderPlain, QuarterPreviewMatchesTheFullSave)
{
    FlexImageFloat full;
    fillSmoothPicture(full, 800, 600);
    FlexImageFloat quarter;
    boxDownBy(full, 4, quarter);
    ASSERT_EQ(quarter.scale, 4.0f);

    for (bool rounded : { false, true }) {
        ImageModBorderPlain b(rounded);
        setBorder(b, 0.05f, 0.1f, 250.0f, 240.0f, 220.0f);
        std::vector<ImageMod*> list { &b };

        FlexImageFloat saved;
        ASSERT_TRUE(geometryResample(full, saved, list, 0, 0, true));
        ASSERT_EQ(saved.width, 860);
        ASSERT_EQ(saved.height, 660);
        FlexImageFloat savedSmall;
        boxDownBy(saved, 4, savedSmall);

        // A preview drawn from the quarter-size copy keeps its scale and the save's layout.
        FlexImageFloat preview;
        ASSERT_TRUE(geometryResample(quarter, preview, list, 0, 0, true));
        ASSERT_EQ(preview.width, savedSmall.width);
        ASSERT_EQ(preview.height, savedSmall.height);
        EXPECT_NEAR(preview.scale, saved.scale * 4.0f, 1e-5);
        EXPECT_GE(psnrOf(preview, savedSmall), 30.0) << rounded;

        // A screen preview fitted from the full source goes through the resampler's wider box, which
        // softens edges by itself; the border may add next to nothing to that difference.
        FlexImageFloat screen;
        ASSERT_TRUE(geometryResample(full, screen, list, 215, 0, false));
        ASSERT_EQ(screen.width, 215);
        ASSERT_EQ(screen.height, 165);
        FlexImageFloat plainScreen;
        ASSERT_TRUE(geometryResample(full, plainScreen, {}, 200, 0, false));
        const double resamplerOnly = psnrOf(plainScreen, quarter);
        EXPECT_GE(psnrOf(screen, savedSmall), resamplerOnly - 1.0) << rounded << " " << resamplerOnly;
    }
}

TEST(BorderPlain, FourChannelBandTakesTheColourAlpha)
{
    FlexImageFloat src;
    fillPattern(src, 60, 40, 4);
    ImageModBorderPlain b(false);
    setBorder(b, 0.25f, 0.0f, 1.0f, 2.0f, 3.0f);
    b.variableAt(ImageModBorderPlain::colorIndex)->asColor()->alpha = 128.0f;
    std::vector<ImageMod*> list { &b };
    FlexImageFloat dst;
    dst.resize(1, 1, 4);
    ASSERT_TRUE(geometryResample(src, dst, list, 0, 0, true));
    ASSERT_EQ(dst.width, 80);
    ASSERT_EQ(dst.channels, 4);
    EXPECT_EQ(dst.row(0)[3], 128.0f);
    EXPECT_EQ(dst.row(10)[4 * 10 + 3], src.row(0)[3]);
}

TEST(BorderPlain, NothingToDrawLeavesTheDestination)
{
    ImageModBorderPlain b(true);
    FlexImageFloat empty;
    FlexImageFloat dst;
    dst.resize(5, 5, 3);
    EXPECT_FALSE(b.drawSource(empty, nullptr, dst, 10, 10, 0.0f));
    FlexImageFloat src;
    fillPattern(src, 10, 10);
    EXPECT_FALSE(b.drawSource(src, nullptr, dst, 0, 10, 0.0f));
    EXPECT_EQ(dst.width, 5);
}

TEST(BorderPlain, FilterFileRoundTripThroughTheCatalogue)
{
    const ModCatalogueContents catalogue = buildModCatalogue();
    const auto borders = catalogue.modsIn(catalogue.sections[5]);
    ASSERT_GE(borders.size(), 2u);
    EXPECT_EQ(borders[0]->name, "Custom Rounded");
    EXPECT_EQ(borders[1]->name, "Custom Straight");

    ModList list;
    for (const char* name : { "Custom Rounded", "Custom Straight" }) {
        auto mod = createMod(catalogue.mods, name);
        ASSERT_NE(mod, nullptr);
        auto* b = dynamic_cast<ImageModBorderPlain*>(mod.get());
        ASSERT_NE(b, nullptr);
        setBorder(*b, 0.125f, 0.375f, 12.5f, 200.25f, 64.0f);
        list.push_back(std::move(mod));
    }
    const std::string path = (std::filesystem::temp_directory_path() / "vantrel_border_roundtrip.vnf").string();
    ASSERT_TRUE(writeFilter(list, path));
    int32_t status = -1;
    ModList read = readFilter(path, catalogue.mods, status);
    std::filesystem::remove(path);
    EXPECT_EQ(status, kFilterReadOk);
    ASSERT_EQ(read.size(), 2u);
    for (size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(read[i]->name, list[i]->name);
        EXPECT_TRUE(read[i]->isEqual(*list[i])) << list[i]->name;
        auto* b = dynamic_cast<ImageModBorderPlain*>(read[i].get());
        ASSERT_NE(b, nullptr);
        EXPECT_EQ(b->isRounded(), i == 0);
    }
}
