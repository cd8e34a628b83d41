// Renders every border tile, a watermark and three text styles on test photos, for looking at them:
//   vantrel_overlay_sheet <out.png> [photo ...]
// Each cell is the full-size render of one tile scaled down to the cell; out-N.png beside the sheet
// holds a few renders at full size, for the details.
#include "core/ModCatalogue.h"
#include "desktop_only/OverlaySeams.h"
#include "document/core/GeometryResampling.h"
#include "mods/ImageModBorder.h"
#include "mods/ImageModImageOverlay.h"
#include "mods/ImageModTextOverlay.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataFile.h"
#include "resources/tools/ContactSheetSupport.h"
#include "ResourceInit.h"

#include <QtCore/QDir>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kCell = 360;
constexpr int kColumns = 6;
constexpr int kLabel = 20;

// A logo with soft alpha for the watermark cells.
QString writeLogo()
{
    QImage logo(600, 200, QImage::Format_ARGB32_Premultiplied);
    logo.fill(Qt::transparent);
    QPainter p(&logo);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(255, 255, 255, 230), 10));
    p.setBrush(QColor(255, 255, 255, 60));
    p.drawRoundedRect(QRectF(8, 8, 584, 184), 40, 40);
    QFont f(QStringLiteral("Bitstream Vera Sans"));
    f.setPixelSize(96);
    f.setBold(true);
    p.setFont(f);
    p.setPen(QColor(255, 255, 255, 240));
    p.drawText(QRectF(0, 0, 600, 200), Qt::AlignCenter, QStringLiteral("VANTREL"));
    p.end();
    const QString path = QDir::tempPath() + QStringLiteral("/vantrel_sheet_logo.png");
    logo.save(path);
    return path;
}

struct Cell {
    QImage image;
    QString label;
};

// Renders `photo` through a one-tile sequence at full size.
QImage render(const FlexImageFloat& photo, ImageMod& mod)
{
    FlexImageFloat out;
    std::vector<ImageMod*> list { &mod };
    if (!geometryResample(photo, out, list, 0, 0, true))
        out.copyFrom(photo, true);
    if (mod.kind() != 1)
        mod.apply(&out, nullptr);
    return toQImage(out);
}

} // namespace

int main(int argc, char** argv)
{
    preferOffscreenPlatform();
    QGuiApplication app(argc, argv);
    vantrelInitResources();
    installOverlaySeams();
    if (argc < 2) {
        std::fprintf(stderr, "usage: vantrel_overlay_sheet <out.png> [photo ...]\n");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    const QStringList photos =
        photoArguments(argc, argv, 2, { "olympus_em1_forest_1920x1080.jpg", "flower_progressive_420.jpg" });
    std::vector<FlexImageFloat> sources(size_t(photos.size()));
    for (int i = 0; i < photos.size(); ++i) {
        QImage photo;
        if (!readPhoto(photos[i], photo))
            return 1;
        fromQImage(photo, sources[size_t(i)]);
    }

    std::vector<Cell> cells;
    int n = 0;
    const ModCatalogue borders = buildBordersSection();
    for (const auto& b : borders) {
        if (b->name == "Custom File Border")
            continue;
        std::unique_ptr<ImageMod> mod = b->newInstance();
        mod->copyFrom(*b);
        cells.push_back({ render(sources[size_t(n++ % sources.size())], *mod), QString::fromStdString(b->name) });
    }
    ImageModImageOverlay mark;
    mark.variableAt(ImageModImageOverlay::fileIndex)->asFile()->path = writeLogo().toStdString();
    mark.variableChanged(ImageModImageOverlay::fileIndex);
    cells.push_back({ render(sources[0], mark), QStringLiteral("Watermark") });

    struct TextStyle {
        const char* text;
        const char* family;
        float size;
        int align;
        float shadow;
        float rgb[3];
    };
    const TextStyle texts[] = {
        { "Summer in the forest", "Bitstream Vera Sans", 0.07f, 1, 0.6f, { 255, 255, 255 } },
        { "Fleur d'été\nJardin · 2024", "DejaVu Serif", 0.06f, 0, 0.0f, { 250, 230, 120 } },
        { "VANTREL", "Bitstream Vera Sans Mono", 0.12f, 2, 1.0f, { 236, 232, 222 } },
    };
    int t = 0;
    for (const TextStyle& s : texts) {
        ImageModTextOverlay text;
        text.setText(s.text);
        text.setFontFamily(s.family);
        text.variableAt(ImageModTextOverlay::sizeIndex)->setFloatValue(s.size);
        text.variableAt(ImageModTextOverlay::shadowIndex)->setFloatValue(s.shadow);
        text.variableAt(ImageModTextOverlay::alignmentIndex)->asChoice()->index = s.align;
        auto* c = text.variableAt(ImageModTextOverlay::colorIndex)->asColor();
        c->red = s.rgb[0];
        c->green = s.rgb[1];
        c->blue = s.rgb[2];
        cells.push_back({ render(sources[size_t(t++ % sources.size())], text), QStringLiteral("Text %1").arg(t) });
    }

    const int cellH = kCell + kLabel;
    const int rows = (int(cells.size()) + kColumns - 1) / kColumns;
    QImage sheet(kColumns * kCell, rows * cellH, QImage::Format_RGB888);
    sheet.fill(QColor(60, 60, 62));
    QPainter painter(&sheet);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setPen(Qt::white);
    for (size_t i = 0; i < cells.size(); ++i) {
        const QImage small = cells[i].image.scaled(kCell - 8, kCell - 8, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        const int x = int(i % kColumns) * kCell;
        const int y = int(i / kColumns) * cellH;
        painter.drawImage(x + (kCell - small.width()) / 2, y + (kCell - small.height()) / 2, small);
        painter.drawText(QRect(x, y + kCell, kCell, kLabel), Qt::AlignCenter, cells[i].label);
        cells[i].image.save(numberedBeside(out, int(i + 1)));
    }
    painter.end();
    return saveSheet(sheet, out);
}
