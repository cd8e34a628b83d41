// Draws every image the program ships and writes it under the given resources folder:
//   vantrel_artwork <resources-dir>
// Output is deterministic; the committed PNGs are its result and can be regenerated at any time.
#include "ArtworkCanvas.h"
#include "SampleScene.h"
#include "StartupArt.h"
#include <QtCore/QDir>
#include <QtGui/QGuiApplication>
#include <cstdio>
#include <functional>

namespace {

struct Artwork
{
    const char* name; // under img/, without ".png"
    int width;
    int height;
    std::function<void(QPainter&)> draw;
};

bool writeImage(const QImage& img, const QString& path, const char* format, int quality)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    if (!img.save(path, format, quality)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        return false;
    }
    std::printf("%s (%dx%d)\n", qPrintable(path), img.width(), img.height());
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <resources-dir>\n", argv[0]);
        return 2;
    }
    if (!loadArtworkFonts()) {
        std::fprintf(stderr, "the Bitstream Vera fonts are missing (package ttf-bitstream-vera)\n");
        return 1;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);

    const Artwork artworks[] = {
        {"vn_photo_startup", 640, 400, [](QPainter& p) { drawStartupBackground(p); }},
        {"startup_loadphoto", 240, 48, [](QPainter& p) { drawLoadPhotoButton(p, false); }},
        {"startup_loadphoto_high", 240, 48, [](QPainter& p) { drawLoadPhotoButton(p, true); }},
    };
    bool ok = true;
    for (const Artwork& a : artworks) {
        for (int scale : {1, 2}) {
            ArtworkCanvas canvas(a.width, a.height, scale);
            a.draw(canvas.painter());
            const QString suffix = scale == 1 ? QString() : QStringLiteral("@2x");
            ok &= writeImage(canvas.finish(), out + QStringLiteral("/img/") + QLatin1String(a.name) + suffix +
                                                  QStringLiteral(".png"), "PNG", -1);
        }
    }
    ok &= writeImage(renderSampleScene(), out + QStringLiteral("/sample/sample.jpg"), "JPEG", 88);
    return ok ? 0 : 1;
}
