#include "core/ColorMath.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

struct Hsv {
    float h, s, v;
};

Hsv toHsv(float r, float g, float b)
{
    Hsv out {};
    rgbToHsv(r, g, b, out.h, out.s, out.v);
    return out;
}

ColorRGB fromHsv(float h, float s, float v)
{
    ColorRGB out;
    hsvToRgb(h, s, v, out.r, out.g, out.b);
    return out;
}

Hsv toHsl(float r, float g, float b)
{
    Hsv out {};
    rgbToHsl(r, g, b, out.h, out.s, out.v);
    return out;
}

ColorRGB fromHsl(float h, float s, float l)
{
    ColorRGB out;
    hslToRgb(h, s, l, out.r, out.g, out.b);
    return out;
}

void expectRgbNear(const ColorRGB& c, float r, float g, float b, float tol)
{
    EXPECT_NEAR(c.r, r, tol);
    EXPECT_NEAR(c.g, g, tol);
    EXPECT_NEAR(c.b, b, tol);
}

std::vector<float> sampleChannels()
{
    std::vector<float> v;
    for (int i = 0; i <= 255; i += 15)
        v.push_back(float(i));
    v.push_back(1.0f);
    v.push_back(127.5f);
    v.push_back(254.9f);
    return v;
}

} // namespace

TEST(ColorMathLuminance, LinearWeightsRoundOnceFromDouble)
{
    EXPECT_EQ(luminance(255.0f, 255.0f, 255.0f), 255.0f);
    EXPECT_EQ(luminance(0.0f, 0.0f, 0.0f), 0.0f);
    EXPECT_FLOAT_EQ(luminance(255.0f, 0.0f, 0.0f), 76.245f);
    // 8.065 exactly: summing in float would round to 8.0650005 instead.
    EXPECT_EQ(luminance(0.0f, 5.0f, 45.0f), float(8.065));
    EXPECT_EQ(luminance(0.0f, 5.0f, 51.0f), float(8.749));
}

TEST(ColorMathLuminance, RootOfSquares)
{
    EXPECT_FLOAT_EQ(luminanceRootOfSquares(255.0f, 255.0f, 255.0f), 255.0f);
    EXPECT_FLOAT_EQ(luminanceRootOfSquares(100.0f, 0.0f, 0.0f), float(100.0 * std::sqrt(0.299)));
    EXPECT_FLOAT_EQ(luminanceRootOfSquares(30.0f, 40.0f, 0.0f),
                    float(std::sqrt(0.299 * 900.0 + 0.587 * 1600.0)));
}

TEST(ColorMathLuminance, PixelUsesChannelZeroBelowThreeChannels)
{
    const float grey[2] = { 42.0f, 255.0f };
    EXPECT_EQ(pixelLuminance(grey, 1), 42.0f);
    EXPECT_EQ(pixelLuminance(grey, 2), 42.0f);
    const float rgba[4] = { 0.0f, 5.0f, 45.0f, 255.0f };
    EXPECT_EQ(pixelLuminance(rgba, 4), luminance(0.0f, 5.0f, 45.0f));
    EXPECT_EQ(pixelLuminance(rgba, 3), float(8.065));
}

TEST(ColorMathHsv, PrimariesAndSecondaries)
{
    struct Case {
        float r, g, b, h;
    } cases[] = {
        { 255, 0, 0, 0 },   { 255, 255, 0, 60 },  { 0, 255, 0, 120 },
        { 0, 255, 255, 180 }, { 0, 0, 255, 240 }, { 255, 0, 255, 300 },
    };
    for (const Case& c : cases) {
        const Hsv hsv = toHsv(c.r, c.g, c.b);
        EXPECT_NEAR(hsv.h, c.h, 1e-4) << c.r << " " << c.g << " " << c.b;
        EXPECT_EQ(hsv.s, 1.0f);
        EXPECT_EQ(hsv.v, 1.0f);
    }
}

TEST(ColorMathHsv, HandComputedValues)
{
    // v = 100/255, min = 25/255: s = 75/100, h = 60 * 25 / 75.
    Hsv hsv = toHsv(100.0f, 50.0f, 25.0f);
    EXPECT_NEAR(hsv.h, 20.0f, 1e-4);
    EXPECT_NEAR(hsv.s, 0.75f, 1e-6);
    EXPECT_FLOAT_EQ(hsv.v, 100.0f / 255.0f);

    hsv = toHsv(255.0f, 128.0f, 0.0f);
    EXPECT_NEAR(hsv.h, 60.0 * 128.0 / 255.0, 1e-4);

    // Negative raw hue wraps: red max, b above g.
    hsv = toHsv(200.0f, 0.0f, 50.0f);
    EXPECT_NEAR(hsv.h, 360.0 - 60.0 * 50.0 / 200.0, 1e-4);
    EXPECT_GE(hsv.h, 0.0f);
    EXPECT_LT(hsv.h, 360.0f);
}

TEST(ColorMathHsv, GreyAndBlackHaveHueAndSaturationZero)
{
    Hsv hsv = toHsv(128.0f, 128.0f, 128.0f);
    EXPECT_EQ(hsv.h, 0.0f);
    EXPECT_EQ(hsv.s, 0.0f);
    EXPECT_FLOAT_EQ(hsv.v, 128.0f / 255.0f);
    hsv = toHsv(0.0f, 0.0f, 0.0f);
    EXPECT_EQ(hsv.h, 0.0f);
    EXPECT_EQ(hsv.s, 0.0f);
    EXPECT_EQ(hsv.v, 0.0f);

    float h = -1.0f, s = -1.0f, v = -1.0f;
    rgbToHsvInline(0.0f, 0.0f, 0.0f, h, s, v);
    EXPECT_EQ(h, 0.0f);
    EXPECT_EQ(s, 0.0f);
    EXPECT_EQ(v, 0.0f);
    rgbToHsvInline(77.0f, 77.0f, 77.0f, h, s, v);
    EXPECT_EQ(h, 0.0f);
    EXPECT_EQ(s, 0.0f);
}

TEST(ColorMathHsv, TiesFavourRedThenGreen)
{
    // With r = g = 5 and b = 0 the red and green formulas round to 60.0000038 and 59.9999962.
    const float d = float(5 * kInv255);
    const float m = 60.0f * (1.0f / d);
    const float redBranch = d * m;
    const float greenBranch = -d * m + 120.0f;
    ASSERT_NE(redBranch, greenBranch);
    EXPECT_EQ(toHsv(5.0f, 5.0f, 0.0f).h, redBranch);
    float h, s, v;
    rgbToHsvInline(5.0f, 5.0f, 0.0f, h, s, v);
    EXPECT_EQ(h, redBranch);

    // Red and green share the top: the red formula. Green and blue: the green one.
    EXPECT_EQ(toHsv(255.0f, 255.0f, 0.0f).h, 60.0f);
    EXPECT_NEAR(toHsv(10.0f, 200.0f, 200.0f).h, 180.0f, 1e-4);
}

TEST(ColorMathHsv, ToRgbSectors)
{
    expectRgbNear(fromHsv(0.0f, 1.0f, 1.0f), 255, 0, 0, 1e-4f);
    expectRgbNear(fromHsv(120.0f, 1.0f, 1.0f), 0, 255, 0, 1e-4f);
    expectRgbNear(fromHsv(240.0f, 1.0f, 1.0f), 0, 0, 255, 1e-4f);
    expectRgbNear(fromHsv(30.0f, 1.0f, 1.0f), 255, 127.5f, 0, 1e-3f);
    // Sector 3, q = 1/3: p = 0.4, (1 - q s) v = 2/3, v = 0.8.
    expectRgbNear(fromHsv(200.0f, 0.5f, 0.8f), 102, 170, 204, 1e-3f);
    // Sector 5, q = 1/2: (v, p, (1 - q s) v).
    expectRgbNear(fromHsv(330.0f, 1.0f, 1.0f), 255, 0, 127.5f, 1e-3f);
    // No saturation: grey whatever the hue.
    const ColorRGB grey = fromHsv(123.0f, 0.0f, 0.4f);
    EXPECT_EQ(grey.r, 0.4f * 255.0f);
    EXPECT_EQ(grey.g, grey.r);
    EXPECT_EQ(grey.b, grey.r);
}

TEST(ColorMathHsv, HueOutsideOneTurnWraps)
{
    const ColorRGB a = fromHsv(-30.0f, 0.7f, 0.9f);
    const ColorRGB b = fromHsv(330.0f, 0.7f, 0.9f);
    EXPECT_EQ(a.r, b.r);
    EXPECT_EQ(a.g, b.g);
    EXPECT_EQ(a.b, b.b);
    const ColorRGB c = fromHsv(-390.0f, 0.7f, 0.9f);
    const ColorRGB d = fromHsv(690.0f, 0.7f, 0.9f);
    EXPECT_EQ(c.r, b.r);
    EXPECT_EQ(d.g, b.g);
    // Whole turns land on red, never on the magenta of a missing sector 6.
    for (float h : { 360.0f, -360.0f, 720.0f, -720.0f })
        expectRgbNear(fromHsv(h, 1.0f, 1.0f), 255, 0, 0, 1e-3f);
}

TEST(ColorMathHsv, RoundTripOverGrid)
{
    const std::vector<float> ch = sampleChannels();
    for (float r : ch)
        for (float g : ch)
            for (float b : ch) {
                const Hsv hsv = toHsv(r, g, b);
                ASSERT_GE(hsv.h, 0.0f);
                ASSERT_LT(hsv.h, 360.0f);
                const ColorRGB back = fromHsv(hsv.h, hsv.s, hsv.v);
                ASSERT_NEAR(back.r, r, 2e-3) << r << " " << g << " " << b;
                ASSERT_NEAR(back.g, g, 2e-3) << r << " " << g << " " << b;
                ASSERT_NEAR(back.b, b, 2e-3) << r << " " << g << " " << b;
            }
}

TEST(ColorMathHsv, InlineVariantsMatchBitForBit)
{
    const std::vector<float> ch = sampleChannels();
    for (float r : ch)
        for (float g : ch)
            for (float b : ch) {
                float h1, s1, v1, h2, s2, v2;
                rgbToHsv(r, g, b, h1, s1, v1);
                rgbToHsvInline(r, g, b, h2, s2, v2);
                ASSERT_EQ(h1, h2) << r << " " << g << " " << b;
                ASSERT_EQ(s1, s2) << r << " " << g << " " << b;
                ASSERT_EQ(v1, v2) << r << " " << g << " " << b;
            }
    for (float h = -725.0f; h <= 725.0f; h += 2.5f)
        for (float s : { 0.0f, 0.1f, 0.5f, 0.99f, 1.0f })
            for (float v : { 0.0f, 0.3f, 1.0f }) {
                float r1, g1, b1, r2, g2, b2;
                hsvToRgb(h, s, v, r1, g1, b1);
                hsvToRgbInline(h, s, v, r2, g2, b2);
                ASSERT_EQ(r1, r2) << h << " " << s << " " << v;
                ASSERT_EQ(g1, g2) << h << " " << s << " " << v;
                ASSERT_EQ(b1, b2) << h << " " << s << " " << v;
            }
}

TEST(ColorMathHsv, SetSaturationAndHueKeepTheRest)
{
    const ColorRGB half = setSaturation({ 255.0f, 0.0f, 0.0f }, 0.5f);
    expectRgbNear(half, 255, 127.5f, 127.5f, 1e-3f);
    const ColorRGB green = setHue({ 255.0f, 0.0f, 0.0f }, 120.0f);
    expectRgbNear(green, 0, 255, 0, 1e-3f);

    const ColorRGB src { 180.0f, 90.0f, 30.0f };
    const Hsv before = toHsv(src.r, src.g, src.b);
    const Hsv afterHue = [&] {
        const ColorRGB c = setHue(src, 250.0f);
        return toHsv(c.r, c.g, c.b);
    }();
    EXPECT_NEAR(afterHue.h, 250.0f, 1e-3);
    EXPECT_NEAR(afterHue.s, before.s, 1e-5);
    EXPECT_NEAR(afterHue.v, before.v, 1e-5);
    // Grey stays grey, at its own value, when only its hue changes.
    expectRgbNear(setHue({ 90.0f, 90.0f, 90.0f }, 200.0f), 90, 90, 90, 1e-3f);
}

TEST(ColorMathHsl, HandComputedValues)
{
    Hsv hsl = toHsl(255.0f, 0.0f, 0.0f);
    EXPECT_NEAR(hsl.h, 0.0f, 1e-4);
    EXPECT_FLOAT_EQ(hsl.s, 1.0f);
    EXPECT_FLOAT_EQ(hsl.v, 0.5f);

    // l = (100 + 25) / 510, s = 75 / 125, h = 60 * 25 / 75.
    hsl = toHsl(100.0f, 50.0f, 25.0f);
    EXPECT_NEAR(hsl.h, 20.0f, 1e-4);
    EXPECT_NEAR(hsl.s, 0.6f, 1e-6);
    EXPECT_NEAR(hsl.v, 125.0 / 510.0, 1e-6);

    // Upper half uses d / (2 - M - m): 100 / (510 - 300).
    hsl = toHsl(200.0f, 150.0f, 100.0f);
    EXPECT_NEAR(hsl.h, 30.0f, 1e-4);
    EXPECT_NEAR(hsl.s, 100.0 / 210.0, 1e-6);
    EXPECT_NEAR(hsl.v, 300.0 / 510.0, 1e-6);

    EXPECT_NEAR(toHsl(0.0f, 100.0f, 200.0f).h, 210.0f, 1e-4);
    EXPECT_NEAR(toHsl(200.0f, 0.0f, 100.0f).h, 330.0f, 1e-4);
    EXPECT_NEAR(toHsl(0.0f, 255.0f, 128.0f).h, 120.0 + 60.0 * 128.0 / 255.0, 1e-4);
}

TEST(ColorMathHsl, BlackGreyAndWhite)
{
    Hsv hsl = toHsl(0.0f, 0.0f, 0.0f);
    EXPECT_EQ(hsl.h, 0.0f);
    EXPECT_EQ(hsl.s, 0.0f);
    EXPECT_EQ(hsl.v, 0.0f);
    hsl = toHsl(128.0f, 128.0f, 128.0f);
    EXPECT_EQ(hsl.h, 0.0f);
    EXPECT_EQ(hsl.s, 0.0f);
    EXPECT_FLOAT_EQ(hsl.v, 128.0f / 255.0f);
    hsl = toHsl(255.0f, 255.0f, 255.0f);
    EXPECT_EQ(hsl.s, 0.0f);
    EXPECT_FLOAT_EQ(hsl.v, 1.0f);

    expectRgbNear(fromHsl(77.0f, 0.0f, 0.25f), 63.75f, 63.75f, 63.75f, 1e-4f);
    expectRgbNear(fromHsl(77.0f, 1.0f, 0.0f), 0, 0, 0, 0.0f);
    expectRgbNear(fromHsl(0.0f, 1.0f, 0.5f), 255, 0, 0, 1e-4f);
    expectRgbNear(fromHsl(360.0f, 1.0f, 0.5f), 255, 0, 0, 1e-4f);
}

TEST(ColorMathHsl, HueAgreesWithHsvAndRoundTrips)
{
    const std::vector<float> ch = sampleChannels();
    for (float r : ch)
        for (float g : ch)
            for (float b : ch) {
                const Hsv hsl = toHsl(r, g, b);
                const Hsv hsv = toHsv(r, g, b);
                ASSERT_GE(hsl.h, 0.0f);
                ASSERT_LT(hsl.h, 360.0f);
                if (hsv.s > 0.0f) {
                    // The two hues may sit either side of the 0/360 seam.
                    const float diff = std::fabs(hsl.h - hsv.h);
                    ASSERT_LT(std::fmin(diff, 360.0f - diff), 1e-3f) << r << " " << g << " " << b;
                }
                const ColorRGB back = fromHsl(hsl.h, hsl.s, hsl.v);
                ASSERT_NEAR(back.r, r, 2e-3) << r << " " << g << " " << b;
                ASSERT_NEAR(back.g, g, 2e-3) << r << " " << g << " " << b;
                ASSERT_NEAR(back.b, b, 2e-3) << r << " " << g << " " << b;
            }
}

TEST(ColorMathLab, ReferenceColours)
{
    float L, a, b;
    rgbToLab(255.0f, 255.0f, 255.0f, L, a, b);
    EXPECT_NEAR(L, 100.0f, 1e-4);
    EXPECT_NEAR(a, 0.0f, 1e-4);
    EXPECT_NEAR(b, 0.0f, 1e-4);

    rgbToLab(0.0f, 0.0f, 0.0f, L, a, b);
    EXPECT_NEAR(L, 0.0f, 1e-4);
    EXPECT_NEAR(a, 0.0f, 1e-4);
    EXPECT_NEAR(b, 0.0f, 1e-4);

    // Full red: the textbook (53.24, 80.09, 67.20).
    rgbToLab(255.0f, 0.0f, 0.0f, L, a, b);
    EXPECT_NEAR(L, 53.2406f, 1e-3);
    EXPECT_NEAR(a, 80.0942f, 1e-3);
    EXPECT_NEAR(b, 67.2015f, 1e-3);

    // No gamma decoding: mid grey is L = 116 cbrt(128/255) - 16, about 76.19, not 53.6.
    rgbToLab(128.0f, 128.0f, 128.0f, L, a, b);
    EXPECT_NEAR(L, 116.0 * std::cbrt(128.0 / 255.0) - 16.0, 1e-3);
    EXPECT_NEAR(a, 0.0f, 1e-3);
    EXPECT_NEAR(b, 0.0f, 1e-3);

    // Below 0.008856 the linear segment: 116 (7.787 / 255 + 16 / 116) - 16.
    rgbToLab(1.0f, 1.0f, 1.0f, L, a, b);
    EXPECT_NEAR(L, 116.0 * (7.787 / 255.0 + 16.0 / 116.0) - 16.0, 1e-4);
}

TEST(ColorMathLab, BackToRgbClampsAndRoundTrips)
{
    float r, g, b;
    labToRgb(100.0f, 0.0f, 0.0f, r, g, b);
    EXPECT_NEAR(r, 255.0f, 0.05f);
    EXPECT_NEAR(g, 255.0f, 0.05f);
    EXPECT_NEAR(b, 255.0f, 0.05f);
    labToRgb(0.0f, 0.0f, 0.0f, r, g, b);
    EXPECT_NEAR(r, 0.0f, 1e-3f);
    labToRgb(150.0f, 0.0f, 0.0f, r, g, b);
    EXPECT_EQ(r, 255.0f);
    EXPECT_EQ(g, 255.0f);
    EXPECT_EQ(b, 255.0f);
    labToRgb(50.0f, 120.0f, -120.0f, r, g, b);
    for (float c : { r, g, b }) {
        EXPECT_GE(c, 0.0f);
        EXPECT_LE(c, 255.0f);
    }
    labToRgb(-20.0f, 0.0f, 0.0f, r, g, b);
    EXPECT_EQ(r, 0.0f);

    const std::vector<float> ch = sampleChannels();
    for (float rr : ch)
        for (float gg : ch)
            for (float bb : ch) {
                float L, a, lb;
                rgbToLab(rr, gg, bb, L, a, lb);
                labToRgb(L, a, lb, r, g, b);
                // The two matrices are six-digit inverses of each other.
                ASSERT_NEAR(r, rr, 0.05f) << rr << " " << gg << " " << bb;
                ASSERT_NEAR(g, gg, 0.05f) << rr << " " << gg << " " << bb;
                ASSERT_NEAR(b, bb, 0.05f) << rr << " " << gg << " " << bb;
            }
}

TEST(ColorMathShapedStep, EndsMiddleAndSymmetry)
{
    for (float p : { 0.1f, 0.5f, 1.0f, 2.0f, 3.7f, 10.0f })
        EXPECT_EQ(shapedStep(0.5f, p), 0.5f) << p;
    EXPECT_EQ(shapedStep(0.0f, 2.0f), 0.0f);
    EXPECT_EQ(shapedStep(-1.0f, 2.0f), 0.0f);
    EXPECT_EQ(shapedStep(NAN, 2.0f), 0.0f);
    EXPECT_EQ(shapedStep(1.0f, 2.0f), 1.0f);
    EXPECT_EQ(shapedStep(7.0f, 2.0f), 1.0f);
    EXPECT_FLOAT_EQ(shapedStep(0.25f, 2.0f), 0.125f);
    EXPECT_FLOAT_EQ(shapedStep(0.75f, 2.0f), 0.875f);
    EXPECT_FLOAT_EQ(shapedStep(0.3f, 1.0f), 0.3f);
    for (float t = 0.05f; t < 1.0f; t += 0.05f) {
        EXPECT_NEAR(shapedStep(t, 3.0f) + shapedStep(1.0f - t, 3.0f), 1.0f, 1e-6) << t;
        EXPECT_LT(shapedStep(t, 3.0f), shapedStep(t + 0.01f, 3.0f));
    }
}

TEST(ColorMathNearestPoint, ClosestWithTiesKeepingLowerIndex)
{
    const float pts[] = { 0.0f, 0.0f, 0.5f, 0.5f, 1.0f, 1.0f };
    EXPECT_EQ(nearestPoint(pts, 3, 0.6f, 0.4f), 1);
    EXPECT_EQ(nearestPoint(pts, 3, 0.9f, 2.0f), 2);
    EXPECT_EQ(nearestPoint(pts, 3, -5.0f, 0.1f), 0);
    // Equally far from points 0 and 1, and from 1 and 2.
    EXPECT_EQ(nearestPoint(pts, 3, 0.25f, 0.25f), 0);
    EXPECT_EQ(nearestPoint(pts, 3, 0.75f, 0.75f), 1);
    EXPECT_EQ(nearestPoint(pts, 1, 1.0f, 1.0f), 0);
    EXPECT_EQ(nearestPoint(pts, 0, 1.0f, 1.0f), 0);
    EXPECT_EQ(nearestPoint(nullptr, 5, 1.0f, 1.0f), 0);
    const float same[] = { 0.3f, 0.3f, 0.3f, 0.3f };
    EXPECT_EQ(nearestPoint(same, 2, 0.3f, 0.3f), 0);
}
