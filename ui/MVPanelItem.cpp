#include "ui/MVPanelItem.h"

#include <QtGui/QPainter>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOption>

MVPanelItem::MVPanelItem(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_Hover, true);
}

void MVPanelItem::enterEvent(QEvent* event)
{
    QAbstractButton::enterEvent(event);
    emit panelItemEntered(this);
}

void MVPanelItem::paintStyledBackground(QPainter& p)
{
    QStyleOption opt;
    opt.initFrom(this);
    style()->drawPrimitive(QStyle::PE_Widget, &opt, &p, this);
}
