#include "core/FlexImage.h"

#include <gtest/gtest.h>

namespace {

void fillRamp(FlexImageFloat& img)
{
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        img.data[i] = float(i % 251);
}

} // namespace

TEST(FlexImage, EmptyImageAllocatesOnCopy)
{
    FlexImageFloat empty(0, 0, 3);
    EXPECT_EQ(empty.data, nullptr);
    FlexImageFloat src(10, 10, 3);
    fillRamp(src);
    empty.copyFrom(src, true);
    ASSERT_NE(empty.data, nullptr);
    EXPECT_EQ(empty.width, 10);
    EXPECT_EQ(empty.data[299], src.data[299]);
}

TEST(FlexImage, RefusesSizesBeyond31Bits)
{
    FlexImage8 huge(64250, 64250, 3);
    EXPECT_EQ(huge.data, nullptr);
    EXPECT_EQ(huge.width, 0);
    FlexImageFloat f(10, 10, 3);
    f.resize(50000, 50000, 4);
    EXPECT_EQ(f.data, nullptr);
    EXPECT_FALSE(FlexImageFloat::sizeFits(46341, 46341, 1));
    EXPECT_TRUE(FlexImageFloat::sizeFits(46340, 46340, 1));
    // Products beyond 64 bits are refused, not wrapped.
    EXPECT_FALSE(FlexImageFloat::sizeFits(0xffffffffll, 0xffffffffll, 4));
    EXPECT_FALSE(FlexImage8::sizeFits(0xffffff00ll, 0xffffffffll, 1));
    EXPECT_FALSE(FlexImage8::sizeFits(int64_t(1) << 40, int64_t(1) << 40, int64_t(1) << 40));
    // The edge: exactly 2^31 - 1 samples fits, one more does not.
    EXPECT_TRUE(FlexImage8::sizeFits(0x7fffffff, 1, 1));
    EXPECT_FALSE(FlexImage8::sizeFits(0x7fffffff, 1, 2));
    EXPECT_FALSE(FlexImage8::sizeFits(0x40000000, 2, 1));
    EXPECT_TRUE(FlexImage8::sizeFits(0x3fffffff, 2, 1));
}

TEST(FlexImage, CopyChannelRules)
{
    FlexImageFloat rgb(4, 2, 3);
    fillRamp(rgb);
    FlexImageFloat rgba(4, 2, 4);
    rgba.copyFrom(rgb, false);
    EXPECT_EQ(rgba.channels, 4);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(rgba.data[i * 4 + 3], 255.0f);
        EXPECT_EQ(rgba.data[i * 4 + 1], rgb.data[i * 3 + 1]);
    }
    FlexImageFloat back(4, 2, 3);
    for (int i = 0; i < 8; ++i)
        rgba.data[i * 4 + 3] = 7.0f;
    back.copyFrom(rgba, false);
    EXPECT_EQ(back.channels, 3);
    EXPECT_EQ(back.data[5], rgba.data[6]);

    FlexImageFloat matched(1, 1, 3);
    matched.copyFrom(rgba, true);
    EXPECT_EQ(matched.channels, 4);
    EXPECT_EQ(matched.data[3], 7.0f);
}

TEST(FlexImage, CopyCarriesMarginsAndScaleNotName)
{
    FlexImageFloat src(3, 3, 3);
    src.marginLeft = 1;
    src.marginBottom = 2;
    src.scale = 0.25f;
    src.name = "source";
    FlexImageFloat dst;
    dst.copyFrom(src, true);
    EXPECT_EQ(dst.marginLeft, 1);
    EXPECT_EQ(dst.marginBottom, 2);
    EXPECT_EQ(dst.scale, 0.25f);
    EXPECT_TRUE(dst.name.empty());
}

TEST(FlexImage, ResizeKeepsOrReplaces)
{
    FlexImageFloat img(5, 5, 3);
    img.data[0] = 42.0f;
    float* before = img.data;
    img.resize(5, 5, -1);
    EXPECT_EQ(img.data, before);
    EXPECT_EQ(img.data[0], 42.0f);
    img.resize(6, 5, 4);
    EXPECT_EQ(img.channels, 4);
    EXPECT_EQ(img.colorChannels, 3);
    EXPECT_EQ(img.data[3], 255.0f);
    img.reset();
    EXPECT_EQ(img.data, nullptr);
    EXPECT_EQ(img.channels, 4);

    // A fresh 4-channel buffer is opaque in every row, however the rows were shared out.
    FlexImageFloat tall(3, 1, 4);
    tall.resize(7, 1001, 4);
    int64_t notOpaque = 0;
    for (int32_t y = 0; y < tall.height; ++y)
        for (int32_t x = 0; x < tall.width; ++x)
            notOpaque += tall.row(y)[x * 4 + 3] != 255.0f;
    EXPECT_EQ(notOpaque, 0);
}

TEST(FlexImage, FloatToEightBitTruncatesWithoutClamp)
{
    FlexImageFloat f(3, 1, 3);
    const float values[9] = {255.9f, 256.0f, 0.99f, 128.5f, 1.0f, 300.0f, -1.0f, 1e20f, 200.0f};
    for (int i = 0; i < 9; ++i)
        f.data[i] = values[i];
    FlexImage8 e;
    e.copyFromOtherDepth(f, true);
    EXPECT_EQ(e.data[0], 255);
    EXPECT_EQ(e.data[1], 0);
    EXPECT_EQ(e.data[2], 0);
    EXPECT_EQ(e.data[3], 128);
    EXPECT_EQ(e.data[5], 300 & 255);
    EXPECT_EQ(e.data[6], 255);
    FlexImageFloat widened;
    widened.copyFromOtherDepth(e, true);
    EXPECT_EQ(widened.data[8], 200.0f);
}

TEST(FlexImage, ResampleOddOffsetsAndHalvedMargins)
{
    FlexImageFloat src(100, 100, 3);
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 100; ++x) {
            float* p = src.row(y) + x * 3;
            p[0] = float(x);
            p[1] = float(y);
            p[2] = 0.0f;
        }
    src.marginLeft = 10;
    src.marginRight = 7;
    src.marginTop = 4;
    src.marginBottom = 3;
    FlexImageFloat dst(50, 50, 3);
    dst.resampleFrom(src);
    for (int y = 0; y < 50; ++y)
        for (int x = 0; x < 50; ++x) {
            EXPECT_EQ(dst.row(y)[x * 3], float(2 * x + 1));
            EXPECT_EQ(dst.row(y)[x * 3 + 1], float(2 * y + 1));
        }
    EXPECT_EQ(dst.marginLeft, 5);
    EXPECT_EQ(dst.marginRight, 3);
    EXPECT_EQ(dst.marginTop, 2);
    EXPECT_EQ(dst.marginBottom, 1);
}
