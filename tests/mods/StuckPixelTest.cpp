#include "mods/ImageModStuckPixel.h"

#include "core/ImageModSelector.h"
#include "tests/core/TestSelectors.h"
#include "core/ImageModVariableDataPixel.h"

#include <gtest/gtest.h>

namespace {

// Curved, so the mean of a ring differs from the pixel it surrounds.
template <typename Image>
void fillRamp(Image& img)
{
    for (int32_t y = 0; y < img.height; ++y)
        for (int32_t x = 0; x < img.width; ++x)
            for (int32_t c = 0; c < img.channels; ++c)
                img.row(y)[x * img.channels + c] = typename Image::SampleType((x * x * 5 + y * y * 3 + x * y + c * 11) % 200);
}

template <typename Image>
double px(const Image& img, int32_t x, int32_t y, int32_t c = 0)
{
    return double(img.row(y)[x * img.channels + c]);
}

// Mean of the pixels in [x0-1, x1+1] x [y0-1, y1+1] outside the block, inside the image.
template <typename Image>
double ringMean(const Image& img, int32_t x0, int32_t y0, int32_t x1, int32_t y1, int32_t c)
{
    double sum = 0;
    int n = 0;
    for (int32_t y = y0 - 1; y <= y1 + 1; ++y)
        for (int32_t x = x0 - 1; x <= x1 + 1; ++x) {
            if (x < 0 || y < 0 || x >= img.width || y >= img.height)
                continue;
            if (x >= x0 && x <= x1 && y >= y0 && y <= y1)
                continue;
            sum += px(img, x, y, c);
            ++n;
        }
    return sum / n;
}

void setSpot(ImageModStuckPixel& mod, float x, float y)
{
    mod.variableAt(0)->setFloatValue(x);
    mod.variableAt(1)->setFloatValue(y);
    mod.variableChanged(0);
    mod.variableChanged(1);
}

template <typename Image>
int countChanged(const Image& a, const Image& b)
{
    int n = 0;
    for (int64_t i = 0; i < a.sampleCount(); ++i)
        n += a.data[i] != b.data[i];
    return n;
}

} // namespace

TEST(StuckPixel, TheSpotsWorkingPixelsTakeTheMeanOfTheRingAround)
{
    // A reduced image hits the working pixel that holds the spot; an enlarged one replaces the whole
    // block the document pixel covers; a corner uses the neighbours that exist.
    const struct {
        const char* what;
        int32_t w, h;
        float scale, spotX, spotY;
        int32_t x0, y0, x1, y1;
    } cases[] = {
        { "full size", 20, 15, 1.0f, 9.0f, 6.0f, 9, 6, 9, 6 },
        { "corner", 5, 5, 1.0f, 4.0f, 4.0f, 4, 4, 4, 4 },
        { "reduced", 50, 40, 4.0f, 103.0f, 61.0f, 25, 15, 25, 15 }, // working (25.75, 15.25)
        { "enlarged", 40, 40, 0.5f, 10.0f, 7.0f, 20, 14, 21, 15 },  // 2 x 2 working pixels each
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        FlexImageFloat img(c.w, c.h, 3);
        fillRamp(img);
        img.scale = c.scale;
        for (int32_t y = c.y0; y <= c.y1; ++y)
            for (int32_t x = c.x0; x <= c.x1; ++x)
                img.row(y)[x * 3 + 1] = 255.0f; // stuck green
        FlexImageFloat before(0, 0, 3);
        before.copyFrom(img, true);
        ImageModStuckPixel mod;
        setSpot(mod, c.spotX, c.spotY);
        mod.apply(&img, nullptr);
        for (int32_t ch = 0; ch < 3; ++ch) {
            const double mean = ringMean(before, c.x0, c.y0, c.x1, c.y1, ch);
            for (int32_t y = c.y0; y <= c.y1; ++y)
                for (int32_t x = c.x0; x <= c.x1; ++x)
                    EXPECT_NEAR(px(img, x, y, ch), mean, 1e-4) << x << "," << y << " channel " << ch;
        }
        EXPECT_EQ(countChanged(img, before), 3 * (c.x1 - c.x0 + 1) * (c.y1 - c.y0 + 1));
    }
}

TEST(StuckPixel, FrameScaleMarginsAndOriginPlaceTheSpot)
{
    FlexImageFloat img(30, 30, 3);
    fillRamp(img);
    img.scale = 1.0f;   // the frame's scale wins
    FlexImageFloat before(0, 0, 3);
    before.copyFrom(img, true);
    ReferenceFrame frame;
    frame.scale = 2.0f;
    frame.marginLeft = 3;
    frame.originX = 10;
    frame.marginTop = 1;
    frame.originY = 4;
    ImageModApplyContext ctx;
    ctx.referenceFrame = &frame;
    ImageModStuckPixel mod;
    setSpot(mod, 50.0f, 40.0f);   // working (25 - 13, 20 - 5)
    mod.apply(&img, &ctx);
    EXPECT_NEAR(px(img, 12, 15), ringMean(before, 12, 15, 12, 15, 0), 1e-4);
    EXPECT_EQ(countChanged(img, before), 3);

    // A spot outside the visible region changes nothing.
    FlexImageFloat again(0, 0, 3);
    again.copyFrom(before, true);
    setSpot(mod, 2.0f, 2.0f);
    mod.apply(&again, &ctx);
    EXPECT_EQ(countChanged(again, before), 0);
}

TEST(StuckPixel, NoSpotNoChangeAndAMaskDims)
{
    FlexImageFloat img(10, 10, 3);
    fillRamp(img);
    FlexImageFloat before(0, 0, 3);
    before.copyFrom(img, true);
    ImageModStuckPixel mod;
    mod.apply(&img, nullptr);
    EXPECT_EQ(countChanged(img, before), 0);

    setSpot(mod, 4.0f, 4.0f);
    TestSelectorConst half(0.5f);
    ImageModApplyContext ctx;
    ctx.selector = &half;
    mod.apply(&img, &ctx);
    const double mean = ringMean(before, 4, 4, 4, 4, 0);
    EXPECT_NEAR(px(img, 4, 4), px(before, 4, 4) + (mean - px(before, 4, 4)) * 0.5, 1e-4);
}

TEST(StuckPixel, PickerPointAndNumbersStayTogether)
{
    ImageModStuckPixel mod;
    EXPECT_EQ(mod.name, "Dead Pixel");
    EXPECT_EQ(mod.version, 2);
    EXPECT_FALSE(mod.isPlainAdjustment());
    auto* point = mod.variableAt(2)->asPixel();
    ASSERT_NE(point, nullptr);
    point->points = {{120.0f, 80.0f}};
    mod.variableChanged(2);
    EXPECT_EQ(mod.floatValue(0), 120.0f);
    EXPECT_EQ(mod.floatValue(1), 80.0f);

    mod.variableAt(0)->setFloatValue(7.0f);
    mod.variableChanged(0);
    ASSERT_EQ(point->points.size(), 1u);
    EXPECT_EQ(point->points[0].x, 7.0f);
    EXPECT_EQ(point->points[0].y, 80.0f);

    // Version 1 knew only the numbers.
    point->points = {{3.0f, 3.0f}};
    float x, y;
    ASSERT_TRUE(mod.documentSpot(x, y));
    EXPECT_EQ(x, 3.0f);
    mod.setVersion(1);
    ASSERT_TRUE(mod.documentSpot(x, y));
    EXPECT_EQ(x, 7.0f);
    EXPECT_EQ(y, 80.0f);
}

TEST(StuckPixel, EightBitTruncatesTheMean)
{
    FlexImage8 img(6, 6, 3);
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        img.data[i] = 10;
    img.row(1)[2 * 3] = 11;   // one neighbour of (2, 2) a level higher: mean 10.125
    img.row(2)[2 * 3] = 250;
    ImageModStuckPixel mod;
    setSpot(mod, 2.0f, 2.0f);
    mod.apply(&img, nullptr);
    EXPECT_EQ(img.row(2)[2 * 3], 10);
    EXPECT_EQ(img.row(2)[2 * 3 + 1], 10);
}
