#include "core/ColorMath.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

struct Triple {
    float a, b, c;
};

Triple hsv(float r, float g, float b)
{
    Triple o {};
    rgbToHsv(r, g, b, o.a, o.b, o.c);
    return o;
}

Triple hsl(float r, float g, float b)
{
    Triple o {};
    rgbToHsl(r, g, b, o.a, o.b, o.c);
    return o;
}

Triple fromHsv(float h, float s, float v)
{
    Triple o {};
    hsvToRgb(h, s, v, o.a, o.b, o.c);
    return o;
}

void expectNear(const Triple& t, float a, float b, float c, float tol)
{
    EXPECT_NEAR(t.a, a, tol);
    EXPECT_NEAR(t.b, b, tol);
    EXPECT_NEAR(t.c, c, tol);
}

const std::vector<float> kChannels = { 0, 1, 15, 60, 100, 127.5f, 128, 200, 240, 254.9f, 255 };

} // namespace

TEST(ColorMath, LuminanceWeightsRoundOnceFromDouble)
{
    EXPECT_EQ(luminance(255, 255, 255), 255.0f);
    EXPECT_FLOAT_EQ(luminance(255, 0, 0), 76.245f);
    // 8.065 exactly; summing in float would give 8.0650005.
    EXPECT_EQ(luminance(0, 5, 45), float(8.065));
    EXPECT_FLOAT_EQ(luminanceRootOfSquares(100, 0, 0), float(100.0 * std::sqrt(0.299)));
    EXPECT_FLOAT_EQ(luminanceRootOfSquares(255, 255, 255), 255.0f);
    const float px[4] = { 0, 5, 45, 255 };
    EXPECT_EQ(pixelLuminance(px, 1), 0.0f);
    EXPECT_EQ(pixelLuminance(px + 1, 2), 5.0f);
    EXPECT_EQ(pixelLuminance(px, 4), float(8.065));
}

TEST(ColorMath, HsvHandComputed)
{
    const float hues[6][4] = { { 255, 0, 0, 0 },     { 255, 255, 0, 60 }, { 0, 255, 0, 120 },
                               { 0, 255, 255, 180 }, { 0, 0, 255, 240 },  { 255, 0, 255, 300 } };
    for (const auto& c : hues)
        expectNear(hsv(c[0], c[1], c[2]), c[3], 1, 1, 1e-4f);
    // v = 100/255, s = 75/100, h = 60 * 25 / 75.
    expectNear(hsv(100, 50, 25), 20, 0.75f, 100.0f / 255.0f, 1e-5f);
    // A negative raw hue wraps once.
    EXPECT_NEAR(hsv(200, 0, 50).a, 345.0f, 1e-4);
    // Grey and black: hue and saturation 0 in both variants.
    for (float g : { 0.0f, 128.0f }) {
        expectNear(hsv(g, g, g), 0, 0, g / 255.0f, 1e-7f);
        Triple in {};
        rgbToHsvInline(g, g, g, in.a, in.b, in.c);
        expectNear(in, 0, 0, g / 255.0f, 1e-7f);
    }
}

TEST(ColorMath, HsvTiesFavourRedThenGreen)
{
    // r = g = 5, b = 0: the red formula rounds to 60.0000038, the green one to 59.9999962.
    const float d = float(5 * kInv255);
    const float m = 60.0f * (1.0f / d);
    ASSERT_NE(d * m, -d * m + 120.0f);
    EXPECT_EQ(hsv(5, 5, 0).a, d * m);
    Triple in {};
    rgbToHsvInline(5, 5, 0, in.a, in.b, in.c);
    EXPECT_EQ(in.a, d * m);
}

TEST(ColorMath, HsvToRgbSectorsAndWrap)
{
    expectNear(fromHsv(30, 1, 1), 255, 127.5f, 0, 1e-3f);
    // Sector 3, q = 1/3: (p, (1 - q s) v, v) = (0.4, 2/3, 0.8).
    expectNear(fromHsv(200, 0.5f, 0.8f), 102, 170, 204, 1e-3f);
    expectNear(fromHsv(330, 1, 1), 255, 0, 127.5f, 1e-3f);
    expectNear(fromHsv(123, 0, 0.4f), 102, 102, 102, 0.0f);
    const Triple ref = fromHsv(330, 0.7f, 0.9f);
    for (float h : { -30.0f, -390.0f, 690.0f })
        expectNear(fromHsv(h, 0.7f, 0.9f), ref.a, ref.b, ref.c, 0.0f);
    // Whole turns are red, never the magenta a missing sector 6 would give.
    for (float h : { 360.0f, -360.0f, 720.0f })
        expectNear(fromHsv(h, 1, 1), 255, 0, 0, 1e-3f);
}

TEST(ColorMath, HsvRoundTripAndInlineVariantsMatchBitForBit)
{
    for (float r : kChannels)
        for (float g : kChannels)
            for (float b : kChannels) {
                const Triple p = hsv(r, g, b);
                Triple in {};
                rgbToHsvInline(r, g, b, in.a, in.b, in.c);
                ASSERT_TRUE(p.a == in.a && p.b == in.b && p.c == in.c) << r << " " << g << " " << b;
                ASSERT_TRUE(p.a >= 0.0f && p.a < 360.0f);
                const Triple back = fromHsv(p.a, p.b, p.c);
                ASSERT_NEAR(back.a, r, 2e-3);
                ASSERT_NEAR(back.b, g, 2e-3);
                ASSERT_NEAR(back.c, b, 2e-3);
            }
    for (float h = -725.0f; h <= 725.0f; h += 2.5f)
        for (float s : { 0.0f, 0.1f, 0.99f, 1.0f })
            for (float v : { 0.0f, 0.3f, 1.0f }) {
                const Triple p = fromHsv(h, s, v);
                Triple in {};
                hsvToRgbInline(h, s, v, in.a, in.b, in.c);
                ASSERT_TRUE(p.a == in.a && p.b == in.b && p.c == in.c) << h << " " << s << " " << v;
            }
}

TEST(ColorMath, SetSaturationAndHue)
{
    const ColorRGB half = setSaturation({ 255, 0, 0 }, 0.5f);
    expectNear({ half.r, half.g, half.b }, 255, 127.5f, 127.5f, 1e-3f);
    const ColorRGB moved = setHue({ 180, 90, 30 }, 250);
    const Triple before = hsv(180, 90, 30);
    expectNear(hsv(moved.r, moved.g, moved.b), 250, before.b, before.c, 1e-3f);
}

TEST(ColorMath, HslHandComputedAndRoundTrip)
{
    expectNear(hsl(255, 0, 0), 0, 1, 0.5f, 1e-6f);
    // l = 125/510, s = 75/125, h = 60 * 25 / 75.
    expectNear(hsl(100, 50, 25), 20, 0.6f, 125.0f / 510.0f, 1e-5f);
    // Upper half: s = d / (2 - M - m) = 100 / (510 - 300).
    expectNear(hsl(200, 150, 100), 30, 100.0f / 210.0f, 300.0f / 510.0f, 1e-5f);
    EXPECT_NEAR(hsl(0, 100, 200).a, 210.0f, 1e-4);
    EXPECT_NEAR(hsl(200, 0, 100).a, 330.0f, 1e-4);
    expectNear(hsl(0, 0, 0), 0, 0, 0, 0.0f);
    expectNear(hsl(128, 128, 128), 0, 0, 128.0f / 255.0f, 1e-7f);

    for (float r : kChannels)
        for (float g : kChannels)
            for (float b : kChannels) {
                const Triple l = hsl(r, g, b);
                const float hsvHue = hsv(r, g, b).a;
                const float diff = std::fabs(l.a - hsvHue);
                ASSERT_LT(std::fmin(diff, 360.0f - diff), 1e-3f) << r << " " << g << " " << b;
                Triple back {};
                hslToRgb(l.a, l.b, l.c, back.a, back.b, back.c);
                ASSERT_NEAR(back.a, r, 2e-3) << r << " " << g << " " << b;
                ASSERT_NEAR(back.b, g, 2e-3) << r << " " << g << " " << b;
                ASSERT_NEAR(back.c, b, 2e-3) << r << " " << g << " " << b;
            }
}

TEST(ColorMath, LabReferenceValuesClampAndRoundTrip)
{
    Triple lab {};
    rgbToLab(255, 255, 255, lab.a, lab.b, lab.c);
    expectNear(lab, 100, 0, 0, 1e-4f);
    // Full red, the textbook (53.24, 80.09, 67.20).
    rgbToLab(255, 0, 0, lab.a, lab.b, lab.c);
    expectNear(lab, 53.2406f, 80.0942f, 67.2015f, 1e-3f);
    // No gamma decoding: mid grey is 116 cbrt(128/255) - 16, about 76.19, not 53.6.
    rgbToLab(128, 128, 128, lab.a, lab.b, lab.c);
    expectNear(lab, float(116.0 * std::cbrt(128.0 / 255.0) - 16.0), 0, 0, 1e-3f);
    // Below 0.008856 the linear segment.
    rgbToLab(1, 1, 1, lab.a, lab.b, lab.c);
    EXPECT_NEAR(lab.a, 116.0 * (7.787 / 255.0 + 16.0 / 116.0) - 16.0, 1e-4);

    Triple rgb {};
    labToRgb(150, 0, 0, rgb.a, rgb.b, rgb.c);
    expectNear(rgb, 255, 255, 255, 0.0f);
    labToRgb(-20, 0, 0, rgb.a, rgb.b, rgb.c);
    expectNear(rgb, 0, 0, 0, 0.0f);
    for (float r : kChannels)
        for (float g : kChannels)
            for (float b : kChannels) {
                rgbToLab(r, g, b, lab.a, lab.b, lab.c);
                labToRgb(lab.a, lab.b, lab.c, rgb.a, rgb.b, rgb.c);
                // The two matrices are six-digit inverses of each other.
                ASSERT_NEAR(rgb.a, r, 0.05f) << r << " " << g << " " << b;
                ASSERT_NEAR(rgb.b, g, 0.05f) << r << " " << g << " " << b;
                ASSERT_NEAR(rgb.c, b, 0.05f) << r << " " << g << " " << b;
            }
}

TEST(ColorMath, ShapedStep)
{
    for (float p : { 0.1f, 1.0f, 2.0f, 3.7f, 10.0f })
        EXPECT_EQ(shapedStep(0.5f, p), 0.5f) << p;
    EXPECT_EQ(shapedStep(-1.0f, 2), 0.0f);
    EXPECT_EQ(shapedStep(NAN, 2), 0.0f);
    EXPECT_EQ(shapedStep(7.0f, 2), 1.0f);
    EXPECT_FLOAT_EQ(shapedStep(0.25f, 2), 0.125f);
    EXPECT_FLOAT_EQ(shapedStep(0.75f, 2), 0.875f);
    for (float t = 0.05f; t < 1.0f; t += 0.05f)
        EXPECT_NEAR(shapedStep(t, 3) + shapedStep(1.0f - t, 3), 1.0f, 1e-6) << t;
}

TEST(ColorMath, NearestPointTiesKeepLowerIndex)
{
    const float pts[] = { 0, 0, 0.5f, 0.5f, 1, 1 };
    EXPECT_EQ(nearestPoint(pts, 3, 0.6f, 0.4f), 1);
    EXPECT_EQ(nearestPoint(pts, 3, 0.9f, 2.0f), 2);
    EXPECT_EQ(nearestPoint(pts, 3, 0.25f, 0.25f), 0);
    EXPECT_EQ(nearestPoint(pts, 3, 0.75f, 0.75f), 1);
    EXPECT_EQ(nearestPoint(pts + 4, 1, 1, 1), 0);
    EXPECT_EQ(nearestPoint(nullptr, 5, 1, 1), 0);
}
