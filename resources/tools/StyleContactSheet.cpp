// Renders every camera style on a few photos into contact sheets for looking at them side by side:
//   vantrel_style_sheet <out.png> [variation] [photo ...]
// One sheet with a block per photo (the original first, then the styles in panel order) goes to
// out.png, and one sheet per photo beside it (out-1.png, out-2.png, ...), each small enough to
// inspect. Without photos the three default ones of the shared test folder are used.
#include "core/FlexImage.h"
#include "mods/styles/CameraStyles.h"
#include "resources/tools/ContactSheetSupport.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr int kCellWidth = 300;
constexpr int kColumns = 6;
constexpr int kLabel = 18;

// One photo's block: the original and every style, labelled.
QImage renderBlock(const QImage& photo, float variation)
{
    const QImage small = photo.scaledToWidth(kCellWidth, Qt::SmoothTransformation);
    FlexImageFloat source;
    fromQImage(small, source);
    const int cellH = small.height() + kLabel;
    std::vector<std::unique_ptr<ImageMod>> styles = buildStyleSection();
    const int count = int(styles.size()) + 1;
    const int rows = (count + kColumns - 1) / kColumns;
    QImage block(kColumns * kCellWidth, rows * cellH, QImage::Format_RGB888);
    block.fill(QColor(40, 40, 40));
    QPainter painter(&block);
    painter.setPen(Qt::white);
    for (int i = 0; i < count; ++i) {
        FlexImageFloat work;
        work.copyFrom(source, true);
        std::string label = "Original";
        if (i > 0) {
            ImageMod& style = *styles[size_t(i - 1)];
            style.variableAt(ImageModStyle::varVariation)->setFloatValue(variation);
            style.apply(&work, nullptr);
            label = style.displayName;
        }
        const int x = (i % kColumns) * kCellWidth;
        const int y = (i / kColumns) * cellH;
        painter.drawImage(x, y, toQImage(work));
        painter.drawText(QRect(x, y + small.height(), kCellWidth, kLabel), Qt::AlignCenter,
                         QString::fromStdString(label));
    }
    return block;
}

} // namespace

int main(int argc, char** argv)
{
    preferOffscreenPlatform();
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: vantrel_style_sheet <out.png> [variation] [photo ...]\n");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    const float variation = argc > 2 ? float(std::atof(argv[2])) : 0.0f;
    const QStringList photos = photoArguments(
        argc, argv, 3,
        { "olympus_em1_forest_1920x1080.jpg", "pentax_k100d_cat_exif.png", "flower_progressive_420.jpg" });
    std::vector<QImage> blocks;
    int height = 0;
    for (const QString& path : photos) {
        QImage photo;
        if (!readPhoto(path, photo))
            return 1;
        blocks.push_back(renderBlock(photo, variation));
        height += blocks.back().height();
    }
    QImage sheet(kColumns * kCellWidth, height, QImage::Format_RGB888);
    QPainter painter(&sheet);
    int y = 0;
    for (size_t i = 0; i < blocks.size(); ++i) {
        painter.drawImage(0, y, blocks[i]);
        y += blocks[i].height();
        const QString part = numberedBeside(out, int(i + 1));
        if (!blocks[i].save(part))
            std::fprintf(stderr, "cannot write %s\n", qPrintable(part));
    }
    painter.end();
    return saveSheet(sheet, out);
}
