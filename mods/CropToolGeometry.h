#pragma once
#include <cstdint>

// Where the displayed picture stands in the tool's widget, in widget pixels.
struct CropViewRect {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
};

// The crop frame's edges in widget pixels.
struct CropFrameEdges {
    float left = 0.0f;
    float right = 0.0f;
    float top = 0.0f;
    float bottom = 0.0f;
};

// The crop tool's frame without the widget: four insets (fractions cut from each side), what the
// cursor is on, and the drag rules. The insets map to the crop tile's cp0..cp3 in this order.
class CropToolGeometry {
public:
    static constexpr double grabDistance = 20.0;

    float leftInset = 0.0f;
    float rightInset = 0.0f;
    float topInset = 0.0f;
    float bottomInset = 0.0f;

    bool hitLeft = false;
    bool hitRight = false;
    bool hitTop = false;
    bool hitBottom = false;
    bool hitInside = false;

    double lastX = 0.0;
    double lastY = 0.0;
    bool buttonDown = false;

    // Above 0: the aspect in force, width over height (the tool's custom aspect wins over the list).
    float customAspect = 0.0f;
    float listAspect = 0.0f;
    // The aspect also holds turned by 90 degrees.
    bool allowSwapAspect = true;

    CropFrameEdges edges(const CropViewRect& r) const;
    // Sets the five flags for a cursor without a button; true when anything is hit.
    bool hitTest(double cx, double cy, const CropViewRect& r, double widgetWidth, double widgetHeight);
    bool anyHit() const { return hitLeft || hitRight || hitTop || hitBottom || hitInside; }
    void clearHits();
    // Starts a drag when something is hit; false passes the press on.
    bool press(double cx, double cy);
    // Moves edges or the whole frame by the cursor's travel since the last event.
    void drag(double cx, double cy, const CropViewRect& r);
    void release() { buttonDown = false; }
    void resetInsets();

    // The aspect in force for a frame of ratio r (width over height), after the swap rule; 0 for none.
    float aspectFor(float frameRatio) const;
    // Side bars (horizontal) or top and bottom bars (vertical) that the aspect cuts off the frame,
    // in widget pixels; both 0 without an aspect.
    void aspectBars(const CropFrameEdges& e, float& sideBar, float& topBar) const;

private:
    void dragInsideHorizontal(float dx, float w, float h, float sumY, float ratio, float step);
    void dragInsideVertical(float dy, float w, float h, float sumX, float ratio, float step);
};

// The insets after the picture turns a quarter (clockwise when `clockwise`), so the frame keeps
// covering the same part of the photo.
void rotateCropInsets(float& left, float& right, float& top, float& bottom, bool clockwise);
