#include "mods/CropRotateScale.h"
#include "mods/GeometrySampler.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

template <typename Image>
void fillPattern(Image& img, float (*f)(int32_t x, int32_t y, int32_t c))
{
    for (int32_t y = 0; y < img.height; ++y)
        for (int32_t x = 0; x < img.width; ++x)
            for (int32_t c = 0; c < img.channels; ++c)
                img.row(y)[x * img.channels + c] = typename Image::SampleType(f(x, y, c));
}

float at(const FlexImageFloat& img, int32_t x, int32_t y, int32_t c = 0)
{
    return img.row(y)[x * img.channels + c];
}

} // namespace

TEST(Sampler, NearestRoundsAndClamps)
{
    const float data[] = {10, 20, 30, 40};
    auto nearest = [&](double x, double y) {
        float out = 0;
        sampleNearest(data, 4, 1, 1, x, y, 1, &out);
        return out;
    };
    EXPECT_EQ(nearest(1.49, 0.0), 20.0f);
    EXPECT_EQ(nearest(1.5, 0.0), 30.0f);
    EXPECT_EQ(nearest(-7.0, -3.0), 10.0f);
    EXPECT_EQ(nearest(90.0, 2.0), 40.0f);
    EXPECT_EQ(nearest(std::nan(""), 0.0), 10.0f);
}

TEST(Sampler, BilinearMixesFourNeighboursAndHoldsTheLastPixel)
{
    // 3 x 2: row 0 = 0 10 20, row 1 = 100 110 120
    const float data[] = {0, 10, 20, 100, 110, 120};
    float out = 0;
    sampleBilinear(data, 3, 2, 1, 0.25, 0.5, 1, &out);
    EXPECT_FLOAT_EQ(out, 52.5f);
    // The lower index stops at size - 2, so the last column and row read exactly.
    sampleBilinear(data, 3, 2, 1, 2.0, 1.0, 1, &out);
    EXPECT_FLOAT_EQ(out, 120.0f);
    sampleBilinear(data, 3, 2, 1, 1.5, 0.0, 1, &out);
    EXPECT_FLOAT_EQ(out, 15.0f);
    // A one-pixel image reads that pixel.
    const float one[] = {42};
    sampleBilinear(one, 1, 1, 1, 0.7, 0.2, 1, &out);
    EXPECT_FLOAT_EQ(out, 42.0f);
}

TEST(Sampler, BoxWeighsThePartlyCoveredEdgePixels)
{
    // One row, value 10 * x.
    std::vector<float> row(10);
    for (int32_t i = 0; i < 10; ++i)
        row[size_t(i)] = 10.0f * i;
    auto box = [&](double x, double side) {
        float out = 0;
        sampleBox(row.data(), 10, 1, 1, x, 0.0, side, 1, &out);
        return out;
    };
    // Box [3.5, 5.0]: pixel 4 whole, pixel 5 half.
    EXPECT_NEAR(box(4.25, 1.5), (40.0 + 0.5 * 50.0) / 1.5, 1e-5);
    // Box [2.3, 4.7]: pixel 2 covers 0.2, 3 and 4 whole, 5 covers 0.2.
    EXPECT_NEAR(box(3.5, 2.4), (0.2 * 20 + 30 + 40 + 0.2 * 50) / 2.4, 1e-4);
    // At the edge the box is cut to the picture; entirely outside it reads the edge pixel.
    EXPECT_NEAR(box(0.0, 3.0), (0.0 + 10.0) / 2.0, 1e-5);
    EXPECT_EQ(box(30.0, 2.0), 90.0f);
}

TEST(Sampler, BoxIsSeparableInTwoDimensions)
{
    // 4 x 4 checkerboard of 0 and 200: any box of side 2 centred on a pixel centre inside averages 100.
    std::vector<float> img(16);
    for (int32_t y = 0; y < 4; ++y)
        for (int32_t x = 0; x < 4; ++x)
            img[size_t(y * 4 + x)] = ((x + y) & 1) ? 200.0f : 0.0f;
    float out = 0;
    sampleBox(img.data(), 4, 4, 1, 1.0, 2.0, 2.0, 1, &out);
    EXPECT_NEAR(out, 100.0f, 1e-4);
    sampleBox(img.data(), 4, 4, 1, 1.5, 1.5, 2.0, 1, &out);
    EXPECT_NEAR(out, 100.0f, 1e-4);
}

TEST(CropRotateScale, PlainCopyKeepsScaleAndPixels)
{
    FlexImageFloat src(7, 5, 3);
    fillPattern(src, [](int32_t x, int32_t y, int32_t c) { return float(x * 30 + y * 7 + c) + 0.25f; });
    src.scale = 2.5f;
    FlexImageFloat dst(0, 0, 3);
    ASSERT_TRUE(resampleCropRotateScale(src, 7, 5, nullptr, nullptr, dst, false, 0.0f));
    EXPECT_EQ(dst.scale, 2.5f);
    ASSERT_EQ(dst.width, 7);
    for (int64_t i = 0; i < src.sampleCount(); ++i)
        ASSERT_EQ(dst.data[i], src.data[i]);
    CropRotateScaleMapping m;
    ASSERT_TRUE(planCropRotateScale(7, 5, 7, 5, nullptr, nullptr, 0.0f, m));
    EXPECT_TRUE(m.plainCopy);
    CropFractions none;
    ASSERT_TRUE(planCropRotateScale(7, 5, 7, 5, &none, nullptr, 0.0f, m));
    EXPECT_TRUE(m.plainCopy);
    ASSERT_TRUE(planCropRotateScale(7, 5, 7, 5, nullptr, nullptr, 0.5f, m));
    EXPECT_FALSE(m.plainCopy);
}

TEST(CropRotateScale, HalvingAveragesAndSetsTheScale)
{
    FlexImageFloat src(64, 32, 3);
    fillPattern(src, [](int32_t x, int32_t y, int32_t) { return ((x + y) & 1) ? 240.0f : 40.0f; });
    src.scale = 1.5f;
    FlexImageFloat dst(0, 0, 3);
    ASSERT_TRUE(resampleCropRotateScale(src, 32, 16, nullptr, nullptr, dst, false, 0.0f));
    EXPECT_FLOAT_EQ(dst.scale, 3.0f);
    for (int32_t y = 1; y < 15; ++y)
        for (int32_t x = 1; x < 15; ++x)
            ASSERT_NEAR(at(dst, x, y, 1), 140.0f, 1e-3) << x << "," << y;
    // With the nearest flag the checkerboard's even pixels come through untouched.
    ASSERT_TRUE(resampleCropRotateScale(src, 32, 16, nullptr, nullptr, dst, true, 0.0f));
    EXPECT_EQ(at(dst, 3, 3), 40.0f);
}

TEST(CropRotateScale, DoublingInterpolatesBetweenSourcePixels)
{
    FlexImageFloat src(4, 4, 3);
    fillPattern(src, [](int32_t x, int32_t, int32_t) { return float(x * 100); });
    FlexImageFloat dst(0, 0, 3);
    ASSERT_TRUE(resampleCropRotateScale(src, 8, 8, nullptr, nullptr, dst, false, 0.0f));
    EXPECT_FLOAT_EQ(dst.scale, 0.5f);
    EXPECT_FLOAT_EQ(at(dst, 0, 2), 0.0f);
    EXPECT_FLOAT_EQ(at(dst, 1, 2), 50.0f);
    EXPECT_FLOAT_EQ(at(dst, 2, 2), 100.0f);
    EXPECT_FLOAT_EQ(at(dst, 5, 2), 250.0f);
}

TEST(CropRotateScale, OtherAspectIsACentredCutNotADistortion)
{
    FlexImageFloat src(300, 100, 3);
    fillPattern(src, [](int32_t x, int32_t y, int32_t) { return float(x) * 0.5f + float(y) * 0.001f; });
    FlexImageFloat dst(0, 0, 3);
    ASSERT_TRUE(resampleCropRotateScale(src, 100, 100, nullptr, nullptr, dst, false, 0.0f));
    for (int32_t x : {0, 37, 99})
        EXPECT_FLOAT_EQ(at(dst, x, 10), float(x + 100) * 0.5f + 0.01f);
    EXPECT_FLOAT_EQ(dst.scale, 1.0f);

    // A tall target keeps the full height of a square source and cuts the sides.
    FlexImageFloat sq(100, 100, 3);
    fillPattern(sq, [](int32_t x, int32_t, int32_t) { return float(x); });
    ASSERT_TRUE(resampleCropRotateScale(sq, 50, 100, nullptr, nullptr, dst, false, 0.0f));
    EXPECT_FLOAT_EQ(at(dst, 0, 50), 25.0f);
    EXPECT_FLOAT_EQ(at(dst, 49, 50), 74.0f);
}

TEST(CropRotateScale, NoTargetTakesTheCropSizeUnscaledWithMargins)
{
    FlexImageFloat src(100, 100, 3);
    fillPattern(src, [](int32_t x, int32_t y, int32_t) { return float(x + 1000 * y); });
    src.scale = 2.0f;
    CropFractions crop{0.1f, 0.1f, 0.2f, 0.0f};
    FlexImageFloat dst(0, 0, 3);
    ASSERT_TRUE(resampleCropRotateScale(src, 0, 0, &crop, nullptr, dst, false, 0.0f));
    EXPECT_EQ(dst.width, 79);
    EXPECT_EQ(dst.height, 79);
    EXPECT_EQ(dst.scale, 2.0f);
    EXPECT_EQ(at(dst, 0, 0), 10.0f + 1000.0f * 20.0f);

    // Margins widen the box and are left on the image; the crop's corner sits inside them.
    ResampleMargins margins{5, 5, 3, 200};
    ASSERT_TRUE(resampleCropRotateScale(src, 0, 0, &crop, &margins, dst, false, 0.0f));
    EXPECT_EQ(dst.marginLeft, 5);
    EXPECT_EQ(dst.marginTop, 3);
    EXPECT_EQ(dst.marginBottom, 0);
    EXPECT_EQ(dst.width, 89);
    EXPECT_EQ(dst.height, 82);
    EXPECT_EQ(at(dst, 5, 3), 10.0f + 1000.0f * 20.0f);
    EXPECT_EQ(at(dst, 0, 0), 5.0f + 1000.0f * 17.0f);
}

TEST(CropRotateScale, CropAndStraightenLeaveNoEmptyCorners)
{
    const int32_t W = 600, H = 400;
    FlexImageFloat src(W, H, 3);
    // A bright frame two pixels wide around a flat grey: any read past the edge drags it in.
    fillPattern(src, [](int32_t x, int32_t y, int32_t) {
        return (x < 2 || y < 2 || x >= 598 || y >= 398) ? 255.0f : 100.0f;
    });
    CropFractions crop{0.05f, 0.15f, 0.1f, 0.0f};
    for (float angle : {-25.0f, -7.0f, 0.5f, 4.0f, 12.0f, 30.0f, 170.0f}) {
        for (const CropFractions* c : std::vector<const CropFractions*>{nullptr, &crop}) {
            CropRotateScaleMapping m;
            ASSERT_TRUE(planCropRotateScale(W, H, 240, 160, c, nullptr, angle, m));
            // Every corner reads inside the picture (pixel i covers i - 0.5 .. i + 0.5).
            for (int32_t cy : {0, 159})
                for (int32_t cx : {0, 239}) {
                    double sx, sy;
                    m.position(cx, cy, sx, sy);
                    EXPECT_GE(sx, -0.5) << angle;
                    EXPECT_LE(sx, W - 0.5) << angle;
                    EXPECT_GE(sy, -0.5) << angle;
                    EXPECT_LE(sy, H - 0.5) << angle;
                }
            if (!c)
                continue;
            // Cropped, the frame lies outside what is kept, so nothing of it may show.
            FlexImageFloat dst(0, 0, 3);
            ASSERT_TRUE(resampleCropRotateScale(src, 240, 160, c, nullptr, dst, false, angle));
            float worst = 0.0f;
            for (int64_t i = 0; i < dst.sampleCount(); ++i)
                worst = std::max(worst, std::abs(dst.data[i] - 100.0f));
            EXPECT_LT(worst, 0.01f) << "angle " << angle;
        }
    }
}

TEST(CropRotateScale, TurnIsAboutTheCentreInTheRightSense)
{
    // The centre stays put and the per-column and per-row steps form a turn by the angle, shortened
    // by the zoom.
    CropRotateScaleMapping m;
    ASSERT_TRUE(planCropRotateScale(101, 101, 101, 101, nullptr, nullptr, 10.0f, m));
    double cx, cy;
    m.position(50, 50, cx, cy);
    EXPECT_NEAR(cx, 50.0, 1.0);
    EXPECT_NEAR(cy, 50.0, 1.0);
    const double len = std::hypot(m.columnX, m.columnY);
    EXPECT_NEAR(len, std::abs(m.zoom), 1e-9);
    EXPECT_NEAR(m.columnX * m.rowX + m.columnY * m.rowY, 0.0, 1e-12);
    EXPECT_NEAR(std::atan2(m.columnY, m.columnX) * 180.0 / 3.14159265358979, 10.0, 1e-9);
    EXPECT_LT(m.zoom, 1.0);
    // The footprint of a turn at the same size is over 1, so the box sampler smooths it.
    EXPECT_GT(m.footprint, 1.0);
}

TEST(CropRotateScale, LargeReductionWidensTheFootprint)
{
    CropRotateScaleMapping m;
    ASSERT_TRUE(planCropRotateScale(6000, 4000, 1500, 1000, nullptr, nullptr, 0.0f, m));
    EXPECT_DOUBLE_EQ(m.factor, 4.0);
    EXPECT_DOUBLE_EQ(m.footprint, 4.0 * 1.18);
    ASSERT_TRUE(planCropRotateScale(6000, 4000, 3000, 2000, nullptr, nullptr, 0.0f, m));
    EXPECT_DOUBLE_EQ(m.footprint, 2.0);
    // Sizes within a pixel count as unscaled.
    ASSERT_TRUE(planCropRotateScale(1000, 1000, 1000, 999, nullptr, nullptr, 0.0f, m));
    EXPECT_DOUBLE_EQ(m.factor, 1.0);
}

TEST(CropRotateScale, ChannelsAndDepths)
{
    FlexImageFloat src(20, 20, 3);
    for (int64_t i = 0; i < src.sampleCount(); ++i)
        src.data[i] = 77.0f;
    FlexImageFloat rgba(0, 0, 4);
    ASSERT_TRUE(resampleCropRotateScale(src, 10, 10, nullptr, nullptr, rgba, false, 3.0f));
    EXPECT_EQ(rgba.channels, 4);
    EXPECT_NEAR(at(rgba, 5, 5, 0), 77.0f, 1e-4);
    EXPECT_EQ(at(rgba, 5, 5, 3), 255.0f);

    FlexImage8 src8(40, 20, 3);
    for (int32_t y = 0; y < 20; ++y)
        for (int32_t x = 0; x < 40; ++x)
            for (int32_t c = 0; c < 3; ++c)
                src8.row(y)[x * 3 + c] = uint8_t((x & 1) ? 201 : 100);
    FlexImage8 dst8(0, 0, 3);
    ASSERT_TRUE(resampleCropRotateScale(src8, 20, 10, nullptr, nullptr, dst8, false, 0.0f));
    // (100 + 2 * 201 ... ) box of side 2: half, whole, half -> (100.5 + 100.5 + 100) / 2 rounds to 151.
    EXPECT_EQ(dst8.row(5)[5 * 3], 151);
}

TEST(CropRotateScale, NothingToDrawLeavesTheDestinationAlone)
{
    FlexImageFloat src(50, 50, 3);
    for (int64_t i = 0; i < src.sampleCount(); ++i)
        src.data[i] = 1.0f;
    FlexImageFloat dst(3, 3, 3);
    for (int64_t i = 0; i < dst.sampleCount(); ++i)
        dst.data[i] = 9.0f;
    CropFractions over{0.6f, 0.5f, 0.0f, 0.0f};
    EXPECT_FALSE(resampleCropRotateScale(src, 0, 0, &over, nullptr, dst, false, 0.0f));
    EXPECT_FALSE(resampleCropRotateScale(src, 20, 20, &over, nullptr, dst, false, 0.0f));
    FlexImageFloat empty(0, 0, 3);
    EXPECT_FALSE(resampleCropRotateScale(empty, 20, 20, nullptr, nullptr, dst, false, 0.0f));
    EXPECT_EQ(dst.width, 3);
    EXPECT_EQ(dst.data[0], 9.0f);
}
