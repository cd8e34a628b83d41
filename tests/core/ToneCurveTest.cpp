#include "core/ToneCurve.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>

namespace {

using Points = std::vector<ToneCurvePoint>;

void expectPoints(const ToneCurve& c, const Points& expected)
{
    ASSERT_EQ(c.points.size(), expected.size()) << c.toString();
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_FLOAT_EQ(c.points[i].x, expected[i].x) << "point " << i;
        EXPECT_FLOAT_EQ(c.points[i].y, expected[i].y) << "point " << i;
    }
}

void expectDiagonal(const ToneCurve& c)
{
    for (int32_t i = 0; i < ToneCurve::tableSize; ++i)
        ASSERT_NEAR(c.table()[i], double(i) / 2047.0, 2e-6) << i;
}

} // namespace

TEST(ToneCurve, IdentityTableIsExactWithoutSubdivision)
{
    const ToneCurve c;
    EXPECT_TRUE(c.isIdentity());
    EXPECT_EQ(c.hueOffset, 180.0f);
    ASSERT_EQ(c.entries.size(), size_t(ToneCurve::tableSize));
    for (int32_t i = 0; i < ToneCurve::tableSize; ++i)
        ASSERT_EQ(c.table()[i], float(i) * 0.0004885198f) << i;
    EXPECT_EQ(c.table()[2047], 1.0f);
    expectDiagonal(c);
}

TEST(ToneCurve, CollinearPointsStayOnTheLine)
{
    const ToneCurve even(3);
    expectPoints(even, { { 0, 0 }, { 0.25f, 0.25f }, { 0.5f, 0.5f }, { 0.75f, 0.75f }, { 1, 1 } });
    EXPECT_FALSE(even.isIdentity());
    expectDiagonal(even);
    // Corner cutting is affine, so uneven spacing keeps the line too.
    expectDiagonal(ToneCurve(Points { { 0, 0 }, { 0.1f, 0.1f }, { 1, 1 } }));
}

TEST(ToneCurve, ThreePointCurvePassesNearTheInnerPoint)
{
    const ToneCurve c(Points { { 0, 0 }, { 0.5f, 1 }, { 1, 1 } });
    EXPECT_EQ(c.lookup(0.0f), 0.0f);
    EXPECT_NEAR(c.lookup(1.0f), 1.0f, 1e-6);
    // The inner vertex and its two neighbours refine among themselves and converge to
    // (P0 + 4 P1 + P2) / 6 = (0.5, 5/6).
    EXPECT_NEAR(c.lookup(0.5f), 5.0 / 6.0, 1e-3);
    for (int32_t i = 1; i < ToneCurve::tableSize; ++i)
        ASSERT_GE(c.table()[i], c.table()[i - 1]) << i;
    // Mirrored control points, mirrored table: both ends are treated alike.
    const ToneCurve hump(Points { { 0, 0 }, { 0.2f, 0.9f }, { 0.8f, 0.9f }, { 1, 0 } });
    for (int32_t i = 0; i < ToneCurve::tableSize; ++i)
        ASSERT_NEAR(hump.table()[i], hump.table()[2047 - i], 2e-5) << i;
}

TEST(ToneCurve, ClosedRingJoinsItsEnds)
{
    ToneCurve c(Points { { 0, 0.2f }, { 0.3f, 0.8f }, { 0.6f, 0.4f }, { 1, 0.2f } });
    EXPECT_EQ(c.table()[0], 0.2f);
    c.closed = true;
    c.rebuild();
    EXPECT_NEAR(c.table()[0], c.table()[2047], 1e-5);
    // The wrapped neighbours pull the seam off the end points' y.
    EXPECT_GT(std::fabs(c.table()[0] - 0.2f), 1e-3f);

    // Unequal ends meet at their mean; the points themselves are left alone.
    ToneCurve flat(Points { { 0, 0.2f }, { 1, 0.6f } });
    flat.closed = true;
    flat.rebuild();
    EXPECT_NEAR(flat.lookup(0.0f), 0.4f, 1e-7);
    EXPECT_NEAR(flat.lookup(0.7f), 0.4f, 1e-7);
    EXPECT_EQ(flat.points.back().y, 0.6f);
    EXPECT_FALSE(flat.isIdentity());
}

TEST(ToneCurve, LookupEndsAndInterpolation)
{
    const ToneCurve c(Points { { 0, 0.1f }, { 0.4f, 0.8f }, { 1, 0.3f } });
    EXPECT_EQ(c.lookup(0.0f), c.table()[0]);
    EXPECT_EQ(c.lookup(1.0f), c.table()[2047]);
    EXPECT_EQ(c.lookup(-3.0f), c.table()[0]);
    EXPECT_EQ(c.lookup(7.0f), c.table()[2047]);
    EXPECT_EQ(c.lookup(NAN), c.table()[0]);
    EXPECT_EQ(c.lookup(1024.0f / 2047.0f), c.table()[1024]);
    EXPECT_NEAR(c.lookup(1000.25f / 2047.0f), 0.75f * c.table()[1000] + 0.25f * c.table()[1001], 1e-6);
}

TEST(ToneCurve, SetFromStringOddities)
{
    ToneCurve c(std::string("0 .5 .25 .5 .5 .5 .75 .5 1 .5"));
    EXPECT_EQ(c.pointCount(), 5);
    EXPECT_NEAR(c.lookup(0.37f), 0.5f, 1e-6);
    // A lone x at the end is dropped.
    c.setFromString("0 0 .5 .9 1 1 0.7");
    expectPoints(c, { { 0, 0 }, { 0.5f, 0.9f }, { 1, 1 } });
    // No complete pair: the identity.
    c.setFromString("0.3");
    EXPECT_TRUE(c.isIdentity());
    // One point collapses to (0, 0) alone: flat zero.
    c.setFromString("0.7 0.4");
    expectPoints(c, { { 0, 0 } });
    EXPECT_EQ(c.lookup(1.0f), 0.0f);
    // Two points are stretched to x = 0 and x = 1.
    c.setFromString("0.2 0.3 0.8 0.9");
    expectPoints(c, { { 0, 0.3f }, { 1, 0.9f } });
    EXPECT_NEAR(c.lookup(0.5f), 0.6f, 1e-6);
    // An empty token (doubled or leading blank) ends the list; a NUL ends the text.
    c.setFromString("0 0.2  1 1");
    expectPoints(c, { { 0, 0 } });
    c.setFromString(" 0 0.2 1 1");
    EXPECT_TRUE(c.isIdentity());
    c.setFromString(std::string("0 0.1 .5 .5\0 1 1 1 1", 20));
    expectPoints(c, { { 0, 0.1f }, { 1, 0.5f } });
    // Junk reads as 0; a number followed by junk keeps its number.
    c.setFromString("abc 0.4 1x +0.6");
    expectPoints(c, { { 0, 0.4f }, { 1, 0.6f } });
}

TEST(ToneCurve, ToStringRoundTrip)
{
    ToneCurve c(std::string("0 0 0.333333 0.125 1 -0.5"));
    EXPECT_EQ(c.toString(), "0.000000 0.000000 0.333333 0.125000 1.000000 -0.500000");
    const ToneCurve back(c.toString());
    for (int32_t i = 0; i < ToneCurve::tableSize; ++i)
        ASSERT_EQ(back.table()[i], c.table()[i]);
}

TEST(ToneCurve, EditsRebuildAndRefuseBadIndices)
{
    ToneCurve c;
    EXPECT_TRUE(c.setPoint(1, 1.0f, 0.5f));
    EXPECT_NEAR(c.lookup(1.0f), 0.5f, 1e-6);
    EXPECT_FALSE(c.setPoint(2, 0.5f, 0.5f));
    EXPECT_FALSE(c.removePoint(-1));
    c.addPoint(1.0f, 1.0f); // appended unsorted, as the animators do
    expectPoints(c, { { 0, 0 }, { 1, 0.5f }, { 1, 1 } });
    EXPECT_TRUE(c.removePoint(2));
    EXPECT_NEAR(c.lookup(1.0f), 0.5f, 1e-6);

    // Removing an inner point moves the next one to the midpoint of the removed one's neighbours.
    ToneCurve d(std::string("0 0 0.2 0.6 0.5 0.5 1 1"));
    EXPECT_TRUE(d.removePoint(1));
    expectPoints(d, { { 0, 0 }, { 0.25f, 0.25f }, { 1, 1 } });
    expectDiagonal(d);

    ToneCurve one(std::string("0.5 0.5"));
    EXPECT_FALSE(one.removePoint(0));
    EXPECT_EQ(one.pointCount(), 1);
}
