#include "core/ImageModVariableDataChoice.h"
#include "mods/CropToolGeometry.h"
#include "mods/CropToolState.h"
#include "mods/GeometryCalculation.h"
#include "mods/ImageModCrop.h"

#include <gtest/gtest.h>

namespace {

// A 400 x 300 picture placed at (50, 40) in an 800 x 600 widget.
const CropViewRect kView{50.0, 40.0, 400.0, 300.0};
constexpr double kWidgetW = 800.0, kWidgetH = 600.0;

void setInsets(CropToolGeometry& g, float left, float right, float top, float bottom)
{
    g.leftInset = left;
    g.rightInset = right;
    g.topInset = top;
    g.bottomInset = bottom;
}

// The four insets within a millionth, named in the failure.
void expectInsets(const CropToolGeometry& g, float left, float right, float top, float bottom)
{
    EXPECT_NEAR(g.leftInset, left, 1e-6f) << "left";
    EXPECT_NEAR(g.rightInset, right, 1e-6f) << "right";
    EXPECT_NEAR(g.topInset, top, 1e-6f) << "top";
    EXPECT_NEAR(g.bottomInset, bottom, 1e-6f) << "bottom";
}

} // namespace

TEST(CropToolHitTest, CornerGrabEndsAtTwentyPixels)
{
    CropToolGeometry g;
    // Cursor on the left edge, 19 pixels above the top: left edge and top edge, so the corner.
    EXPECT_TRUE(g.hitTest(50.0, 40.0 - 19.0, kView, kWidgetW, kWidgetH));
    EXPECT_TRUE(g.hitLeft);
    EXPECT_TRUE(g.hitTop);
    EXPECT_FALSE(g.hitRight);
    EXPECT_FALSE(g.hitBottom);
    EXPECT_FALSE(g.hitInside);
    // At 20 pixels nothing is grabbed and the event goes on to the viewer.
    EXPECT_FALSE(g.hitTest(50.0, 40.0 - 20.0, kView, kWidgetW, kWidgetH));
    EXPECT_FALSE(g.anyHit());
}

TEST(CropToolHitTest, EdgesFollowTheInsetsAndInsideNeedsTheWholeFrameShown)
{
    CropToolGeometry g;
    g.leftInset = 0.25f;  // left edge at 150
    g.bottomInset = 0.5f; // bottom edge at 190
    EXPECT_TRUE(g.hitTest(169.0, 100.0, kView, kWidgetW, kWidgetH));
    EXPECT_TRUE(g.hitLeft);
    EXPECT_TRUE(g.hitTest(300.0, 209.0, kView, kWidgetW, kWidgetH));
    EXPECT_TRUE(g.hitBottom);
    EXPECT_FALSE(g.hitLeft);
    EXPECT_TRUE(g.hitTest(300.0, 120.0, kView, kWidgetW, kWidgetH));
    EXPECT_TRUE(g.hitInside);
    EXPECT_FALSE(g.hitLeft || g.hitRight || g.hitTop || g.hitBottom);
    // The same frame reaching past the widget's right side can't be moved whole.
    EXPECT_FALSE(g.hitTest(300.0, 120.0, kView, 420.0, kWidgetH));
    // Outside the frame, away from its edges: nothing.
    EXPECT_FALSE(g.hitTest(100.0, 100.0, kView, kWidgetW, kWidgetH));
    g.hitLeft = true;
    g.clearHits();
    EXPECT_FALSE(g.anyHit());
}

TEST(CropToolDrag, EdgesMoveByTheirFractionOfTheImage)
{
    CropToolGeometry g;
    ASSERT_TRUE(g.hitTest(50.0, 200.0, kView, kWidgetW, kWidgetH));
    ASSERT_TRUE(g.press(50.0, 200.0));
    g.drag(150.0, 260.0, kView); // 100 of 400 pixels to the right; vertical travel ignored
    EXPECT_FLOAT_EQ(g.leftInset, 0.25f);
    EXPECT_FLOAT_EQ(g.topInset, 0.0f);
    g.release();

    // Bottom-right corner dragged up and left.
    ASSERT_TRUE(g.hitTest(450.0, 340.0, kView, kWidgetW, kWidgetH));
    ASSERT_TRUE(g.hitRight && g.hitBottom);
    ASSERT_TRUE(g.press(450.0, 340.0));
    g.drag(410.0, 310.0, kView);
    EXPECT_FLOAT_EQ(g.rightInset, 0.1f);
    EXPECT_FLOAT_EQ(g.bottomInset, 0.1f);
    // Dragged far out of the picture: clamped at 0, not negative.
    g.drag(900.0, 900.0, kView);
    EXPECT_FLOAT_EQ(g.rightInset, 0.0f);
    EXPECT_FLOAT_EQ(g.bottomInset, 0.0f);
}

TEST(CropToolDrag, PressWithoutAHitIsPassedOn)
{
    CropToolGeometry g;
    EXPECT_FALSE(g.hitTest(10.0, 10.0, kView, kWidgetW, kWidgetH));
    EXPECT_FALSE(g.press(10.0, 10.0));
    EXPECT_FALSE(g.buttonDown);
    g.drag(20.0, 20.0, kView);
    EXPECT_FLOAT_EQ(g.leftInset + g.rightInset + g.topInset + g.bottomInset, 0.0f);
}

TEST(CropToolDrag, InsideDragMovesTheWholeFrameAndKeepsItsSize)
{
    CropToolGeometry g;
    setInsets(g, 0.2f, 0.3f, 0.1f, 0.4f);
    ASSERT_TRUE(g.hitTest(250.0, 100.0, kView, kWidgetW, kWidgetH));
    ASSERT_TRUE(g.hitInside);
    ASSERT_TRUE(g.press(250.0, 100.0));
    g.drag(290.0, 130.0, kView); // +0.1 of the width, +0.1 of the height
    expectInsets(g, 0.3f, 0.2f, 0.2f, 0.3f);
    // Overshooting to the left: the left side stops at 0, the right takes the whole sum.
    g.drag(0.0, 130.0, kView);
    EXPECT_FLOAT_EQ(g.leftInset, 0.0f);
    EXPECT_NEAR(g.rightInset, 0.5f, 1e-6f);
}

TEST(CropToolDrag, FrameHeldByTheRightSideIsSqueezedToIt)
{
    // Left 0.9, right 0: the frame touches the right side, so dragging it right pushes the left
    // edge on until it meets the side; the insets end at 1 and 0, never beyond.
    CropToolGeometry g;
    g.leftInset = 0.9f;
    g.rightInset = 0.0f;
    g.hitInside = true;
    ASSERT_TRUE(g.press(430.0, 200.0));
    g.drag(450.0, 200.0, kView); // +0.05
    EXPECT_NEAR(g.leftInset, 0.95f, 1e-6f);
    EXPECT_FLOAT_EQ(g.rightInset, 0.0f);
    g.drag(650.0, 200.0, kView); // +0.5, far past the side
    EXPECT_FLOAT_EQ(g.leftInset, 1.0f);
    EXPECT_FLOAT_EQ(g.rightInset, 0.0f);
}

TEST(CropToolDrag, SqueezeStopsWhereTheAspectWouldBreak)
{
    // A square aspect on a 400 x 300 view with the whole height kept: the frame may not become
    // narrower than 300 pixels, so the left inset stops near 0.25.
    CropToolGeometry g;
    g.customAspect = 1.0f;
    g.leftInset = 0.0f;
    g.rightInset = 0.0f;
    g.hitInside = true;
    ASSERT_TRUE(g.press(200.0, 200.0));
    g.drag(400.0, 200.0, kView);
    EXPECT_FLOAT_EQ(g.rightInset, 0.0f);
    EXPECT_GT(g.leftInset, 0.24f);
    EXPECT_LE(g.leftInset, 0.25f);
    // Already at the aspect: pushing further changes nothing.
    const float held = g.leftInset;
    g.drag(500.0, 200.0, kView);
    EXPECT_FLOAT_EQ(g.leftInset, held);
}

TEST(CropToolDrag, EdgePastTheOppositeEdgeIsOnlyClamped)
{
    CropToolGeometry g;
    g.rightInset = 0.5f; // right edge at 250
    ASSERT_TRUE(g.hitTest(50.0, 200.0, kView, kWidgetW, kWidgetH));
    ASSERT_TRUE(g.hitLeft);
    ASSERT_TRUE(g.press(50.0, 200.0));
    g.drag(330.0, 200.0, kView); // left inset 0.7, past the right edge
    EXPECT_NEAR(g.leftInset, 0.7f, 1e-6f);
    EXPECT_FLOAT_EQ(g.rightInset, 0.5f);
    EXPECT_GT(g.leftInset + g.rightInset, 1.0f);

    // The crop receives them as they are and the geometry cuts the picture to nothing.
    ImageModCrop crop;
    const CropPixelInsets px = applyCropState(g, crop, 1000, 800);
    EXPECT_NEAR(crop.floatValue(1), 0.7f, 1e-6f);
    EXPECT_FLOAT_EQ(crop.floatValue(2), 0.5f);
    EXPECT_EQ(px.left, 700);
    EXPECT_EQ(px.right, 500);
    const GeometryResult r = computeGeometry(1000, 800, {&crop});
    EXPECT_LT(r.width, 1);
}

TEST(CropToolDrag, ResetClearsTheInsetsAndKeepsTheAspect)
{
    CropToolGeometry g;
    setInsets(g, 0.1f, 0.2f, 0.3f, 0.05f);
    g.customAspect = 1.5f;
    g.resetInsets();
    expectInsets(g, 0.0f, 0.0f, 0.0f, 0.0f);
    EXPECT_FLOAT_EQ(g.customAspect, 1.5f);
}

TEST(CropToolAspect, BarsShowWhatTheAspectCutsOff)
{
    CropToolGeometry g;
    float side = -1.0f, top = -1.0f;
    g.aspectBars(g.edges(kView), side, top);
    EXPECT_FLOAT_EQ(side, 0.0f);
    EXPECT_FLOAT_EQ(top, 0.0f);

    g.listAspect = 1.0f; // square in a 400 x 300 frame: 50-pixel side bars
    g.aspectBars(g.edges(kView), side, top);
    EXPECT_FLOAT_EQ(side, 50.0f);
    EXPECT_FLOAT_EQ(top, 0.0f);

    g.customAspect = 2.0f; // wins over the list: 400 x 200, bars of 50 above and below
    g.aspectBars(g.edges(kView), side, top);
    EXPECT_FLOAT_EQ(side, 0.0f);
    EXPECT_FLOAT_EQ(top, 50.0f);

    // A landscape aspect on a portrait frame turns, unless turning is off.
    const CropViewRect portrait{0.0, 0.0, 300.0, 400.0};
    g.customAspect = 1.5f;
    EXPECT_FLOAT_EQ(g.aspectFor(0.75f), 1.0f / 1.5f);
    g.aspectBars(g.edges(portrait), side, top);
    EXPECT_NEAR(side, (300.0f - 400.0f / 1.5f) * 0.5f, 1e-4f);
    EXPECT_FLOAT_EQ(top, 0.0f);
    g.allowSwapAspect = false;
    EXPECT_FLOAT_EQ(g.aspectFor(0.75f), 1.5f);
    g.aspectBars(g.edges(portrait), side, top);
    EXPECT_FLOAT_EQ(side, 0.0f);
    EXPECT_NEAR(top, (400.0f - 200.0f) * 0.5f, 1e-4f);
}

TEST(CropToolState, RoundTripThroughTheCropTile)
{
    ImageModCrop crop;
    CropToolGeometry g;
    setInsets(g, 0.125f, 0.25f, 0.0625f, 0.5f);
    const CropPixelInsets px = applyCropState(g, crop, 1600, 1200);
    EXPECT_EQ(px.left, 200);
    EXPECT_EQ(px.right, 400);
    EXPECT_EQ(px.top, 75);
    EXPECT_EQ(px.bottom, 600);

    CropToolGeometry back;
    back.hitLeft = true;
    readCropState(crop, back);
    expectInsets(back, 0.125f, 0.25f, 0.0625f, 0.5f);
    EXPECT_FALSE(back.anyHit());
    EXPECT_FLOAT_EQ(back.listAspect, 0.0f);
}

TEST(CropToolState, CustomAspectSelectsTheCustomRowAndShapesTheCut)
{
    ImageModCrop crop;
    CropToolGeometry g;
    g.customAspect = 2.0f;
    const CropPixelInsets px = applyCropState(g, crop, 1000, 1000);
    ASSERT_NE(crop.aspectChoice, nullptr);
    EXPECT_EQ(crop.aspectChoice->index, ImageModAspectRatio::customIndex);
    EXPECT_EQ(cropAspectRow(crop, "Custom"), ImageModAspectRatio::customIndex);
    EXPECT_FLOAT_EQ(crop.aspect.floatValue(1), 2.0f);
    // A square picture at 2:1 loses a quarter at top and bottom.
    EXPECT_EQ(px.top, 250);
    EXPECT_EQ(px.bottom, 250);
    EXPECT_EQ(px.left, 0);
    CropToolGeometry back;
    readCropState(crop, back);
    EXPECT_FLOAT_EQ(back.listAspect, 2.0f);
}

TEST(CropToolState, QuarterTurnsCarryTheCutAround)
{
    CropToolGeometry g;
    setInsets(g, 0.1f, 0.2f, 0.3f, 0.4f);
    rotateCropInsets(g.leftInset, g.rightInset, g.topInset, g.bottomInset, true);
    // Clockwise: the bottom comes to the left, the left to the top.
    expectInsets(g, 0.4f, 0.3f, 0.1f, 0.2f);
    rotateCropInsets(g.leftInset, g.rightInset, g.topInset, g.bottomInset, false);
    expectInsets(g, 0.1f, 0.2f, 0.3f, 0.4f);
}
