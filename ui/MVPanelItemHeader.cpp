#include "ui/MVPanelItemHeader.h"

#include <QtGui/QPainter>

MVPanelItemHeader::MVPanelItemHeader(const QString& name, bool isCollapsed, const QString& iconPath,
                                     QWidget* parent)
    : MVPanelItem(parent), collapsed(isCollapsed)
{
    setText(name);
    setFixedHeight(kHeight);
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(QStringLiteral("border-image: url(:/img/panel_header_bg.png) 8 8 8 8; font-size:13px;"));
    if (!iconPath.isEmpty())
        icon = QPixmap(iconPath);
    openArrow = QPixmap(QStringLiteral(":/img/panel_button_collapse_w.png"));
    closedArrow = QPixmap(QStringLiteral(":/img/panel_button_uncollapse_w.png"));
    connect(this, &QAbstractButton::pressed, this, [this] { emit headerToggled(this); });
}

void MVPanelItemHeader::setCollapsed(bool c)
{
    if (collapsed == c)
        return;
    collapsed = c;
    update();
}

void MVPanelItemHeader::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    paintStyledBackground(p);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    const int mid = height() / 2;
    const QPixmap& arrow = collapsed ? closedArrow : openArrow;
    if (!arrow.isNull())
        p.drawPixmap(QRect(10, mid - 6, 12, 12), arrow);
    int x = 28;
    if (!icon.isNull()) {
        p.setOpacity(collapsed ? 0.7 : 1.0);
        p.drawPixmap(QRect(x, mid - 8, 16, 16), icon);
        p.setOpacity(1.0);
        x += 24;
    }
    QFont f = font();
    f.setBold(true);
    p.setFont(f);
    const bool hot = underMouse();
    p.setPen(hot ? QColor(0xff, 0xff, 0xff) : (collapsed ? QColor(0xb4, 0xb4, 0xb4) : QColor(0xe8, 0xe8, 0xe8)));
    const QRect textRect(x, 0, width() - x - 8, height());
    p.drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter,
               p.fontMetrics().elidedText(text(), Qt::ElideRight, textRect.width()));
}
