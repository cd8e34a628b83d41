// Previews in the main window: the hover preview of a panel row (its switch, the rows it refuses,
// the picture it shows and the one it gives back), live list choices on the controls, and the
// quicklook chooser of presets (a thumbnail each, replace and append with one undo step each,
// folds kept in step with the panel).
#include "ResourceInit.h"
#include "TestMods.h"
#include "core/ImageModVariableDataChoice.h"
#include "document/MVImageWithProcessing.h"
#include "document/MVMediaWidget.h"
#include "document/MVPreviewChooser.h"
#include "document/MVPreviewChooserItem.h"
#include "document/MVPreviewPanel.h"
#include "filters/FileFilter.h"
#include "ui/AppTheme.h"
#include "ui/MVControlColumn.h"
#include "ui/MVListChooser.h"
#include "ui/MVListChooserList.h"
#include "ui/MVPanelItemListButton.h"
#include "ui/MVToolPanel.h"
#include "ui/MainWindow.h"
#include "ui/TrayWidget.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtGui/QMouseEvent>
#include <QtTest/QtTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <cstdlib>

namespace {

bool isGrey(const QImage& img, int tolerance)
{
    for (int y = img.height() / 8; y < img.height(); y += std::max(1, img.height() / 8))
        for (int x = img.width() / 8; x < img.width(); x += std::max(1, img.width() / 8)) {
            const QRgb p = img.pixel(x, y);
            if (std::abs(qRed(p) - qGreen(p)) > tolerance || std::abs(qGreen(p) - qBlue(p)) > tolerance)
                return false;
        }
    return true;
}

// A mouse event over row of an open list.
void sendToRow(QWidget* list, QEvent::Type type, int row)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent e(type, QPointF(20, 4 + MVListChooserList::rowHeight * row + 10), button, button, Qt::NoModifier);
    QApplication::sendEvent(list, &e);
}

bool hasColour(const QImage& img)
{
    return !img.isNull() && !isGrey(img, 6);
}

int32_t variableIndex(const ImageMod& mod, const char* name)
{
    for (int32_t i = 0; i < mod.variableCount(); ++i)
        if (mod.variableAt(i)->name == name)
            return i;
    return -1;
}

struct Window {
    MainWindow w{AppTheme::styleSheet()};

    Window()
    {
        w.resize(1200, 800);
        w.show();
        if (!QTest::qWaitForWindowExposed(&w))
            qWarning("window not exposed");
        w.messageHook = [](const QString&, const QString&, const QStringList&) { return 0; };
    }
    TrayWidget& tray() { return *w.currentTray(); }
    MVMediaWidget& viewer() { return *w.currentViewer(); }
    bool load(const QString& path)
    {
        if (!w.loadFile(path))
            return false;
        return QTest::qWaitFor([this] { return w.displaySettled(); }, 20000);
    }
    bool settle() { return QTest::qWaitFor([this] { return w.displaySettled(); }, 20000); }
    // The preview panel has answered its newest request.
    bool previewAnswered()
    {
        MVPreviewPanel* p = w.previewPanel;
        return QTest::qWaitFor(
            [p] { return p && p->isVisible() && p->resultSerial() == p->requestSerial(); }, 20000);
    }
    // A selected Blur tile, switched off, and the list chooser of its method.
    MVListChooser* offBlurMethodChooser(int32_t& method)
    {
        tray().addMod(*make("Blur"));
        w.trayContentChanged();
        tray().setSelected(0);
        w.traySelectionChanged();
        ImageMod* blur = tray().modAt(0);
        method = variableIndex(*blur, "Blur Method");
        blur->enabled = false;
        return w.controlColumn ? qobject_cast<MVListChooser*>(w.controlColumn->controlForVariable(method)) : nullptr;
    }
    // The viewer's clone of the tray's first tile named name.
    int32_t viewerChoice(const char* name, int32_t index)
    {
        std::lock_guard<std::mutex> lock(viewer().stateMutex);
        for (const auto& m : viewer().mods)
            if (m->name == name)
                return m->choiceIndex(index);
        return -1;
    }
};

} // namespace

// A window with the forest photo loaded; the test skips without the photo.
#define OPEN_FOREST(win)                                                                                   \
    if (!QFileInfo::exists(photo("olympus_em1_forest_1920x1080.jpg")))                                    \
        QSKIP("test photo missing");                                                                      \
    Window win;                                                                                           \
    QVERIFY(win.load(photo("olympus_em1_forest_1920x1080.jpg")))

class MainWindowPreviewsTest : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;

private slots:
    void initTestCase()
    {
        vantrelInitResources();
        QVERIFY(dir.isValid());
        qputenv("XDG_DATA_HOME", (dir.path() + QStringLiteral("/data")).toUtf8());
    }

    void hoversThatMustNotPreviewLeaveThePicture()
    {
        OPEN_FOREST(win);
        const int passes = win.viewer().finishedPasses();
        const QImage before = win.viewer().displayCopy();
        auto untouched = [&] {
            QTest::qWait(150);
            return (!win.w.previewPanel || (!win.w.previewPanel->isActive() && win.w.previewPanel->isHidden())) &&
                   win.viewer().finishedPasses() == passes && win.viewer().displayCopy() == before;
        };
        // Hover previews switched off in the menu.
        QAction* toggle = win.w.actionByText(QStringLiteral("Show Hover Previews"));
        QVERIFY(toggle && toggle->isCheckable());
        if (toggle->isChecked())
            toggle->trigger();
        QVERIFY(!win.w.toolPanel->hoverPreviews);
        std::unique_ptr<ImageMod> grey = make("Greyscale Channel Mixer");
        win.w.imageModHovered(grey.get());
        QVERIFY(untouched());
        toggle->trigger();
        QVERIFY(win.w.toolPanel->hoverPreviews);

        // A tile that can't be previewed.
        std::unique_ptr<ImageMod> crop = make("Crop");
        QVERIFY(!crop->isPlainAdjustment());
        win.w.imageModHovered(crop.get());
        QVERIFY(untouched());

        // While a tool shows the whole picture, nothing is previewed and no chooser opens.
        win.w.startTool(0);
        QVERIFY(win.w.activeTool);
        win.w.imageModHovered(grey.get());
        QTest::qWait(100);
        QVERIFY(!win.w.previewPanel || win.w.previewPanel->isHidden());
        QVERIFY(win.w.triggerActionByText(QStringLiteral("Quicklook Presets")));
        QTest::qWait(100);
        QVERIFY(!win.w.quicklook);
        win.w.toolRequestedExit(win.w.activeTool);
        QTRY_VERIFY(!win.w.activeTool);

        // Moving from a shown preview onto a row that can't be previewed ends the preview.
        win.w.imageModHovered(grey.get());
        QVERIFY(win.previewAnswered());
        win.w.imageModHovered(crop.get());
        QVERIFY(win.w.previewPanel->isHidden());
        QVERIFY(!win.w.previewPanel->isActive());
    }

    void hoverShowsTheTileOverThePictureAndEndingItRestores()
    {
        OPEN_FOREST(win);
        const QImage before = win.viewer().displayCopy();
        QVERIFY(hasColour(before));

        std::unique_ptr<ImageMod> bw = make("Greyscale Channel Mixer");
        win.w.imageModHovered(bw.get());
        QVERIFY(win.previewAnswered());
        MVPreviewPanel& panel = *win.w.previewPanel;
        // Over the picture, the size of the viewer, fed by a base fitted into the viewer's pixels.
        QCOMPARE(panel.geometry(), QRect(win.viewer().mapTo(win.w.centralWidget(), QPoint(0, 0)), win.viewer().size()));
        const QSize bound = win.w.previewBaseBound();
        QVERIFY(win.w.previewBase.width <= bound.width() && win.w.previewBase.height <= bound.height());
        QVERIFY(win.w.previewBase.width == bound.width() || win.w.previewBase.height == bound.height());
        const QImage shown = panel.resultCopy();
        QCOMPARE(shown.size(), QSize(win.w.previewBase.width, win.w.previewBase.height));
        QVERIFY(isGrey(shown, 1));
        QCOMPARE(panel.shownLabel(), QString::fromStdString(bw->displayName));
        // A preset is named by its file.
        for (MVPanelItemListButton* row : win.w.toolPanel->listButtons(MVToolPanel::kPresetsTab, false))
            if (row->key == QStringLiteral("Film/Golden Stock")) {
                win.w.imageModHovered(row->templateMod());
                QVERIFY(win.previewAnswered());
                QCOMPARE(panel.shownLabel(), QStringLiteral("Golden Stock"));
            }
        // The tray and the viewer are untouched by a hover.
        QCOMPARE(win.tray().tileCount(), 0);
        QCOMPARE(win.viewer().displayCopy(), before);

        // The next row reuses the base; a stale one is made again, off the GUI thread.
        const int generation = win.w.previewBaseGeneration;
        QVERIFY(!win.w.refreshPreviewBase(bound.width(), bound.height()));
        QCOMPARE(win.w.previewBaseGeneration, generation);
        win.viewer().previewBaseStale = true;
        QVERIFY(!win.w.previewBaseMatches(bound.width(), bound.height()));
        QTRY_VERIFY(win.w.previewBaseMatches(bound.width(), bound.height()));
        QCOMPARE(win.w.previewBaseGeneration, generation + 1);
        QVERIFY(!win.viewer().previewBaseStale);
        // A crop makes it stale too.
        std::unique_ptr<ImageMod> crop = make("Crop");
        crop->variableAt(1)->setFloatValue(0.25f);
        win.tray().setHiddenMod(std::move(crop));
        QVERIFY(!win.w.previewBaseMatches(bound.width(), bound.height()));
        QTRY_VERIFY(win.w.previewBaseMatches(bound.width(), bound.height()));
        QCOMPARE(win.w.previewBaseGeneration, generation + 2);
        win.tray().clearHiddenMods();

        win.w.imageModHovered(nullptr);
        QVERIFY(panel.isHidden());
        QVERIFY(win.settle());
        QCOMPARE(win.viewer().displayCopy(), before);
    }

    void hoverOfAPresetShowsThePresetInsteadOfTheTiles()
    {
        OPEN_FOREST(win);
        // A grey tray: a colour preset replacing it must bring the colour back in the preview.
        win.tray().addMod(*make("Greyscale Channel Mixer"));
        win.w.trayContentChanged();
        QVERIFY(win.settle());
        QVERIFY(isGrey(win.viewer().displayCopy(), 1));
        MVPanelItemListButton* colourPreset = nullptr;
        for (MVPanelItemListButton* row : win.w.toolPanel->listButtons(MVToolPanel::kPresetsTab, false))
            if (row->key.startsWith(QStringLiteral("Landscape/")))
                colourPreset = row;
        QVERIFY(colourPreset);
        win.w.imageModHovered(colourPreset->templateMod());
        QVERIFY(win.previewAnswered());
        QVERIFY(hasColour(win.w.previewPanel->resultCopy()));
        // A click on the row ends the preview: the tray now shows the real thing.
        emit win.w.toolPanel->modButtonClicked(colourPreset, false, false);
        QVERIFY(win.w.previewPanel->isHidden());
        QVERIFY(win.tray().tileCount() > 0);
        QVERIFY(!names(win.tray()).contains(QStringLiteral("Greyscale Channel Mixer")));
    }

    void listHoverSwitchesTheTileOnAndActsLiveWithoutUndo()
    {
        OPEN_FOREST(win);
        int32_t method = -1;
        MVListChooser* chooser = win.offBlurMethodChooser(method);
        ImageMod* blur = win.tray().modAt(0);
        QVERIFY(chooser && method >= 0);
        QCOMPARE(blur->choiceIndex(method), 0);
        QCOMPARE(win.w.controlColumn->mod(), blur);
        const int undoBefore = win.tray().undoStack()->undoCount();

        chooser->showList();
        MVListChooserList* list = chooser->openList();
        QVERIFY(list);
        sendToRow(list, QEvent::MouseMove, 2);
        QCOMPARE(chooser->hoveredIndex(), 2);
        QVERIFY(blur->enabled);
        QCOMPARE(blur->choiceIndex(method), 2);
        QVERIFY(win.tray().modified);
        QCOMPARE(win.viewerChoice("Blur", method), 2);
        QCOMPARE(win.tray().undoStack()->undoCount(), undoBefore);

        // Leaving without a choice gives the value back.
        QTest::keyClick(list, Qt::Key_Escape);
        QTRY_VERIFY(!chooser->openList());
        QCOMPARE(blur->choiceIndex(method), 0);
        QCOMPARE(win.viewerChoice("Blur", method), 0);
        QCOMPARE(win.tray().undoStack()->undoCount(), undoBefore);

        // A choice after a hover makes one undo step, which goes back to the value before it.
        chooser->showList();
        list = chooser->openList();
        sendToRow(list, QEvent::MouseMove, 2);
        QCOMPARE(blur->choiceIndex(method), 2);
        sendToRow(list, QEvent::MouseButtonPress, 1);
        QTRY_VERIFY(!chooser->openList());
        blur = win.tray().modAt(0);
        QCOMPARE(blur->choiceIndex(method), 1);
        QCOMPARE(win.tray().undoStack()->undoCount(), undoBefore + 1);
        win.tray().undo();
        QCOMPARE(win.tray().modAt(0)->choiceIndex(method), 0);
    }

    void listHoverIsOffWithHoverPreviews()
    {
        Window win;
        int32_t method = -1;
        MVListChooser* chooser = win.offBlurMethodChooser(method);
        QVERIFY(chooser);
        ImageMod* blur = win.tray().modAt(0);
        win.w.toolPanel->hoverPreviews = false;
        chooser->showList();
        sendToRow(chooser->openList(), QEvent::MouseMove, 1);
        QCOMPARE(chooser->hoveredIndex(), 1);
        QVERIFY(!blur->enabled);
        QCOMPARE(blur->choiceIndex(method), 0);
        QTest::keyClick(chooser->openList(), Qt::Key_Escape);
    }

    void quicklookHasAThumbnailForEveryPresetRow()
    {
        if (!QFileInfo::exists(photo("olympus_em1_forest_1920x1080.jpg")))
            QSKIP("test photo missing");
        Window win;
        // Without a photo there is nothing to look through.
        QVERIFY(win.w.triggerActionByText(QStringLiteral("Quicklook Presets")));
        QVERIFY(!win.w.quicklook);

        QVERIFY(win.load(photo("olympus_em1_forest_1920x1080.jpg")));
        QVERIFY(win.w.triggerActionByText(QStringLiteral("Quicklook Presets")));
        QTRY_VERIFY_WITH_TIMEOUT(win.w.quicklook, 20000);
        MVPreviewChooser* chooser = win.w.quicklook;
        QVERIFY(chooser && chooser->isVisible() && !chooser->isAppendMode());
        QTRY_VERIFY(chooser->hasFocus());
        const std::vector<MVPanelItemListButton*> rows = win.w.toolPanel->listButtons(MVToolPanel::kPresetsTab, true);
        QVERIFY(rows.size() >= 20);
        QCOMPARE(chooser->thumbnailCount(), int(rows.size()));
        const MVToolPanel::Tab* tab = win.w.toolPanel->tab(MVToolPanel::kPresetsTab);
        QCOMPARE(chooser->sectionCount(), int(tab->items.size() - rows.size()));
        // Names as the panel shows them; an empty section shows no header.
        for (int i = 0; i < chooser->sectionCount(); ++i) {
            QVERIFY(win.w.toolPanel->header(MVToolPanel::kPresetsTab, chooser->sectionName(i)));
            if (chooser->sectionName(i) == QStringLiteral("Black & White"))
                QVERIFY(chooser->sectionButton(i)->text().contains(QStringLiteral("Black && White")));
        }
        // It covers the picture area and leaves the panel in sight.
        QCOMPARE(chooser->geometry().right(), win.w.toolPanel->geometry().left() - 1);

        QTRY_VERIFY_WITH_TIMEOUT(chooser->unfinishedCount() == 0, 60000);
        chooser->waitForThumbnails();
        std::vector<QImage> pictures;
        for (int i = 0; i < chooser->thumbnailCount(); ++i) {
            MVPreviewChooserItem* cell = chooser->item(i);
            const QImage img = cell->thumbnail()->resultCopy();
            QVERIFY2(!img.isNull(), qPrintable(cell->name()));
            QVERIFY(img.width() <= MVPreviewChooserItem::kThumbWidth * 2);
            QVERIFY(img.height() <= MVPreviewChooserItem::kThumbHeight * 2);
            if (cell->name() == QStringLiteral("Classic Silver"))
                QVERIFY(isGrey(img, 2));
            if (cell->name() == QStringLiteral("Clear Morning"))
                QVERIFY(hasColour(img));
            pictures.push_back(img);
        }
        // Each thumbnail runs its own preset: no two presets of one section look the same.
        int distinct = 0;
        for (size_t i = 0; i + 1 < pictures.size(); ++i)
            if (pictures[i] != pictures[i + 1])
                ++distinct;
        QVERIFY(distinct >= int(pictures.size()) - 3);

        // Escape leaves without a change.
        const int undoBefore = win.tray().undoStack()->undoCount();
        QTest::keyClick(chooser, Qt::Key_Escape);
        QTRY_VERIFY(!win.w.quicklook);
        QCOMPARE(win.tray().undoStack()->undoCount(), undoBefore);
        QCOMPARE(win.tray().tileCount(), 0);
    }

    void choosingAPresetReplacesOrAppendsWithOneUndoStep()
    {
        OPEN_FOREST(win);
        win.tray().addMod(*make("Vignette"));
        win.w.trayContentChanged();
        const int undo0 = win.tray().undoStack()->undoCount();

        // Replace: the preset's tiles take the tray's place.
        QVERIFY(win.w.triggerActionByText(QStringLiteral("Quicklook Presets")));
        QTRY_VERIFY_WITH_TIMEOUT(win.w.quicklook, 20000);
        MVPreviewChooser* chooser = win.w.quicklook;
        QVERIFY(chooser);
        // The last preset without a vignette of its own, so replacing shows.
        MVPreviewChooserItem* cell = nullptr;
        const FileFilter* preset = nullptr;
        QStringList expected;
        QString presetName;
        for (int i = chooser->thumbnailCount() - 1; i >= 0 && !cell; --i) {
            const auto* p = dynamic_cast<const FileFilter*>(chooser->item(i)->preset());
            QStringList kids;
            if (p)
                for (const auto& c : p->children)
                    kids << QString::fromStdString(c->name);
            if (p && !kids.isEmpty() && !kids.contains(QStringLiteral("Vignette"))) {
                cell = chooser->item(i);
                preset = p;
                // The chooser and its presets are gone once a cell is clicked: keep the name.
                presetName = QString::fromStdString(p->name);
                expected = kids;
            }
        }
        QVERIFY(cell && preset);
        chooser->waitForThumbnails();
        QTest::mouseClick(cell, Qt::LeftButton, Qt::NoModifier, cell->rect().center());
        QTRY_VERIFY(!win.w.quicklook);
        QStringList got = names(win.tray());
        got.sort();
        expected.sort();
        QCOMPARE(got, expected);
        QCOMPARE(win.tray().undoStack()->undoCount(), undo0 + 1);
        QCOMPARE(win.tray().filterName, presetName);

        win.tray().undo();
        QCOMPARE(names(win.tray()), QStringList({"Vignette"}));

        // Append: the tiles stay and the preset's follow.
        QVERIFY(win.w.triggerActionByText(QStringLiteral("Quicklook Presets (Append)")));
        QTRY_VERIFY_WITH_TIMEOUT(win.w.quicklook, 20000);
        chooser = win.w.quicklook;
        QVERIFY(chooser && chooser->isAppendMode());
        cell = chooser->item(0);
        const int children = int(dynamic_cast<const FileFilter*>(cell->preset())->children.size());
        const int undo1 = win.tray().undoStack()->undoCount();
        chooser->waitForThumbnails();
        QTest::mouseClick(cell, Qt::LeftButton, Qt::NoModifier, cell->rect().center());
        QTRY_VERIFY(!win.w.quicklook);
        QCOMPARE(win.tray().tileCount(), 1 + children);
        QVERIFY(names(win.tray()).contains(QStringLiteral("Vignette")));
        QCOMPARE(win.tray().undoStack()->undoCount(), undo1 + 1);
        win.tray().undo();
        QCOMPARE(names(win.tray()), QStringList({"Vignette"}));
    }

    void foldingASectionInTheChooserFoldsItInThePanel()
    {
        OPEN_FOREST(win);
        QVERIFY(win.w.triggerActionByText(QStringLiteral("Quicklook Presets")));
        QTRY_VERIFY_WITH_TIMEOUT(win.w.quicklook, 20000);
        MVPreviewChooser* chooser = win.w.quicklook;
        QVERIFY(chooser);
        int section = -1;
        for (int i = 0; i < chooser->sectionCount(); ++i)
            if (chooser->sectionName(i) == QStringLiteral("Film"))
                section = i;
        QVERIFY(section >= 0);
        const QString name = chooser->sectionName(section);
        QVERIFY(!chooser->isSectionCollapsed(section));
        QVERIFY(!win.w.toolPanel->isSectionCollapsed(name));
        QSignalSpy folds(chooser, &MVPreviewChooser::sectionEnabled);
        chooser->sectionButton(section)->click();
        QVERIFY(chooser->isSectionCollapsed(section));
        QVERIFY(win.w.toolPanel->isSectionCollapsed(name));
        QCOMPARE(folds.count(), 1);
        QCOMPARE(folds[0][0].toInt(), int(MVToolPanel::kPresetsTab));
        QCOMPARE(folds[0][2].toBool(), false);
        for (int i = 0; i < chooser->thumbnailCount(); ++i)
            if (chooser->item(i)->toolTip() == QStringLiteral("Golden Stock"))
                QVERIFY(chooser->item(i)->isHidden());
        chooser->sectionButton(section)->click();
        QVERIFY(!win.w.toolPanel->isSectionCollapsed(name));
        // The panel's own folds come along when the chooser opens.
        win.w.toolPanel->headerToggled(win.w.toolPanel->header(MVToolPanel::kPresetsTab, name));
        chooser->closeButton()->click();
        QTRY_VERIFY(!win.w.quicklook);
        QVERIFY(win.w.triggerActionByText(QStringLiteral("Quicklook Presets")));
        QTRY_VERIFY_WITH_TIMEOUT(win.w.quicklook, 20000);
        QVERIFY(win.w.quicklook->isSectionCollapsed(section));
        win.w.quicklook->closeButtonPressed();
        win.w.toolPanel->headerToggled(win.w.toolPanel->header(MVToolPanel::kPresetsTab, name));
    }

    void picturesOfAHoverAndTheQuicklook()
    {
        // Pictures for a person to look at.
        const QString dirName = QString::fromLocal8Bit(qgetenv("VANTREL_SHOT_DIR"));
        const QString sample = QFINDTESTDATA("../../resources/sample/sample.jpg");
        if (dirName.isEmpty() || sample.isEmpty())
            QSKIP("VANTREL_SHOT_DIR is not set or the sample photo is missing");
        Window win;
        win.w.resize(1600, 1000);
        QVERIFY(win.load(sample));
        for (MVPanelItemListButton* r : win.w.toolPanel->listButtons(MVToolPanel::kPresetsTab, false))
            if (r->key == QStringLiteral("Cinematic/Teal and Amber"))
                win.w.imageModHovered(r->templateMod());
        QVERIFY(win.previewAnswered());
        win.w.grab().save(dirName + QStringLiteral("/previews_hover.png"));
        win.w.imageModHovered(nullptr);
        QVERIFY(win.w.triggerActionByText(QStringLiteral("Quicklook Presets")));
        QTRY_VERIFY_WITH_TIMEOUT(win.w.quicklook, 20000);
        QTRY_VERIFY_WITH_TIMEOUT(win.w.quicklook->unfinishedCount() == 0, 60000);
        win.w.grab().save(dirName + QStringLiteral("/previews_quicklook.png"));
        win.w.quicklook->closeButtonPressed();
    }

    void hoverLatencyOnALargePhoto()
    {
        if (!QFileInfo::exists(photo("nikon_d5300_6000x4000.jpg")))
            QSKIP("24 MP test photo missing");
        Window win;
        QVERIFY(win.load(photo("nikon_d5300_6000x4000.jpg")));
        // The base of a new photo is made on a thread while the viewer is idle.
        const QSize bound = win.w.previewBaseBound();
        QTRY_VERIFY_WITH_TIMEOUT(win.w.previewBaseMatches(bound.width(), bound.height()), 20000);
        std::unique_ptr<ImageMod> mods[] = {make("Greyscale Channel Mixer"), make("Vignette"), make("Exposure")};
        win.w.imageModHovered(mods[0].get());
        QVERIFY(win.previewAnswered());
        // Once the base stands, the GUI thread only hands over clones.
        QElapsedTimer t;
        qint64 worstCall = 0;
        for (int round = 0; round < 5; ++round)
            for (int i = 1; i < 3; ++i) {
                t.start();
                win.w.imageModHovered(mods[i].get());
                worstCall = std::max(worstCall, t.elapsed());
                QVERIFY(win.previewAnswered());
            }
        // A stale base is made again off the GUI thread: the hover waits for it without blocking.
        win.viewer().previewBaseStale = true;
        t.start();
        win.w.imageModHovered(mods[0].get());
        const qint64 staleCall = t.elapsed();
        QTRY_VERIFY_WITH_TIMEOUT(win.w.previewBaseMatches(bound.width(), bound.height()), 20000);
        QVERIFY(win.previewAnswered());
        qInfo("24 MP photo: hovers at most %lld ms on the GUI thread, %lld ms with a stale base", worstCall, staleCall);
        QVERIFY(worstCall < 100);
        QVERIFY(staleCall < 100);
        win.w.imageModHovered(nullptr);
    }
};

QTEST_MAIN(MainWindowPreviewsTest)
#include "MainWindowPreviewsTest.moc"
