#include "desktop_only/OverlaySeams.h"

#include "media/FreeTypeTextRenderer.h"
#include "mods/OverlayImage.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QImage>
#include <QtGui/QImageReader>

#include <cstring>

namespace {

bool decodeWithQt(const std::string& path, FlexImage8& rgba, std::string& message)
{
    const QString file = QString::fromStdString(path);
    if (!file.startsWith(QLatin1Char(':')) && !QFileInfo::exists(file)) {
        message = "The file " + path + " was not found.";
        return false;
    }
    QImageReader reader(file);
    QImage image = reader.read();
    if (image.isNull()) {
        message = "The file " + path + " could not be read (" + reader.errorString().toStdString() + ").";
        return false;
    }
    image = image.convertToFormat(QImage::Format_RGBA8888);
    rgba.resize(image.width(), image.height(), 4);
    if (rgba.isEmpty()) {
        message = "The picture in " + path + " is too large.";
        return false;
    }
    for (int32_t y = 0; y < rgba.height; ++y)
        std::memcpy(rgba.row(y), image.constScanLine(y), size_t(rgba.width) * 4);
    return true;
}

} // namespace

void installOverlaySeams()
{
    setOverlayImageDecoder(&decodeWithQt);
    std::vector<uint8_t> vera;
    QFile font(QStringLiteral(":/fonts/Vera.ttf"));
    if (font.open(QIODevice::ReadOnly)) {
        const QByteArray bytes = font.readAll();
        vera.assign(bytes.begin(), bytes.end());
    }
    installFreeTypeTextRenderer(std::move(vera));
}
