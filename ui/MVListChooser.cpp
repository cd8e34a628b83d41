#include "ui/MVListChooser.h"

#include "ui/ControlArt.h"
#include "ui/MVListChooserList.h"

#include <QtGui/QPainter>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>

MVListChooser::MVListChooser(QWidget* parent) : MVPushButton(QString(), parent)
{
    resize(160, 22);
    connect(this, &QPushButton::pressed, this, &MVListChooser::showList);
}

MVListChooser::~MVListChooser()
{
    // An open list outlives this part of the object for a moment: it must not call back.
    if (list)
        list->disconnect(this);
}

void MVListChooser::setItems(const QStringList& list, int index)
{
    items = list;
    setCurrentIndex(index);
}

void MVListChooser::setCurrentIndex(int i)
{
    current = (i >= 0 && i < int(items.size())) ? i : -1;
    hovered = current;
    update();
}

QString MVListChooser::currentText() const
{
    return current >= 0 ? items.at(current) : QString();
}

void MVListChooser::showList()
{
    if (items.isEmpty() || list)
        return;
    list = new MVListChooserList(items, current, this);
    connect(list, &MVListChooserList::itemChosen, this, &MVListChooser::chosen);
    connect(list, &MVListChooserList::rowHighlighted, this, &MVListChooser::hoverMoved);
    connect(list, &MVListChooserList::listHidden, this, &MVListChooser::hoverEnded);
    const QRect anchor(mapToGlobal(QPoint(0, 0)), size());
    int room = 400;
    if (QScreen* s = screen())
        room = std::max(MVListChooserList::rowHeight * 3, s->availableGeometry().bottom() - anchor.bottom() - 8);
    list->placeBelow(anchor, room);
    list->show();
    list->setFocus();
    setDown(false);
}

void MVListChooser::hoverMoved(int row)
{
    if (row == hovered || row < 0 || row >= int(items.size()))
        return;
    hovered = row;
    emit itemHovered(row);
}

void MVListChooser::hoverEnded()
{
    if (hovered == current)
        return;
    hovered = current;
    emit itemHovered(current);
}

void MVListChooser::chosen(int row)
{
    hoverEnded();
    if (row == current || row < 0 || row >= int(items.size()))
        return;
    current = row;
    update();
    emit itemChanged(row);
}

void MVListChooser::paintEvent(QPaintEvent*)
{
    QPainter g(this);
    paintFace(g);
    g.setPen(ControlArt::textColor());
    g.setFont(font());
    g.drawText(rect().adjusted(8, 0, -22, 0), Qt::AlignLeft | Qt::AlignVCenter,
               g.fontMetrics().elidedText(currentText(), Qt::ElideRight, width() - 30));
    const QPixmap arrow = ControlArt::pixmap(QStringLiteral(":/img/list_chooser_arrow.png"));
    const QSizeF s = QSizeF(arrow.size()) / arrow.devicePixelRatio();
    g.drawPixmap(QPointF(width() - 8 - s.width(), (height() - s.height()) / 2.0), arrow);
}
