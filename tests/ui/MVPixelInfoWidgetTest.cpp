// The pixel inspector: read-out texts for known colours, the recent list, and the look-up of the
// pixel under a point of a viewer.
#include "document/MVMediaWidget.h"
#include "ui/DevicePixelRatio.h"
#include "tools/MVPixelInfoWidget.h"
#include "tools/MVPixelInfoWindow.h"

#include <QtTest/QtTest>

#include <chrono>
#include <thread>

namespace {

bool waitForPass(MVMediaWidget& w, int ms = 10000)
{
    QElapsedTimer t;
    t.start();
    while (w.isProcessing() || w.finishedPasses() == 0) {
        if (t.elapsed() > ms)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace

class MVPixelInfoWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { gDevicePixelRatio = 1.0f; }

    void pureRedReadsOut()
    {
        MVPixelInfoWidget w;
        w.showPixel(10, 20, QColor(255, 0, 0));
        QVERIFY(w.hasPixel());
        QCOMPARE(w.readoutText(0), QStringLiteral("R 255"));
        QCOMPARE(w.readoutText(1), QStringLiteral("H 0\u00b0"));
        QCOMPARE(w.readoutText(2), QStringLiteral("G 0"));
        QCOMPARE(w.readoutText(3), QStringLiteral("S 100%"));
        QCOMPARE(w.readoutText(4), QStringLiteral("B 0"));
        QCOMPARE(w.readoutText(5), QStringLiteral("V 100%"));
        QCOMPARE(w.readoutText(6), QStringLiteral("Lab 53.2  80.1  67.2"));
    }

    void mixedColourReadsOut()
    {
        MVPixelInfoWidget w;
        // Hue (64 - 32) / (128 - 32) * 60 = 20; saturation 96 / 128; value 128 / 255.
        w.showPixel(0, 0, QColor(128, 64, 32));
        QCOMPARE(w.readoutText(0), QStringLiteral("R 128"));
        QCOMPARE(w.readoutText(1), QStringLiteral("H 20\u00b0"));
        QCOMPARE(w.readoutText(3), QStringLiteral("S 75%"));
        QCOMPARE(w.readoutText(5), QStringLiteral("V 50%"));
        QCOMPARE(w.readoutText(6), QStringLiteral("Lab 61.2  14.7  27.9"));
        // Blue's hue sits at 240 and its b is strongly negative.
        w.showPixel(0, 0, QColor(0, 0, 255));
        QCOMPARE(w.readoutText(1), QStringLiteral("H 240\u00b0"));
        QCOMPARE(w.readoutText(6), QStringLiteral("Lab 32.3  79.2  -107.9"));
    }

    void greyHasNoHueAndNoNegativeZero()
    {
        MVPixelInfoWidget w;
        w.showPixel(0, 0, QColor(128, 128, 128));
        QCOMPARE(w.readoutText(1), QStringLiteral("H 0\u00b0"));
        QCOMPARE(w.readoutText(3), QStringLiteral("S 0%"));
        QCOMPARE(w.readoutText(6), QStringLiteral("Lab 76.2  0.0  0.0"));
    }

    void clearingShowsDashesAndRefusesAPick()
    {
        MVPixelInfoWidget w;
        w.showPixel(1, 1, QColor(1, 2, 3));
        w.clearPixel();
        QVERIFY(!w.hasPixel());
        QCOMPARE(w.readoutText(0), QStringLiteral("R \u2013"));
        QCOMPARE(w.readoutText(6), QStringLiteral("Lab \u2013"));
        QVERIFY(!w.pickShownPixel());
        QCOMPARE(w.recentCount(), 0);
        QCOMPARE(w.readoutText(7), QString());
    }

    void recentListKeepsTheNewestFirstAndIsCapped()
    {
        MVPixelInfoWidget w;
        QSignalSpy heights(&w, &MVPixelInfoWidget::heightNeeded);
        const int before = w.preferredHeight();
        for (int i = 0; i < MVPixelInfoWidget::maxRecent + 2; ++i) {
            w.showPixel(i, 2 * i, QColor(i * 10, 100, 200));
            QVERIFY(w.pickShownPixel());
        }
        QCOMPARE(w.recentCount(), MVPixelInfoWidget::maxRecent);
        QCOMPARE(w.recentText(0), QStringLiteral("\u25a0 7, 14   70 100 200"));
        QCOMPARE(w.recentText(MVPixelInfoWidget::maxRecent - 1), QStringLiteral("\u25a0 2, 4   20 100 200"));
        QCOMPARE(w.recentText(MVPixelInfoWidget::maxRecent), QString());
        QCOMPARE(w.preferredHeight(), before + MVPixelInfoWidget::maxRecent * w.rowHeight);
        QCOMPARE(heights.count(), MVPixelInfoWidget::maxRecent + 2);
    }

    void windowIsTitledAndGrowsWithTheList()
    {
        QWidget parent;
        MVPixelInfoWindow win(&parent);
        QCOMPARE(win.windowTitle(), QStringLiteral("Pixel Inspector"));
        const int h = win.height();
        win.info->showPixel(3, 4, QColor(9, 9, 9));
        win.info->pickShownPixel();
        QCOMPARE(win.height(), h + win.info->rowHeight);
    }

    void viewerLookUpReadsThePaintedPixel()
    {
        // Left half orange, right half dark blue, 40 by 20, shown at 10 times in a 420 by 220 view.
        auto* img = new FlexImageFloat(40, 20, 3);
        for (int y = 0; y < 20; ++y)
            for (int x = 0; x < 40; ++x) {
                float* p = img->row(y) + x * 3;
                p[0] = x < 20 ? 200.0f : 10.0f;
                p[1] = x < 20 ? 100.0f : 20.0f;
                p[2] = x < 20 ? 50.0f : 30.0f;
            }
        MVMediaWidget v;
        v.resize(420, 220);
        v.setSource(img);
        QVERIFY(waitForPass(v));
        QCOMPARE(v.drawWidth, 40.0); // small images stay at their size
        int x = -1, y = -1;
        QColor c;
        const double left = v.drawX, top = v.drawY;
        QVERIFY(MVPixelInfoWidget::sampleViewer(v, QPointF(left + 5.5, top + 3.5), x, y, c));
        QCOMPARE(c, QColor(200, 100, 50));
        QCOMPARE(x, 5);
        QCOMPARE(y, 3);
        QVERIFY(MVPixelInfoWidget::sampleViewer(v, QPointF(left + 39.9, top + 19.9), x, y, c));
        QCOMPARE(c, QColor(10, 20, 30));
        QCOMPARE(x, 39);
        QCOMPARE(y, 19);
        // Just outside the picture, and a viewer without media.
        QVERIFY(!MVPixelInfoWidget::sampleViewer(v, QPointF(left - 0.5, top + 3.0), x, y, c));
        QVERIFY(!MVPixelInfoWidget::sampleViewer(v, QPointF(left + 40.0, top + 3.0), x, y, c));
        MVMediaWidget empty;
        empty.resize(100, 100);
        QVERIFY(!MVPixelInfoWidget::sampleViewer(empty, QPointF(50, 50), x, y, c));
    }
};

QTEST_MAIN(MVPixelInfoWidgetTest)
#include "MVPixelInfoWidgetTest.moc"
