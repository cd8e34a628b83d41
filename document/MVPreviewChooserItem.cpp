#include "document/MVPreviewChooserItem.h"

#include "document/MVImageWithProcessing.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

MVPreviewChooserItem::MVPreviewChooserItem(const QString& name, const ImageMod& preset, FlexImageFloat* source,
                                           QWidget* parent)
    : QWidget(parent), title(name), presetMod(cloneMod(preset))
{
    resize(kCellWidth, kCellHeight);
    setCursor(Qt::PointingHandCursor);
    setToolTip(name);
    thumb = new MVImageWithProcessing(source, this);
    thumb->setGeometry(kInset, kInset, kThumbWidth, kThumbHeight);
    // Presses land on the cell, not the picture.
    thumb->setAttribute(Qt::WA_TransparentForMouseEvents, true);
}

MVPreviewChooserItem::~MVPreviewChooserItem()
{
    waitForIdle();
}

void MVPreviewChooserItem::startThumbnail()
{
    if (started || !presetMod)
        return;
    started = true;
    // Without a picture there is nothing to work on: the cell is done as it stands.
    if (!thumb->sourceImage || thumb->sourceImage->isEmpty())
        return;
    thumb->startProcessing({presetMod.get()});
}

MVPreviewChooserItem::State MVPreviewChooserItem::state()
{
    if (!started)
        return Waiting;
    if (!thumb->sourceImage || thumb->sourceImage->isEmpty())
        return Done;
    // The thread holds the thumbnail's mutex for all its work: a busy lock means working.
    std::unique_lock<std::mutex> lock(thumb->mutex, std::try_to_lock);
    return lock.owns_lock() && thumb->state == 3 ? Done : Working;
}

void MVPreviewChooserItem::waitForIdle()
{
    if (thumb)
        thumb->waitForIdle();
}

void MVPreviewChooserItem::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing, true);
    const QRectF frame(kInset - 0.5, kInset - 0.5, kThumbWidth + 1.0, kThumbHeight + 1.0);
    // A dark well behind the picture until the thumbnail's thread has drawn it.
    QPainterPath well;
    well.addRoundedRect(frame, 3.0, 3.0);
    p.fillPath(well, QColor(0x14, 0x14, 0x14));
    if (state() != Done) {
        p.setPen(QColor(0x6c, 0x6c, 0x6c));
        QFont f = font();
        f.setPixelSize(11);
        p.setFont(f);
        p.drawText(frame, Qt::AlignCenter, QStringLiteral("\u2026"));
    }
    if (hovered) {
        QPainterPath ring;
        ring.addRoundedRect(frame.adjusted(-2.5, -2.5, 2.5, 2.5), 5.0, 5.0);
        p.setPen(QPen(pressed ? QColor(0xc9, 0x7a, 0x2a) : QColor(0xe3, 0x96, 0x3e), 2.0));
        p.setBrush(Qt::NoBrush);
        p.drawPath(ring);
    }
    QFont f = font();
    f.setPixelSize(11);
    f.setBold(hovered);
    p.setFont(f);
    p.setPen(hovered ? QColor(0xf2, 0xf2, 0xf2) : QColor(0xc4, 0xc4, 0xc4));
    const QRect nameRect(0, kThumbHeight + 2 * kInset, width(), kNameHeight);
    p.drawText(nameRect, Qt::AlignHCenter | Qt::AlignVCenter,
               p.fontMetrics().elidedText(title, Qt::ElideRight, width() - 4));
}

void MVPreviewChooserItem::enterEvent(QEvent*)
{
    hovered = true;
    update();
}

void MVPreviewChooserItem::leaveEvent(QEvent*)
{
    hovered = false;
    pressed = false;
    update();
}

void MVPreviewChooserItem::mousePressEvent(QMouseEvent* e)
{
    if (e->button() != Qt::LeftButton)
        return;
    pressed = true;
    update();
}

void MVPreviewChooserItem::mouseReleaseEvent(QMouseEvent* e)
{
    if (e->button() != Qt::LeftButton || !pressed)
        return;
    pressed = false;
    update();
    if (rect().contains(e->pos()))
        emit chosen(this);
}
