#include "ui/MVScroller.h"

#include "ui/MVScrollerHandle.h"

#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {
constexpr int kMinHandle = 20;
// A plain wheel with no phases starts a new gesture after this pause.
constexpr qint64 kGesturePauseMs = 250;
} // namespace

MVScroller::MVScroller(QWidget* parent) : QWidget(parent)
{
    handleWidget = new MVScrollerHandle(this);
    connect(handleWidget, &MVScrollerHandle::dragged, this, &MVScroller::handleDragged);
    activateTimer.setSingleShot(true);
    activateTimer.setInterval(5);
    connect(&activateTimer, &QTimer::timeout, this, &MVScroller::activateTimerFired);
    momentumTimer.setInterval(30);
    connect(&momentumTimer, &QTimer::timeout, this, &MVScroller::momentumTimerFired);
    resize(7, 200);
    placeHandle();
}

void MVScroller::setRange(float minimum, float maximum, float view)
{
    minPosition = minimum;
    maxPosition = std::max(minimum, maximum);
    viewSize = view;
    position = clampedPosition(position);
    if (contentFits()) {
        momentum = 0.0f;
        accumulated = 0.0f;
        momentumTimer.stop();
        activateTimer.stop();
    }
    placeHandle();
}

void MVScroller::setPosition(float p)
{
    position = clampedPosition(p);
    placeHandle();
}

float MVScroller::clampedPosition(float p) const
{
    return std::clamp(p, minPosition, maxPosition);
}

float MVScroller::trackLength() const
{
    return float(height() - handleWidget->height());
}

bool MVScroller::placeHandle()
{
    const float range = maxPosition - minPosition;
    if (contentFits() || range <= 0.0f) {
        handleWidget->hide();
        return false;
    }
    const int h = std::clamp(int(float(height()) * viewSize / range), kMinHandle, std::max(kMinHandle, height()));
    handleWidget->resize(width(), h);
    const int y = int(std::lround(trackLength() * (position - minPosition) / range));
    const bool moved = handleWidget->y() != y;
    handleWidget->move(0, y);
    handleWidget->show();
    update();
    return moved;
}

void MVScroller::resizeEvent(QResizeEvent*)
{
    placeHandle();
}

bool MVScroller::takeWheel(QWheelEvent* event)
{
    if (contentFits())
        return false;
    const Qt::ScrollPhase phase = event->phase();
    // The system's own momentum phase is replaced by ours.
    if (phase == Qt::ScrollMomentum)
        return true;
    bool first = phase == Qt::ScrollBegin;
    if (phase == Qt::NoScrollPhase)
        first = !lastWheel.isValid() || lastWheel.elapsed() > kGesturePauseMs;
    lastWheel.start();
    if (first) {
        momentumTimer.stop();
        momentum = 0.0f;
        gestureEnding = false;
    }
    if (phase == Qt::ScrollEnd)
        gestureEnding = true;
    const QPoint pixels = event->pixelDelta();
    const float d = -float(pixels.isNull() ? event->angleDelta().y() : pixels.y());
    float a = d * 1.6f * 0.3f;
    if (first)
        a *= 1.8f;
    accumulated += a;
    friction = 0.9f;
    if (!activateTimer.isActive())
        activateTimer.start();
    return true;
}

void MVScroller::wheelEvent(QWheelEvent* event)
{
    if (takeWheel(event))
        event->accept();
    else
        event->ignore();
}

void MVScroller::activateTimerFired()
{
    friction *= 0.9f;
    if (gestureEnding) {
        gestureEnding = false;
        momentum = friction * accumulated;
        accumulated = 0.0f;
        momentumTimerFired();
        if (momentum != 0.0f)
            momentumTimer.start();
        return;
    }
    position = clampedPosition(position + accumulated);
    placeHandle();
    emit scrolled(position);
    accumulated = 0.0f;
}

void MVScroller::momentumTimerFired()
{
    position = clampedPosition(position + momentum);
    if (placeHandle())
        momentum *= 0.9f;
    emit scrolled(position);
    if (position <= minPosition || position >= maxPosition || std::abs(momentum) < 0.25f) {
        momentum = 0.0f;
        momentumTimer.stop();
    }
}

void MVScroller::handleDragged(int pixels)
{
    const float track = trackLength();
    if (track <= 0.0f)
        return;
    position = clampedPosition(position + (maxPosition - minPosition) * float(pixels) / track);
    placeHandle();
    emit scrolled(position);
}

void MVScroller::paintEvent(QPaintEvent*)
{
    QPainter g(this);
    g.setRenderHint(QPainter::Antialiasing);
    g.setPen(Qt::NoPen);
    g.setBrush(QColor(30, 30, 30));
    const qreal r = (width() - 2) / 2.0;
    g.drawRoundedRect(QRectF(1, 1, width() - 2, height() - 2), r, r);
}
