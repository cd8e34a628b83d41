#include "tools/MVPixelInfoWidget.h"

#include "core/ColorMath.h"
#include "document/MVMediaWidget.h"

#include <QtCore/QRegularExpression>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtWidgets/QLabel>

#include <algorithm>
#include <cmath>

namespace {

const char* const kLabelStyle = "color:#444444;";
constexpr int kFirstColumnWidth = 62;
const QColor kCard(0xcf, 0xcf, 0xcf);

// One decimal, never "-0.0" for a value that rounds to nothing.
double tenths(float v)
{
    return std::round(double(v) * 10.0) / 10.0 + 0.0;
}

QString recentLine(int x, int y, const QColor& c)
{
    return QStringLiteral("<span style=\"color:%1\">&#9632;</span> %2, %3 &nbsp; %4 %5 %6")
        .arg(c.name())
        .arg(x)
        .arg(y)
        .arg(c.red())
        .arg(c.green())
        .arg(c.blue());
}

} // namespace

MVPixelInfoWidget::MVPixelInfoWidget(QWidget* parent) : QWidget(parent)
{
    for (QLabel*& l : readout)
        l = makeLabel();
    recentTitle = makeLabel();
    recentTitle->setText(QStringLiteral("Recent Pixels:"));
    clearPixel();
}

QLabel* MVPixelInfoWidget::makeLabel()
{
    auto* l = new QLabel(this);
    l->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    l->setStyleSheet(QString::fromLatin1(kLabelStyle));
    l->setTextFormat(Qt::AutoText);
    return l;
}

void MVPixelInfoWidget::showPixel(int x, int y, const QColor& colour)
{
    pixelShown = true;
    pixelX = x;
    pixelY = y;
    swatch = colour;
    const float r = float(colour.red()), g = float(colour.green()), b = float(colour.blue());
    float h, s, v, L, A, B;
    rgbToHsv(r, g, b, h, s, v);
    rgbToLab(r, g, b, L, A, B);
    int hue = int(std::lround(h));
    if (hue >= 360)
        hue -= 360;
    readout[0]->setText(QStringLiteral("R %1").arg(colour.red()));
    readout[1]->setText(QStringLiteral("H %1\u00b0").arg(hue));
    readout[2]->setText(QStringLiteral("G %1").arg(colour.green()));
    readout[3]->setText(QStringLiteral("S %1%").arg(std::lround(s * 100.0f)));
    readout[4]->setText(QStringLiteral("B %1").arg(colour.blue()));
    readout[5]->setText(QStringLiteral("V %1%").arg(std::lround(v * 100.0f)));
    readout[6]->setText(QString::asprintf("Lab %.1f  %.1f  %.1f", tenths(L), tenths(A), tenths(B)));
    update();
}

void MVPixelInfoWidget::clearPixel()
{
    pixelShown = false;
    static const char* const empty[7] = {"R \u2013", "H \u2013", "G \u2013", "S \u2013", "B \u2013", "V \u2013",
                                         "Lab \u2013"};
    for (int i = 0; i < 7; ++i)
        readout[i]->setText(QString::fromUtf8(empty[i]));
    layoutLabels();
    update();
}

bool MVPixelInfoWidget::pickShownPixel()
{
    if (!pixelShown)
        return false;
    QLabel* l = nullptr;
    if (int(recentLabels.size()) >= maxRecent) {
        l = recentLabels.back();
        recentLabels.pop_back();
    } else {
        l = makeLabel();
        l->show();
    }
    l->setText(recentLine(pixelX, pixelY, swatch));
    recentLabels.insert(recentLabels.begin(), l);
    layoutLabels();
    emit heightNeeded(preferredHeight());
    return true;
}

QString MVPixelInfoWidget::readoutText(int index) const
{
    return index >= 0 && index < 7 ? readout[index]->text() : QString();
}

QString MVPixelInfoWidget::recentText(int index) const
{
    if (index < 0 || index >= int(recentLabels.size()))
        return QString();
    // Without the markup: what the user reads.
    QString plain = recentLabels[size_t(index)]->text();
    plain.remove(QRegularExpression(QStringLiteral("<[^>]*>")));
    plain.replace(QStringLiteral("&#9632;"), QStringLiteral("\u25a0"));
    plain.replace(QStringLiteral("&nbsp;"), QStringLiteral(" "));
    return plain;
}

int MVPixelInfoWidget::preferredHeight() const
{
    return topMargin + rowHeight * (5 + int(recentLabels.size())) + 6;
}

void MVPixelInfoWidget::layoutLabels()
{
    const int x = leftMargin + swatchWidth + columnGap;
    const int second = x + kFirstColumnWidth + 1;
    const int w = std::max(40, width() - second - 4);
    for (int row = 0; row < 3; ++row) {
        readout[row * 2]->setGeometry(x, topMargin + row * rowHeight, kFirstColumnWidth, rowHeight);
        readout[row * 2 + 1]->setGeometry(second, topMargin + row * rowHeight, w, rowHeight);
    }
    const int wide = std::max(60, width() - x - 4);
    readout[6]->setGeometry(x, topMargin + 3 * rowHeight, wide, rowHeight);
    recentTitle->setGeometry(x, topMargin + 4 * rowHeight, wide, rowHeight);
    for (size_t i = 0; i < recentLabels.size(); ++i)
        recentLabels[i]->setGeometry(x + recentIndent, topMargin + (5 + int(i)) * rowHeight, wide - recentIndent,
                                     rowHeight);
}

void MVPixelInfoWidget::resizeEvent(QResizeEvent* e)
{
    QWidget::resizeEvent(e);
    layoutLabels();
}

void MVPixelInfoWidget::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setPen(Qt::NoPen);
    p.setBrush(kCard);
    p.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 6.0, 6.0);

    // The swatch: the colour itself, or a hatched empty well.
    const QRectF well(leftMargin, topMargin + 2, swatchWidth, swatchWidth);
    p.setPen(QPen(QColor(0x6a, 0x6a, 0x6a), 1.0));
    if (pixelShown) {
        p.setBrush(swatch);
        p.drawRoundedRect(well, 4.0, 4.0);
        QFont f = font();
        f.setPixelSize(10);
        p.setFont(f);
        p.setPen(QColor(0x55, 0x55, 0x55));
        p.drawText(QRectF(leftMargin - 6, well.bottom() + 4, swatchWidth + 12, 14), Qt::AlignHCenter | Qt::AlignTop,
                   QStringLiteral("%1, %2").arg(pixelX).arg(pixelY));
    } else {
        p.setBrush(QBrush(QColor(0xa8, 0xa8, 0xa8), Qt::BDiagPattern));
        p.drawRoundedRect(well, 4.0, 4.0);
    }
}

bool MVPixelInfoWidget::sampleViewer(MVMediaWidget& viewer, const QPointF& at, int& x, int& y, QColor& colour)
{
    std::lock_guard<std::mutex> display(viewer.displayMutex);
    if (!viewer.hasMedia || !viewer.displayImage || viewer.displayImage->isNull() || !(viewer.drawWidth > 0.0) ||
        !(viewer.drawHeight > 0.0) || viewer.viewRotation != 0.0f)
        return false;
    const double fx = (at.x() - viewer.drawX) / viewer.drawWidth;
    const double fy = (at.y() - viewer.drawY) / viewer.drawHeight;
    if (!(fx >= 0.0 && fx < 1.0 && fy >= 0.0 && fy < 1.0))
        return false;
    const QImage& img = *viewer.displayImage;
    const int ix = std::min(int(fx * img.width()), img.width() - 1);
    const int iy = std::min(int(fy * img.height()), img.height() - 1);
    colour = img.pixelColor(ix, iy);
    int32_t fullW, fullH;
    {
        std::lock_guard<std::mutex> lock(viewer.stateMutex);
        fullW = viewer.outputWidth;
        fullH = viewer.outputHeight;
    }
    if (fullW < 1 || fullH < 1) {
        fullW = img.width();
        fullH = img.height();
    }
    x = std::min(int(fx * fullW), fullW - 1);
    y = std::min(int(fy * fullH), fullH - 1);
    return true;
}
