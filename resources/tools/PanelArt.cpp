#include "PanelArt.h"
#include "ArtworkPalette.h"
#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QRadialGradient>
#include <cmath>
#include <cstring>

using namespace ArtworkPalette;

namespace {

QColor iconGrey() { return QColor(0xb8, 0xb8, 0xb8); }

bool is(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

QPainterPath starPath(const QPointF& c, qreal outer, qreal inner)
{
    QPainterPath path;
    for (int i = 0; i < 10; ++i) {
        const qreal r = (i % 2 == 0) ? outer : inner;
        const qreal a = -M_PI / 2 + i * M_PI / 5;
        const QPointF pt(c.x() + r * std::cos(a), c.y() + r * std::sin(a));
        if (i == 0)
            path.moveTo(pt);
        else
            path.lineTo(pt);
    }
    path.closeSubpath();
    return path;
}

} // namespace

void drawToolPanelBackground(QPainter& p, int w, int h)
{
    // Flat dark body; a hairline on the left parts it from the picture, a faint inner light
    // line beside it keeps the edge crisp.
    p.fillRect(QRectF(0, 0, w, h), QColor(0x25, 0x25, 0x25));
    p.fillRect(QRectF(0, 0, 1, h), hairline());
    p.fillRect(QRectF(1, 0, 1, h), QColor(255, 255, 255, 10));
}

void drawPanelHeaderBackground(QPainter& p, int w, int h)
{
    const QRectF band(1, 3, w - 2, h - 6);
    QLinearGradient g(band.topLeft(), band.bottomLeft());
    g.setColorAt(0, QColor(0x36, 0x36, 0x36));
    g.setColorAt(1, QColor(0x2f, 0x2f, 0x2f));
    p.setPen(QPen(QColor(0x1a, 0x1a, 0x1a), 1));
    p.setBrush(g);
    p.drawRoundedRect(band.adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    p.setPen(QPen(QColor(255, 255, 255, 16), 1));
    p.drawLine(QPointF(band.left() + 4, band.top() + 1.5), QPointF(band.right() - 4, band.top() + 1.5));
}

void drawPanelButtonBackground(QPainter& p, int w, int h)
{
    // Rows are quiet: only a faint rule at the bottom, inset from both sides.
    p.fillRect(QRectF(10, h - 1, w - 20, 1), QColor(255, 255, 255, 12));
}

void drawPanelPlus(QPainter& p, bool lit)
{
    const QRectF r(1.5, 1.5, 13, 13);
    if (lit) {
        QLinearGradient g(r.topLeft(), r.bottomLeft());
        g.setColorAt(0, accentLight());
        g.setColorAt(1, accentDark());
        p.setPen(Qt::NoPen);
        p.setBrush(g);
        p.drawEllipse(r);
        p.setPen(QPen(onAccent(), 1.8, Qt::SolidLine, Qt::RoundCap));
    } else {
        p.setPen(QPen(QColor(0x5c, 0x5c, 0x5c), 1));
        p.setBrush(QColor(0x2c, 0x2c, 0x2c));
        p.drawEllipse(r);
        p.setPen(QPen(QColor(0x9a, 0x9a, 0x9a), 1.6, Qt::SolidLine, Qt::RoundCap));
    }
    p.drawLine(QPointF(8, 5), QPointF(8, 11));
    p.drawLine(QPointF(5, 8), QPointF(11, 8));
}

void drawPanelStar(QPainter& p, const char* state)
{
    const QPainterPath star = starPath(QPointF(8, 8.6), 6.6, 2.9);
    if (is(state, "high")) {
        QLinearGradient g(0, 2, 0, 14);
        g.setColorAt(0, accentLight());
        g.setColorAt(1, accent());
        p.setPen(QPen(accentDark(), 0.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.setBrush(g);
    } else if (is(state, "low")) {
        p.setPen(QPen(accentLight(), 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.setBrush(QColor(0xe3, 0x96, 0x3e, 60));
    } else {
        p.setPen(QPen(QColor(0x6a, 0x6a, 0x6a), 1.1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.setBrush(Qt::NoBrush);
    }
    p.drawPath(star);
}

void drawPanelCollapseArrow(QPainter& p, bool open)
{
    p.setPen(QPen(QColor(0xd0, 0xd0, 0xd0), 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    QPainterPath a;
    if (open) {
        a.moveTo(3, 4.5);
        a.lineTo(6, 7.5);
        a.lineTo(9, 4.5);
    } else {
        a.moveTo(4.5, 3);
        a.lineTo(7.5, 6);
        a.lineTo(4.5, 9);
    }
    p.drawPath(a);
}

void drawSectionIcon(QPainter& p, const char* kind)
{
    const QColor c = iconGrey();
    QPen pen(c, 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    if (is(kind, "basics")) {
        // Three sliders.
        for (int i = 0; i < 3; ++i) {
            const qreal y = 3.5 + i * 4.5;
            p.drawLine(QPointF(2, y), QPointF(14, y));
            const qreal knob = (i == 0) ? 5 : (i == 1 ? 10.5 : 7.5);
            p.setBrush(QColor(0x25, 0x25, 0x25));
            p.drawEllipse(QPointF(knob, y), 1.8, 1.8);
            p.setBrush(Qt::NoBrush);
        }
    } else if (is(kind, "light")) {
        // A sun.
        p.drawEllipse(QPointF(8, 8), 3, 3);
        for (int i = 0; i < 8; ++i) {
            const qreal a = i * M_PI / 4;
            p.drawLine(QPointF(8 + 5 * std::cos(a), 8 + 5 * std::sin(a)),
                       QPointF(8 + 6.8 * std::cos(a), 8 + 6.8 * std::sin(a)));
        }
    } else if (is(kind, "color")) {
        // Three overlapping discs.
        p.setPen(QPen(c, 1.1));
        p.drawEllipse(QPointF(8, 5.8), 3.6, 3.6);
        p.drawEllipse(QPointF(5.6, 10), 3.6, 3.6);
        p.drawEllipse(QPointF(10.4, 10), 3.6, 3.6);
    } else if (is(kind, "photographic")) {
        // An aperture ring with blades.
        p.drawEllipse(QPointF(8, 8), 6.3, 6.3);
        for (int i = 0; i < 6; ++i) {
            const qreal a = i * M_PI / 3;
            p.drawLine(QPointF(8 + 2.4 * std::cos(a), 8 + 2.4 * std::sin(a)),
                       QPointF(8 + 6.3 * std::cos(a + 0.7), 8 + 6.3 * std::sin(a + 0.7)));
        }
    } else if (is(kind, "selectors")) {
        // A dashed selection around a soft spot.
        QRadialGradient g(QPointF(8, 8), 4.5);
        g.setColorAt(0, c);
        g.setColorAt(1, QColor(c.red(), c.green(), c.blue(), 0));
        p.setPen(Qt::NoPen);
        p.setBrush(g);
        p.drawEllipse(QPointF(8, 8), 4.5, 4.5);
        QPen dash(c, 1.1, Qt::DashLine, Qt::FlatCap);
        dash.setDashPattern({2.0, 1.6});
        p.setPen(dash);
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(QRectF(1.5, 1.5, 13, 13), 2, 2);
    } else if (is(kind, "borders")) {
        // A picture inside a frame.
        p.drawRect(QRectF(1.5, 2.5, 13, 11));
        p.drawRect(QRectF(4, 5, 8, 6));
    } else if (is(kind, "utility")) {
        // A wrench.
        p.setPen(QPen(c, 2.0, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(QPointF(4, 12), QPointF(9.2, 6.8));
        p.setPen(QPen(c, 1.4, Qt::SolidLine, Qt::RoundCap));
        p.drawArc(QRectF(8, 1.8, 6.5, 6.5), -45 * 16, 270 * 16);
    } else if (is(kind, "starred")) {
        p.setPen(QPen(c, 1.1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawPath(starPath(QPointF(8, 8.6), 6.6, 2.9));
    } else if (is(kind, "presets")) {
        // A stack of cards.
        p.drawRoundedRect(QRectF(3.5, 5.5, 10, 8), 1.2, 1.2);
        p.drawLine(QPointF(4.5, 3.6), QPointF(12.5, 3.6));
        p.drawLine(QPointF(5.5, 1.8), QPointF(11.5, 1.8));
    }
}

void drawToolButtonIcon(QPainter& p, const char* kind)
{
    const QColor c(0xdc, 0xdc, 0xdc);
    p.setPen(QPen(c, 1.6, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    p.setBrush(Qt::NoBrush);
    if (is(kind, "crop")) {
        // Two crop corners and a tilted horizon.
        QPainterPath a;
        a.moveTo(6, 2);
        a.lineTo(6, 16);
        a.lineTo(20, 16);
        p.drawPath(a);
        QPainterPath b;
        b.moveTo(2, 6);
        b.lineTo(16, 6);
        b.lineTo(16, 20);
        p.drawPath(b);
        p.setPen(QPen(accent(), 1.4, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(QPointF(8, 13), QPointF(14, 9));
    } else if (is(kind, "heal")) {
        // A plaster over a spot.
        p.save();
        p.translate(11, 11);
        p.rotate(-45);
        p.setPen(QPen(c, 1.4));
        p.drawRoundedRect(QRectF(-9, -3.8, 18, 7.6), 3.8, 3.8);
        p.setPen(Qt::NoPen);
        p.setBrush(accent());
        p.drawRect(QRectF(-2.6, -3.1, 5.2, 6.2));
        p.setBrush(onAccent());
        for (int i = -1; i <= 1; i += 2)
            for (int j = -1; j <= 1; j += 2)
                p.drawEllipse(QPointF(i * 1.2, j * 1.3), 0.55, 0.55);
        p.restore();
    }
}
