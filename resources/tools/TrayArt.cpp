#include "TrayArt.h"
#include "ArtworkCanvas.h"
#include "ArtworkPalette.h"
#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <cstring>

using namespace ArtworkPalette;

namespace {

bool is(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

void card(QPainter& p, const QRectF& r, const QColor& top, const QColor& bottom, const QColor& edgeColour)
{
    drawShadedCard(p, r, top, bottom, edgeColour, 6, 70);
}

} // namespace

void drawTrayTile(QPainter& p, const char* face, int w, int h)
{
    const bool selected = std::strstr(face, "_sel") != nullptr;
    const QColor top = selected ? accent() : QColor(0xdc, 0xdc, 0xdc);
    const QColor bottom = selected ? accentDark() : QColor(0xb4, 0xb4, 0xb4);
    const QColor rim = selected ? QColor(0x6a, 0x3c, 0x10) : hairline();
    // Tiles overlap their neighbours by a couple of pixels; the shadow keeps the edge readable.
    if (std::strncmp(face, "combo", 5) == 0) {
        // Two cards peek out on the right: a group of tiles.
        card(p, QRectF(10, 6, w - 10, h - 12), bottom.darker(150), bottom.darker(170), rim);
        card(p, QRectF(5, 3, w - 9, h - 6), bottom.darker(125), bottom.darker(140), rim);
        card(p, QRectF(0, 0, w - 10, h), top, bottom, rim);
    } else if (std::strncmp(face, "selector", 8) == 0) {
        // A mask: a tab on the right that tucks under the tile it serves, and a soft gradient
        // swatch that reads as a mask.
        const QColor tTop = selected ? top : QColor(0xc6, 0xd8, 0xc0);
        const QColor tBottom = selected ? bottom : QColor(0x9c, 0xb4, 0x96);
        card(p, QRectF(w - 22, 10, 22, h - 20), tBottom.darker(115), tBottom.darker(130), rim);
        card(p, QRectF(0, 0, w - 12, h), tTop, tBottom, rim);
        QLinearGradient m(0, 0, 18, 0);
        m.setColorAt(0, QColor(0, 0, 0, 90));
        m.setColorAt(1, QColor(255, 255, 255, 90));
        p.setPen(Qt::NoPen);
        p.setBrush(m);
        p.drawRoundedRect(QRectF(w - 20, h / 2.0 - 7, 6, 14), 2, 2);
    } else if (is(face, "camera")) {
        card(p, QRectF(0, 0, w, h), QColor(0xc8, 0xd2, 0xdc), QColor(0x9e, 0xae, 0xbe), rim);
        // A film edge along the bottom.
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0x3a, 0x44, 0x50, 200));
        p.drawRect(QRectF(3, h - 8, w - 6, 5));
    } else {
        card(p, QRectF(0, 0, w, h), top, bottom, rim);
    }
}

void drawTrayButton(QPainter& p, const char* kind, int size)
{
    const QRectF r(0.5, 0.5, size - 1, size - 1);
    const bool high = std::strstr(kind, "_high") != nullptr;
    const bool down = std::strstr(kind, "_down") != nullptr;
    QColor face = QColor(0x4a, 0x4a, 0x4a);
    if (high)
        face = QColor(0x66, 0x66, 0x66);
    if (down)
        face = std::strncmp(kind, "pin", 3) == 0 ? accentDark() : QColor(0x26, 0x26, 0x26);
    if (is(kind, "enable"))
        face = QColor(0x8a, 0x2e, 0x2e);
    p.setPen(QPen(QColor(0, 0, 0, 120), 1));
    p.setBrush(face);
    p.drawEllipse(r);
    const qreal c = size / 2.0;
    QPen pen(QColor(0xf0, 0xf0, 0xf0), size / 9.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    if (std::strncmp(kind, "close", 5) == 0) {
        const qreal d = size * 0.2;
        p.drawLine(QPointF(c - d, c - d), QPointF(c + d, c + d));
        p.drawLine(QPointF(c - d, c + d), QPointF(c + d, c - d));
    } else if (std::strncmp(kind, "disable", 7) == 0 || is(kind, "enable")) {
        // A power mark: the ring open at the top and the stroke.
        const qreal rr = size * 0.24;
        p.drawArc(QRectF(c - rr, c - rr + size * 0.04, 2 * rr, 2 * rr), 120 * 16, 300 * 16);
        p.drawLine(QPointF(c, c - size * 0.3), QPointF(c, c - size * 0.02));
    } else if (std::strncmp(kind, "pin", 3) == 0) {
        QPainterPath head;
        head.addEllipse(QPointF(c, c - size * 0.1), size * 0.16, size * 0.16);
        p.setBrush(QColor(0xf0, 0xf0, 0xf0));
        p.drawPath(head);
        p.drawLine(QPointF(c, c), QPointF(c, c + size * 0.3));
    } else if (std::strncmp(kind, "exit", 4) == 0) {
        // Up and out of the group.
        QPainterPath a;
        a.moveTo(c - size * 0.2, c);
        a.lineTo(c, c - size * 0.22);
        a.lineTo(c + size * 0.2, c);
        p.drawPath(a);
        p.drawLine(QPointF(c, c - size * 0.2), QPointF(c, c + size * 0.25));
    }
}

void drawTrayEncloser(QPainter& p, int w, int h)
{
    const QRectF r(1, 1, w - 2, h - 2);
    p.setPen(QPen(accent(), 1.5));
    p.setBrush(QColor(0x2e, 0x2a, 0x26));
    p.drawRoundedRect(r, 10, 10);
}

void drawTrayPreviewOverlay(QPainter& p, int w, int h)
{
    p.fillRect(QRectF(0, 0, w, h), QColor(0x18, 0x18, 0x18, 150));
    p.setPen(QPen(QColor(255, 255, 255, 22), 2));
    for (int x = -h; x < w; x += 8)
        p.drawLine(QPointF(x, h), QPointF(x + h, 0));
}

void drawTraySeparator(QPainter& p, int w, int h, bool section)
{
    const qreal c = w / 2.0;
    QLinearGradient g(0, 0, 0, h);
    g.setColorAt(0, QColor(0x70, 0x70, 0x70, 0));
    g.setColorAt(0.5, section ? accent() : QColor(0x70, 0x70, 0x70));
    g.setColorAt(1, QColor(0x70, 0x70, 0x70, 0));
    p.setPen(QPen(QBrush(g), section ? 2 : 1));
    p.drawLine(QPointF(c, 2), QPointF(c, h - 2));
    if (section) {
        p.setPen(Qt::NoPen);
        p.setBrush(accent());
        p.drawEllipse(QPointF(c, h / 2.0), 2, 2);
    }
}

void drawFloatingMenuBackground(QPainter& p, int w, int h)
{
    p.setPen(QPen(hairline(), 1));
    p.setBrush(QColor(0x2a, 0x2a, 0x2a, 245));
    p.drawRoundedRect(QRectF(0.5, 0.5, w - 1, h - 1), 6, 6);
}
