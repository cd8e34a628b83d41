// The viewport: where the picture lands (fit, zoom about a point, pan limits), how requests collapse
// into passes, what a pass leaves on screen, and the byte-exact display copy.
#include "core/ImageMod.h"
#include "desktop_only/qtImageConverters.h"
#include "document/MVImageWithProcessing.h"
#include "document/MVMediaWidget.h"
#include "document/core/ModSequenceRunner.h"
#include "media/ColorTransformSet.h"
#include "ui/DevicePixelRatio.h"

#include <QtGui/QImage>
#include <QtGui/QWheelEvent>
#include <QtTest/QtTest>

#include <atomic>
#include <chrono>
#include <cmath>
#include <limits>
#include <thread>

namespace {

FlexImageFloat* gradientImage(int w, int h, int channels = 3)
{
    auto* img = new FlexImageFloat(w, h, channels);
    for (int y = 0; y < h; ++y) {
        float* p = img->row(y);
        for (int x = 0; x < w; ++x, p += channels) {
            p[0] = float((x * 7) % 256);
            p[1] = float((y * 5) % 256);
            p[2] = float((x + y) % 256);
            if (channels == 4)
                p[3] = 255.0f;
        }
    }
    return img;
}

// Holds its first pass at the gate until the test opens it; counts every apply.
std::atomic<int> gApplies{0};
std::atomic<bool> gGateOpen{true};

class GateMod : public ImageMod
{
public:
    GateMod() : ImageMod("Gate", "Gate") {}
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<GateMod>(); }
    void apply(FlexImageFloat* image, const ImageModApplyContext*) override
    {
        gApplies.fetch_add(1);
        while (!gGateOpen.load())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        // Inverts red, so the display shows that the tile ran.
        for (int y = 0; y < image->height; ++y)
            for (int x = 0; x < image->width; ++x)
                image->row(y)[x * image->channels] = 255.0f - image->row(y)[x * image->channels];
    }
};

// Adds its "Amount" to green and counts its applies, so a test sees which stages a pass ran.
std::atomic<int> gOffsetApplies{0};

class OffsetMod : public ImageMod
{
public:
    explicit OffsetMod(float amount = 0.0f) : ImageMod("Offset", "Offset") { addFloat("Amount", amount, 0.0f, 255.0f); }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<OffsetMod>(); }
    void apply(FlexImageFloat* image, const ImageModApplyContext*) override
    {
        gOffsetApplies.fetch_add(1);
        for (int y = 0; y < image->height; ++y)
            for (int x = 0; x < image->width; ++x)
                image->row(y)[x * image->channels + 1] += floatValue(0);
    }
};

bool waitIdle(MVMediaWidget& w, int ms = 10000)
{
    QElapsedTimer t;
    t.start();
    while (w.isProcessing()) {
        if (t.elapsed() > ms)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

void wheel(MVMediaWidget& w, QPoint at, int delta)
{
    QWheelEvent e(QPointF(at), QPointF(w.mapToGlobal(at)), QPoint(), QPoint(0, delta), Qt::NoButton, Qt::NoModifier,
                  Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&w, &e);
}

// A viewer of the given size showing image from the start.
struct Viewer : MVMediaWidget {
    Viewer(int width, int height, FlexImageFloat* image)
    {
        resize(width, height);
        setSource(image);
    }
};

QRect drawRectOf(const MVMediaWidget& w)
{
    return QRect(int(w.drawX), int(w.drawY), int(w.drawWidth), int(w.drawHeight));
}

} // namespace

class MVMediaWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        gDevicePixelRatio = 1.0f;
        gGateOpen = true;
        gApplies = 0;
        gOffsetApplies = 0;
    }

    void theFitCentresInsideATenPixelMargin()
    {
        // A 1000 x 800 view: a small picture stays at its size, a large one is bound by its tighter side.
        const struct {
            int w, h;
            float ratio;
            QRect drawn;
            float zoom; // 0: not checked
        } cases[] = {
            {100, 100, 1.0f, QRect(450, 350, 100, 100), 1.0f},
            {2000, 500, 1.0f, QRect(10, 277, 980, 245), 980.0f / 2000.0f}, // (800 - 245) / 2 = 277.5
            {900, 1560, 1.0f, QRect(275, 10, 450, 780), 780.0f / 1560.0f}, // from the unscaled height
            {301, 200, 2.0f, QRect(424, 350, 151, 100), 0.0f},             // half size: 150.5 rounds away from zero
        };
        for (const auto& c : cases) {
            gDevicePixelRatio = c.ratio;
            Viewer w(1000, 800, gradientImage(c.w, c.h));
            QVERIFY2(drawRectOf(w) == c.drawn, qPrintable(QStringLiteral("%1x%2").arg(c.w).arg(c.h)));
            QVERIFY(w.fitToWindow);
            if (c.zoom > 0.0f)
                QCOMPARE(w.zoom, c.zoom);
            QVERIFY(waitIdle(w));
        }
    }

    void wheelZoomStopsAtATenthOfTheFit()
    {
        Viewer w(1000, 800, gradientImage(2000, 1000));
        const float fitZoom = std::min(1000.0f / 2000.0f, 800.0f / 1000.0f);
        for (int i = 0; i < 60; ++i)
            wheel(w, QPoint(500, 400), -1200);
        QVERIFY(!w.fitToWindow);
        QCOMPARE(w.zoom, fitZoom * 0.1f);
        QCOMPARE(int(w.drawWidth), int(2000 * fitZoom * 0.1f));
        // Zero delta changes nothing at all.
        const QRect before = drawRectOf(w);
        wheel(w, QPoint(100, 100), 0);
        QCOMPARE(w.zoom, fitZoom * 0.1f);
        QCOMPARE(drawRectOf(w), before);
        QVERIFY(waitIdle(w));
    }

    void zoomKeepsThePointUnderTheCursor()
    {
        Viewer w(1000, 800, gradientImage(2000, 1600));
        // The width bound gives 0.49 and 784 rows, too tall: the height bound 780/1600 wins.
        const QRect fit = drawRectOf(w);
        QCOMPARE(fit, QRect(12, 10, 975, 780));
        QCOMPARE(w.zoom, 780.0f / 1600.0f);
        const double ax = (300.0 - w.drawX) / w.drawWidth, ay = (200.0 - w.drawY) / w.drawHeight;
        w.zoomTo(1.0f, 300.0f, 200.0f);
        QCOMPARE(w.zoom, 1.0f);
        QCOMPARE(int(w.drawWidth), 2000);
        QVERIFY(std::abs(w.drawX + ax * w.drawWidth - 300.0) <= 1.0);
        QVERIFY(std::abs(w.drawY + ay * w.drawHeight - 200.0) <= 1.0);
        QVERIFY(w.updateDisplayTimer.isActive()); // the sharp pass follows
        // Zoom toggle back to fit: 0 means fit.
        w.zoomTo(0.0f, 300.0f, 200.0f);
        QVERIFY(w.fitToWindow);
        QCOMPARE(drawRectOf(w), fit);
        QVERIFY(waitIdle(w));
    }

    void panningKeepsAThirdOfTheViewCovered()
    {
        Viewer w(900, 600, gradientImage(1800, 1200));
        w.zoomTo(1.0f, 450.0f, 300.0f);
        QTest::mousePress(&w, Qt::LeftButton, Qt::NoModifier, QPoint(450, 300));
        // Drag far to the right and down: the left edge stops at vw - vw/3, the top at vh - vh/3.
        QMouseEvent move(QEvent::MouseMove, QPointF(5000, 5000), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&w, &move);
        QCOMPARE(int(w.drawX), 600);
        QCOMPARE(int(w.drawY), 400);
        // And the other way: the right edge stops at a third.
        QMouseEvent back(QEvent::MouseMove, QPointF(-5000, -5000), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&w, &back);
        QCOMPARE(int(w.drawX + w.drawWidth), 300);
        QCOMPARE(int(w.drawY + w.drawHeight), 200);
        // Without a button held, a move is no pan.
        const QRect held = drawRectOf(w);
        QMouseEvent hover(QEvent::MouseMove, QPointF(450, 300), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&w, &hover);
        QCOMPARE(drawRectOf(w), held);
        QVERIFY(waitIdle(w));
    }

    void doubleClickTogglesBetweenFitAndFullSize()
    {
        Viewer w(1000, 800, gradientImage(3000, 2000));
        QVERIFY(w.zoom < 1.0f);
        QTest::mouseDClick(&w, Qt::LeftButton, Qt::NoModifier, QPoint(500, 400));
        QCOMPARE(w.zoom, 1.0f);
        QVERIFY(!w.fitToWindow);
        QTest::mouseDClick(&w, Qt::LeftButton, Qt::NoModifier, QPoint(500, 400));
        QVERIFY(w.fitToWindow);
        // The layout's fit keeps its 20-pixel margin.
        QCOMPARE(w.zoom, 980.0f / 3000.0f);
        QVERIFY(waitIdle(w));
    }

    void visibleRegionIsThePartOnScreen()
    {
        Viewer w(400, 300, gradientImage(100, 100));
        QVERIFY(waitIdle(w));
        int l, t, r, b;
        // Drawn at twice its size from (-100, -50): columns 0..(400+100)*100/200, rows 0..175*100/200.
        w.drawX = -100;
        w.drawY = -50;
        w.drawWidth = 200;
        w.drawHeight = 200;
        w.visibleRegion(100, 100, l, t, r, b);
        QCOMPARE(QRect(QPoint(l, t), QPoint(r, b)), QRect(QPoint(49, 24), QPoint(99, 99)));
        w.drawWidth = 0; // nothing laid out: the whole image
        w.visibleRegion(100, 100, l, t, r, b);
        QCOMPARE(QRect(QPoint(l, t), QPoint(r, b)), QRect(0, 0, 100, 100));
    }

    void requestsDuringAPassCollapseIntoOneMore()
    {
        MVMediaWidget w;
        w.resize(300, 200);
        GateMod gate;
        gGateOpen = false;
        w.setMods({&gate}); // no media yet: the worker ends at once
        QVERIFY(waitIdle(w));
        QCOMPARE(w.finishedPasses(), 0);
        w.setSource(gradientImage(64, 48));
        QTRY_COMPARE_WITH_TIMEOUT(gApplies.load(), 1, 5000);
        for (int i = 0; i < 5; ++i)
            w.requestProcessing();
        QVERIFY(w.isProcessing());
        gGateOpen = true;
        QVERIFY(waitIdle(w));
        QCOMPARE(w.finishedPasses(), 2);
        QCOMPARE(gApplies.load(), 2);
        // A request after the worker ended starts a fresh one.
        w.requestProcessing();
        QVERIFY(waitIdle(w));
        QCOMPARE(w.finishedPasses(), 3);
    }

    void passShowsTheProcessedPicture()
    {
        MVMediaWidget w;
        w.resize(300, 200);
        QSignalSpy updated(&w, &MVMediaWidget::displayUpdatedSignal);
        std::unique_ptr<FlexImageFloat> reference(gradientImage(64, 48));
        w.setSource(gradientImage(64, 48));
        QVERIFY(updated.wait(5000) || w.finishedPasses() > 0);
        QVERIFY(waitIdle(w));
        // No tiles: the display is the image itself, at its own size (it is smaller than the view).
        QImage shown = w.displayCopy();
        QCOMPARE(shown.size(), QSize(64, 48));
        QCOMPARE(shown.pixel(10, 7), qRgb(70, 35, 17));
        QCOMPARE(shown.pixel(63, 47), qRgb((63 * 7) % 256, (47 * 5) % 256, 110));
        GateMod invert;
        w.setMods({&invert});
        QVERIFY(waitIdle(w));
        QCOMPARE(w.displayCopy().pixel(10, 7), qRgb(255 - 70, 35, 17));
        // Leaving the geometry out changes nothing for a list without geometry tiles but still passes.
        const int passes = w.finishedPasses();
        w.setApplyGeometry(false);
        QVERIFY(waitIdle(w));
        QCOMPARE(w.finishedPasses(), passes + 1);
        w.clearMedia();
        QVERIFY(!w.hasMedia);
        QCOMPARE(w.outputPixelSize(), QSize(-1, -1));
        QVERIFY(w.displayCopy().isNull());
    }

    void dragOnAFittedViewRunsOnlyTheDraggedTile()
    {
        // The whole picture is in view, so the runner fills the region itself from its cache.
        Viewer w(300, 200, gradientImage(64, 48));
        QVERIFY(waitIdle(w));
        OffsetMod first(5.0f), dragged(1.0f);
        w.setMods({&first, &dragged});
        QVERIFY(waitIdle(w));
        dragged.variableAt(0)->setFloatValue(2.0f); // stores the picture after the first tile
        w.setMods({&first, &dragged});
        QVERIFY(waitIdle(w));
        const int before = gOffsetApplies.load();
        for (float v : {3.0f, 4.0f, 6.0f}) {
            dragged.variableAt(0)->setFloatValue(v);
            w.setMods({&first, &dragged});
            QVERIFY(waitIdle(w));
            // (10, 7): green 35 from the gradient, 5 from the first tile, v from the dragged one.
            QCOMPARE(w.displayCopy().pixel(10, 7), qRgb(70, 35 + 5 + int(v), 17));
            QCOMPARE(w.displayCopy().pixel(63, 47), qRgb((63 * 7) % 256, (47 * 5) % 256 + 5 + int(v), 110));
        }
        QCOMPARE(gOffsetApplies.load() - before, 3); // the dragged tile alone, once a change
        QCOMPARE(w.runner->currentCachedStage(), 0);
        // Removing the tiles leaves the plain picture, filled without any cache.
        w.setMods({});
        QVERIFY(waitIdle(w));
        QCOMPARE(w.displayCopy().pixel(10, 7), qRgb(70, 35, 17));
    }

    void displayCopyMatchesPerPixelWrites()
    {
        // Samples out of range, fractions and NaN, three and four channels, offsets that clip; rows
        // long enough for the four-pixel groups and a tail.
        const float nan = std::numeric_limits<float>::quiet_NaN();
        for (int channels : {3, 4}) {
            FlexImageFloat src(13, 5, channels);
            for (int y = 0; y < 5; ++y)
                for (int x = 0; x < 13; ++x)
                    for (int c = 0; c < channels; ++c) {
                        const int k = (y * 13 + x) * channels + c;
                        src.row(y)[x * channels + c] = k % 11 == 0 ? nan : float(k * 37 % 300) - 20.5f;
                    }
            for (QPoint offset : {QPoint(0, 0), QPoint(-3, 2), QPoint(4, -2), QPoint(16, 9), QPoint(5, 1)}) {
                QImage fast(15, 6, QImage::Format_ARGB32), slow(15, 6, QImage::Format_ARGB32);
                fast.fill(qRgba(1, 2, 3, 4));
                slow.fill(qRgba(1, 2, 3, 4));
                QVERIFY(copyContentsIntoQtImage(src, fast, offset.x(), offset.y(), nullptr));
                for (int y = 0; y < 5; ++y)
                    for (int x = 0; x < 13; ++x) {
                        const QPoint at(x + offset.x(), y + offset.y());
                        if (!slow.rect().contains(at))
                            continue;
                        const float* p = src.row(y) + x * channels;
                        auto byte = [](float v) { return v > 0.0f ? (v < 255.0f ? int(v) : 255) : 0; };
                        slow.setPixelColor(at, QColor(byte(p[0]), byte(p[1]), byte(p[2]),
                                                      channels == 4 ? byte(p[3]) : 255));
                    }
                QCOMPARE(fast, slow);
            }
        }
        // Through a colour transform the row goes out as 8-bit triples and back; the result must be
        // what converting each clipped row on its own gives.
        ColorTransformSet adobe;
        setKind(adobe, ColorSpaceKind::AdobeRGB);
        QVERIFY(adobe.converts());
        for (int channels : {3, 4}) {
            FlexImageFloat src(33, 3, channels);
            for (int64_t i = 0; i < src.sampleCount(); ++i)
                src.data[i] = float((i * 53) % 256);
            QImage fast(30, 4, QImage::Format_ARGB32);
            fast.fill(0);
            QVERIFY(copyContentsIntoQtImage(src, fast, -2, 1, &adobe));
            for (int y = 0; y < 3; ++y) {
                uint8_t rgb[3 * 30];
                for (int x = 0; x < 30; ++x)
                    for (int c = 0; c < 3; ++c)
                        rgb[3 * x + c] = uint8_t(src.row(y)[(x + 2) * channels + c]);
                transformRgb8RowToDisplay(adobe, rgb, 30);
                for (int x = 0; x < 30; ++x) {
                    const int alpha = channels == 4 ? int(src.row(y)[(x + 2) * channels + 3]) : 255;
                    QCOMPARE(fast.pixel(x, y + 1), qRgba(rgb[3 * x], rgb[3 * x + 1], rgb[3 * x + 2], alpha));
                }
            }
            QCOMPARE(fast.pixel(5, 0), 0u); // the row above the offset is untouched
        }

        FlexImageFloat grey(4, 4, 1);
        QImage target(4, 4, QImage::Format_ARGB32);
        QVERIFY(!copyContentsIntoQtImage(grey, target, 0, 0, nullptr));
    }

    void thumbnailRunsItsListOnItsOwnThread()
    {
        std::unique_ptr<FlexImageFloat> source(new FlexImageFloat(400, 200, 3));
        for (int64_t i = 0; i < source->sampleCount(); i += 3) {
            source->data[i] = 10.0f;
            source->data[i + 1] = 20.0f;
            source->data[i + 2] = 30.0f;
        }
        MVImageWithProcessing thumb(source.get());
        thumb.resize(100, 100);
        GateMod invert;
        thumb.startProcessing({&invert});
        thumb.waitForIdle();
        QCOMPARE(thumb.state, 3);
        const QImage result = thumb.resultCopy();
        QCOMPARE(result.size(), QSize(100, 50));
        // The red channel came out inverted, everywhere.
        QCOMPARE(result.pixel(0, 0), qRgb(245, 20, 30));
        QCOMPARE(result.pixel(99, 49), qRgb(245, 20, 30));
    }
};

QTEST_MAIN(MVMediaWidgetTest)
#include "MVMediaWidgetTest.moc"
