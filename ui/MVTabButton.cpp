#include "ui/MVTabButton.h"

#include "ui/ControlArt.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

MVTabButton::MVTabButton(const QString& label, QWidget* parent) : QWidget(parent), text(label)
{
    resize(100, 30);
}

void MVTabButton::setLabel(const QString& label)
{
    text = label;
    update();
}

void MVTabButton::setSelected(bool on)
{
    selected = on;
    update();
}

void MVTabButton::paintEvent(QPaintEvent*)
{
    QPainter g(this);
    g.fillRect(rect(), selected ? QColor(58, 58, 58) : hovered ? QColor(50, 50, 50) : QColor(42, 42, 42));
    g.setPen(QColor(24, 24, 24));
    g.drawLine(0, height() - 1, width(), height() - 1);
    if (selected)
        g.fillRect(QRect(6, height() - 3, width() - 12, 2), ControlArt::fillColor());
    QFont f = font();
    f.setPixelSize(12);
    f.setBold(selected);
    g.setFont(f);
    g.setPen(selected ? ControlArt::textColor() : ControlArt::labelColor());
    g.drawText(rect().adjusted(4, 0, -4, -2), Qt::AlignCenter, text);
}

void MVTabButton::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        emit buttonPressed();
}

void MVTabButton::enterEvent(QEvent*)
{
    hovered = true;
    update();
}

void MVTabButton::leaveEvent(QEvent*)
{
    hovered = false;
    update();
}
