#include "ui/MVScrollerHandle.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

MVScrollerHandle::MVScrollerHandle(QWidget* parent) : QWidget(parent) {}

void MVScrollerHandle::paintEvent(QPaintEvent*)
{
    QPainter g(this);
    g.setRenderHint(QPainter::Antialiasing);
    g.setPen(Qt::NoPen);
    g.setBrush(dragging ? QColor(170, 170, 170) : hovered ? QColor(150, 150, 150) : QColor(118, 118, 118));
    const qreal r = (width() - 2) / 2.0;
    g.drawRoundedRect(QRectF(1, 1, width() - 2, height() - 2), r, r);
}

void MVScrollerHandle::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    dragging = true;
    lastY = event->globalPos().y();
    update();
}

void MVScrollerHandle::mouseMoveEvent(QMouseEvent* event)
{
    if (!dragging)
        return;
    const int y = event->globalPos().y();
    const int step = y - lastY;
    lastY = y;
    if (step != 0)
        emit dragged(step);
}

void MVScrollerHandle::mouseReleaseEvent(QMouseEvent*)
{
    dragging = false;
    update();
}

void MVScrollerHandle::enterEvent(QEvent*)
{
    hovered = true;
    update();
}

void MVScrollerHandle::leaveEvent(QEvent*)
{
    hovered = false;
    update();
}
