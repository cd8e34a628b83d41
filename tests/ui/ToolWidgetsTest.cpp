// The modal tools over a real viewer: crop frame drags through mouse events, the aspect and
// straighten controls, write-back on exit; spot heal clicks, Alt and wheel handling, undo order.
#include "core/ImageModVariableDataChoice.h"
#include "document/MVMediaWidget.h"
#include "mods/ImageModCrop.h"
#include "mods/ImageModExposure.h"
#include "ui/DevicePixelRatio.h"
#include "ui/MVListChooser.h"
#include "tools/MVToolWidgetCrop.h"
#include "tools/MVToolWidgetRetouch.h"

#include <QtGui/QWheelEvent>
#include <QtTest/QtTest>

#include <chrono>
#include <cmath>
#include <thread>
#include <vector>

namespace {

FlexImageFloat* flatImage(int w, int h, float v)
{
    auto* img = new FlexImageFloat(w, h, 3);
    for (int y = 0; y < h; ++y)
        std::fill(img->row(y), img->row(y) + w * 3, v);
    return img;
}

bool waitIdle(MVMediaWidget& w, int ms = 10000)
{
    QElapsedTimer t;
    t.start();
    while (w.isProcessing()) {
        if (t.elapsed() > ms)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    QCoreApplication::processEvents();
    return true;
}

std::vector<float> sourcePixels(MVMediaWidget& w)
{
    std::lock_guard<std::mutex> lock(w.sourceMutex);
    const FlexImageFloat& s = *w.sourceImage;
    return std::vector<float>(s.data, s.data + s.sampleCount());
}

float sourceAt(MVMediaWidget& w, int x, int y)
{
    std::lock_guard<std::mutex> lock(w.sourceMutex);
    return w.sourceImage->row(y)[x * w.sourceImage->channels];
}

// True when the widget took the event; an untaken wheel event goes on to the viewer.
bool wheel(QWidget& w, QPointF at, int delta, Qt::KeyboardModifiers mods)
{
    QWheelEvent e(at, QPointF(w.mapToGlobal(at.toPoint())), QPoint(), QPoint(0, delta), Qt::NoButton, mods,
                  Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&w, &e);
    return e.isAccepted();
}

void move(QWidget& w, QPoint at, Qt::MouseButtons buttons = Qt::NoButton)
{
    QMouseEvent e(QEvent::MouseMove, QPointF(at), w.mapToGlobal(at), Qt::NoButton, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(&w, &e);
}

// A viewer of 800 x 600 showing a 1200 x 800 flat picture.
struct Scene {
    MVMediaWidget viewer;
    explicit Scene(FlexImageFloat* image = flatImage(1200, 800, 120.0f))
    {
        viewer.resize(800, 600);
        viewer.show();
        viewer.setSource(image);
        viewer.layoutImage();
        waitIdle(viewer);
    }
};

} // namespace

class ToolWidgetsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { gDevicePixelRatio = 1.0f; }

    void cropToolFollowsThePictureAndDragsTheLeftEdge()
    {
        Scene s;
        MVToolWidgetCrop tool(&s.viewer);
        ImageModCrop crop;
        tool.beginEditing(&crop);
        tool.show();
        QCOMPARE(tool.size(), s.viewer.size());
        QCOMPARE(tool.imageWidth, s.viewer.drawWidth);
        const int left = int(tool.imageX), midY = int(tool.imageY + tool.imageHeight / 2);
        move(tool, QPoint(left + 3, midY));
        QVERIFY(tool.geometry.hitLeft);
        QTest::mousePress(&tool, Qt::LeftButton, Qt::NoModifier, QPoint(left + 3, midY));
        move(tool, QPoint(left + 3 + int(tool.imageWidth / 4), midY), Qt::LeftButton);
        QTest::mouseRelease(&tool, Qt::LeftButton, Qt::NoModifier, QPoint(left + 3 + int(tool.imageWidth / 4), midY));
        QVERIFY(std::abs(tool.geometry.leftInset - 0.25f) < 1e-3f);
        QCOMPARE(tool.cropPixels.left, int(tool.geometry.leftInset * 1200.0f));
        // Nothing reaches the document's crop before the end.
        QCOMPARE(crop.floatValue(1), 0.0f);
        tool.endEditing();
        QVERIFY(std::abs(crop.floatValue(1) - 0.25f) < 1e-3f);
    }

    void cropToolPassesUnusedPressesToTheViewer()
    {
        Scene s;
        MVToolWidgetCrop tool(&s.viewer);
        ImageModCrop crop;
        tool.beginEditing(&crop);
        tool.show();
        int emptyClicks = 0;
        connect(&s.viewer, &MVMediaWidget::emptyClickSignal, this, [&] { ++emptyClicks; });
        // Well inside the frame, which reaches the widget's edges only at the margin: inside drag.
        const QPoint centre(int(tool.imageX + tool.imageWidth / 2), int(tool.imageY + tool.imageHeight / 2));
        move(tool, centre);
        QVERIFY(tool.geometry.hitInside);
        // Far outside the frame: nothing hit, the press reaches the viewer.
        tool.geometry.leftInset = 0.5f;
        tool.geometry.rightInset = 0.3f;
        const QPoint outside(int(tool.imageX + tool.imageWidth * 0.2), centre.y());
        move(tool, outside);
        QVERIFY(!tool.geometry.anyHit());
        QTest::mousePress(&tool, Qt::LeftButton, Qt::NoModifier, outside);
        QCOMPARE(emptyClicks, 1);
        QVERIFY(!tool.geometry.buttonDown);
        QTest::mouseRelease(&tool, Qt::LeftButton, Qt::NoModifier, outside);
    }

    void cropToolAspectStraightenResetAndWriteBack()
    {
        Scene s;
        MVToolWidgetCrop tool(&s.viewer);
        ImageModCrop crop;
        std::vector<ImageMod*> sequence{&crop};
        ImageModExposure exposure;
        sequence.push_back(&exposure);
        tool.disableOverlappingMods(sequence);
        QCOMPARE(tool.disabled().size(), size_t(1));
        QVERIFY(!crop.enabled);
        QVERIFY(exposure.enabled);
        QVERIFY(!s.viewer.applyGeometry);
        tool.beginEditing(&crop);

        tool.chooseAspect(cropAspectRow(tool.cropCopy, "Square"));
        QCOMPARE(tool.geometry.listAspect, 1.0f);
        // A square in 1200 x 800: 200 pixels off each side (the read-out truncates 199.99998).
        QVERIFY(tool.cropPixels.left >= 199 && tool.cropPixels.left <= 200);
        QVERIFY(tool.cropPixels.right >= 199 && tool.cropPixels.right <= 200);
        QCOMPARE(tool.cropPixels.top, 0);
        tool.setCustomAspectText(QStringLiteral("3:1"));
        QCOMPARE(tool.geometry.customAspect, 3.0f);
        QCOMPARE(tool.aspectList->currentIndex(), int(ImageModAspectRatio::customIndex));
        QVERIFY(tool.cropPixels.top >= 199 && tool.cropPixels.top <= 200);

        tool.setStraighten(4.5f);
        QCOMPARE(s.viewer.viewRotation, 4.5f);
        QVERIFY(tool.refreshTimer.isActive());
        QCOMPARE(tool.cropCopy.straighten(), 4.5f);

        tool.geometry.leftInset = 0.1f;
        tool.controlChanged(tool.resetButton);
        QCOMPARE(tool.geometry.leftInset, 0.0f);
        QCOMPARE(tool.cropCopy.straighten(), 0.0f);
        QCOMPARE(s.viewer.viewRotation, 0.0f);
        QCOMPARE(tool.geometry.customAspect, 3.0f); // the aspect stays

        tool.setStraighten(-2.0f);
        tool.endEditing();
        tool.restoreDisabledMods();
        QVERIFY(crop.enabled);
        QVERIFY(s.viewer.applyGeometry);
        QCOMPARE(crop.straighten(), -2.0f);
        QCOMPARE(crop.aspectChoice->index, int(ImageModAspectRatio::customIndex));
        QCOMPARE(crop.aspect.floatValue(1), 3.0f);
        QCOMPARE(s.viewer.viewRotation, 0.0f); // the preview turn is the viewer's no longer

        bool exitAsked = false;
        connect(&tool, &MVToolWidget::requestToolExit, this, [&](MVToolWidget* t) { exitAsked = t == &tool; });
        tool.controlChanged(tool.doneButton);
        QVERIFY(exitAsked);
    }

    void cropToolParsesAspects()
    {
        QCOMPARE(MVToolWidgetCrop::parseAspect(QStringLiteral("1.5")), 1.5f);
        QCOMPARE(MVToolWidgetCrop::parseAspect(QStringLiteral(" 16:9 ")), 16.0f / 9.0f);
        QCOMPARE(MVToolWidgetCrop::parseAspect(QStringLiteral("4x5")), 0.8f);
        QCOMPARE(MVToolWidgetCrop::parseAspect(QStringLiteral("3:0")), 0.0f);
        QCOMPARE(MVToolWidgetCrop::parseAspect(QStringLiteral("wide")), 0.0f);
        QCOMPARE(MVToolWidgetCrop::parseAspect(QStringLiteral("-2")), 0.0f);
    }

    void spotHealClicksUndoInReverseOrderAndJoinTheDocument()
    {
        FlexImageFloat* img = flatImage(1200, 800, 120.0f);
        for (int y = 395; y <= 405; ++y)
            for (int x = 595; x <= 605; ++x)
                for (int c = 0; c < 3; ++c)
                    img->row(y)[x * 3 + c] = 10.0f;
        for (int y = 395; y <= 405; ++y)
            for (int x = 295; x <= 305; ++x)
                img->row(y)[x * 3] = 250.0f;
        Scene s(img);
        MVToolWidgetRetouch tool(&s.viewer);
        tool.show();
        tool.beginEditing(nullptr);
        QVERIFY(s.viewer.suspendRunner);
        const std::vector<float> original = sourcePixels(s.viewer);
        auto widgetAt = [&](double sx, double sy) {
            return QPoint(int(std::lround(tool.imageX + (sx + 0.5) / 1200.0 * tool.imageWidth)),
                          int(std::lround(tool.imageY + (sy + 0.5) / 800.0 * tool.imageHeight)));
        };
        tool.brushPixels = 20.0; // about 30 source pixels at this zoom
        QTest::mouseClick(&tool, Qt::LeftButton, Qt::NoModifier, widgetAt(600, 400));
        QVERIFY(tool.wasUsed);
        QVERIFY(std::abs(sourceAt(s.viewer, 600, 400) - 120.0f) <= 2.0f);
        const std::vector<float> afterFirst = sourcePixels(s.viewer);
        QTest::mouseClick(&tool, Qt::LeftButton, Qt::NoModifier, widgetAt(300, 400));
        QVERIFY(std::abs(sourceAt(s.viewer, 300, 400) - 120.0f) <= 2.0f);
        QCOMPARE(tool.toolUndo.undoCount(), 2);

        QVERIFY(tool.undoStep());
        QVERIFY(sourcePixels(s.viewer) == afterFirst);
        QVERIFY(tool.undoStep());
        QVERIFY(sourcePixels(s.viewer) == original);
        QVERIFY(!tool.undoStep());
        QVERIFY(tool.redoStep());
        QVERIFY(sourcePixels(s.viewer) == afterFirst);

        tool.endEditing();
        QVERIFY(!s.viewer.suspendRunner);
        UndoStack documentHistory;
        documentHistory.absorb(tool.toolUndo);
        QCOMPARE(documentHistory.undoCount(), 1);
        documentHistory.undo();
        QVERIFY(sourcePixels(s.viewer) == original);
        QVERIFY(waitIdle(s.viewer));
    }

    void spotHealAltClickAndOffPictureClicksChangeNothing()
    {
        FlexImageFloat* img = flatImage(1200, 800, 120.0f);
        img->row(400)[600 * 3] = 0.0f;
        Scene s(img);
        MVToolWidgetRetouch tool(&s.viewer);
        tool.show();
        tool.beginEditing(nullptr);
        const std::vector<float> before = sourcePixels(s.viewer);
        const QPoint spot(int(tool.imageX + tool.imageWidth / 2), int(tool.imageY + tool.imageHeight / 2));
        int emptyClicks = 0;
        connect(&s.viewer, &MVMediaWidget::emptyClickSignal, this, [&] { ++emptyClicks; });
        QTest::mouseClick(&tool, Qt::LeftButton, Qt::AltModifier, spot);
        QVERIFY(!tool.wasUsed);
        QCOMPARE(emptyClicks, 1); // the viewer got it, to pan
        QTest::mouseClick(&tool, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
        QVERIFY(sourcePixels(s.viewer) == before);
        QCOMPARE(tool.toolUndo.undoCount(), 0);
        tool.endEditing();
    }

    void spotHealWheelSizesTheBrushOnlyWithCtrl()
    {
        Scene s;
        MVToolWidgetRetouch tool(&s.viewer);
        tool.show();
        tool.brushPixels = 40.0;
        QVERIFY(wheel(tool, QPointF(400, 300), 120, Qt::ControlModifier));
        QCOMPARE(tool.brushPixels, 46.0);
        QVERIFY(wheel(tool, QPointF(400, 300), -1200, Qt::ControlModifier));
        QCOMPARE(tool.brushPixels, 3.0);
        // Without Ctrl the brush stays and the event is left for the viewer's zoom.
        QVERIFY(!wheel(tool, QPointF(400, 300), 120, Qt::NoModifier));
        QCOMPARE(tool.brushPixels, 3.0);
    }
};

QTEST_MAIN(ToolWidgetsTest)
#include "ToolWidgetsTest.moc"
