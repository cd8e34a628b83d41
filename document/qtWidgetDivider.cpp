#include "document/qtWidgetDivider.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

qtWidgetDivider::qtWidgetDivider(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setVerticalBar(true);
}

void qtWidgetDivider::setVerticalBar(bool vertical)
{
    verticalBar = vertical;
    setCursor(vertical ? Qt::SplitHCursor : Qt::SplitVCursor);
    update();
}

void qtWidgetDivider::mousePressEvent(QMouseEvent* e)
{
    e->accept();
}

void qtWidgetDivider::mouseMoveEvent(QMouseEvent* e)
{
    if (!(e->buttons() & Qt::LeftButton))
        return;
    const QPoint inParent = mapToParent(e->pos());
    dragPosition = verticalBar ? inParent.x() : inParent.y();
    emit dividerMoved(this);
}

void qtWidgetDivider::enterEvent(QEvent*)
{
    hot = true;
    update();
}

void qtWidgetDivider::leaveEvent(QEvent*)
{
    hot = false;
    update();
}

void qtWidgetDivider::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), QColor(18, 18, 18));
    // A lighter centre line, warm while the mouse is on it.
    const QColor line = hot ? QColor(0xe3, 0x96, 0x3e) : QColor(70, 70, 70);
    if (verticalBar)
        p.fillRect(QRect(width() / 2 - 1, 0, 2, height()), line);
    else
        p.fillRect(QRect(0, height() / 2 - 1, width(), 2), line);
}
