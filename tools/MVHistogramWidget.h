#pragma once
#include "core/FlexImage.h"
#include "document/core/HistogramData.h"

#include <QtGui/QImage>
#include <QtGui/QPen>
#include <QtWidgets/QWidget>

#include <atomic>
#include <mutex>
#include <vector>

// A scope of the processed picture: histograms, waveforms or the chrominance chart. The numbers
// come from HistogramData on the processing thread; this widget only keeps the latest result and
// paints it.
class MVHistogramWidget : public QWidget
{
    Q_OBJECT
public:
    enum HistogramWidgetGraph {
        LuminanceHistogram = 0,
        RGBHistogram = 1,
        LuminanceWaveform = 2,
        RGBWaveform = 3,
        ChrominanceChart = 4,
    };

    explicit MVHistogramWidget(QWidget* parent = nullptr);

    // Clears the data; the next image fills the new graph.
    void setGraphType(int type);
    int currentGraphType();
    // The menu text of a graph ("Luminance Histogram" ...), empty for an unknown one.
    static QString graphName(int type);

    // From any thread: measures the processed image and schedules a repaint. An empty image
    // means the picture went: the data is cleared.
    void updateFrom(const FlexImageFloat& image);
    // No picture any more: only the frame is painted.
    void clearData();
    // Passes measured since construction (tests wait on it).
    int updateCount() const { return updates.load(); }
    bool hasDataNow();

    // All below guarded by mutex.
    int32_t bottomMargin = 18;
    QImage scopeImage;
    bool hasData = false;
    QPen gridPen, framePen, guidePen;
    std::vector<int32_t> lumaBins, redBins, greenBins, blueBins;
    int32_t peakCount = 0;
    int32_t graphType = LuminanceHistogram;
    std::mutex mutex;

protected:
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;

private:
    void paintHistogram(QPainter& p, const QRect& graph);
    void paintChartGuides(QPainter& p, const QRect& graph);
    void paintCaption(QPainter& p, const QRect& strip);

    // Serialises passes from several viewers over the one scratch object.
    std::mutex computeMutex;
    HistogramData data;
    // The graph's size as the processing thread may read it.
    std::atomic<int32_t> graphWidth{0}, graphHeight{0};
    std::atomic<int> updates{0};
};
