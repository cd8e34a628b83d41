#include "document/core/SpotHeal.h"
#include "document/core/UndoStack.h"
#include "media/CompactImage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

namespace {

void fill(FlexImageFloat& img, int32_t w, int32_t h, int32_t ch, float v)
{
    img.resize(w, h, ch);
    for (int32_t y = 0; y < h; ++y)
        std::fill(img.row(y), img.row(y) + int64_t(w) * ch, v);
}

// A dark disc of radius `radius` at (cx, cy) on the colour channels.
void paintBlemish(FlexImageFloat& img, int32_t cx, int32_t cy, float radius, float v)
{
    for (int32_t y = 0; y < img.height; ++y)
        for (int32_t x = 0; x < img.width; ++x)
            if (std::hypot(float(x - cx), float(y - cy)) <= radius)
                for (int32_t c = 0; c < std::min(img.channels, 3); ++c)
                    img.row(y)[x * img.channels + c] = v;
}

float maxDeviation(const FlexImageFloat& img, float expected)
{
    float worst = 0.0f;
    for (int32_t y = 0; y < img.height; ++y)
        for (int32_t i = 0; i < img.width * img.channels; ++i)
            worst = std::max(worst, std::abs(img.row(y)[i] - expected));
    return worst;
}

std::vector<float> snapshot(const FlexImageFloat& img)
{
    return std::vector<float>(img.data, img.data + img.sampleCount());
}

// The undo record of one heal, as the tool keeps it.
struct HealCommand : UndoCommand {
    FlexImageFloat* image;
    FlexImageFloat saved;
    SpotHealRect rect;
    bool execute() override { return !saved.isEmpty(); }
    bool undo() override { return swapImageRect(*image, saved, rect.x, rect.y); }
    bool redo() override { return undo(); }
};

} // namespace

TEST(SpotHealGeometry, DiameterFollowsTheZoomAndNeverFallsBelowOne)
{
    EXPECT_EQ(spotHealDiameter(4000, 40.0, 1000.0), 160);
    EXPECT_EQ(spotHealDiameter(4000, 30.0, 1000.0), 120);
    EXPECT_EQ(spotHealDiameter(1000, 3.0, 4000.0), 1); // brush 3 on a picture shown enlarged
    EXPECT_EQ(spotHealDiameter(1000, 30.0, 0.0), 1);
    EXPECT_EQ(spotHealDiameter(1001, 10.0, 1000.0), 10); // 10.01 truncated
}

TEST(SpotHealGeometry, WorkRectangleIsSixDiametersClampedToTheImage)
{
    auto box = [](const SpotHealRect& r) { return std::make_tuple(r.x, r.y, r.width, r.height); };
    EXPECT_EQ(box(spotHealRect(200, 100, 100, 50, 5)), std::make_tuple(85, 35, 30, 30));
    EXPECT_EQ(box(spotHealRect(200, 100, 2, 98, 5)), std::make_tuple(0, 83, 17, 17));
}

TEST(SpotHealMask, SoftDiscOpaqueInsideHalfTheRadiusAndClearOutside)
{
    CompactImage mask;
    buildSpotHealMask(mask, 20);
    ASSERT_FALSE(mask.isEmpty());
    ASSERT_TRUE(mask.is16Bit);
    ASSERT_EQ(mask.channels, 4);
    const auto alpha = [&](int32_t x, int32_t y) { return mask.row16(y)[x * 4 + 3]; };
    EXPECT_EQ(alpha(10, 10), 65535); // centre
    EXPECT_EQ(alpha(13, 10), 65535); // 3.5 from the centre, inside r/2 = 5
    EXPECT_EQ(alpha(0, 0), 0);       // corner, outside r = 10
    // Halfway through the fade (distance 7.5): opacity one half.
    EXPECT_NEAR(alpha(17, 9) / 65535.0, (5.0 - std::hypot(7.5, 0.5)) / 5.0 + 1.0, 1e-4);
    // Fading outwards along a row.
    for (int32_t x = 15; x < 19; ++x)
        EXPECT_GE(alpha(x, 10), alpha(x + 1, 10));
    EXPECT_EQ(mask.row16(4)[4 * 4 + 0], 65535); // colour stays white
}

TEST(SpotHeal, BlemishOnAFlatImageDisappears)
{
    for (int32_t channels : {3, 4}) {
        FlexImageFloat img;
        fill(img, 120, 90, channels, 140.0f);
        if (channels == 4)
            for (int32_t y = 0; y < img.height; ++y)
                for (int32_t x = 0; x < img.width; ++x)
                    img.row(y)[x * 4 + 3] = 255.0f;
        paintBlemish(img, 60, 45, 3.0f, 20.0f);
        FlexImageFloat saved;
        SpotHealRect rect;
        ASSERT_TRUE(spotHeal(img, 60, 45, 16, &saved, rect));
        // Within 2 levels of the surroundings everywhere; an opaque alpha stays opaque.
        for (int32_t y = 0; y < img.height; ++y)
            for (int32_t x = 0; x < img.width; ++x)
                for (int32_t c = 0; c < channels; ++c)
                    ASSERT_NEAR(img.row(y)[x * channels + c], c == 3 ? 255.0f : 140.0f, 2.0f)
                        << channels << " channels at " << x << "," << y;
        EXPECT_EQ(rect.x, 12);
        EXPECT_EQ(rect.width, 96);
        ASSERT_EQ(saved.width, rect.width);
        ASSERT_EQ(saved.height, rect.height);
        ASSERT_EQ(saved.channels, channels);
        // The record holds the blemish as it was.
        EXPECT_FLOAT_EQ(saved.row(45 - rect.y)[(60 - rect.x) * channels], 20.0f);
        // Undo puts it back exactly.
        ASSERT_TRUE(swapImageRect(img, saved, rect.x, rect.y));
        EXPECT_FLOAT_EQ(img.row(45)[60 * channels], 20.0f);
        EXPECT_FLOAT_EQ(img.row(0)[0], 140.0f);
    }
}

TEST(SpotHeal, FlatImageComesBackUnchangedThroughSixteenBits)
{
    FlexImageFloat img;
    fill(img, 64, 64, 3, 100.0f);
    SpotHealRect rect;
    ASSERT_TRUE(spotHeal(img, 32, 32, 8, nullptr, rect));
    // The 16-bit copy truncates, so at most one 16-bit step (1/257 of a level) is lost.
    EXPECT_LE(maxDeviation(img, 100.0f), 1.0f / 257.0f + 1e-5f);
}

TEST(SpotHeal, ClickAtTheEdgeWorks)
{
    FlexImageFloat img;
    fill(img, 80, 60, 3, 200.0f);
    paintBlemish(img, 1, 1, 2.0f, 10.0f);
    paintBlemish(img, 78, 58, 2.0f, 10.0f);
    SpotHealRect rect;
    ASSERT_TRUE(spotHeal(img, 1, 1, 16, nullptr, rect));
    EXPECT_EQ(rect.x, 0);
    EXPECT_EQ(rect.y, 0);
    ASSERT_TRUE(spotHeal(img, 78, 58, 16, nullptr, rect));
    EXPECT_EQ(rect.x + rect.width, 80);
    EXPECT_EQ(rect.y + rect.height, 60);
    // The corners are healed from the stamps that lie inside.
    EXPECT_GT(img.row(1)[1 * 3], 150.0f);
    EXPECT_GT(img.row(58)[78 * 3], 150.0f);
    for (int32_t y = 0; y < 60; ++y)
        for (int32_t i = 0; i < 80 * 3; ++i)
            ASSERT_TRUE(std::isfinite(img.row(y)[i]));
}

TEST(SpotHeal, DiameterOneStillRuns)
{
    FlexImageFloat img;
    fill(img, 10, 10, 3, 50.0f);
    img.row(5)[5 * 3] = 250.0f;
    SpotHealRect rect;
    ASSERT_TRUE(spotHeal(img, 5, 5, 1, nullptr, rect));
    EXPECT_EQ(rect.width, 6);
    EXPECT_LT(img.row(5)[5 * 3], 250.0f);
}

TEST(SpotHeal, RefusesWithoutChangingAnything)
{
    FlexImageFloat img;
    fill(img, 20, 20, 3, 70.0f);
    img.row(3)[3] = 1.0f;
    const std::vector<float> before = snapshot(img);
    SpotHealRect rect;
    FlexImageFloat saved;
    EXPECT_FALSE(spotHeal(img, -1, 5, 4, &saved, rect));
    EXPECT_FALSE(spotHeal(img, 5, 20, 4, &saved, rect));
    EXPECT_FALSE(spotHeal(img, 5, 5, 0, &saved, rect));
    EXPECT_TRUE(rect.isEmpty());
    EXPECT_EQ(snapshot(img), before);
    FlexImageFloat empty;
    EXPECT_FALSE(spotHeal(empty, 0, 0, 4, &saved, rect));
    // A record that doesn't fit is refused.
    fill(saved, 8, 8, 3, 0.0f);
    EXPECT_FALSE(swapImageRect(img, saved, 15, 0));
    EXPECT_EQ(snapshot(img), before);
}

TEST(SpotHeal, TwoHealsUndoInReverseOrder)
{
    FlexImageFloat img;
    fill(img, 100, 100, 3, 120.0f);
    paintBlemish(img, 40, 50, 2.0f, 0.0f);
    paintBlemish(img, 50, 50, 2.0f, 255.0f); // overlapping rectangles
    const std::vector<float> original = snapshot(img);

    UndoStack stack;
    auto heal = [&](int32_t x, int32_t y) {
        auto* cmd = new HealCommand;
        cmd->image = &img;
        EXPECT_TRUE(spotHeal(img, x, y, 12, &cmd->saved, cmd->rect));
        EXPECT_TRUE(stack.push(cmd));
    };
    heal(40, 50);
    const std::vector<float> afterFirst = snapshot(img);
    heal(50, 50);
    const std::vector<float> afterSecond = snapshot(img);
    EXPECT_NE(afterFirst, afterSecond);

    stack.undo();
    EXPECT_EQ(snapshot(img), afterFirst);
    stack.undo();
    EXPECT_EQ(snapshot(img), original);
    stack.redo();
    EXPECT_EQ(snapshot(img), afterFirst);
    stack.redo();
    EXPECT_EQ(snapshot(img), afterSecond);
}

TEST(SpotHeal, ToolHistoryJoinsTheDocumentsAndStillUndoes)
{
    FlexImageFloat img;
    fill(img, 60, 60, 3, 90.0f);
    paintBlemish(img, 30, 30, 2.0f, 250.0f);
    const std::vector<float> original = snapshot(img);
    UndoStack documentStack, toolStack;
    auto* cmd = new HealCommand;
    cmd->image = &img;
    ASSERT_TRUE(spotHeal(img, 30, 30, 10, &cmd->saved, cmd->rect));
    ASSERT_TRUE(toolStack.push(cmd));
    documentStack.absorb(toolStack);
    EXPECT_EQ(toolStack.undoCount(), 0);
    EXPECT_EQ(documentStack.undoCount(), 1);
    EXPECT_EQ(documentStack.position, 1);
    documentStack.undo();
    EXPECT_EQ(snapshot(img), original);
}
