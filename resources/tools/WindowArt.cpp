#include "WindowArt.h"
#include "ArtworkCanvas.h"
#include "ArtworkPalette.h"
#include "StartupArt.h"
#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <cstring>

using namespace ArtworkPalette;

namespace {

QColor iconColor() { return QColor(0xd6, 0xd6, 0xd6); }

void roundedButton(QPainter& p, const QRectF& r, const QColor& top, const QColor& bottom, const QColor& edgeColour)
{
    drawShadedCard(p, r, top, bottom, edgeColour, 4, 18);
}

} // namespace

void drawMainBackground(QPainter& p, int w, int h)
{
    p.fillRect(QRectF(0, 0, w, h), QColor(0x1f, 0x1f, 0x1f));
}

void drawPanelBackground(QPainter& p, int w, int h)
{
    QLinearGradient g(0, 0, w, 0);
    g.setColorAt(0, QColor(0x2b, 0x2b, 0x2b));
    g.setColorAt(1, QColor(0x27, 0x27, 0x27));
    p.fillRect(QRectF(0, 0, w, h), g);
}

void drawMiniButtonBackground(QPainter& p, int w, int h, bool down)
{
    if (down)
        roundedButton(p, QRectF(0, 0, w, h), QColor(0x2a, 0x2a, 0x2a), QColor(0x30, 0x30, 0x30), hairline());
    else
        roundedButton(p, QRectF(0, 0, w, h), controlTop(), controlBottom(), hairline());
}

void drawMiniIcon(QPainter& p, const char* kind)
{
    const QColor c = iconColor();
    QPen pen(c, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    auto is = [kind](const char* k) { return std::strcmp(kind, k) == 0; };
    if (is("hide_p") || is("show_p")) {
        // A window with its right-hand panel; the arrow says which way it goes.
        p.drawRoundedRect(QRectF(1.5, 2.5, 13, 11), 1.5, 1.5);
        p.fillRect(QRectF(10, 3, 4, 10), c);
        const qreal dir = is("hide_p") ? 1 : -1;
        QPainterPath a;
        a.moveTo(6 - dir * 1.5, 5.5);
        a.lineTo(6 + dir * 1.5, 8);
        a.lineTo(6 - dir * 1.5, 10.5);
        p.drawPath(a);
    } else if (is("hide_t") || is("show_t")) {
        p.drawRoundedRect(QRectF(1.5, 2.5, 13, 11), 1.5, 1.5);
        p.fillRect(QRectF(2, 10, 12, 3.5), c);
        const qreal dir = is("hide_t") ? 1 : -1;
        QPainterPath a;
        a.moveTo(5.5, 6.5 - dir * 1.5);
        a.lineTo(8, 6.5 + dir * 1.5);
        a.lineTo(10.5, 6.5 - dir * 1.5);
        p.drawPath(a);
    } else if (is("visible")) {
        // An eye.
        QPainterPath eye;
        eye.moveTo(1.5, 8);
        eye.quadTo(8, 1.5, 14.5, 8);
        eye.quadTo(8, 14.5, 1.5, 8);
        p.drawPath(eye);
        p.setBrush(c);
        p.drawEllipse(QPointF(8, 8), 2.2, 2.2);
    } else if (is("del")) {
        // A bin.
        p.drawLine(QPointF(2.5, 4), QPointF(13.5, 4));
        p.drawLine(QPointF(6, 4), QPointF(6.5, 2));
        p.drawLine(QPointF(6.5, 2), QPointF(9.5, 2));
        p.drawLine(QPointF(9.5, 2), QPointF(10, 4));
        QPainterPath bin;
        bin.moveTo(4, 5);
        bin.lineTo(4.8, 14);
        bin.lineTo(11.2, 14);
        bin.lineTo(12, 5);
        p.drawPath(bin);
        p.drawLine(QPointF(6.8, 7), QPointF(6.8, 12));
        p.drawLine(QPointF(9.2, 7), QPointF(9.2, 12));
    } else if (is("cancel")) {
        // A cross in a filled disc, for removing a waiting file from the render queue.
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0x5a, 0x5a, 0x5a));
        p.drawEllipse(QRectF(1, 1, 14, 14));
        p.setPen(QPen(c, 1.6, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(QPointF(5.5, 5.5), QPointF(10.5, 10.5));
        p.drawLine(QPointF(10.5, 5.5), QPointF(5.5, 10.5));
    } else if (is("previous_preset") || is("next_preset")) {
        const qreal dir = is("next_preset") ? 1 : -1;
        p.setBrush(c);
        QPainterPath tri;
        tri.moveTo(8 - dir * 4, 3);
        tri.lineTo(8 + dir * 3, 8);
        tri.lineTo(8 - dir * 4, 13);
        tri.closeSubpath();
        p.drawPath(tri);
        p.drawLine(QPointF(8 + dir * 5, 3), QPointF(8 + dir * 5, 13));
    }
}

void drawViewModeButton(QPainter& p, const char* mode, bool active)
{
    const QRectF r(0, 0, 28, 22);
    if (active)
        roundedButton(p, r, accentLight(), accentDark(), QColor(0x7a, 0x4a, 0x18));
    else
        roundedButton(p, r, controlTop(), controlBottom(), hairline());
    const QColor c = active ? onAccent() : iconColor();
    p.setPen(QPen(c, 1.2));
    p.setBrush(Qt::NoBrush);
    const QRectF frame(7.5, 5.5, 13, 11);
    p.drawRect(frame);
    if (std::strcmp(mode, "vertical") == 0)
        p.drawLine(QPointF(14, 5.5), QPointF(14, 16.5));
    else if (std::strcmp(mode, "horizontal") == 0)
        p.drawLine(QPointF(7.5, 11), QPointF(20.5, 11));
}

void drawNewTabButton(QPainter& p, bool down)
{
    const QRectF r(0, 0, 28, 22);
    if (down)
        roundedButton(p, r, QColor(0x2a, 0x2a, 0x2a), QColor(0x30, 0x30, 0x30), hairline());
    else
        roundedButton(p, r, controlTop(), controlBottom(), hairline());
    p.setPen(QPen(iconColor(), 1.6, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(14, 6.5), QPointF(14, 15.5));
    p.drawLine(QPointF(9.5, 11), QPointF(18.5, 11));
}

void drawPlaceholderThumb(QPainter& p, int w, int h)
{
    QLinearGradient g(0, 0, 0, h);
    g.setColorAt(0, QColor(0x34, 0x34, 0x34));
    g.setColorAt(1, QColor(0x2a, 0x2a, 0x2a));
    p.setPen(Qt::NoPen);
    p.setBrush(g);
    p.drawRoundedRect(QRectF(0, 0, w, h), 6, 6);
    const qreal s = qMin(w, h) * 0.45;
    drawPhotoGlyph(p, QRectF((w - s) / 2, (h - s) / 2, s, s), textFaint());
}

void drawDownArrow(QPainter& p, int w, int h)
{
    p.setPen(Qt::NoPen);
    p.setBrush(iconColor());
    QPainterPath tri;
    tri.moveTo(0.5, 0.5);
    tri.lineTo(w - 0.5, 0.5);
    tri.lineTo(w / 2.0, h - 0.5);
    tri.closeSubpath();
    p.drawPath(tri);
}
