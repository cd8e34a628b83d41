#include "mods/CropToolGeometry.h"

#include <algorithm>
#include <cmath>

CropFrameEdges CropToolGeometry::edges(const CropViewRect& r) const
{
    CropFrameEdges e;
    const float x = float(r.x), y = float(r.y), w = float(r.width), h = float(r.height);
    e.left = x + leftInset * w;
    e.right = x + w - rightInset * w;
    e.top = y + topInset * h;
    e.bottom = y + h - bottomInset * h;
    return e;
}

void CropToolGeometry::clearHits()
{
    hitLeft = hitRight = hitTop = hitBottom = hitInside = false;
}

bool CropToolGeometry::hitTest(double cx, double cy, const CropViewRect& r, double widgetWidth, double widgetHeight)
{
    clearHits();
    const CropFrameEdges e = edges(r);
    const double g = grabDistance;
    const bool inRows = cy > e.top - g && cy < e.bottom + g;
    const bool inColumns = cx > e.left - g && cx < e.right + g;
    hitLeft = std::abs(cx - e.left) < g && inRows;
    hitRight = std::abs(cx - e.right) < g && inRows;
    hitTop = std::abs(cy - e.top) < g && inColumns;
    hitBottom = std::abs(cy - e.bottom) < g && inColumns;
    if (!hitLeft && !hitRight && !hitTop && !hitBottom) {
        // Moving a frame that reaches past the widget would drag it out of reach.
        const bool wholeInWidget = e.left >= 0.0 && e.left <= widgetWidth && e.right >= 0.0 &&
            e.right <= widgetWidth && e.top >= 0.0 && e.top <= widgetHeight && e.bottom >= 0.0 &&
            e.bottom <= widgetHeight;
        hitInside = wholeInWidget && cx >= e.left && cx <= e.right && cy >= e.top && cy <= e.bottom;
    }
    return anyHit();
}

bool CropToolGeometry::press(double cx, double cy)
{
    if (!anyHit())
        return false;
    buttonDown = true;
    lastX = cx;
    lastY = cy;
    return true;
}

void CropToolGeometry::resetInsets()
{
    leftInset = rightInset = topInset = bottomInset = 0.0f;
}

float CropToolGeometry::aspectFor(float frameRatio) const
{
    float a = customAspect > 0.0f ? customAspect : listAspect;
    if (!(a > 0.0f))
        return 0.0f;
    if (allowSwapAspect && (frameRatio > 1.0f) != (a > 1.0f) && frameRatio != 1.0f && a != 1.0f)
        a = 1.0f / a;
    return a;
}

void CropToolGeometry::aspectBars(const CropFrameEdges& e, float& sideBar, float& topBar) const
{
    sideBar = topBar = 0.0f;
    const float fw = e.right - e.left, fh = e.bottom - e.top;
    if (!(fw > 0.0f) || !(fh > 0.0f))
        return;
    const float a = aspectFor(fw / fh);
    if (!(a > 0.0f))
        return;
    if (fw > a * fh)
        sideBar = (fw - a * fh) * 0.5f;
    else if (fh > fw / a)
        topBar = (fh - fw / a) * 0.5f;
}

void CropToolGeometry::drag(double cx, double cy, const CropViewRect& r)
{
    if (!buttonDown || !(r.width > 0.0) || !(r.height > 0.0))
        return;
    const float w = float(r.width), h = float(r.height);
    const float dx = float((cx - lastX) / r.width);
    const float dy = float((cy - lastY) / r.height);
    if (hitLeft || hitRight || hitTop || hitBottom) {
        if (hitLeft)
            leftInset += dx;
        if (hitRight)
            rightInset -= dx;
        if (hitTop)
            topInset += dy;
        if (hitBottom)
            bottomInset -= dy;
    } else if (hitInside) {
        const float sumX = leftInset + rightInset, sumY = topInset + bottomInset;
        const float rw = (1.0f - sumX) * w, rh = (1.0f - sumY) * h;
        const float step = 0.9f / std::max(w, h);
        const float ratio = rh > 0.0f ? rw / rh : 0.0f;
        if (dx != 0.0f)
            dragInsideHorizontal(dx, w, h, sumY, ratio, step);
        if (dy != 0.0f)
            dragInsideVertical(dy, w, h, sumX, ratio, step);
    }
    leftInset = std::clamp(leftInset, 0.0f, 1.0f);
    rightInset = std::clamp(rightInset, 0.0f, 1.0f);
    topInset = std::clamp(topInset, 0.0f, 1.0f);
    bottomInset = std::clamp(bottomInset, 0.0f, 1.0f);
    lastX = cx;
    lastY = cy;
}

// A frame that already touches a side in the direction of travel is squeezed against it instead of
// moved, but never narrower than the aspect allows.
void CropToolGeometry::dragInsideHorizontal(float dx, float w, float h, float sumY, float ratio, float step)
{
    const bool pushing = (dx > 0.0f && (rightInset <= 0.0f || leftInset >= 1.0f)) ||
        (dx < 0.0f && (leftInset <= 0.0f || rightInset >= 1.0f));
    if (!pushing) {
        const float sum = leftInset + rightInset;
        leftInset += dx;
        rightInset -= dx;
        if (leftInset > 1.0f) {
            rightInset += leftInset - 1.0f;
            leftInset = 1.0f;
        } else if (leftInset < 0.0f) {
            leftInset = 0.0f;
            rightInset = sum;
        }
        if (rightInset > 1.0f) {
            leftInset += rightInset - 1.0f;
            rightInset = 1.0f;
        } else if (rightInset < 0.0f) {
            rightInset = 0.0f;
            leftInset = sum;
        }
        return;
    }
    const float a = aspectFor(ratio);
    if (!(a < ratio))
        return;
    const float limit = (h / w) * a * (sumY - (step + 1.0f)) + 1.0f;
    leftInset += dx;
    rightInset -= dx;
    if (leftInset < 0.0f) {
        leftInset = 0.0f;
        rightInset = std::min(rightInset, limit);
    }
    if (rightInset < 0.0f) {
        rightInset = 0.0f;
        leftInset = std::min(leftInset, limit);
    }
}

void CropToolGeometry::dragInsideVertical(float dy, float w, float h, float sumX, float ratio, float step)
{
    const bool pushing = (dy > 0.0f && (bottomInset <= 0.0f || topInset >= 1.0f)) ||
        (dy < 0.0f && (topInset <= 0.0f || bottomInset >= 1.0f));
    if (!pushing) {
        const float sum = topInset + bottomInset;
        topInset += dy;
        bottomInset -= dy;
        if (topInset > 1.0f) {
            bottomInset += topInset - 1.0f;
            topInset = 1.0f;
        } else if (topInset < 0.0f) {
            topInset = 0.0f;
            bottomInset = sum;
        }
        if (bottomInset > 1.0f) {
            topInset += bottomInset - 1.0f;
            bottomInset = 1.0f;
        } else if (bottomInset < 0.0f) {
            bottomInset = 0.0f;
            topInset = sum;
        }
        return;
    }
    const float a = aspectFor(ratio);
    // Without an aspect the frame may be squeezed in both directions alike.
    if (a > 0.0f && !(a > ratio))
        return;
    const float limit = a > 0.0f ? (w / h) * (sumX - (step + 1.0f)) / a + 1.0f : 1.0f;
    topInset += dy;
    bottomInset -= dy;
    if (topInset < 0.0f) {
        topInset = 0.0f;
        bottomInset = std::min(bottomInset, limit);
    }
    if (bottomInset < 0.0f) {
        bottomInset = 0.0f;
        topInset = std::min(topInset, limit);
    }
}

void rotateCropInsets(float& left, float& right, float& top, float& bottom, bool clockwise)
{
    const float l = left, r = right, t = top, b = bottom;
    if (clockwise) {
        // What was at the bottom comes to the left.
        left = b;
        top = l;
        right = t;
        bottom = r;
    } else {
        left = t;
        top = r;
        right = b;
        bottom = l;
    }
}
