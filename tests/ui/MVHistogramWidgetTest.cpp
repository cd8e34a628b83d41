// The scopes widget: what a measured image leaves in it, how the scope image follows the
// widget's size, what it paints, and that a viewer's pass reaches it.
#include "document/MVMediaWidget.h"
#include "ui/DevicePixelRatio.h"
#include "tools/MVHistogramWidget.h"
#include "tools/MVHistogramWindow.h"

#include <QtTest/QtTest>

#include <chrono>
#include <numeric>
#include <thread>

namespace {

FlexImageFloat* rampImage(int w, int h)
{
    // Every column its own grey, so each histogram bin holds the same count.
    auto* img = new FlexImageFloat(w, h, 3);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < 3; ++c)
                img->row(y)[x * 3 + c] = float(x * 256 / w);
    return img;
}

bool waitFor(const std::function<bool()>& done, int ms = 10000)
{
    QElapsedTimer t;
    t.start();
    while (!done()) {
        if (t.elapsed() > ms)
            return false;
        QCoreApplication::processEvents();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

int greyAt(const QImage& img, int x, int y)
{
    return qGray(img.pixel(x, y));
}

} // namespace

class MVHistogramWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { gDevicePixelRatio = 1.0f; }

    void blackImageFillsBinZero()
    {
        MVHistogramWidget w;
        w.resize(300, 200);
        FlexImageFloat black(100, 100, 3);
        std::fill(black.data, black.data + black.sampleCount(), 0.0f);
        w.updateFrom(black);
        QVERIFY(w.hasDataNow());
        QCOMPARE(w.updateCount(), 1);
        std::lock_guard<std::mutex> lock(w.mutex);
        QCOMPARE(w.lumaBins.size(), size_t(256));
        QCOMPARE(w.lumaBins[0], 10000);
        QCOMPARE(w.peakCount, 156);
        QVERIFY(w.scopeImage.isNull());
    }

    void changingTheGraphClearsTheData()
    {
        MVHistogramWidget w;
        w.resize(300, 200);
        std::unique_ptr<FlexImageFloat> img(rampImage(64, 8));
        w.updateFrom(*img);
        QVERIFY(w.hasDataNow());
        w.setGraphType(MVHistogramWidget::RGBHistogram);
        QVERIFY(!w.hasDataNow());
        QCOMPARE(w.currentGraphType(), int(MVHistogramWidget::RGBHistogram));
        QCOMPARE(MVHistogramWidget::graphName(5), QString()); // past the last graph: no name
        w.updateFrom(*img);
        std::lock_guard<std::mutex> lock(w.mutex);
        QVERIFY(w.lumaBins.empty());
        QCOMPARE(std::accumulate(w.redBins.begin(), w.redBins.end(), 0), 64 * 8);
    }

    void scopeImageFollowsTheWidgetSize()
    {
        MVHistogramWidget w;
        w.resize(300, 200);
        w.show(); // a hidden widget learns its size only when shown
        std::unique_ptr<FlexImageFloat> img(rampImage(64, 8));
        w.setGraphType(MVHistogramWidget::LuminanceWaveform);
        w.updateFrom(*img);
        {
            std::lock_guard<std::mutex> lock(w.mutex);
            QCOMPARE(w.scopeImage.size(), QSize(300, 256));
            QCOMPARE(w.scopeImage.format(), QImage::Format_ARGB32);
        }
        // The chart is as large as the graph in device pixels.
        gDevicePixelRatio = 2.0f;
        w.setGraphType(MVHistogramWidget::ChrominanceChart);
        w.updateFrom(*img);
        std::lock_guard<std::mutex> lock(w.mutex);
        QCOMPARE(w.scopeImage.size(), QSize(600, 2 * (200 - w.bottomMargin)));
    }

    void flatHistogramFillsTheLowerQuarter()
    {
        // Equal bins are a quarter of the peak: the fill reaches three quarters down the graph.
        MVHistogramWidget w;
        w.resize(256, 218);
        std::unique_ptr<FlexImageFloat> img(rampImage(256, 255));
        w.updateFrom(*img);
        const QImage shot = w.grab().toImage();
        const int graphH = 218 - w.bottomMargin;
        QVERIFY(greyAt(shot, 85, graphH - 10) > 140);     // inside the fill
        QVERIFY(greyAt(shot, 85, graphH * 3 / 4 + 6) > 140);
        QVERIFY(greyAt(shot, 85, graphH * 3 / 4 - 6) < 40); // above it: the dark ground
        QVERIFY(greyAt(shot, 85, 20) < 40);
    }

    void withoutDataOnlyTheFrameShows()
    {
        MVHistogramWidget w;
        w.resize(200, 150);
        const QImage shot = w.grab().toImage();
        const int graphH = 150 - w.bottomMargin;
        const QRgb ground = shot.pixel(100, graphH / 2);
        // No grid line at the middle, and the frame differs from the ground.
        QCOMPARE(shot.pixel(100, graphH / 2 + 3), ground);
        QCOMPARE(shot.pixel(50, graphH / 2), ground);
        QVERIFY(shot.pixel(0, graphH / 2) != ground);
    }

    void aViewerPassReachesTheWidget()
    {
        MVHistogramWindow win(nullptr);
        win.resize(340, 230);
        win.show();
        MVHistogramWidget* scope = win.histogram;
        MVMediaWidget v;
        v.resize(400, 300);
        v.histogramFeed = [scope](const FlexImageFloat& image) { scope->updateFrom(image); };
        v.setSource(rampImage(128, 64));
        QVERIFY(waitFor([&] { return scope->updateCount() > 0 && !v.isProcessing(); }));
        QVERIFY(scope->hasDataNow());
        {
            std::lock_guard<std::mutex> lock(scope->mutex);
            // The whole picture is in view: every pixel counted once.
            QCOMPARE(std::accumulate(scope->lumaBins.begin(), scope->lumaBins.end(), 0), 128 * 64);
        }
        // Dropping the media empties the scope.
        {
            const int passes = scope->updateCount();
            v.clearMedia();
            QVERIFY(!scope->hasDataNow());
            QCOMPARE(scope->updateCount(), passes);
            v.setSource(rampImage(128, 64));
            QVERIFY(waitFor([&] { return scope->hasDataNow() && !v.isProcessing(); }));
        }
        // Switching the graph and asking for a pass fills the new one.
        win.setGraphType(MVHistogramWidget::RGBWaveform);
        QCOMPARE(win.windowTitle(), QStringLiteral("RGB Waveform"));
        const int before = scope->updateCount();
        v.requestProcessing();
        QVERIFY(waitFor([&] { return scope->updateCount() > before && !v.isProcessing(); }));
        std::lock_guard<std::mutex> lock(scope->mutex);
        QCOMPARE(scope->scopeImage.height(), 256);
        QCOMPARE(scope->scopeImage.width(), scope->width());
    }
};

QTEST_MAIN(MVHistogramWidgetTest)
#include "MVHistogramWidgetTest.moc"
