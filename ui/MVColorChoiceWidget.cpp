#include "ui/MVColorChoiceWidget.h"

#include "ui/ControlArt.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

MVColorChoiceWidget::MVColorChoiceWidget(QWidget* parent) : QWidget(parent)
{
    resize(200, swatchSize + 8);
}

void MVColorChoiceWidget::setColors(const QVector<QColor>& list, int selectedIndex)
{
    colors = list;
    setSelected(selectedIndex);
}

void MVColorChoiceWidget::setSelected(int i)
{
    current = (i >= 0 && i < colors.size()) ? i : -1;
    update();
}

QColor MVColorChoiceWidget::selectedColor() const
{
    return current >= 0 ? colors.at(current) : QColor();
}

QRect MVColorChoiceWidget::swatchRect(int i) const
{
    return QRect(4 + i * (swatchSize + swatchGap), 4, swatchSize, swatchSize);
}

int MVColorChoiceWidget::swatchAt(QPoint p) const
{
    for (int i = 0; i < colors.size(); ++i)
        if (swatchRect(i).adjusted(-swatchGap / 2, -4, swatchGap / 2, 4).contains(p))
            return i;
    return -1;
}

void MVColorChoiceWidget::mousePressEvent(QMouseEvent* event)
{
    const int i = swatchAt(event->pos());
    if (i < 0 || i == current)
        return;
    current = i;
    update();
    emit selectionChanged(i);
}

void MVColorChoiceWidget::paintEvent(QPaintEvent*)
{
    QPainter g(this);
    g.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < colors.size(); ++i) {
        const QRectF r = QRectF(swatchRect(i)).adjusted(0.5, 0.5, -0.5, -0.5);
        g.setPen(QPen(QColor(18, 18, 18), 1));
        g.setBrush(colors.at(i));
        g.drawRoundedRect(r, 4, 4);
        if (i == current) {
            g.setPen(QPen(ControlArt::textColor(), 2));
            g.setBrush(Qt::NoBrush);
            g.drawRoundedRect(r.adjusted(-2, -2, 2, 2), 5, 5);
        }
    }
}
