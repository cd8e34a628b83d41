#include "StartupArt.h"
#include "ArtworkCanvas.h"
#include "ArtworkPalette.h"
#include <QtGui/QLinearGradient>
#include <QtGui/QPainterPath>
#include <QtGui/QRadialGradient>

namespace {

constexpr qreal cardW = 640, cardH = 400, heroW = 272;

// A smooth hill line through the given points, closed down to `bottom`.
QPainterPath hillPath(const QVector<QPointF>& pts, qreal bottom)
{
    QPainterPath path(QPointF(pts.first().x(), bottom));
    path.lineTo(pts.first());
    for (int i = 1; i < pts.size(); ++i) {
        const QPointF a = pts[i - 1], b = pts[i];
        const qreal mx = (a.x() + b.x()) / 2;
        path.cubicTo(QPointF(mx, a.y()), QPointF(mx, b.y()), b);
    }
    path.lineTo(pts.last().x(), bottom);
    path.closeSubpath();
    return path;
}

// The flat dusk landscape on the card's left.
void drawHero(QPainter& p)
{
    const QRectF hero(0, 0, heroW, cardH);
    p.save();
    p.setClipRect(hero);

    QLinearGradient sky(0, 0, 0, 262);
    sky.setColorAt(0.0, QColor(0x16, 0x1d, 0x2e));
    sky.setColorAt(0.45, QColor(0x3a, 0x34, 0x52));
    sky.setColorAt(0.78, QColor(0xa4, 0x5a, 0x52));
    sky.setColorAt(1.0, QColor(0xee, 0x9c, 0x5a));
    p.fillRect(hero, sky);

    // A few stars high up, placed by a fixed seed.
    ArtworkRandom rnd(17);
    p.setPen(Qt::NoPen);
    for (int i = 0; i < 34; ++i) {
        const qreal x = rnd.range(6, heroW - 6), y = rnd.range(6, 120), r = rnd.range(0.4f, 1.1f);
        p.setBrush(QColor(255, 255, 255, int(rnd.range(70, 200) * (1.0 - y / 160.0))));
        p.drawEllipse(QPointF(x, y), r, r);
    }

    const QPointF sun(168, 226);
    QRadialGradient glow(sun, 150);
    glow.setColorAt(0.0, QColor(255, 214, 150, 150));
    glow.setColorAt(1.0, QColor(255, 180, 110, 0));
    p.setBrush(glow);
    p.drawRect(hero);
    p.setBrush(QColor(0xfb, 0xd9, 0x95));
    p.drawEllipse(sun, 30, 30);

    struct Layer { QVector<QPointF> pts; qreal bottom; QColor top, low; };
    const Layer layers[] = {
        {{{-10, 214}, {40, 186}, {96, 210}, {150, 178}, {214, 206}, {282, 190}}, cardH,
         QColor(0x7a, 0x4c, 0x5e), QColor(0x8e, 0x5a, 0x5a)},
        {{{-10, 246}, {52, 224}, {120, 252}, {188, 226}, {282, 250}}, cardH,
         QColor(0x4a, 0x35, 0x4c), QColor(0x5a, 0x3c, 0x4a)},
        {{{-10, 292}, {70, 262}, {150, 288}, {220, 270}, {282, 282}}, cardH,
         QColor(0x2a, 0x24, 0x36), QColor(0x30, 0x28, 0x38)},
        {{{-10, 336}, {90, 318}, {180, 340}, {282, 322}}, cardH,
         QColor(0x19, 0x18, 0x22), QColor(0x16, 0x15, 0x1c)},
    };
    for (const Layer& l : layers) {
        QLinearGradient g(0, 170, 0, cardH);
        g.setColorAt(0, l.top);
        g.setColorAt(1, l.low);
        p.setBrush(g);
        p.drawPath(hillPath(l.pts, l.bottom));
    }

    // Pines on the nearest ridge give the flat shapes a sense of scale.
    p.setBrush(QColor(0x12, 0x11, 0x18));
    const qreal pines[][3] = {{28, 330, 30}, {44, 326, 22}, {206, 332, 34}, {226, 330, 24}, {240, 328, 28}};
    for (const auto& t : pines) {
        QPainterPath tree;
        tree.moveTo(t[0], t[1] - t[2]);
        tree.lineTo(t[0] + t[2] * 0.28, t[1]);
        tree.lineTo(t[0] - t[2] * 0.28, t[1]);
        tree.closeSubpath();
        p.drawPath(tree);
    }

    // Light falls off towards the text side.
    QLinearGradient shade(heroW - 60, 0, heroW, 0);
    shade.setColorAt(0, QColor(0, 0, 0, 0));
    shade.setColorAt(1, QColor(0, 0, 0, 70));
    p.fillRect(hero, shade);
    p.restore();
}

void drawText(QPainter& p, const QPointF& baseline, const QString& text, qreal size, bool bold, const QColor& c)
{
    p.setFont(artworkFont(size, bold));
    p.setPen(c);
    p.drawText(baseline, text);
}

} // namespace

void drawPhotoGlyph(QPainter& p, const QRectF& r, const QColor& c)
{
    p.save();
    QPen pen(c, 1.6);
    pen.setJoinStyle(Qt::RoundJoin);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(r.adjusted(0.8, 0.8, -0.8, -0.8), 2.5, 2.5);
    p.setPen(Qt::NoPen);
    p.setBrush(c);
    QPainterPath m;
    m.moveTo(r.left() + r.width() * 0.14, r.bottom() - r.height() * 0.18);
    m.lineTo(r.left() + r.width() * 0.42, r.top() + r.height() * 0.42);
    m.lineTo(r.left() + r.width() * 0.62, r.top() + r.height() * 0.64);
    m.lineTo(r.left() + r.width() * 0.72, r.top() + r.height() * 0.54);
    m.lineTo(r.right() - r.width() * 0.14, r.bottom() - r.height() * 0.18);
    m.closeSubpath();
    p.drawPath(m);
    p.drawEllipse(QPointF(r.left() + r.width() * 0.72, r.top() + r.height() * 0.3), r.height() * 0.1,
                  r.height() * 0.1);
    p.restore();
}

void drawEmblem(QPainter& p, const QRectF& r)
{
    p.save();
    const qreal radius = r.width() * 0.23;
    QLinearGradient g(r.topLeft(), r.bottomLeft());
    g.setColorAt(0, ArtworkPalette::accentLight());
    g.setColorAt(1, ArtworkPalette::accentDark());
    p.setPen(Qt::NoPen);
    p.setBrush(g);
    p.drawRoundedRect(r, radius, radius);

    const qreal w = r.width(), h = r.height();
    p.setBrush(QColor(255, 250, 240));
    p.drawEllipse(QPointF(r.left() + w * 0.68, r.top() + h * 0.32), w * 0.1, w * 0.1);
    QPainterPath peaks;
    peaks.moveTo(r.left() + w * 0.14, r.top() + h * 0.78);
    peaks.lineTo(r.left() + w * 0.40, r.top() + h * 0.36);
    peaks.lineTo(r.left() + w * 0.56, r.top() + h * 0.60);
    peaks.lineTo(r.left() + w * 0.66, r.top() + h * 0.48);
    peaks.lineTo(r.left() + w * 0.86, r.top() + h * 0.78);
    peaks.closeSubpath();
    p.setBrush(QColor(0x2a, 0x1e, 0x14));
    p.drawPath(peaks);
    p.restore();
}

void drawStartupBackground(QPainter& p)
{
    QLinearGradient bg(0, 0, 0, cardH);
    bg.setColorAt(0, ArtworkPalette::panelTop());
    bg.setColorAt(1, ArtworkPalette::panelBottom());
    p.fillRect(QRectF(0, 0, cardW, cardH), bg);

    drawHero(p);
    p.fillRect(QRectF(heroW, 0, 1, cardH), ArtworkPalette::hairline());

    const qreal x = 304;
    drawEmblem(p, QRectF(x, 54, 46, 46));
    drawText(p, QPointF(x + 60, 80), QStringLiteral("Vantrel Photo"), 25, true, ArtworkPalette::textBright());
    drawText(p, QPointF(x + 61, 98), QStringLiteral("Photo editor"), 12, false, ArtworkPalette::textMuted());

    p.fillRect(QRectF(x, 130, 28, 3), ArtworkPalette::accent());

    const char* lines[] = {"Stack adjustments as tiles in a tray", "The original always stays untouched",
                           "Presets, LUT export and batch folders"};
    qreal y = 168;
    for (const char* line : lines) {
        p.setPen(Qt::NoPen);
        p.setBrush(ArtworkPalette::accent());
        p.drawEllipse(QPointF(x + 3, y - 4), 2.5, 2.5);
        drawText(p, QPointF(x + 14, y), QString::fromLatin1(line), 12, false, ArtworkPalette::textNormal());
        y += 28;
    }

    // The button sits in this slot; a soft well behind it grounds it on the panel.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0, 0, 0, 50));
    p.drawRoundedRect(QRectF(x - 1, 296 + 1, 242, 49), 7, 7);

    drawText(p, QPointF(x, 378), QStringLiteral("Click elsewhere or press Esc to start empty."), 10.5, false,
             ArtworkPalette::textFaint());

    p.setPen(QPen(ArtworkPalette::edge(), 1));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRectF(0.5, 0.5, cardW - 1, cardH - 1));
}

void drawLoadPhotoButton(QPainter& p, bool hover)
{
    const QRectF r(0.5, 0.5, 239, 47);
    QLinearGradient g(0, 0, 0, 48);
    g.setColorAt(0, hover ? ArtworkPalette::accentLight() : ArtworkPalette::controlTop());
    g.setColorAt(1, hover ? ArtworkPalette::accent() : ArtworkPalette::controlBottom());
    p.setBrush(g);
    p.setPen(QPen(hover ? QColor(0xf8, 0xca, 0x86) : ArtworkPalette::controlEdge(), 1));
    p.drawRoundedRect(r, 6, 6);

    const QColor ink = hover ? ArtworkPalette::onAccent() : ArtworkPalette::textBright();
    const QFont font = artworkFont(14, true);
    const QString label = QStringLiteral("Load Photo...");
    const qreal textW = QFontMetricsF(font).horizontalAdvance(label);
    const qreal glyphW = 22, gap = 12;
    const qreal left = (240 - (glyphW + gap + textW)) / 2;
    drawPhotoGlyph(p, QRectF(left, 16, glyphW, 17), ink);
    p.setFont(font);
    p.setPen(ink);
    p.drawText(QPointF(left + glyphW + gap, 29.5), label);
}
