#include "document/core/QuarterTurn.h"

#include <gtest/gtest.h>

namespace {

// 3 x 2, one channel each pixel numbered row by row: 0 1 2 / 3 4 5 (first sample), second = 100 + that.
void numbered(FlexImageFloat& img)
{
    img.resize(3, 2, 2);
    for (int32_t y = 0; y < 2; ++y)
        for (int32_t x = 0; x < 3; ++x) {
            img.row(y)[x * 2] = float(y * 3 + x);
            img.row(y)[x * 2 + 1] = float(100 + y * 3 + x);
        }
}

} // namespace

TEST(QuarterTurn, ClockwiseMovesTheLeftColumnToTheTop)
{
    FlexImageFloat img;
    numbered(img);
    FlexImageFloat* same = &img;
    ASSERT_TRUE(turnQuarter(img, true));
    EXPECT_EQ(same, &img);
    ASSERT_EQ(img.width, 2);
    ASSERT_EQ(img.height, 3);
    // Clockwise: 3 0 / 4 1 / 5 2.
    const float expected[3][2] = {{3, 0}, {4, 1}, {5, 2}};
    for (int32_t y = 0; y < 3; ++y)
        for (int32_t x = 0; x < 2; ++x) {
            EXPECT_EQ(img.row(y)[x * 2], expected[y][x]) << x << "," << y;
            EXPECT_EQ(img.row(y)[x * 2 + 1], 100.0f + expected[y][x]);
        }
}

TEST(QuarterTurn, CounterClockwiseAndRoundTrips)
{
    FlexImageFloat img;
    numbered(img);
    ASSERT_TRUE(turnQuarter(img, false));
    // Counter-clockwise: 2 5 / 1 4 / 0 3.
    EXPECT_EQ(img.row(0)[0], 2.0f);
    EXPECT_EQ(img.row(0)[2], 5.0f);
    EXPECT_EQ(img.row(2)[0], 0.0f);
    EXPECT_EQ(img.row(2)[2], 3.0f);
    ASSERT_TRUE(turnQuarter(img, true));
    FlexImageFloat ref;
    numbered(ref);
    ASSERT_EQ(img.width, 3);
    for (int32_t i = 0; i < 12; ++i)
        EXPECT_EQ(img.data[i], ref.data[i]);
    // Four turns the same way come back too.
    for (int k = 0; k < 4; ++k)
        ASSERT_TRUE(turnQuarter(img, true));
    for (int32_t i = 0; i < 12; ++i)
        EXPECT_EQ(img.data[i], ref.data[i]);
}

TEST(QuarterTurn, EmptyImageIsRefused)
{
    FlexImageFloat empty;
    EXPECT_FALSE(turnQuarter(empty, true));
    EXPECT_TRUE(empty.isEmpty());
}
