#include "ui/MVMultiChoiceWidget.h"

#include "ui/ControlArt.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

#include <algorithm>

namespace {
constexpr int kGap = 4;
} // namespace

MVMultiChoiceWidget::MVMultiChoiceWidget(QWidget* parent) : QWidget(parent)
{
    resize(236, chipHeight + 4);
}

QColor MVMultiChoiceWidget::labelColor(const QString& label)
{
    const QStringList parts = label.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (parts.size() != 3)
        return QColor();
    int rgb[3];
    for (int i = 0; i < 3; ++i) {
        bool ok = false;
        rgb[i] = parts[i].toInt(&ok);
        if (!ok || rgb[i] < 0 || rgb[i] > 255)
            return QColor();
    }
    return QColor(rgb[0], rgb[1], rgb[2]);
}

void MVMultiChoiceWidget::setItems(const QStringList& labels, const std::vector<int32_t>& selected)
{
    items = labels;
    selectedOrder.clear();
    for (int32_t s : selected)
        if (s >= 0 && s < items.size() && !isOn(s))
            selectedOrder.push_back(s);
    update();
}

bool MVMultiChoiceWidget::isOn(int i) const
{
    return std::find(selectedOrder.begin(), selectedOrder.end(), i) != selectedOrder.end();
}

QRect MVMultiChoiceWidget::chipRect(int i) const
{
    const int n = std::max(1, int(items.size()));
    const int w = std::max(8, (width() - kGap * (n - 1)) / n);
    return QRect(i * (w + kGap), 2, w, chipHeight);
}

int MVMultiChoiceWidget::chipAt(QPoint p) const
{
    for (int i = 0; i < items.size(); ++i)
        if (chipRect(i).contains(p))
            return i;
    return -1;
}

void MVMultiChoiceWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const int i = chipAt(event->pos());
    if (i < 0)
        return;
    emit editingStarted();
    const auto at = std::find(selectedOrder.begin(), selectedOrder.end(), i);
    if (at != selectedOrder.end())
        selectedOrder.erase(at);
    else
        selectedOrder.push_back(i);
    update();
    emit sliderChanged(this);
}

void MVMultiChoiceWidget::paintEvent(QPaintEvent*)
{
    QPainter g(this);
    g.setRenderHint(QPainter::Antialiasing);
    QFont f = font();
    f.setPixelSize(10);
    g.setFont(f);
    for (int i = 0; i < items.size(); ++i) {
        const QRectF r = QRectF(chipRect(i)).adjusted(0.5, 0.5, -0.5, -0.5);
        const bool on = isOn(i);
        const QColor swatch = labelColor(items.at(i));
        g.setPen(QPen(ControlArt::frameColor(), 1));
        if (swatch.isValid()) {
            QColor c = swatch;
            if (!on)
                c.setAlpha(70);
            g.setBrush(c);
        } else {
            g.setBrush(on ? ControlArt::fillColor() : ControlArt::faceColor());
        }
        g.drawRoundedRect(r, 4, 4);
        if (on && swatch.isValid()) {
            g.setPen(QPen(ControlArt::textColor(), 2));
            g.setBrush(Qt::NoBrush);
            g.drawRoundedRect(r.adjusted(1, 1, -1, -1), 3, 3);
        }
        if (!swatch.isValid()) {
            g.setPen(ControlArt::textColor());
            g.drawText(r, Qt::AlignCenter, g.fontMetrics().elidedText(items.at(i), Qt::ElideRight, int(r.width()) - 4));
        }
    }
}
