// The tools as the main window runs them: refusals without a photo, the crop's hand-over to the
// document with one undo step, spot heal steps joining the document's history, and quarter turns.
#include "ResourceInit.h"
#include "document/MVMediaWidget.h"
#include "core/ImageModVariableDataChoice.h"
#include "mods/ImageModAspectRatio.h"
#include "core/ImageModVariableDataPixel.h"
#include "mods/ImageModCrop.h"
#include "mods/ImageModVignette.h"
#include "tools/MVPixelChooserControl.h"
#include "ui/AppTheme.h"
#include "ui/MVPushButton.h"
#include "tools/MVToolWidgetCrop.h"
#include "tools/MVToolWidgetRetouch.h"
#include "ui/MainWindow.h"
#include "ui/TrayWidget.h"

#include <QtCore/QFile>
#include <QtTest/QtTest>

namespace {

const QString kPhoto = QStringLiteral(VANTREL_TESTDATA "/olympus_em1_forest_1920x1080.jpg");

bool settle(MainWindow& w)
{
    return QTest::qWaitFor([&w] { return w.displaySettled(); }, 15000);
}

float sourceAt(MVMediaWidget* v, int x, int y)
{
    std::lock_guard<std::mutex> lock(v->sourceMutex);
    return v->sourceImage->row(y)[x * v->sourceImage->channels];
}

QSize sourceSize(MVMediaWidget* v)
{
    std::lock_guard<std::mutex> lock(v->sourceMutex);
    return QSize(v->sourceImage->width, v->sourceImage->height);
}

} // namespace

// The window every case starts from: the test photo loaded and its first pass on screen.
static bool openPhoto(MainWindow& w)
{
    w.resize(1200, 800);
    return w.loadFile(kPhoto) && settle(w);
}

class MainWindowToolsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        vantrelInitResources();
        if (!QFile::exists(kPhoto))
            QSKIP("test photos are not available");
    }

    void toolsRefuseWithoutAPhoto()
    {
        MainWindow w(AppTheme::styleSheet());
        QStringList seen;
        w.messageHook = [&](const QString& title, const QString& text, const QStringList& buttons) {
            seen << title << text << buttons;
            return 0;
        };
        w.startTool(1);
        QCOMPARE(seen, (QStringList{"No Media Loaded", "No media is currently loaded.", "OK"}));
        QVERIFY(!w.activeTool);
        seen.clear();
        QVERIFY(w.triggerActionByText(QStringLiteral("Crop/Straighten")));
        QCOMPARE(seen.value(0), QStringLiteral("No Media Loaded"));
        QVERIFY(!w.activeTool);
        w.startTool(7); // unknown tools are ignored
        QVERIFY(!w.activeTool);
    }

    void cropIsHandedToTheDocumentAsOneUndoStep()
    {
        MainWindow w(AppTheme::styleSheet());
        QVERIFY(openPhoto(w));
        TrayWidget* tray = w.currentTray();
        QVERIFY(tray);
        MVMediaWidget* viewer = w.currentViewer();
        QCOMPARE(viewer->outputPixelSize(), QSize(1920, 1080));

        QVERIFY(w.triggerActionByText(QStringLiteral("Crop/Straighten")));
        auto* tool = qobject_cast<MVToolWidgetCrop*>(w.activeTool);
        QVERIFY(tool);
        QVERIFY(!viewer->applyGeometry);
        tool->geometry.leftInset = 0.25f;
        tool->applyCropState();
        // Enter ends the tool as Done does.
        QTest::keyClick(&w, Qt::Key_Return);
        QVERIFY(!w.activeTool);
        QVERIFY(viewer->applyGeometry);
        QVERIFY(tray->hasHiddenModWithTag(0));
        QCOMPARE(viewer->outputPixelSize(), QSize(1440, 1080));
        QVERIFY(settle(w));

        // Back in, out again without a change: no new undo step.
        const int steps = tray->undoStack()->undoCount();
        w.startTool(0);
        tool = qobject_cast<MVToolWidgetCrop*>(w.activeTool);
        QVERIFY(tool);
        QCOMPARE(tool->geometry.leftInset, 0.25f); // it reads the document's crop
        tool->controlChanged(tool->doneButton);
        QVERIFY(!w.activeTool);
        QCOMPARE(tray->undoStack()->undoCount(), steps);

        QVERIFY(w.triggerActionByText(QStringLiteral("Undo")));
        QVERIFY(!tray->hasHiddenModWithTag(0));
        QCOMPARE(viewer->outputPixelSize(), QSize(1920, 1080));
        QVERIFY(settle(w));
    }

    void spotHealStepsJoinTheDocumentsHistory()
    {
        MainWindow w(AppTheme::styleSheet());
        QVERIFY(openPhoto(w));
        TrayWidget* tray = w.currentTray();
        MVMediaWidget* viewer = w.currentViewer();
        w.startTool(1);
        auto* tool = qobject_cast<MVToolWidgetRetouch*>(w.activeTool);
        QVERIFY(tool);
        QVERIFY(viewer->suspendRunner);

        const float before = sourceAt(viewer, 960, 540);
        // Find a spot the heal visibly changes: the forest has detail everywhere.
        tool->brushPixels = 30.0;
        const QPointF centre(tool->imageX + tool->imageWidth * (960.5 / 1920.0),
                             tool->imageY + tool->imageHeight * (540.5 / 1080.0));
        QVERIFY(tool->healAt(centre));
        const float healed = sourceAt(viewer, 960, 540);
        QVERIFY(healed != before);
        QCOMPARE(tool->toolUndo.undoCount(), 1);

        // Undo while the tool runs is the tool's.
        const int documentSteps = tray->undoStack()->undoCount();
        QVERIFY(w.triggerActionByText(QStringLiteral("Undo")));
        QCOMPARE(sourceAt(viewer, 960, 540), before);
        QCOMPARE(tray->undoStack()->undoCount(), documentSteps);
        QVERIFY(w.triggerActionByText(QStringLiteral("Redo")));
        QCOMPARE(sourceAt(viewer, 960, 540), healed);

        tool->controlChanged(tool->doneButton);
        QVERIFY(!w.activeTool);
        QVERIFY(!viewer->suspendRunner);
        QCOMPARE(tray->undoStack()->undoCount(), documentSteps + 1);
        QVERIFY(w.triggerActionByText(QStringLiteral("Undo")));
        QCOMPARE(sourceAt(viewer, 960, 540), before);
        QVERIFY(settle(w));
    }

    void quarterTurnsAreUndoableAndCarryTheCrop()
    {
        MainWindow w(AppTheme::styleSheet());
        QVERIFY(openPhoto(w));
        TrayWidget* tray = w.currentTray();
        MVMediaWidget* viewer = w.currentViewer();
        const float corner = sourceAt(viewer, 0, 1079); // bottom-left comes to the top-left

        auto crop = std::make_unique<ImageModCrop>();
        crop->variableAt(1)->asFloat()->value = 0.1f; // left
        ImageMod* held = crop.get();
        tray->setHiddenMod(std::move(crop));

        QVERIFY(w.triggerActionByText(QStringLiteral("Rotate Right")));
        QCOMPARE(sourceSize(viewer), QSize(1080, 1920));
        QCOMPARE(sourceAt(viewer, 0, 0), corner);
        QCOMPARE(held->floatValue(3), 0.1f); // the left cut is now at the top
        QCOMPARE(held->floatValue(1), 0.0f);
        QVERIFY(settle(w));

        QVERIFY(w.triggerActionByText(QStringLiteral("Undo")));
        QCOMPARE(sourceSize(viewer), QSize(1920, 1080));
        QCOMPARE(held->floatValue(1), 0.1f);
        QVERIFY(w.triggerActionByText(QStringLiteral("Rotate Left")));
        QCOMPARE(sourceSize(viewer), QSize(1080, 1920));
        QVERIFY(settle(w));
    }

    void sizeTileLocksTheAspectAndRestsWhileTheToolRuns()
    {
        MainWindow w(AppTheme::styleSheet());
        QVERIFY(openPhoto(w));
        TrayWidget* tray = w.currentTray();
        ImageModAspectRatio aspect;
        aspect.variableAt(0)->asChoice()->index = aspect.variableAt(0)->asChoice()->indexOfLabel("Square");
        QVERIFY(tray->addMod(aspect) >= 0);
        w.trayContentChanged();
        ImageMod* tile = tray->modAt(0);
        QVERIFY(tile && tile->enabled);

        w.startTool(0);
        auto* tool = qobject_cast<MVToolWidgetCrop*>(w.activeTool);
        QVERIFY(tool);
        QCOMPARE(tool->geometry.customAspect, 1.0f);
        QVERIFY(tool->geometry.allowSwapAspect);
        QVERIFY(!tile->enabled); // the tool shows the whole picture
        QCOMPARE(w.currentViewer()->outputPixelSize(), QSize(1920, 1080));
        tool->controlChanged(tool->doneButton);
        QVERIFY(tile->enabled);
        QVERIFY(settle(w));
    }

    void selectedTileGetsItsOnCanvasControl()
    {
        MainWindow w(AppTheme::styleSheet());
        QVERIFY(openPhoto(w));
        TrayWidget* tray = w.currentTray();
        ImageModVignette vignette;
        QVERIFY(tray->addMod(vignette) >= 0);
        w.trayContentChanged();
        tray->setSelected(0);
        w.traySelectionChanged();
        QCOMPARE(w.nodeControls.size(), size_t(1));
        auto* handle = qobject_cast<MVPixelChooserControl*>(w.nodeControls[0]);
        QVERIFY(handle);
        QCOMPARE(handle->parentWidget(), static_cast<QWidget*>(w.currentViewer()));
        QCOMPARE(handle->documentWidth, 1920);

        // A click on the picture puts the centre there, as one undo step.
        const int steps = tray->undoStack()->undoCount();
        const QPoint at(int(handle->imageX + handle->imageWidth * 0.25), int(handle->imageY + handle->imageHeight * 0.5));
        QTest::mouseClick(handle, Qt::LeftButton, Qt::NoModifier, at);
        const ImageModVariableDataPixel* centre = tray->modAt(0)->pixelAt(3);
        QVERIFY(centre && !centre->points.empty());
        QVERIFY(std::abs(centre->points[0].x - 480.0f) < 4.0f);
        QVERIFY(std::abs(centre->points[0].y - 540.0f) < 4.0f);
        QCOMPARE(tray->undoStack()->undoCount(), steps + 1);
        QVERIFY(settle(w));

        // A tool takes the picture: the handle goes.
        w.startTool(0);
        QVERIFY(w.nodeControls.empty());
        w.toolRequestedExit(w.activeTool);
        QVERIFY(settle(w));
    }

    void loadingAnotherPhotoEndsTheTool()
    {
        MainWindow w(AppTheme::styleSheet());
        QVERIFY(openPhoto(w));
        w.startTool(1);
        QVERIFY(w.activeTool);
        QVERIFY(w.loadFile(kPhoto));
        QVERIFY(!w.activeTool);
        QVERIFY(!w.currentViewer()->suspendRunner);
        QVERIFY(settle(w));
    }
};

QTEST_MAIN(MainWindowToolsTest)
#include "MainWindowToolsTest.moc"
