#include "ui/MVListChooserList.h"

#include "ui/ControlArt.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>

#include <algorithm>

namespace {
constexpr int kPad = 4;
} // namespace

MVListChooserList::MVListChooserList(const QStringList& list, int current, QWidget* parent)
    : QWidget(parent, Qt::Popup | Qt::FramelessWindowHint), items(list), original(current), highlighted(current)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    resize(160, int(items.size()) * rowHeight + 2 * kPad);
}

int MVListChooserList::rowAt(QPoint p) const
{
    if (p.x() < 0 || p.x() >= width() || p.y() < kPad || p.y() >= height() - kPad)
        return -1;
    const int row = (p.y() - kPad + offset) / rowHeight;
    return row >= 0 && row < int(items.size()) ? row : -1;
}

void MVListChooserList::placeBelow(const QRect& anchor, int maxHeight)
{
    const int full = int(items.size()) * rowHeight + 2 * kPad;
    resize(std::max(anchor.width(), 120), std::min(full, std::max(rowHeight + 2 * kPad, maxHeight)));
    move(anchor.left(), anchor.bottom() + 1);
    showRow(highlighted);
}

void MVListChooserList::setOffset(int o)
{
    const int most = std::max(0, int(items.size()) * rowHeight - (height() - 2 * kPad));
    offset = std::clamp(o, 0, most);
    update();
}

void MVListChooserList::showRow(int row)
{
    if (row < 0)
        return;
    const int top = row * rowHeight;
    const int view = height() - 2 * kPad;
    if (top < offset)
        setOffset(top);
    else if (top + rowHeight > offset + view)
        setOffset(top + rowHeight - view);
}

void MVListChooserList::paintEvent(QPaintEvent*)
{
    QPainter g(this);
    g.setRenderHint(QPainter::Antialiasing);
    g.setPen(QPen(QColor(18, 18, 18), 1));
    g.setBrush(QColor(48, 48, 48));
    g.drawRoundedRect(QRectF(0.5, 0.5, width() - 1, height() - 1), 5, 5);
    g.setClipRect(rect().adjusted(1, kPad, -1, -kPad));
    QFont f = font();
    f.setPixelSize(11);
    g.setFont(f);
    for (int i = 0; i < int(items.size()); ++i) {
        const QRect r(1, kPad + i * rowHeight - offset, width() - 2, rowHeight);
        if (r.bottom() < 0 || r.top() > height())
            continue;
        if (i == highlighted)
            g.fillRect(r.adjusted(3, 0, -3, 0), ControlArt::fillColor());
        g.setPen(i == highlighted ? QColor(255, 255, 255) : ControlArt::textColor());
        if (i == original)
            g.drawText(r.adjusted(6, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("\u2713"));
        g.drawText(r.adjusted(20, 0, -8, 0), Qt::AlignLeft | Qt::AlignVCenter, items.at(i));
    }
}

void MVListChooserList::mousePressEvent(QMouseEvent* event)
{
    const int row = rowAt(event->pos());
    if (row >= 0)
        emit itemChosen(row);
    close();
}

void MVListChooserList::mouseMoveEvent(QMouseEvent* event)
{
    const int row = rowAt(event->pos());
    if (row >= 0 && row != highlighted) {
        highlighted = row;
        update();
        emit rowHighlighted(row);
    }
}

void MVListChooserList::leaveEvent(QEvent*)
{
    if (highlighted != original) {
        highlighted = original;
        update();
        emit rowHighlighted(original);
    }
}

void MVListChooserList::hideEvent(QHideEvent*)
{
    emit listHidden();
}

void MVListChooserList::wheelEvent(QWheelEvent* event)
{
    setOffset(offset - event->angleDelta().y());
    event->accept();
}

void MVListChooserList::keyPressEvent(QKeyEvent* event)
{
    const int n = int(items.size());
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (n > 0) {
            const int step = event->key() == Qt::Key_Up ? -1 : 1;
            highlighted = std::clamp(highlighted < 0 ? 0 : highlighted + step, 0, n - 1);
            showRow(highlighted);
            update();
            emit rowHighlighted(highlighted);
        }
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (highlighted >= 0)
            emit itemChosen(highlighted);
        close();
        break;
    case Qt::Key_Escape:
        close();
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}
