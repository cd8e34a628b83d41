#include "ui/MVPanelItemBigButton.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

MVPanelItemBigButton::MVPanelItemBigButton(int command, const QString& name, bool plus, bool bigSize,
                                           const QString& iconPath, QWidget* parent)
    : MVPanelItem(parent), commandId(command), hasPlus(plus)
{
    setText(name);
    setFixedHeight(kHeight + (bigSize ? kBigExtra : 0));
    setMouseTracking(true);
    setStyleSheet(QStringLiteral("font-size:12px;"));
    if (!iconPath.isEmpty())
        picture = QPixmap(iconPath);
}

QRect MVPanelItemBigButton::plusArea() const
{
    return hasPlus ? QRect(width() - 34, 0, 34, height()) : QRect();
}

void MVPanelItemBigButton::mouseMoveEvent(QMouseEvent* event)
{
    const bool lit = plusArea().contains(event->pos());
    if (lit != plusIsLit) {
        plusIsLit = lit;
        update();
    }
    MVPanelItem::mouseMoveEvent(event);
}

void MVPanelItemBigButton::leaveEvent(QEvent* event)
{
    MVPanelItem::leaveEvent(event);
    plusIsLit = false;
    update();
}

void MVPanelItemBigButton::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    const bool hot = underMouse();
    // A raised card, so the tools read as actions and not as tiles.
    const QRectF card(4.5, 4.5, width() - 9, height() - 9);
    QLinearGradient g(card.topLeft(), card.bottomLeft());
    g.setColorAt(0, isDown() ? QColor(0x2c, 0x2c, 0x2c) : (hot ? QColor(0x44, 0x44, 0x44) : QColor(0x3a, 0x3a, 0x3a)));
    g.setColorAt(1, isDown() ? QColor(0x30, 0x30, 0x30) : (hot ? QColor(0x3a, 0x3a, 0x3a) : QColor(0x31, 0x31, 0x31)));
    p.setPen(QPen(QColor(0x17, 0x17, 0x17), 1));
    p.setBrush(g);
    p.drawRoundedRect(card, 5, 5);
    p.setPen(QPen(QColor(255, 255, 255, 16), 1));
    p.drawLine(QPointF(card.left() + 5, card.top() + 1), QPointF(card.right() - 5, card.top() + 1));

    const int mid = height() / 2;
    int x = 16;
    if (!picture.isNull()) {
        p.drawPixmap(QRect(x, mid - 11, 22, 22), picture);
        x += 32;
    }
    if (hasPlus && (hot || plusIsLit))
        p.drawPixmap(QRect(width() - 28, mid - 8, 16, 16),
                     QPixmap(plusIsLit ? QStringLiteral(":/img/panel_button_plus_high.png")
                                       : QStringLiteral(":/img/panel_button_plus_low.png")));
    p.setFont(font());
    p.setPen(hot ? QColor(0xff, 0xff, 0xff) : QColor(0xe0, 0xe0, 0xe0));
    const QRect textRect(x, 0, width() - x - (hasPlus ? 34 : 10), height());
    p.drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter,
               p.fontMetrics().elidedText(text(), Qt::ElideRight, textRect.width()));
}
