// Previews in the main window: the hover preview of a panel row (its switch, the rows it refuses,
// the picture it shows and the one it gives back), live list choices on the controls, and the
// quicklook chooser of presets (a thumbnail each, replace and append with one undo step each,
// folds kept in step with the panel).
#include "ResourceInit.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ModCatalogue.h"
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

const ModCatalogueContents& catalogue()
{
    static const ModCatalogueContents c = buildModCatalogue();
    return c;
}

std::unique_ptr<ImageMod> make(const char* name)
{
    std::unique_ptr<ImageMod> m = createMod(catalogue().mods, name);
    if (!m)
        qFatal("no mod named %s", name);
    return m;
}

QString photo(const char* name)
{
    return QStringLiteral(VANTREL_TESTDATA "/") + QLatin1String(name);
}

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

QStringList names(const TrayWidget& tray)
{
    QStringList out;
    for (int i = 0; i < tray.tileCount(); ++i)
        out << QString::fromStdString(tray.modAt(i)->name);
    return out;
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

    void hoverDoesNothingWithHoverPreviewsOff()
    {
        if (!QFileInfo::exists(photo("olympus_em1_forest_1920x1080.jpg")))
            QSKIP("test photo missing");
        Window win;
        QVERIFY(win.load(photo("olympus_em1_forest_1920x1080.jpg")));
        QAction* toggle = win.w.actionByText(QStringLiteral("Show Hover Previews"));
        QVERIFY(toggle && toggle->isCheckable());
        if (toggle->isChecked())
            toggle->trigger();
        QVERIFY(!win.w.toolPanel->hoverPreviews);
        const int passes = win.viewer().finishedPasses();
        const QImage before = win.viewer().displayCopy();
        std::unique_ptr<ImageMod> bw = make("Greyscale Channel Mixer");
        win.w.imageModHovered(bw.get());
        QTest::qWait(150);
        QVERIFY(!win.w.previewPanel || (!win.w.previewPanel->isActive() && win.w.previewPanel->isHidden()));
        QCOMPARE(win.viewer().finishedPasses(), passes);
        QCOMPARE(win.viewer().displayCopy(), before);
        toggle->trigger();
        QVERIFY(win.w.toolPanel->hoverPreviews);
    }

    void hoverOfAModThatCantBePreviewedLeavesThePicture()
    {
        if (!QFileInfo::exists(photo("olympus_em1_forest_1920x1080.jpg")))
            QSKIP("test photo missing");
        Window win;
        QVERIFY(win.load(photo("olympus_em1_forest_1920x1080.jpg")));
        const int passes = win.viewer().finishedPasses();
        const QImage before = win.viewer().displayCopy();
        std::unique_ptr<ImageMod> crop = make("Crop");
        QVERIFY(!crop->isPlainAdjustment());
        win.w.imageModHovered(crop.get());
        QTest::qWait(150);
        QVERIFY(!win.w.previewPanel || win.w.previewPanel->isHidden());
        QCOMPARE(win.viewer().finishedPasses(), passes);
        QCOMPARE(win.viewer().displayCopy(), before);

        // While a tool shows the whole picture, nothing is previewed and no chooser opens.
        win.w.startTool(0);
        QVERIFY(win.w.activeTool);
        std::unique_ptr<ImageMod> grey = make("Greyscale Channel Mixer");
        win.w.imageModHovered(grey.get());
        QTest::qWait(100);
        QVERIFY(!win.w.previewPanel || win.w.previewPanel->isHidden());
        QVERIFY(win.w.triggerActionByText(QStringLiteral("Quicklook Presets")));
        QTest::qWait(100);
        QVERIFY(!win.w.quicklook);
        win.w.toolRequestedExit(win.w.activeTool);
        QTRY_VERIFY(!win.w.activeTool);

        // Moving from a shown preview onto such a row ends the preview.
        std::unique_ptr<ImageMod> bw = make("Greyscale Channel Mixer");
        win.w.imageModHovered(bw.get());
        QVERIFY(win.previewAnswered());
        win.w.imageModHovered(crop.get());
        QVERIFY(win.w.previewPanel->isHidden());
        QVERIFY(!win.w.previewPanel->isActive());
    }

    void hoverShowsTheTileOverThePictureAndEndingItRestores()
    {
        if (!QFileInfo::exists(photo("olympus_em1_forest_1920x1080.jpg")))
            QSKIP("test photo missing");
        Window win;
        QVERIFY(win.load(photo("olympus_em1_forest_1920x1080.jpg")));
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
        if (!QFileInfo::exists(photo("olympus_em1_forest_1920x1080.jpg")))
            QSKIP("test photo missing");
        Window win;
        QVERIFY(win.load(photo("olympus_em1_forest_1920x1080.jpg")));
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
        if (!QFileInfo::exists(photo("olympus_em1_forest_1920x1080.jpg")))
            QSKIP("test photo missing");
        Window win;
        QVERIFY(win.load(photo("olympus_em1_forest_1920x1080.jpg")));
        win.tray().addMod(*make("Blur"));
        win.w.trayContentChanged();
        win.tray().setSelected(0);
        win.w.traySelectionChanged();
        ImageMod* blur = win.tray().modAt(0);
        const int32_t method = variableIndex(*blur, "Blur Method");
        QVERIFY(method >= 0);
        QCOMPARE(blur->choiceIndex(method), 0);
        blur->enabled = false;
        QVERIFY(win.w.controlColumn && win.w.controlColumn->mod() == blur);
        auto* chooser = qobject_cast<MVListChooser*>(win.w.controlColumn->controlForVariable(method));
        QVERIFY(chooser);
        const int undoBefore = win.tray().undoStack()->undoCount();

        chooser->showList();
        MVListChooserList* list = chooser->openList();
        QVERIFY(list);
        QMouseEvent move(QEvent::MouseMove, QPointF(20, 4 + MVListChooserList::rowHeight * 2 + 10), Qt::NoButton,
                         Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(list, &move);
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
        QApplication::sendEvent(list, &move);
        QCOMPARE(blur->choiceIndex(method), 2);
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(20, 4 + MVListChooserList::rowHeight + 10), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(list, &press);
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
        win.tray().addMod(*make("Blur"));
        win.w.trayContentChanged();
        win.tray().setSelected(0);
        win.w.traySelectionChanged();
        ImageMod* blur = win.tray().modAt(0);
        const int32_t method = variableIndex(*blur, "Blur Method");
        blur->enabled = false;
        win.w.toolPanel->hoverPreviews = false;
        auto* chooser = qobject_cast<MVListChooser*>(win.w.controlColumn->controlForVariable(method));
        QVERIFY(chooser);
        chooser->showList();
        QMouseEvent move(QEvent::MouseMove, QPointF(20, 4 + MVListChooserList::rowHeight + 10), Qt::NoButton,
                         Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(chooser->openList(), &move);
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
        if (!QFileInfo::exists(photo("olympus_em1_forest_1920x1080.jpg")))
            QSKIP("test photo missing");
        Window win;
        QVERIFY(win.load(photo("olympus_em1_forest_1920x1080.jpg")));
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
        if (!QFileInfo::exists(photo("olympus_em1_forest_1920x1080.jpg")))
            QSKIP("test photo missing");
        Window win;
        QVERIFY(win.load(photo("olympus_em1_forest_1920x1080.jpg")));
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
        // Writes pictures for a person to look at when VANTREL_SHOT_DIR is set.
        const QString sample = QFINDTESTDATA("../../resources/sample/sample.jpg");
        if (sample.isEmpty())
            QSKIP("sample photo missing");
        const QString dirName = QString::fromLocal8Bit(qgetenv("VANTREL_SHOT_DIR"));
        Window win;
        win.w.resize(1600, 1000);
        QVERIFY(win.load(sample));
        win.tray().addMod(*make("Vignette"));
        win.w.trayContentChanged();
        QVERIFY(win.settle());
        MVPanelItemListButton* row = nullptr;
        for (MVPanelItemListButton* r : win.w.toolPanel->listButtons(MVToolPanel::kPresetsTab, false))
            if (r->key == QStringLiteral("Cinematic/Teal and Amber"))
                row = r;
        QVERIFY(row);
        win.w.toolPanel->setCurrentTab(MVToolPanel::kPresetsTab);
        // The pointer on the row, as a person would hover it (a real display moves the cursor; the
        // offscreen one may not, and then the row's signal is given directly).
        QTest::mouseMove(row, row->rect().center());
        if (!QTest::qWaitFor([&win] { return win.w.previewPanel && win.w.previewPanel->isActive(); }, 1500))
            win.w.imageModHovered(row->templateMod());
        QVERIFY(win.previewAnswered());
        QTest::qWait(50);
        const QImage hover = win.w.grab().toImage();
        QVERIFY(!hover.isNull());
        // The preview covers the picture: the window shows it, not the viewer's own picture.
        const QRect over = win.w.previewPanel->geometry();
        QVERIFY(over.width() > 400 && over.height() > 300);
        if (!dirName.isEmpty())
            hover.save(dirName + QStringLiteral("/previews_hover.png"));
        win.w.imageModHovered(nullptr);

        QVERIFY(win.w.triggerActionByText(QStringLiteral("Quicklook Presets")));
        QTRY_VERIFY_WITH_TIMEOUT(win.w.quicklook, 20000);
        QTRY_VERIFY_WITH_TIMEOUT(win.w.quicklook->unfinishedCount() == 0, 60000);
        QTest::qWait(100);
        const QImage look = win.w.grab().toImage();
        QVERIFY(!look.isNull());
        if (!dirName.isEmpty())
            look.save(dirName + QStringLiteral("/previews_quicklook.png"));
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
        QElapsedTimer build;
        build.start();
        QTRY_VERIFY_WITH_TIMEOUT(win.w.previewBaseMatches(bound.width(), bound.height()), 20000);
        const qint64 baseReady = build.elapsed();
        std::unique_ptr<ImageMod> first = make("Greyscale Channel Mixer");
        std::unique_ptr<ImageMod> second = make("Vignette");
        std::unique_ptr<ImageMod> third = make("Exposure");
        QElapsedTimer t;
        t.start();
        win.w.imageModHovered(first.get());
        const qint64 call = t.elapsed();
        QVERIFY(win.previewAnswered());
        const qint64 firstShown = t.elapsed();
        qint64 worst = 0, worstCall = 0;
        for (int round = 0; round < 5; ++round) {
            for (ImageMod* m : {second.get(), third.get()}) {
                t.restart();
                win.w.imageModHovered(m);
                worstCall = std::max(worstCall, t.elapsed());
                QVERIFY(win.previewAnswered());
                worst = std::max(worst, t.elapsed());
            }
        }
        qInfo("24 MP photo: base ready %lld ms after the display settled; first hover %lld ms on the GUI "
              "thread, shown after %lld ms; later hovers at most %lld ms on the GUI thread, shown after at most "
              "%lld ms",
              baseReady, call, firstShown, worstCall, worst);
        // A stale base is made again off the GUI thread: the hover waits for it without blocking.
        win.viewer().previewBaseStale = true;
        t.restart();
        win.w.imageModHovered(first.get());
        const qint64 staleCall = t.elapsed();
        QTRY_VERIFY_WITH_TIMEOUT(win.w.previewBaseMatches(bound.width(), bound.height()), 20000);
        QVERIFY(win.previewAnswered());
        qInfo("24 MP photo, stale base: hover %lld ms on the GUI thread, shown after %lld ms", staleCall, t.elapsed());
        QVERIFY(staleCall < 100);
        // The GUI thread only hands over clones once the base stands.
        QVERIFY(worstCall < 100);
        win.w.imageModHovered(nullptr);
    }
};

QTEST_MAIN(MainWindowPreviewsTest)
#include "MainWindowPreviewsTest.moc"
