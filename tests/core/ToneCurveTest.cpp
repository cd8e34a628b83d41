#include "core/ToneCurve.h"

#include <clocale>
#include <cmath>
#include <gtest/gtest.h>
#include <string>

namespace {

constexpr float kStep = 0.0004885198f;

void expectPoints(const ToneCurve& c, std::initializer_list<ToneCurvePoint> expected)
{
    ASSERT_EQ(c.points.size(), expected.size()) << c.toString();
    size_t i = 0;
    for (const ToneCurvePoint& p : expected) {
        EXPECT_FLOAT_EQ(c.points[i].x, p.x) << "point " << i;
        EXPECT_FLOAT_EQ(c.points[i].y, p.y) << "point " << i;
        ++i;
    }
}

} // namespace

TEST(ToneCurveTable, IdentityIsTheStraightLineWithoutSubdivision)
{
    const ToneCurve c;
    EXPECT_TRUE(c.isIdentity());
    EXPECT_FALSE(c.closed);
    EXPECT_EQ(c.hueOffset, 180.0f);
    ASSERT_EQ(c.entries.size(), size_t(ToneCurve::tableSize));
    for (int32_t i = 0; i < ToneCurve::tableSize; ++i) {
        ASSERT_EQ(c.table()[i], float(i) * kStep) << i;
        ASSERT_NEAR(c.table()[i], double(i) / 2047.0, 1e-6) << i;
    }
    EXPECT_EQ(c.table()[0], 0.0f);
    EXPECT_EQ(c.table()[2047], 1.0f);
}

TEST(ToneCurveTable, IntermediatePointsStayOnTheDiagonal)
{
    const ToneCurve c(3);
    expectPoints(c, { { 0, 0 }, { 0.25f, 0.25f }, { 0.5f, 0.5f }, { 0.75f, 0.75f }, { 1, 1 } });
    EXPECT_FALSE(c.isIdentity());
    // Collinear control points subdivide onto the same line.
    for (int32_t i = 0; i < ToneCurve::tableSize; ++i)
        ASSERT_NEAR(c.table()[i], double(i) / 2047.0, 2e-6) << i;

    // Uneven spacing too: corner cutting is affine, so the line survives.
    const ToneCurve uneven(std::vector<ToneCurvePoint> { { 0, 0 }, { 0.1f, 0.1f }, { 1, 1 } });
    for (int32_t i = 0; i < ToneCurve::tableSize; ++i)
        ASSERT_NEAR(uneven.table()[i], double(i) / 2047.0, 2e-6) << i;
}

TEST(ToneCurveTable, ThreePointCurvePassesNearTheInnerPoint)
{
    const ToneCurve c(std::vector<ToneCurvePoint> { { 0, 0 }, { 0.5f, 1 }, { 1, 1 } });
    EXPECT_EQ(c.table()[0], 0.0f);
    EXPECT_NEAR(c.table()[2047], 1.0f, 1e-6);
    // The inner vertex's neighbourhood evolves on its own under the scheme, converging to
    // (P0 + 4 P1 + P2) / 6 = (0.5, 5/6): below the control point.
    EXPECT_LT(c.lookup(0.5f), 1.0f);
    EXPECT_NEAR(c.lookup(0.5f), 5.0 / 6.0, 1e-3);
    for (int32_t i = 1; i < ToneCurve::tableSize; ++i) {
        ASSERT_GE(c.table()[i], c.table()[i - 1]) << i;
        ASSERT_LE(c.table()[i], 1.0f + 1e-6f) << i;
    }
}

TEST(ToneCurveTable, SymmetricPointsGiveASymmetricTable)
{
    const ToneCurve c(std::vector<ToneCurvePoint> { { 0, 0 }, { 0.2f, 0.9f }, { 0.8f, 0.9f }, { 1, 0 } });
    for (int32_t i = 0; i < ToneCurve::tableSize; ++i)
        ASSERT_NEAR(c.table()[i], c.table()[2047 - i], 2e-5) << i;
    EXPECT_EQ(c.table()[0], 0.0f);
}

TEST(ToneCurveTable, SinglePointIsFlat)
{
    ToneCurve c;
    c.points = { { 0.3f, 0.7f } };
    c.rebuild();
    for (int32_t i = 0; i < ToneCurve::tableSize; ++i)
        ASSERT_EQ(c.table()[i], 0.7f);
}

TEST(ToneCurveTable, ClosedRingJoinsItsEnds)
{
    ToneCurve c(std::vector<ToneCurvePoint> { { 0, 0.2f }, { 0.3f, 0.8f }, { 0.6f, 0.4f }, { 1, 0.2f } });
    const float openFirst = c.table()[0];
    EXPECT_EQ(openFirst, 0.2f);
    c.closed = true;
    c.rebuild();
    EXPECT_NEAR(c.table()[0], c.table()[2047], 1e-5);
    // The wrap-around neighbours pull the seam off the control point's y.
    EXPECT_GT(std::fabs(c.table()[0] - 0.2f), 1e-3f);

    // Unequal ends meet at their mean.
    ToneCurve flat(std::vector<ToneCurvePoint> { { 0, 0.2f }, { 1, 0.6f } });
    flat.closed = true;
    flat.rebuild();
    for (int32_t i = 0; i < ToneCurve::tableSize; ++i)
        ASSERT_NEAR(flat.table()[i], 0.4f, 1e-7) << i;
    EXPECT_FALSE(flat.isIdentity());
    // Points are left as they were; only the table sees the ring.
    EXPECT_EQ(flat.points.front().y, 0.2f);
    EXPECT_EQ(flat.points.back().y, 0.6f);

    ToneCurve three(std::vector<ToneCurvePoint> { { 0, 0.1f }, { 0.5f, 0.9f }, { 1, 0.5f } });
    three.closed = true;
    three.rebuild();
    EXPECT_NEAR(three.table()[0], three.table()[2047], 1e-5);
}

TEST(ToneCurveLookup, EndsAndInterpolation)
{
    const ToneCurve c(std::vector<ToneCurvePoint> { { 0, 0.1f }, { 0.4f, 0.8f }, { 1, 0.3f } });
    EXPECT_EQ(c.lookup(0.0f), c.table()[0]);
    EXPECT_EQ(c.lookup(1.0f), c.table()[2047]);
    EXPECT_EQ(c.lookup(-3.0f), c.table()[0]);
    EXPECT_EQ(c.lookup(7.0f), c.table()[2047]);
    EXPECT_EQ(c.lookup(NAN), c.table()[0]);
    // On an entry: that entry exactly.
    EXPECT_EQ(c.lookup(1024.0f / 2047.0f), c.table()[1024]);
    // Between entries: the weighted pair.
    const float u = 1000.25f;
    const float x = u / 2047.0f;
    const float ux = x * 2047.0f;
    const float expected = c.table()[1001] * (ux - 1000.0f) + c.table()[1000] * (1001.0f - ux);
    EXPECT_EQ(c.lookup(x), expected);
    EXPECT_NEAR(c.lookup(x), 0.75f * c.table()[1000] + 0.25f * c.table()[1001], 1e-6);
    // Just below 1 stays inside the table.
    EXPECT_NEAR(c.lookup(std::nextafter(1.0f, 0.0f)), c.table()[2047], 1e-4);
}

TEST(ToneCurveText, ParsesPairsAndRebuilds)
{
    ToneCurve c(std::string("0 .5 .25 .5 .5 .5 .75 .5 1 .5"));
    EXPECT_EQ(c.pointCount(), 5);
    for (int32_t i = 0; i < ToneCurve::tableSize; ++i)
        ASSERT_NEAR(c.table()[i], 0.5f, 1e-6);
    c.setFromString("0 0 0.5 0.8 1 1");
    expectPoints(c, { { 0, 0 }, { 0.5f, 0.8f }, { 1, 1 } });
    EXPECT_GT(c.lookup(0.5f), 0.6f);
    c.setFromString("+0.0 -0.25 1e0 1.5");
    expectPoints(c, { { 0, -0.25f }, { 1, 1.5f } });
}

TEST(ToneCurveText, Oddities)
{
    ToneCurve c;
    // A lone x at the end is dropped.
    c.setFromString("0 0 .5 .9 1 1 0.7");
    expectPoints(c, { { 0, 0 }, { 0.5f, 0.9f }, { 1, 1 } });
    // Nothing at all, or just an x: the identity.
    c.setFromString("");
    expectPoints(c, { { 0, 0 }, { 1, 1 } });
    EXPECT_TRUE(c.isIdentity());
    c.setFromString("0.3");
    EXPECT_TRUE(c.isIdentity());
    // One point collapses to (0, 0) alone, a flat zero.
    c.setFromString("0.7 0.4");
    expectPoints(c, { { 0, 0 } });
    EXPECT_EQ(c.lookup(0.5f), 0.0f);
    EXPECT_EQ(c.lookup(1.0f), 0.0f);
    // Two points are stretched to x = 0 and x = 1.
    c.setFromString("0.2 0.3 0.8 0.9");
    expectPoints(c, { { 0, 0.3f }, { 1, 0.9f } });
    EXPECT_NEAR(c.lookup(0.5f), 0.6f, 1e-6);
    // A doubled blank ends the list.
    c.setFromString("0 0.2  1 1");
    expectPoints(c, { { 0, 0 } });
    c.setFromString("0 0.2 0.5 0.5 1 0.8 ");
    EXPECT_EQ(c.pointCount(), 3);
    c.setFromString(" 0 0 1 1");
    expectPoints(c, { { 0, 0 }, { 1, 1 } });
    // A NUL ends the text.
    c.setFromString(std::string("0 0.1 .5 .5\0 1 1 1 1", 20));
    expectPoints(c, { { 0, 0.1f }, { 1, 0.5f } });
    // Junk reads as 0, a number with trailing junk keeps its number.
    c.setFromString("abc 0.4 1x 0.6");
    expectPoints(c, { { 0, 0.4f }, { 1, 0.6f } });
}

TEST(ToneCurveText, WritesFixedSixDecimalsAndReadsBack)
{
    ToneCurve c(std::string("0 .5 1 .5"));
    EXPECT_EQ(c.toString(), "0.000000 0.500000 1.000000 0.500000");
    c.setFromString("0 0 0.333333 0.125 1 -0.5");
    const std::string text = c.toString();
    EXPECT_EQ(text, "0.000000 0.000000 0.333333 0.125000 1.000000 -0.500000");
    const ToneCurve back(text);
    ASSERT_EQ(back.pointCount(), 3);
    for (int32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(back.points[size_t(i)].x, c.points[size_t(i)].x);
        EXPECT_EQ(back.points[size_t(i)].y, c.points[size_t(i)].y);
    }
    for (int32_t i = 0; i < ToneCurve::tableSize; ++i)
        ASSERT_EQ(back.table()[i], c.table()[i]);
}

TEST(ToneCurveText, DecimalPointUnderCommaLocale)
{
    const char* previous = std::setlocale(LC_NUMERIC, nullptr);
    const std::string saved = previous ? previous : "C";
    if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8") && !std::setlocale(LC_NUMERIC, "fr_FR.UTF-8"))
        GTEST_SKIP() << "no locale with a decimal comma installed";
    ToneCurve c(std::string("0 0.25 1 0.75"));
    const std::string text = c.toString();
    std::setlocale(LC_NUMERIC, saved.c_str());
    expectPoints(c, { { 0, 0.25f }, { 1, 0.75f } });
    EXPECT_EQ(text, "0.000000 0.250000 1.000000 0.750000");
}

TEST(ToneCurveEdit, SetAddRemoveRebuild)
{
    ToneCurve c;
    EXPECT_TRUE(c.setPoint(1, 1.0f, 0.5f));
    EXPECT_NEAR(c.lookup(1.0f), 0.5f, 1e-6);
    EXPECT_FALSE(c.isIdentity());
    EXPECT_FALSE(c.setPoint(2, 0.5f, 0.5f));
    EXPECT_FALSE(c.setPoint(-1, 0.5f, 0.5f));
    expectPoints(c, { { 0, 0 }, { 1, 0.5f } });

    // Appended unsorted, as the animators do.
    c.addPoint(1.0f, 1.0f);
    expectPoints(c, { { 0, 0 }, { 1, 0.5f }, { 1, 1 } });
    EXPECT_NEAR(c.lookup(1.0f), 1.0f, 1e-6);

    // An end point just goes.
    EXPECT_TRUE(c.removePoint(2));
    expectPoints(c, { { 0, 0 }, { 1, 0.5f } });
    EXPECT_NEAR(c.lookup(1.0f), 0.5f, 1e-6);
    EXPECT_FALSE(c.removePoint(5));

    // An inner point: the one after it moves to the midpoint of the removed point's neighbours.
    ToneCurve d(std::string("0 0 0.2 0.6 0.5 0.5 1 1"));
    EXPECT_TRUE(d.removePoint(1));
    expectPoints(d, { { 0, 0 }, { 0.25f, 0.25f }, { 1, 1 } });
    for (int32_t i = 0; i < ToneCurve::tableSize; ++i)
        ASSERT_NEAR(d.table()[i], double(i) / 2047.0, 2e-6);

    // The last point stays.
    ToneCurve one(std::string("0.5 0.5"));
    ASSERT_EQ(one.pointCount(), 1);
    EXPECT_FALSE(one.removePoint(0));
    EXPECT_EQ(one.pointCount(), 1);
}

TEST(ToneCurveEdit, IdentityNeedsExactlyTheTwoCorners)
{
    EXPECT_TRUE(ToneCurve(std::string("0 0 1 1")).isIdentity());
    EXPECT_FALSE(ToneCurve(std::string("0 0 0.5 0.5 1 1")).isIdentity());
    EXPECT_FALSE(ToneCurve(std::string("0 0.0001 1 1")).isIdentity());
    ToneCurve ring;
    ring.closed = true;
    EXPECT_FALSE(ring.isIdentity());
}
