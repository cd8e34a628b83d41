#include "TestMods.h"

#include "core/ImageModBitmapSelector.h"
#include "core/ImageModHSVSelector.h"
#include "core/ImageModHueSelector.h"
#include "core/ImageModLuminanceSelector.h"
#include "core/ImageModSelectorPointerArray.h"
#include "core/ImageModSelectorWalk.h"
#include "core/ImageModSpotSelector.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ImageModVariableDataMultiChoice.h"
#include "core/ImageModVariableDataPixel.h"

#include <gtest/gtest.h>

namespace {

// A one-pixel picture of the given colour.
std::unique_ptr<FlexImageFloat> pixel(float r, float g, float b)
{
    auto img = std::make_unique<FlexImageFloat>(1, 1, 3);
    img->data[0] = r;
    img->data[1] = g;
    img->data[2] = b;
    return img;
}

// Sharpness 0 (a linear falloff) and the given radius, reported.
void setSpot(ImageModSpotSelector& spot, float radius)
{
    spot.variables[1]->data->value = 0.0f;
    spot.variables[2]->data->value = radius;
    spot.variableChanged(2);
}

} // namespace

TEST(ImageModSelector, RulesAAndB)
{
    EXPECT_EQ(maskRuleA(2.0f, 1.0f), 2.0f);
    EXPECT_EQ(maskRuleA(2.0f, 0.0f), 1.0f);
    EXPECT_EQ(maskRuleA(0.5f, 0.5f), 0.75f);
    EXPECT_EQ(maskRuleA(0.0f, 0.25f), 0.75f);
    EXPECT_EQ(maskRuleB(2.0f, 0.25f), 0.5f);
    EXPECT_EQ(maskRuleB(-8.0f, 0.0f), 0.0f);
}

TEST(ImageModSelector, BaseFamilyTraits)
{
    ImageModSelector base;
    EXPECT_EQ(base.kind(), 4);
    EXPECT_FALSE(base.isPlainAdjustment());
    FlexImageFloat img(2, 2, 3);
    EXPECT_EQ(base.maskValue(&img, 1, 1, nullptr), 1.0f);
    ImageModSelectorPointerArray none;
    EXPECT_EQ(none.maskValue(&img, 0, 0, nullptr), 1.0f);
    EXPECT_EQ(none.name, "Selector Pointer Array");
    ImageModBitmapSelector bitmap;
    EXPECT_EQ(bitmap.name, "Bitmap Selector");
    EXPECT_EQ(bitmap.maskValue(&img, 0, 0, nullptr), 0.0f); // no mask image
    EXPECT_EQ(ImageModSpotSelector().kind(), 4);
    EXPECT_EQ(ImageModHueSelector().name, "Hue Mask");
    EXPECT_EQ(ImageModHSVSelector().variables[0]->controlKind, 11);
    EXPECT_EQ(ImageModLuminanceSelector().variables[1]->currentLabel(), "Load Preset...");
}

TEST(ImageModSelectorWalk, CollectsTheRunLeftOfATile)
{
    TestSelectorConst s1(0.5f), s2(0.4f), off(0.1f, false);
    TestModAdd mod, other;
    std::vector<ImageMod*> tiles{&s1, &s2, &mod};
    EXPECT_EQ(selectorsForTile(tiles, 2), (std::vector<ImageModSelector*>{&s1, &s2}));
    EXPECT_TRUE(selectorsForTile(tiles, 0).empty());
    EXPECT_EQ(selectorsForTile(tiles, 1), (std::vector<ImageModSelector*>{&s1}));
    EXPECT_TRUE(selectorsForTile(tiles, 7).empty());

    // A plain tile ends the run.
    std::vector<ImageMod*> broken{&s1, &other, &mod};
    EXPECT_TRUE(selectorsForTile(broken, 2).empty());

    // A disabled mask is left out but doesn't break the run.
    std::vector<ImageMod*> gap{&s1, &off, &s2, &mod};
    EXPECT_EQ(selectorsForTile(gap, 3), (std::vector<ImageModSelector*>{&s1, &s2}));

    // Works on owning sequences too.
    std::vector<std::unique_ptr<ImageMod>> owned;
    owned.push_back(std::make_unique<TestSelectorConst>(0.2f));
    owned.push_back(std::make_unique<TestModAdd>());
    ASSERT_EQ(selectorsForTile(owned, 1).size(), 1u);
    EXPECT_EQ(selectorsForTile(owned, 1)[0], owned[0].get());
}

TEST(ImageModSelectorWalk, ContextSelectorForLists)
{
    TestSelectorConst a(0.5f), b(0.5f);
    ImageModSelectorPointerArray wrapper;
    EXPECT_EQ(selectorForList({}, wrapper), nullptr);
    EXPECT_EQ(selectorForList({&a}, wrapper), &a);
    EXPECT_EQ(selectorForList({&a, &b}, wrapper), &wrapper);
    EXPECT_EQ(wrapper.selectors.size(), 2u);
}

TEST(ImageModSelectorWalk, MasksReachTheTileToTheirRight)
{
    TestSelectorConst s1(0.5f), s2(0.4f), off(0.0f, false), zero(0.0f);
    TestSelectorRed red;
    TestModAdd add(10.0f), first(51.0f);
    const struct {
        const char* what;
        std::vector<ImageMod*> tiles;
        float start, expected;
    } cases[] = {
        { "two masks multiply", { &s1, &s2, &add }, 100.0f, 102.0f },
        { "a disabled mask between mask and tile", { &s1, &off, &add }, 50.0f, 55.0f },
        { "a mask with nothing to its right acts on nothing", { &add, &zero }, 50.0f, 60.0f },
        // After the first add red is 51: the mask reads 0.2, so the second add contributes 2.
        { "a mask sees the pixels as they stand", { &first, &red, &add }, 0.0f, 53.0f },
    };
    for (const auto& c : cases) {
        FlexImageFloat img(4, 3, 3);
        fillImage(img, c.start);
        runTiles(c.tiles, &img);
        for (int64_t i = 0; i < img.sampleCount(); ++i)
            ASSERT_FLOAT_EQ(img.data[i], c.expected) << c.what;
    }
    FlexImage8 img8(4, 3, 4);
    fillImage(img8, 100.0f);
    runTiles({ &s1, &s2, &add }, &img8);
    EXPECT_EQ(img8.data[0], 102);
    EXPECT_EQ(img8.data[3], 100); // alpha untouched
}

TEST(ImageModLuminanceSelector, ReadsLuminanceThroughTheCurve)
{
    ImageModLuminanceSelector lum;
    lum.variables[0]->asCurve()->curve.setFromString("0 0 1 1");
    auto mid = pixel(100, 150, 200);
    EXPECT_FLOAT_EQ(lum.maskValue(pixel(255, 255, 255).get(), 0, 0, nullptr), 1.0f);
    EXPECT_FLOAT_EQ(lum.maskValue(pixel(0, 0, 0).get(), 0, 0, nullptr), 0.0f);
    // 0.299*100 + 0.587*150 + 0.114*200 = 140.75
    EXPECT_NEAR(lum.maskValue(mid.get(), 0, 0, nullptr), 140.75f / 255.0f, 1e-4f);

    FlexImage8 mid8(1, 1, 4);
    mid8.data[0] = 100;
    mid8.data[1] = 150;
    mid8.data[2] = 200;
    mid8.data[3] = 0;
    EXPECT_FLOAT_EQ(lum.maskValue(&mid8, 0, 0, nullptr), lum.maskValue(mid.get(), 0, 0, nullptr));

    FlexImageFloat grey(1, 1, 1);
    grey.data[0] = 51.0f;
    EXPECT_NEAR(lum.maskValue(&grey, 0, 0, nullptr), 0.2f, 1e-4f);
}

TEST(ImageModLuminanceSelector, PresetSetsTheCurveAndResetsTheChoice)
{
    ImageModLuminanceSelector lum;
    lum.variables[1]->asChoice()->index = 1;
    lum.variableChanged(1);
    EXPECT_EQ(lum.choiceIndex(1), 0);
    const ToneCurve* c = lum.curveAt(0);
    ASSERT_EQ(c->points.size(), 5u);
    EXPECT_FLOAT_EQ(c->points[1].x, 0.1666f);
    EXPECT_FLOAT_EQ(c->points[2].y, 0.0f);
    // Changes to other variables don't touch the curve.
    lum.variables[0]->asCurve()->curve.setFromString("0 0 1 1");
    lum.variableChanged(0);
    EXPECT_EQ(lum.curveAt(0)->points.size(), 2u);
}

TEST(ImageModHueSelector, RegionsAndWrap)
{
    ImageModHueSelector hue;
    ASSERT_EQ(hue.regions.size(), 7u);
    const std::vector<int32_t> red{0};
    EXPECT_FLOAT_EQ(hue.maskForColor(red, 255, 0, 0), 1.0f);
    // Hue 355: the region gives 0 at 355 and 1 at -5.
    EXPECT_FLOAT_EQ(hue.maskForColor(red, 255, 0, 255.0f * 5.0f / 60.0f), 1.0f);
    // Hue 325 reaches red only through the wrap, at -35: the middle of the rising flank.
    const float b325 = 255.0f * 35.0f / 60.0f;
    EXPECT_NEAR(hue.maskForColor(red, 255, 0, b325), 0.5f, 1e-4f);
    // Magenta's falling flank at 325: S(25/40, 2) = 1 - 0.5 * 0.75^2.
    EXPECT_NEAR(hue.maskForColor({6}, 255, 0, b325), 0.71875f, 1e-4f);
    // The sum is capped at 1.
    EXPECT_FLOAT_EQ(hue.maskForColor({0, 6}, 255, 0, b325), 1.0f);
    // Green doesn't count as red.
    EXPECT_FLOAT_EQ(hue.maskForColor(red, 0, 255, 0), 0.0f);
    EXPECT_FLOAT_EQ(hue.maskForColor({3}, 0, 255, 0), 1.0f);
    // Out-of-range selections are ignored.
    EXPECT_FLOAT_EQ(hue.maskForColor({42, -1}, 255, 0, 0), 0.0f);
}

TEST(ImageModHueSelector, GreysAndDarksNeverCount)
{
    ImageModHueSelector hue;
    EXPECT_FLOAT_EQ(hue.maskForColor({0}, 128, 128, 128), 0.0f);
    EXPECT_FLOAT_EQ(hue.maskForColor({0}, 0, 0, 0), 0.0f);
    // v = 64/255: u = 2v, factor 1 - (1 - u)^2.
    const float u = 2.0f * (64.0f / 255.0f);
    EXPECT_NEAR(hue.maskForColor({0}, 64, 0, 0), 1.0f - (1.0f - u) * (1.0f - u), 1e-5f);
    // s = 0.25: factor 1 - 0.5^2.
    EXPECT_NEAR(hue.maskForColor({0}, 255, 191.25f, 191.25f), 0.75f, 1e-4f);

    FlexImage8 px(1, 1, 3);
    px.data[0] = 255;
    px.data[1] = 0;
    px.data[2] = 0;
    EXPECT_FLOAT_EQ(hue.maskValue(&px, 0, 0, nullptr), 1.0f); // default selection is red
    hue.variables[0]->asMultiChoice()->selected.clear();
    EXPECT_FLOAT_EQ(hue.maskValue(&px, 0, 0, nullptr), 0.0f);
}

TEST(ImageModHSVSelector, ProductOfTheThreeCurves)
{
    ImageModHSVSelector hsv;
    auto px = pixel(200, 100, 50); // v = 200/255, s = 0.75
    EXPECT_FLOAT_EQ(hsv.maskValue(px.get(), 0, 0, nullptr), 1.0f);
    hsv.variables[2]->asCurve()->curve.setFromString("0 0 1 1");
    EXPECT_NEAR(hsv.maskValue(px.get(), 0, 0, nullptr), 200.0f / 255.0f, 1e-4f);
    hsv.variables[1]->asCurve()->curve.setFromString("0 0 1 1");
    EXPECT_NEAR(hsv.maskValue(px.get(), 0, 0, nullptr), 0.75f * 200.0f / 255.0f, 1e-4f);
}

TEST(ImageModHSVSelector, HueIsTurnedByTheOffset)
{
    ImageModHSVSelector hsv;
    ToneCurve& hue = hsv.variables[0]->asCurve()->curve;
    hue.closed = false; // a plain ramp makes the read position visible
    hue.setFromString("0 0 1 1");
    hue.hueOffset = 180.0f;
    auto green = pixel(0, 255, 0);
    EXPECT_NEAR(hsv.maskValue(pixel(255, 0, 0).get(), 0, 0, nullptr), 0.5f, 1e-4f);
    EXPECT_NEAR(hsv.maskValue(green.get(), 0, 0, nullptr), 300.0f / 360.0f, 1e-4f);
    hue.hueOffset = 0.0f;
    EXPECT_NEAR(hsv.maskValue(green.get(), 0, 0, nullptr), 120.0f / 360.0f, 1e-4f);
    // A grey pixel has hue 0.
    EXPECT_NEAR(hsv.maskValue(pixel(90, 90, 90).get(), 0, 0, nullptr), 0.0f, 1e-6f);
}

TEST(ImageModSpotSelector, FalloffAroundTheImageCentre)
{
    ImageModSpotSelector spot;
    setSpot(spot, 10.0f);
    FlexImageFloat img(101, 101, 3);
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 50, 50, nullptr), 1.0f);
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 55, 50, nullptr), 0.5f);
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 50, 40, nullptr), 0.0f);
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 0, 0, nullptr), 0.0f);

    spot.variables[4]->asChoice()->index = 1; // Inverted
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 50, 50, nullptr), 0.0f);
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 0, 0, nullptr), 1.0f);

    // Inverted at Amount 0 is 1 everywhere, at 8 bits too.
    spot.variables[0]->data->value = 0.0f;
    spot.variableChanged(0);
    FlexImage8 img8(20, 10, 3);
    for (int32_t y = 0; y < 10; y += 3)
        for (int32_t x = 0; x < 20; x += 3)
            ASSERT_EQ(spot.maskValue(&img8, x, y, nullptr), 1.0f);
}

TEST(ImageModSpotSelector, CentreFromDocumentPixelsAndFrame)
{
    ImageModSpotSelector spot;
    spot.variables[3]->asPixel()->points[0] = {20.0f, 30.0f};
    setSpot(spot, 10.0f);
    FlexImageFloat img(100, 100, 3);
    img.scale = 0.5f; // centre at (40, 60) in this image; t = d * 0.5 / 10
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 40, 60, nullptr), 1.0f);
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 50, 60, nullptr), 0.5f);

    ReferenceFrame frame;
    frame.scale = 2.0f; // wins over the image's scale
    frame.marginLeft = 3;
    frame.originX = 2;
    frame.marginTop = 1;
    frame.originY = 4;
    // (20, 30) / 2 = (10, 15), minus (5, 5).
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 5, 10, &frame), 1.0f);
    EXPECT_LT(spot.maskValue(&img, 7, 11, &frame), 1.0f);

    // Unset centre with a frame: the middle of the uncropped working image, in view coordinates.
    spot.variables[3]->asPixel()->points[0] = {-1.0f, -1.0f};
    frame.imageWidth = 200;
    frame.imageHeight = 100;
    frame.sourceMarginLeft = 20;
    frame.sourceMarginRight = 40;
    frame.sourceMarginTop = 10;
    frame.sourceMarginBottom = 10;
    frame.originX = 30;
    frame.originY = 5;
    // cx = 20 + 140 * 0.5 - 30 = 60; cy = 10 + 80 * 0.5 - 5 = 45.
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 60, 45, &frame), 1.0f);
    // d = 2, t = 2 * 2 / 10 = 0.4, S(0.4, 1) = 0.4.
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 62, 45, &frame), 0.6f);
}

TEST(ImageModSpotSelector, CacheHoldsUntilAChangeIsReported)
{
    ImageModSpotSelector spot;
    setSpot(spot, 10.0f);
    FlexImageFloat img(101, 101, 3);
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 55, 50, nullptr), 0.5f);
    spot.variables[2]->data->value = 20.0f;
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 55, 50, nullptr), 0.5f);
    spot.variableChanged(2);
    EXPECT_FLOAT_EQ(spot.maskValue(&img, 55, 50, nullptr), 0.75f);
    // A clone reads its own values.
    auto clone = cloneMod(spot);
    EXPECT_FLOAT_EQ(static_cast<ImageModSpotSelector*>(clone.get())->maskValue(&img, 55, 50, nullptr), 0.75f);
}

TEST(ImageModBitmapSelector, FreezesAnotherMask)
{
    TestSelectorRed red;
    FlexImageFloat img(5, 4, 3);
    for (int32_t y = 0; y < 4; ++y)
        for (int32_t x = 0; x < 5; ++x)
            img.row(y)[x * 3] = float(x * 50 + y);
    ImageModBitmapSelector bitmap;
    bitmap.fillFrom(&red, &img, nullptr);
    ASSERT_NE(bitmap.mask, nullptr);
    EXPECT_EQ(bitmap.mask->channels, 1);
    for (int32_t y = 0; y < 4; ++y)
        for (int32_t x = 0; x < 5; ++x)
            EXPECT_FLOAT_EQ(bitmap.maskValue(&img, x, y, nullptr), float(x * 50 + y) / 255.0f);
    fillImage(img, 0.0f);
    EXPECT_FLOAT_EQ(bitmap.maskValue(&img, 4, 3, nullptr), 203.0f / 255.0f);
    EXPECT_EQ(bitmap.maskValue(&img, 5, 0, nullptr), 0.0f);

    FlexImage8 img8(3, 3, 4);
    fillImage(img8, 51.0f);
    bitmap.fillFrom(&red, &img8, nullptr);
    EXPECT_FLOAT_EQ(bitmap.maskValue(&img8, 2, 2, nullptr), 0.2f);
    bitmap.fillFrom(nullptr, &img8, nullptr);
    EXPECT_EQ(bitmap.mask, nullptr);
}
