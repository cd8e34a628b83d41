#include "ui/MVTrayButton.h"

#include "ui/ControlArt.h"

#include <QtGui/QPainter>

MVTrayButton::MVTrayButton(QWidget* parent) : MVPushButton(QString(), parent)
{
    resize(24, 24);
    connect(this, &QPushButton::pressed, this, &MVTrayButton::buttonPressed);
}

void MVTrayButton::setImages(const QString& rest, const QString& hover, const QString& press)
{
    restImage = ControlArt::pixmap(rest);
    hoverImage = hover.isEmpty() ? restImage : ControlArt::pixmap(hover);
    pressImage = press.isEmpty() ? hoverImage : ControlArt::pixmap(press);
    update();
}

void MVTrayButton::paintEvent(QPaintEvent* event)
{
    const QPixmap& p = isDown() ? pressImage : isHovered() ? hoverImage : restImage;
    if (p.isNull()) {
        MVPushButton::paintEvent(event);
        return;
    }
    QPainter g(this);
    g.setRenderHint(QPainter::SmoothPixmapTransform);
    const QSizeF s = QSizeF(p.size()) / p.devicePixelRatio();
    g.drawPixmap(QRectF(QPointF((width() - s.width()) / 2.0, (height() - s.height()) / 2.0), s), p, QRectF(p.rect()));
}
