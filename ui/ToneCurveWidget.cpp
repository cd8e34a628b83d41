#include "ui/ToneCurveWidget.h"

#include "core/ImageModVariableDataCurve.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QLinearGradient>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QWheelEvent>

#include <algorithm>
#include <cmath>

ToneCurveWidget::ToneCurveWidget(QWidget* parent) : QWidget(parent), ownCurve(0)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::ClickFocus);
    scrollTimer.setSingleShot(true);
    scrollTimer.setInterval(30);
    connect(&scrollTimer, &QTimer::timeout, this, &ToneCurveWidget::scrollTimerFired);
    scrollFinishTimer.setSingleShot(true);
    scrollFinishTimer.setTimerType(Qt::PreciseTimer);
    scrollFinishTimer.setInterval(1000);
    connect(&scrollFinishTimer, &QTimer::timeout, this, &ToneCurveWidget::scrollFinishTimerFired);
    resize(200, 210);
}

void ToneCurveWidget::setCurveData(ImageModVariableDataCurve* data)
{
    curveData = data;
    editedCurve = data ? &data->curve : &ownCurve;
    activePoint = -1;
    hoverPoint = -1;
    if (editedCurve->closed)
        mode = 3;
    hueDegrees = editedCurve->hueOffset;
    hueShift = std::clamp((180.0f - hueDegrees) / 180.0f, -1.0f, 1.0f);
    update();
}

void ToneCurveWidget::setMode(int32_t m)
{
    mode = m;
    update();
}

void ToneCurveWidget::setTint(const QColor& c)
{
    tint = c;
    update();
}


QPointF ToneCurveWidget::unitFromPixel(QPointF p) const
{
    return QPointF((float(p.x()) - margin) / graphWidth(), (margin - float(p.y()) + graphHeight()) / graphHeight());
}

QPointF ToneCurveWidget::pixelFromUnit(float x, float y) const
{
    return QPointF(margin + x * graphWidth(), margin + graphHeight() - y * graphHeight());
}

QRectF ToneCurveWidget::hueStripRect() const
{
    return QRectF(margin, margin + graphHeight() + 4.0f, graphWidth(), barHeight);
}

bool ToneCurveWidget::updateHover(QPointF unit)
{
    int32_t best = -1;
    float bestDistance = hitRadius;
    const auto& pts = editedCurve->points;
    for (size_t i = 0; i < pts.size(); ++i) {
        const float dx = pts[i].x - float(unit.x());
        const float dy = pts[i].y - float(unit.y());
        const float d = std::sqrt(dx * dx + dy * dy);
        if (d <= bestDistance) {
            bestDistance = d;
            best = int32_t(i);
        }
    }
    if (best == hoverPoint)
        return false;
    hoverPoint = best;
    return true;
}

void ToneCurveWidget::mousePressEvent(QMouseEvent* event)
{
    lastPos = event->localPos();
    // Hover normally comes from the move before the press; a press with no move still hits.
    if (activePoint < 0)
        updateHover(unitFromPixel(event->localPos()));
    emit editingStarted(this);
    activePoint = hoverPoint;
    if (event->button() == Qt::RightButton) {
        activePoint = -1;
        emit rightClicked(this);
        return;
    }
    const QPointF u = unitFromPixel(event->localPos());
    auto& pts = editedCurve->points;
    if (activePoint >= 0) {
        dragOffsetX = pts[size_t(activePoint)].x - float(u.x());
        dragOffsetY = pts[size_t(activePoint)].y - float(u.y());
        update();
        return;
    }
    if (mode == 3 && hueStripRect().contains(event->localPos())) {
        scrollingHue = true;
        return;
    }
    const float ux = float(u.x());
    for (size_t i = 1; i < pts.size(); ++i) {
        if (ux < pts[i].x) {
            if (ux < pts[i - 1].x)
                return;
            const float uy = std::clamp(float(u.y()), 0.0f, 1.0f);
            pts.insert(pts.begin() + std::ptrdiff_t(i), ToneCurvePoint{ux, uy});
            editedCurve->rebuild();
            activePoint = int32_t(i);
            hoverPoint = int32_t(i);
            dragOffsetX = 0.0f;
            dragOffsetY = uy - float(u.y());
            update();
            emit curveChanged(this);
            return;
        }
    }
}

void ToneCurveWidget::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF u = unitFromPixel(event->localPos());
    if (scrollingHue) {
        const float half = graphWidth() / 2.0f;
        setHueFromT((float(event->localPos().x()) - 10.0f - half) / half);
        return;
    }
    if (activePoint < 0) {
        if (updateHover(u))
            update();
        return;
    }
    dragTo(u);
}

void ToneCurveWidget::setHueFromT(float t)
{
    hueShift = std::clamp(t, -1.0f, 1.0f);
    hueDegrees = 180.0f - hueShift * 180.0f;
    editedCurve->hueOffset = hueDegrees;
    update();
    emit curveChanged(this);
}

void ToneCurveWidget::dragTo(QPointF unit)
{
    auto& pts = editedCurve->points;
    const int32_t n = int32_t(pts.size());
    const int32_t i = activePoint;
    if (i < 0 || i >= n)
        return;
    float x = float(unit.x()) + dragOffsetX;
    float y = float(unit.y()) + dragOffsetY;
    const bool endPoint = i == 0 || i == n - 1;
    if (!endPoint && (x < removeLow || x > removeHigh || y < removeLow || y > removeHigh)) {
        removePointAt(i);
        activePoint = -1;
        hoverPoint = -1;
        update();
        emit curveChanged(this);
        return;
    }
    if (endPoint)
        x = pts[size_t(i)].x;
    else
        x = std::clamp(x, std::max(0.0f, pts[size_t(i - 1)].x), std::min(1.0f, pts[size_t(i + 1)].x));
    pts[size_t(i)] = ToneCurvePoint{x, std::clamp(y, 0.0f, 1.0f)};
    tieRingEnds(i);
    editedCurve->rebuild();
    update();
    emit curveChanged(this);
}

void ToneCurveWidget::tieRingEnds(int32_t moved)
{
    auto& pts = editedCurve->points;
    if (mode != 3 || pts.size() < 2)
        return;
    pts.front().x = 0.0f;
    pts.back().x = 1.0f;
    if (moved == 0)
        pts.back().y = pts.front().y;
    else if (moved == int32_t(pts.size()) - 1)
        pts.front().y = pts.back().y;
}

void ToneCurveWidget::removePointAt(int32_t i)
{
    // Only this point goes; its neighbours stay where the user put them.
    auto& pts = editedCurve->points;
    pts.erase(pts.begin() + i);
    editedCurve->rebuild();
}

void ToneCurveWidget::mouseReleaseEvent(QMouseEvent* event)
{
    lastPos = event->localPos();
    scrollingHue = false;
    activePoint = -1;
    update();
}

void ToneCurveWidget::leaveEvent(QEvent*)
{
    if (activePoint < 0 && hoverPoint >= 0) {
        hoverPoint = -1;
        update();
    }
}

void ToneCurveWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Delete && event->key() != Qt::Key_Backspace) {
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
    const int32_t n = editedCurve->pointCount();
    if (hoverPoint <= 0 || hoverPoint >= n - 1)
        return;
    emit editingStarted(this);
    removePointAt(hoverPoint);
    hoverPoint = -1;
    activePoint = -1;
    update();
    emit curveChanged(this);
}

void ToneCurveWidget::wheelEvent(QWheelEvent* event)
{
    const bool overHue = mode == 3 && hueStripRect().contains(event->position());
    if (hoverPoint < 0 && !overHue) {
        event->ignore();
        return;
    }
    pendingWheelX += float(event->angleDelta().x());
    pendingWheelY += float(event->angleDelta().y());
    if (!scrollTimer.isActive())
        scrollTimer.start();
    event->accept();
}

void ToneCurveWidget::scrollTimerFired()
{
    const float side = float(std::min(width(), height()));
    auto& pts = editedCurve->points;
    if (hoverPoint >= 0 && hoverPoint < int32_t(pts.size())) {
        if (wheelOwed)
            emit editingStarted(this);
        const float s = side * 1e-6f;
        ToneCurvePoint& p = pts[size_t(hoverPoint)];
        const int32_t n = int32_t(pts.size());
        // Keep x order: an inner point stays between its neighbours, the ends keep their x.
        if (hoverPoint > 0 && hoverPoint < n - 1)
            p.x = std::clamp(std::clamp(p.x - pendingWheelX * s, 0.0f, 1.0f), pts[size_t(hoverPoint - 1)].x,
                             pts[size_t(hoverPoint + 1)].x);
        p.y = std::clamp(p.y + pendingWheelY * s, 0.0f, 1.0f);
        tieRingEnds(hoverPoint);
        editedCurve->rebuild();
        update();
        emit curveChanged(this);
    } else if (mode == 3) {
        if (wheelOwed)
            emit editingStarted(this);
        setHueFromT(hueShift + side * -2e-6f * pendingWheelX);
    }
    pendingWheelX = 0.0f;
    pendingWheelY = 0.0f;
    wheelOwed = false;
    scrollFinishTimer.start();
}

void ToneCurveWidget::scrollFinishTimerFired()
{
    wheelOwed = true;
}

void ToneCurveWidget::paintEvent(QPaintEvent*)
{
    QPainter g(this);
    g.setRenderHint(QPainter::Antialiasing);
    g.fillRect(rect(), QColor(44, 44, 44));
    const QRectF graph(margin, margin, graphWidth(), graphHeight());

    QLinearGradient back(graph.topLeft(), graph.bottomLeft());
    back.setColorAt(0, QColor(70, 70, 70));
    back.setColorAt(1, QColor(60, 60, 60));
    g.fillRect(graph, back);

    g.setPen(QPen(QColor(0, 0, 0, 50), 1));
    for (int k = 1; k < 4; ++k) {
        const float x = std::round(margin + graphWidth() * float(k) * 0.25f) + 0.5f;
        const float y = std::round(margin + graphHeight() * float(k) * 0.25f) + 0.5f;
        g.drawLine(QPointF(x, graph.top()), QPointF(x, graph.bottom()));
        g.drawLine(QPointF(graph.left(), y), QPointF(graph.right(), y));
    }
    if (mode != 3) {
        g.setPen(QPen(QColor(255, 255, 255, 28), 1));
        g.drawLine(graph.bottomLeft(), graph.topRight());
    }
    g.setPen(QPen(QColor(24, 24, 24), 1));
    g.setBrush(Qt::NoBrush);
    g.drawRect(graph.adjusted(-0.5, -0.5, 0.5, 0.5));

    // The bar under the graph: what the x axis means in this mode.
    const QRectF bar = hueStripRect();
    if (mode == 3) {
        const int n = std::max(1, int(bar.width()));
        for (int i = 0; i < n; ++i) {
            const float hue = std::fmod(float(i) * 360.0f / float(n) + hueDegrees, 360.0f);
            g.fillRect(QRectF(bar.left() + i, bar.top(), 1.0, bar.height()),
                       QColor::fromHsvF(qreal(hue) / 360.0, 1.0, 1.0));
        }
    } else {
        QLinearGradient grad(bar.topLeft(), bar.topRight());
        grad.setColorAt(0, mode == 2 ? QColor(128, 128, 128) : QColor(0, 0, 0));
        grad.setColorAt(1, mode == 1 ? tint : mode == 2 ? QColor(230, 40, 40) : QColor(255, 255, 255));
        g.fillRect(bar, grad);
    }
    g.setPen(QPen(QColor(24, 24, 24), 1));
    g.drawRect(bar.adjusted(-0.5, -0.5, 0.5, 0.5));

    // The curve from its table, one vertex per pixel column, clipped to the graph.
    g.save();
    g.setClipRect(graph.adjusted(-1, -1, 1, 1));
    QPainterPath path;
    const int columns = std::max(2, int(graphWidth()) + 1);
    for (int c = 0; c < columns; ++c) {
        const float x = float(c) / float(columns - 1);
        const QPointF p = pixelFromUnit(x, editedCurve->lookup(x));
        if (c == 0)
            path.moveTo(p);
        else
            path.lineTo(p);
    }
    const QColor curveColor = mode == 1 ? tint.lighter(130) : QColor(225, 225, 225);
    g.setPen(QPen(curveColor, 1.6));
    g.drawPath(path);
    g.restore();

    const auto& pts = editedCurve->points;
    for (size_t i = 0; i < pts.size(); ++i) {
        const QPointF p = pixelFromUnit(pts[i].x, pts[i].y);
        const bool active = int32_t(i) == activePoint;
        const bool hover = int32_t(i) == hoverPoint;
        g.setPen(QPen(QColor(20, 20, 20), 1.2));
        g.setBrush(active ? QColor(92, 140, 210) : hover ? QColor(255, 255, 255) : QColor(200, 200, 200));
        const qreal r = active || hover ? 4.5 : 3.5;
        g.drawEllipse(p, r, r);
    }
}
