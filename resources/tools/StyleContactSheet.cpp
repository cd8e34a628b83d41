// Renders every camera style on a few photos into contact sheets for looking at them side by side:
//   vantrel_style_sheet <out.png> [variation] [photo ...]
// One sheet with a block per photo (the original first, then the styles in panel order) goes to
// out.png, and one sheet per photo beside it (out-1.png, out-2.png, ...), each small enough to
// inspect. Without photos the three default ones of the shared test folder are used.
#include "core/FlexImage.h"
#include "mods/styles/CameraStyles.h"

#include <QtCore/QFileInfo>
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

QImage toQImage(const FlexImageFloat& img)
{
    QImage out(img.width, img.height, QImage::Format_RGB888);
    for (int y = 0; y < img.height; ++y) {
        const float* p = img.row(y);
        uchar* d = out.scanLine(y);
        for (int x = 0; x < img.width * 3; ++x) {
            const float v = p[x];
            d[x] = uchar(v <= 0.0f ? 0 : v >= 255.0f ? 255 : int(v + 0.5f));
        }
    }
    return out;
}

void fromQImage(const QImage& src, FlexImageFloat& img)
{
    const QImage rgb = src.convertToFormat(QImage::Format_RGB888);
    img.resize(rgb.width(), rgb.height(), 3);
    for (int y = 0; y < rgb.height(); ++y) {
        const uchar* s = rgb.constScanLine(y);
        float* p = img.row(y);
        for (int x = 0; x < rgb.width() * 3; ++x)
            p[x] = float(s[x]);
    }
}

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
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: vantrel_style_sheet <out.png> [variation] [photo ...]\n");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    const float variation = argc > 2 ? float(std::atof(argv[2])) : 0.0f;
    QStringList photos;
    for (int i = 3; i < argc; ++i)
        photos << QString::fromLocal8Bit(argv[i]);
    if (photos.isEmpty()) {
        const QString dir = QStringLiteral(VANTREL_TESTDATA "/");
        photos << dir + "olympus_em1_forest_1920x1080.jpg" << dir + "pentax_k100d_cat_exif.png"
               << dir + "flower_progressive_420.jpg";
    }
    std::vector<QImage> blocks;
    int height = 0;
    for (const QString& path : photos) {
        QImage photo(path);
        if (photo.isNull()) {
            std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
            return 1;
        }
        blocks.push_back(renderBlock(photo, variation));
        height += blocks.back().height();
    }
    QImage sheet(kColumns * kCellWidth, height, QImage::Format_RGB888);
    QPainter painter(&sheet);
    int y = 0;
    const QFileInfo info(out);
    for (size_t i = 0; i < blocks.size(); ++i) {
        painter.drawImage(0, y, blocks[i]);
        y += blocks[i].height();
        const QString part = info.path() + "/" + info.completeBaseName() + "-" + QString::number(i + 1) + ".png";
        if (!blocks[i].save(part))
            std::fprintf(stderr, "cannot write %s\n", qPrintable(part));
    }
    painter.end();
    if (!sheet.save(out)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(out));
        return 1;
    }
    std::printf("%s (%dx%d)\n", qPrintable(out), sheet.width(), sheet.height());
    return 0;
}
