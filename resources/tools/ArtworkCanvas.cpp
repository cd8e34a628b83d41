#include "ArtworkCanvas.h"
#include <QtGui/QFontDatabase>

ArtworkCanvas::ArtworkCanvas(int w, int h, int scale)
    : image(w * scale, h * scale, QImage::Format_ARGB32_Premultiplied)
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
    return image;
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
