#include "ui/MVPushButton.h"

#include "ui/ControlArt.h"

#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>

MVPushButton::MVPushButton(const QString& text, QWidget* parent) : QPushButton(text, parent)
{
    setFlat(true);
    setFocusPolicy(Qt::NoFocus);
    QFont f = font();
    f.setPixelSize(11);
    setFont(f);
    resize(90, 22);
}

void MVPushButton::paintFace(QPainter& g) const
{
    g.setRenderHint(QPainter::Antialiasing);
    const bool down = isDown() || isChecked();
    QLinearGradient grad(0, 0, 0, height());
    if (down) {
        grad.setColorAt(0, QColor(40, 40, 40));
        grad.setColorAt(1, QColor(52, 52, 52));
    } else {
        const QColor top = hovered ? ControlArt::faceHighColor() : ControlArt::faceColor();
        grad.setColorAt(0, top);
        grad.setColorAt(1, top.darker(118));
    }
    g.setPen(QPen(ControlArt::frameColor(), 1));
    g.setBrush(grad);
    g.drawRoundedRect(QRectF(0.5, 0.5, width() - 1, height() - 1), 3.5, 3.5);
    if (!down) {
        g.setPen(QPen(QColor(255, 255, 255, 22), 1));
        g.drawLine(QPointF(4, 1.5), QPointF(width() - 4, 1.5));
    }
}

void MVPushButton::paintEvent(QPaintEvent*)
{
    QPainter g(this);
    paintFace(g);
    g.setPen(isEnabled() ? ControlArt::textColor() : QColor(120, 120, 120));
    g.setFont(font());
    g.drawText(rect().adjusted(6, 0, -6, 0), Qt::AlignCenter, text());
}

void MVPushButton::enterEvent(QEvent* event)
{
    hovered = true;
    update();
    emit mouseEnter();
    QPushButton::enterEvent(event);
}

void MVPushButton::leaveEvent(QEvent* event)
{
    hovered = false;
    update();
    QPushButton::leaveEvent(event);
}
