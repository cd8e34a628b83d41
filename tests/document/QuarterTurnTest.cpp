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

TEST(QuarterTurn, EachDirectionExactlyAndRoundTrips)
{
    // Clockwise the left column goes to the top: 3 0 / 4 1 / 5 2; counter-clockwise: 2 5 / 1 4 / 0 3.
    const float clockwise[3][2] = {{3, 0}, {4, 1}, {5, 2}}, counter[3][2] = {{2, 5}, {1, 4}, {0, 3}};
    for (const bool cw : {true, false}) {
        FlexImageFloat img;
        numbered(img);
        ASSERT_TRUE(turnQuarter(img, cw));
        ASSERT_EQ(img.width, 2);
        ASSERT_EQ(img.height, 3);
        const float(&expected)[3][2] = cw ? clockwise : counter;
        for (int32_t y = 0; y < 3; ++y)
            for (int32_t x = 0; x < 2; ++x) {
                EXPECT_EQ(img.row(y)[x * 2], expected[y][x]) << (cw ? "cw " : "ccw ") << x << "," << y;
                EXPECT_EQ(img.row(y)[x * 2 + 1], 100.0f + expected[y][x]);
            }
    }
    // One turn each way, then four the same way, come back to the start.
    FlexImageFloat img, ref;
    numbered(img);
    numbered(ref);
    ASSERT_TRUE(turnQuarter(img, false));
    for (int k = 0; k < 5; ++k)
        ASSERT_TRUE(turnQuarter(img, true));
    ASSERT_EQ(img.width, 3);
    for (int32_t i = 0; i < 12; ++i)
        EXPECT_EQ(img.data[i], ref.data[i]);
}

TEST(QuarterTurn, EmptyImageIsRefused)
{
    FlexImageFloat empty;
    EXPECT_FALSE(turnQuarter(empty, true));
    EXPECT_TRUE(empty.isEmpty());
}
