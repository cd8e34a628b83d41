#include "tools/MVHistogramWidget.h"

#include "ui/DevicePixelRatio.h"

#include <QtCore/QMetaObject>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include <algorithm>
#include <cstring>

namespace {

const QColor kBackground(0x1a, 0x1a, 0x1a);
const QColor kGraphBackground(0x0e, 0x0e, 0x0e);
const QColor kCaption(0x8c, 0x8c, 0x8c);

// Outline of the chart where fully saturated colours reach, as fractions of width and height.
const QPointF kChartGuide[] = {{0.0, 0.0},     {0.07361, 0.37},  {0.16667, 0.0}, {0.31111, 0.295},
                               {0.33333, 0.16667}, {0.5, 0.0},   {0.57361, 0.37}, {0.66667, 0.0},
                               {0.81111, 0.295}, {0.83333, 0.16667}, {1.0, 0.0}};
// The line along which skin tones gather.
const QPointF kSkinLine[] = {{0.0, 0.22},   {0.208, 0.297}, {0.35, 0.29}, {0.5, 0.185},
                             {0.677, 0.234}, {0.832, 0.327}, {1.0, 0.22}};

float pixelRatio()
{
    return gDevicePixelRatio > 0.0f ? gDevicePixelRatio : 1.0f;
}

QPainterPath histogramPath(const std::vector<int32_t>& bins, int32_t peak, const QRectF& g)
{
    const double W = g.width(), H = g.height();
    const double count = double(bins.size());
    const double top = double(std::max(peak, 1));
    QPainterPath path;
    path.moveTo(g.left(), g.top() + H - 1.0);
    for (size_t i = 0; i < bins.size(); ++i) {
        const double x = double(i) * (W - 1.0) / (count - 1.0);
        const double y = std::clamp(H - 1.0 - double(bins[i]) * (H - 1.0) / top, 0.0, H - 1.0);
        path.lineTo(g.left() + x, g.top() + y);
    }
    path.lineTo(g.left() + W - 1.0, g.top() + H - 1.0);
    path.closeSubpath();
    return path;
}

} // namespace

MVHistogramWidget::MVHistogramWidget(QWidget* parent) : QWidget(parent)
{
    gridPen = QPen(QColor(255, 255, 255, 30), 1.0);
    framePen = QPen(QColor(0x4a, 0x4a, 0x4a), 1.0);
    guidePen = QPen(QColor(255, 255, 255, 160), 1.3);
    setAttribute(Qt::WA_OpaquePaintEvent, true);
    setMinimumSize(64, 48);
}

QString MVHistogramWidget::graphName(int type)
{
    switch (type) {
    case LuminanceHistogram: return QStringLiteral("Luminance Histogram");
    case RGBHistogram: return QStringLiteral("RGB Histogram");
    case LuminanceWaveform: return QStringLiteral("Luminance Waveform");
    case RGBWaveform: return QStringLiteral("RGB Waveform");
    case ChrominanceChart: return QStringLiteral("Chrominance Chart");
    default: return QString();
    }
}

void MVHistogramWidget::setGraphType(int type)
{
    {
        std::lock_guard<std::mutex> lock(mutex);
        graphType = type;
        hasData = false;
        lumaBins.clear();
        redBins.clear();
        greenBins.clear();
        blueBins.clear();
        peakCount = 0;
        scopeImage = QImage();
    }
    update();
}

int MVHistogramWidget::currentGraphType()
{
    std::lock_guard<std::mutex> lock(mutex);
    return graphType;
}

bool MVHistogramWidget::hasDataNow()
{
    std::lock_guard<std::mutex> lock(mutex);
    return hasData;
}

void MVHistogramWidget::clearData()
{
    {
        std::lock_guard<std::mutex> lock(mutex);
        hasData = false;
    }
    QMetaObject::invokeMethod(this, "update", Qt::QueuedConnection); // may run on the viewer's worker
}

void MVHistogramWidget::resizeEvent(QResizeEvent* e)
{
    QWidget::resizeEvent(e);
    graphWidth.store(width());
    graphHeight.store(std::max(0, height() - bottomMargin));
}

void MVHistogramWidget::updateFrom(const FlexImageFloat& image)
{
    if (image.isEmpty()) {
        clearData();
        return;
    }
    std::lock_guard<std::mutex> compute(computeMutex);
    const int type = currentGraphType();
    int32_t w = graphWidth.load(), h = graphHeight.load();
    if (type == ChrominanceChart) {
        w = int32_t(float(w) * pixelRatio());
        h = int32_t(float(h) * pixelRatio());
    }
    // The maths runs outside the widget's lock, so painting never waits for a pass.
    const bool ok = data.compute(image, type, w, h);
    {
        std::lock_guard<std::mutex> lock(mutex);
        if (graphType != type)
            return; // the graph changed during the pass; the next pass fills the new one
        lumaBins.swap(data.lumaBins);
        redBins.swap(data.redBins);
        greenBins.swap(data.greenBins);
        blueBins.swap(data.blueBins);
        peakCount = data.peakCount;
        if (ok && !data.scope.empty()) {
            if (scopeImage.width() != data.scopeWidth || scopeImage.height() != data.scopeHeight ||
                scopeImage.format() != QImage::Format_ARGB32)
                scopeImage = QImage(data.scopeWidth, data.scopeHeight, QImage::Format_ARGB32);
            for (int32_t y = 0; y < data.scopeHeight; ++y)
                std::memcpy(scopeImage.scanLine(y), data.scope.data() + size_t(y) * size_t(data.scopeWidth),
                            size_t(data.scopeWidth) * sizeof(uint32_t));
        } else {
            scopeImage = QImage();
        }
        hasData = true;
    }
    updates.fetch_add(1);
    QMetaObject::invokeMethod(this, "update", Qt::QueuedConnection); // may run on the viewer's worker
}

void MVHistogramWidget::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), kBackground);
    const QRect graph(0, 0, width(), std::max(1, height() - bottomMargin));
    p.fillRect(graph, kGraphBackground);

    std::lock_guard<std::mutex> lock(mutex);
    if (hasData) {
        switch (graphType) {
        case LuminanceHistogram:
        case RGBHistogram:
            paintHistogram(p, graph);
            break;
        case LuminanceWaveform:
        case RGBWaveform:
            if (!scopeImage.isNull()) {
                p.setRenderHint(QPainter::SmoothPixmapTransform, true);
                p.drawImage(QRectF(graph), scopeImage);
            }
            break;
        case ChrominanceChart:
            if (!scopeImage.isNull())
                p.drawImage(QRectF(graph), scopeImage);
            paintChartGuides(p, graph);
            break;
        default:
            break;
        }
    }

    // Frame, then the quarter lines, in crisp single pixels.
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setBrush(Qt::NoBrush);
    if (hasData) {
        p.setPen(gridPen);
        for (int i = 1; i < 4; ++i) {
            const int x = graph.left() + graph.width() * i / 4;
            const int y = graph.top() + graph.height() * i / 4;
            p.drawLine(x, graph.top() + 1, x, graph.bottom() - 1);
            p.drawLine(graph.left() + 1, y, graph.right() - 1, y);
        }
    }
    p.setPen(framePen);
    p.drawRect(graph.adjusted(0, 0, -1, -1));
    paintCaption(p, QRect(0, graph.bottom() + 1, width(), height() - graph.height()));
}

void MVHistogramWidget::paintHistogram(QPainter& p, const QRect& graph)
{
    const QRectF g(graph);
    p.setRenderHint(QPainter::Antialiasing, true);
    if (graphType == LuminanceHistogram) {
        if (lumaBins.size() < 2)
            return;
        p.setBrush(QColor(160, 160, 160));
        p.setPen(QPen(QColor(200, 200, 200), 1.2));
        p.drawPath(histogramPath(lumaBins, peakCount, g));
        return;
    }
    if (redBins.size() < 2 || greenBins.size() < 2 || blueBins.size() < 2)
        return;
    // Channels add where they overlap, so shared tones read as yellow, cyan, magenta and white.
    QImage layer(graph.size() * pixelRatio(), QImage::Format_ARGB32_Premultiplied);
    layer.setDevicePixelRatio(pixelRatio());
    layer.fill(Qt::transparent);
    {
        QPainter lp(&layer);
        lp.setRenderHint(QPainter::Antialiasing, true);
        lp.setCompositionMode(QPainter::CompositionMode_Plus);
        const QRectF local(0.0, 0.0, g.width(), g.height());
        const std::vector<int32_t>* bins[3] = {&blueBins, &greenBins, &redBins};
        const QColor fills[3] = {QColor(0, 0, 200, 130), QColor(0, 200, 0, 130), QColor(200, 0, 0, 130)};
        const QColor lines[3] = {QColor(0, 0, 255), QColor(0, 255, 0), QColor(255, 0, 0)};
        for (int i = 0; i < 3; ++i) {
            lp.setBrush(fills[i]);
            lp.setPen(QPen(lines[i], 1.2));
            lp.drawPath(histogramPath(*bins[i], peakCount, local));
        }
    }
    p.drawImage(g.topLeft(), layer);
}

void MVHistogramWidget::paintChartGuides(QPainter& p, const QRect& graph)
{
    const double W = graph.width(), H = graph.height();
    auto place = [&](const QPointF* pts, int n) {
        QPolygonF poly;
        for (int i = 0; i < n; ++i)
            poly << QPointF(graph.left() + pts[i].x() * W, graph.top() + pts[i].y() * H);
        return poly;
    };
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setBrush(Qt::NoBrush);
    p.setPen(guidePen);
    p.drawPolyline(place(kChartGuide, int(std::size(kChartGuide))));
    p.setPen(QPen(QColor(255, 255, 255, 60), 1.3));
    p.drawPolyline(place(kSkinLine, int(std::size(kSkinLine))));
}

void MVHistogramWidget::paintCaption(QPainter& p, const QRect& strip)
{
    if (strip.height() < 8)
        return;
    QFont f = p.font();
    f.setPixelSize(std::min(11, strip.height() - 4));
    p.setFont(f);
    p.setPen(kCaption);
    if (graphType != ChrominanceChart) {
        p.drawText(strip.adjusted(6, 0, -6, 0), Qt::AlignVCenter | Qt::AlignRight, graphName(graphType));
        return;
    }
    // Hue marks under the chart: half way round from red, so cyan sits at both edges.
    struct Mark {
        double at;
        const char* name;
        QColor colour;
    };
    const Mark marks[] = {{1.0 / 6.0, "B", QColor(110, 140, 255)}, {2.0 / 6.0, "M", QColor(235, 100, 235)},
                          {3.0 / 6.0, "R", QColor(240, 90, 80)},   {4.0 / 6.0, "Y", QColor(235, 220, 90)},
                          {5.0 / 6.0, "G", QColor(110, 220, 110)}};
    for (const Mark& m : marks) {
        const int x = strip.left() + int(m.at * strip.width());
        p.setPen(m.colour);
        p.drawText(QRect(x - 8, strip.top(), 16, strip.height()), Qt::AlignCenter, QString::fromLatin1(m.name));
    }
}
