#include "ArtworkCanvas.h"
#include "core/ParallelFor.h"
#include <QtGui/QFontDatabase>
#include <QtGui/QLinearGradient>
#include <QtGui/QRgba64>
#include <algorithm>

namespace {

// 4 x 4 ordered dither thresholds, centred on zero, in 1/16 of an 8-bit step.
constexpr int bayer4[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};

// One premultiplied 16-bit pixel to 8 bits. Colour channels are dithered so slow gradients do not
// band; alpha is rounded so edges stay exact. Colour never exceeds alpha, as premultiplied needs.
static inline QRgb ditherPixel(QRgba64 c, int x, int y)
{
    const int t = bayer4[y & 3][x & 3];
    const int a = (c.alpha() * 255 + 32767) / 65535;
    auto channel = [&](int v) { return std::min(a, (v * 255 * 16 / 65535 + t) / 16); };
    return qRgba(channel(c.red()), channel(c.green()), channel(c.blue()), a);
}

} // namespace

ArtworkCanvas::ArtworkCanvas(int w, int h, int scale)
    : image(w * scale, h * scale, QImage::Format_RGBA64_Premultiplied)
{
    image.fill(Qt::transparent);
    p = std::make_unique<QPainter>(&image);
    p->setRenderHint(QPainter::Antialiasing, true);
    p->setRenderHint(QPainter::TextAntialiasing, true);
    p->setRenderHint(QPainter::SmoothPixmapTransform, true);
    p->scale(scale, scale);
}

ArtworkCanvas::~ArtworkCanvas() = default;

QImage ArtworkCanvas::finish()
{
    p->end();
    p.reset();
    // Painting runs at 16 bits per channel; the 8-bit result is dithered.
    QImage out(image.size(), QImage::Format_ARGB32_Premultiplied);
    parallelFor(image.height(), [&](int32_t y) {
        const QRgba64* src = reinterpret_cast<const QRgba64*>(image.constScanLine(y));
        QRgb* dst = reinterpret_cast<QRgb*>(out.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            dst[x] = ditherPixel(src[x], x, y);
    });
    return out;
}

void drawShadedCard(QPainter& p, const QRectF& r, const QColor& top, const QColor& bottom, const QColor& edgeColour,
                    qreal radius, int highlightAlpha)
{
    QLinearGradient g(r.topLeft(), r.bottomLeft());
    g.setColorAt(0, top);
    g.setColorAt(1, bottom);
    p.setPen(QPen(edgeColour, 1));
    p.setBrush(g);
    p.drawRoundedRect(r.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    p.setPen(QPen(QColor(255, 255, 255, highlightAlpha), 1));
    p.drawLine(QPointF(r.left() + radius, r.top() + 1.5), QPointF(r.right() - radius, r.top() + 1.5));
}

bool loadArtworkFonts()
{
    const QString dir = QStringLiteral("/usr/share/fonts/truetype/ttf-bitstream-vera/");
    return QFontDatabase::addApplicationFont(dir + QStringLiteral("Vera.ttf")) >= 0 &&
           QFontDatabase::addApplicationFont(dir + QStringLiteral("VeraBd.ttf")) >= 0;
}

QFont artworkFont(qreal pixelSize, bool bold)
{
    QFont f(QStringLiteral("Bitstream Vera Sans"));
    f.setPixelSize(qRound(pixelSize));
    f.setBold(bold);
    f.setHintingPreference(QFont::PreferNoHinting);
    f.setStyleStrategy(QFont::PreferAntialias);
    return f;
}
