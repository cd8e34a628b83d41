// The scopes and the pixel inspector in the main window: the menu keys 1 to 5 show, switch and
// hide the histogram window, which fills from the photo's pass; the inspector follows the cursor
// and a click on the picture picks the pixel.
#include "ResourceInit.h"
#include "document/MVMediaWidget.h"
#include "ui/AppTheme.h"
#include "tools/MVHistogramWidget.h"
#include "tools/MVHistogramWindow.h"
#include "tools/MVPixelInfoWidget.h"
#include "ui/MainWindow.h"

#include <QtCore/QFile>
#include <QtGui/QPainter>
#include <QtTest/QtTest>
#include <QtWidgets/QAction>

namespace {

// Another photo can be looked at through the same steps with VANTREL_SCOPES_PHOTO.
const QString kPhoto =
    qEnvironmentVariable("VANTREL_SCOPES_PHOTO", QStringLiteral(VANTREL_TESTDATA "/olympus_em1_forest_1920x1080.jpg"));

// Generous waits: sanitizer builds run a 1920 by 1080 pass many times slower.
bool settle(MainWindow& w)
{
    return QTest::qWaitFor([&w] { return w.displaySettled(); }, 60000);
}

// With VANTREL_SHOT_DIR set: the main window with the floating windows drawn where they stand.
void saveShot(MainWindow& w, const char* name, std::initializer_list<QWidget*> floating)
{
    const QByteArray dir = qgetenv("VANTREL_SHOT_DIR");
    if (dir.isEmpty())
        return;
    QImage shot = w.grab().toImage();
    {
        QPainter p(&shot);
        for (QWidget* f : floating) {
            const QPoint at = w.mapFromGlobal(f->mapToGlobal(QPoint(0, 0)));
            p.drawPixmap(at, f->grab());
        }
    }
    shot.save(QString::fromLocal8Bit(dir) + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".png"));
    for (QWidget* f : floating)
        f->grab().save(QString::fromLocal8Bit(dir) + QLatin1Char('/') + QLatin1String(name) +
                       QStringLiteral("_window.png"));
}

} // namespace

class MainWindowScopesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        vantrelInitResources();
        if (!QFile::exists(kPhoto))
            QSKIP("test photos are not available");
    }

    void menuKeysShowSwitchAndHideTheScopes()
    {
        MainWindow w(AppTheme::styleSheet());
        w.resize(1400, 900);
        QVERIFY(w.loadFile(kPhoto));
        QVERIFY(settle(w));
        MVHistogramWindow* win = w.histogramWindow;
        QVERIFY(win && !win->isVisible());
        QCOMPARE(w.actionByText(QStringLiteral("Chrominance Chart"))->shortcut(), QKeySequence(QStringLiteral("5")));

        const char* names[] = {"luminance_histogram", "rgb_histogram", "luminance_waveform", "rgb_waveform",
                               "chrominance_chart"};
        for (int graph = 0; graph < 5; ++graph) {
            const int before = win->histogram->updateCount();
            QVERIFY(w.triggerActionByText(MVHistogramWidget::graphName(graph)));
            QVERIFY(win->isVisible());
            QCOMPARE(win->windowTitle(), MVHistogramWidget::graphName(graph));
            QCOMPARE(win->histogram->currentGraphType(), graph);
            QVERIFY2(QTest::qWaitFor([&] { return win->histogram->updateCount() > before; }, 60000),
                     names[graph]);
            QVERIFY(settle(w));
            QVERIFY(win->histogram->hasDataNow());
            {
                std::lock_guard<std::mutex> lock(win->histogram->mutex);
                if (graph == 0)
                    QVERIFY(!win->histogram->lumaBins.empty());
                else if (graph == 1)
                    QVERIFY(!win->histogram->redBins.empty());
                else
                    QVERIFY(!win->histogram->scopeImage.isNull());
            }
            QTest::qWait(20); // the queued repaint
            saveShot(w, names[graph], {win});
        }
        // The same key again hides the window.
        QVERIFY(w.triggerActionByText(QStringLiteral("Chrominance Chart")));
        QVERIFY(!win->isVisible());
        // Hidden scopes take nothing from further passes.
        const int count = win->histogram->updateCount();
        w.currentViewer()->requestProcessing();
        QVERIFY(settle(w));
        QCOMPARE(win->histogram->updateCount(), count);
    }

    void inspectorFollowsTheCursorAndPicks()
    {
        MainWindow w(AppTheme::styleSheet());
        w.resize(1400, 900);
        w.show();
        QVERIFY(w.loadFile(kPhoto));
        QVERIFY(settle(w));
        QVERIFY(!w.pixelInfoWindow->isVisible());
        QVERIFY(w.triggerActionByText(QStringLiteral("Show/Hide Pixel Inspector")));
        QVERIFY(w.pixelInfoWindow->isVisible());
        QCOMPARE(w.pixelInfoWindow->windowTitle(), QStringLiteral("Pixel Inspector"));

        MVMediaWidget* v = w.currentViewer();
        const QPoint at(int(v->drawX + v->drawWidth * 0.3), int(v->drawY + v->drawHeight * 0.6));
        QTest::mouseMove(v, at);
        QVERIFY(QTest::qWaitFor([&] { return w.pixelInfo->hasPixel(); }, 5000));
        const QImage shown = v->displayCopy();
        const QColor expected = shown.pixelColor(int((at.x() - v->drawX) / v->drawWidth * shown.width()),
                                                 int((at.y() - v->drawY) / v->drawHeight * shown.height()));
        QCOMPARE(w.pixelInfo->readoutText(0), QStringLiteral("R %1").arg(expected.red()));
        QCOMPARE(w.pixelInfo->readoutText(2), QStringLiteral("G %1").arg(expected.green()));
        QCOMPARE(w.pixelInfo->readoutText(4), QStringLiteral("B %1").arg(expected.blue()));

        // Clicks pick; the newest is first.
        QTest::mouseClick(v, Qt::LeftButton, Qt::NoModifier, at);
        QCOMPARE(w.pixelInfo->recentCount(), 1);
        QVERIFY(w.pixelInfo->recentText(0).contains(
            QStringLiteral("%1 %2 %3").arg(expected.red()).arg(expected.green()).arg(expected.blue())));
        const QPoint second(int(v->drawX + v->drawWidth * 0.7), int(v->drawY + v->drawHeight * 0.2));
        QTest::mouseMove(v, second);
        QTest::mouseClick(v, Qt::LeftButton, Qt::NoModifier, second);
        QCOMPARE(w.pixelInfo->recentCount(), 2);
        QTest::mouseMove(v, at);
        QTest::qWait(20);
        saveShot(w, "pixel_inspector", {w.pixelInfoWindow});

        // Off the picture the read-out clears.
        QTest::mouseMove(v, QPoint(int(v->drawX) - 5 > 0 ? int(v->drawX) - 5 : 2, 2));
        QVERIFY(QTest::qWaitFor([&] { return !w.pixelInfo->hasPixel(); }, 5000));
        QVERIFY(w.triggerActionByText(QStringLiteral("Show/Hide Pixel Inspector")));
        QVERIFY(!w.pixelInfoWindow->isVisible());
    }
};

QTEST_MAIN(MainWindowScopesTest)
#include "MainWindowScopesTest.moc"
