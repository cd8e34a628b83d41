// Renders every preset of a folder on a few photos, for checking the looks by eye:
//   vantrel_preset_sheet <out.png> <preset folder> [photo ...]
// Each .vnf below the folder is read through the catalogue as the program reads it and rendered as
// a save renders, one row per preset: its name, then the photo with the preset applied. The first
// row holds the untouched photos. Without photos two of the shared test folder are used.
#include "core/FlexImage.h"
#include "core/ModCatalogue.h"
#include "document/core/HeadlessRender.h"
#include "filters/FilterFile.h"
#include "resources/tools/ContactSheetSupport.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int kCellWidth = 240;
constexpr int kLabelWidth = 190;

// Share of samples at the ends of the range: a look that clips or crushes shows here.
void clipShares(const FlexImageFloat& img, double& white, double& black)
{
    int64_t hi = 0, lo = 0;
    const int64_t n = int64_t(img.width) * img.height;
    for (int y = 0; y < img.height; ++y) {
        const float* p = img.row(y);
        for (int x = 0; x < img.width; ++x, p += img.channels) {
            hi += (p[0] >= 254.5f && p[1] >= 254.5f && p[2] >= 254.5f) ? 1 : 0;
            lo += (p[0] < 0.5f && p[1] < 0.5f && p[2] < 0.5f) ? 1 : 0;
        }
    }
    white = n ? double(hi) / double(n) : 0.0;
    black = n ? double(lo) / double(n) : 0.0;
}

} // namespace

int main(int argc, char** argv)
{
    preferOffscreenPlatform();
    QGuiApplication app(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: vantrel_preset_sheet <out.png> <preset folder> [photo ...]\n");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    const QString folder = QString::fromLocal8Bit(argv[2]);
    const QStringList photoPaths =
        photoArguments(argc, argv, 3, { "olympus_em1_forest_1920x1080.jpg", "pentax_k100d_cat_exif.png" });

    std::vector<FlexImageFloat> photos(size_t(photoPaths.size()));
    int rowHeight = 0;
    for (int i = 0; i < photoPaths.size(); ++i) {
        QImage photo;
        if (!readPhoto(photoPaths[i], photo))
            return 1;
        photo = photo.scaledToWidth(kCellWidth, Qt::SmoothTransformation);
        fromQImage(photo, photos[size_t(i)]);
        rowHeight = std::max(rowHeight, photo.height());
    }

    QStringList presets;
    QDirIterator it(folder, { "*.vnf" }, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        presets << it.next();
    presets.sort();

    const ModCatalogueContents catalogue = buildModCatalogue();
    const int columns = int(photos.size());
    QImage sheet(kLabelWidth + columns * kCellWidth, (int(presets.size()) + 1) * rowHeight, QImage::Format_RGB888);
    sheet.fill(QColor(40, 40, 40));
    QPainter painter(&sheet);
    painter.setPen(Qt::white);
    int failures = 0;
    for (int row = 0; row <= presets.size(); ++row) {
        ModList mods;
        QString label = "Original";
        if (row > 0) {
            const QString path = presets[row - 1];
            label = QDir(QDir(folder).absolutePath()).relativeFilePath(QFileInfo(path).absoluteFilePath());
            label.chop(4);
            int32_t status = -1;
            mods = readFilter(path.toStdString(), catalogue.mods, status);
            if (status != kFilterReadOk || mods.empty()) {
                std::fprintf(stderr, "%s: status %d, %zu tiles\n", qPrintable(label), status, mods.size());
                ++failures;
            }
        }
        std::vector<ImageMod*> list;
        for (const auto& m : mods)
            list.push_back(m.get());
        const int y = row * rowHeight;
        painter.drawText(QRect(6, y, kLabelWidth - 12, rowHeight), Qt::AlignVCenter | Qt::TextWordWrap, label);
        for (int c = 0; c < columns; ++c) {
            FlexImageFloat result;
            if (!renderFullSize(photos[size_t(c)], list, result)) {
                ++failures;
                continue;
            }
            double white = 0.0, black = 0.0;
            clipShares(result, white, black);
            std::printf("%-36s photo %d: clipped white %5.1f%%, black %5.1f%%\n", qPrintable(label), c + 1,
                        100.0 * white, 100.0 * black);
            painter.drawImage(kLabelWidth + c * kCellWidth, y, toQImage(result));
        }
    }
    painter.end();
    if (saveSheet(sheet, out, QStringLiteral(", %1 presets").arg(presets.size())) != 0)
        return 1;
    return failures ? 1 : 0;
}
