#include "ui/ControlArt.h"

#include "ui/DevicePixelRatio.h"

#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

namespace {

QPixmap blank(int w, int h)
{
    const qreal dpr = qreal(gDevicePixelRatio);
    QPixmap p(int(w * dpr + 0.5), int(h * dpr + 0.5));
    p.setDevicePixelRatio(dpr);
    p.fill(Qt::transparent);
    return p;
}

QPixmap drawSliderHandle()
{
    QPixmap p = blank(12, 16);
    QPainter g(&p);
    g.setRenderHint(QPainter::Antialiasing);
    QLinearGradient grad(0, 0, 0, 16);
    grad.setColorAt(0, QColor(214, 214, 214));
    grad.setColorAt(1, QColor(160, 160, 160));
    g.setPen(QPen(QColor(20, 20, 20), 1));
    g.setBrush(grad);
    g.drawRoundedRect(QRectF(1.5, 1.5, 9, 13), 2.5, 2.5);
    g.setPen(QPen(QColor(90, 90, 90), 1));
    g.drawLine(QPointF(6, 5), QPointF(6, 11));
    return p;
}

QPixmap drawListArrow()
{
    QPixmap p = blank(10, 10);
    QPainter g(&p);
    g.setRenderHint(QPainter::Antialiasing);
    g.setPen(Qt::NoPen);
    g.setBrush(QColor(200, 200, 200));
    QPainterPath a;
    a.moveTo(1.5, 3.5);
    a.lineTo(8.5, 3.5);
    a.lineTo(5, 7.5);
    a.closeSubpath();
    g.drawPath(a);
    return p;
}

QPixmap drawPanel(int size, QColor top, QColor bottom, QColor edge, qreal radius)
{
    QPixmap p = blank(size, size);
    QPainter g(&p);
    g.setRenderHint(QPainter::Antialiasing);
    QLinearGradient grad(0, 0, 0, size);
    grad.setColorAt(0, top);
    grad.setColorAt(1, bottom);
    g.setPen(QPen(edge, 1));
    g.setBrush(grad);
    g.drawRoundedRect(QRectF(0.5, 0.5, size - 1, size - 1), radius, radius);
    return p;
}

QPixmap drawScrollerHandle()
{
    QPixmap p = blank(7, 24);
    QPainter g(&p);
    g.setRenderHint(QPainter::Antialiasing);
    g.setPen(Qt::NoPen);
    g.setBrush(QColor(130, 130, 130));
    g.drawRoundedRect(QRectF(1, 0.5, 5, 23), 2.5, 2.5);
    return p;
}

QPixmap draw(const QString& path)
{
    if (path == QLatin1String(":/img/slider_handle.png"))
        return drawSliderHandle();
    if (path == QLatin1String(":/img/list_chooser_arrow.png"))
        return drawListArrow();
    if (path == QLatin1String(":/img/traylistbg.png"))
        return drawPanel(24, QColor(52, 52, 52), QColor(44, 44, 44), QColor(18, 18, 18), 5);
    if (path == QLatin1String(":/img/push_button_bg.png"))
        return drawPanel(24, QColor(78, 78, 78), QColor(64, 64, 64), QColor(24, 24, 24), 4);
    if (path == QLatin1String(":/img/push_button_bg_high.png"))
        return drawPanel(24, QColor(96, 96, 96), QColor(80, 80, 80), QColor(24, 24, 24), 4);
    if (path == QLatin1String(":/img/scroller_handle.png"))
        return drawScrollerHandle();
    return QPixmap();
}

} // namespace

QPixmap ControlArt::pixmap(const QString& path)
{
    static QHash<QString, QPixmap> cache;
    auto it = cache.find(path);
    if (it != cache.end())
        return *it;
    QPixmap p;
    if (QFile::exists(path))
        p.load(path);
    if (p.isNull())
        p = draw(path);
    cache.insert(path, p);
    return p;
}
