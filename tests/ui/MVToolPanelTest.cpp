// The tool panel as the user meets it: the catalogue's sections in order, folding sections that
// stay folded, stars mirrored into "Starred", deleting the user's own presets, each tab's scroll
// place, hover and click rules; and the main window stepping through the presets.
#include "ResourceInit.h"
#include "core/ModCatalogue.h"
#include "filters/FileFilter.h"
#include "filters/MultiData.h"
#include "filters/PreferenceKeys.h"
#include "filters/PresetLibrary.h"
#include "ui/MVPanelItemBigButton.h"
#include "ui/MVPanelItemHeader.h"
#include "ui/MVPanelItemListButton.h"
#include "ui/MVScroller.h"
#include "ui/MVToolPanel.h"
#include "ui/MVToolPanelContent.h"
#include "ui/AppTheme.h"
#include "ui/MainWindow.h"
#include "ui/TrayWidget.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>

#include <memory>

Q_DECLARE_METATYPE(ImageMod*)
Q_DECLARE_METATYPE(MVPanelItemListButton*)

namespace {

QStringList fromStd(const std::vector<std::string>& v)
{
    QStringList out;
    for (const std::string& s : v)
        out << QString::fromStdString(s);
    return out;
}

void saveShot(QWidget& w, const char* name)
{
    const QByteArray dir = qgetenv("VANTREL_SHOT_DIR");
    if (!dir.isEmpty())
        w.grab().save(QString::fromLocal8Bit(dir) + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".png"));
}

void flushDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// A data folder with two groups: the user's "My Presets" and a shipped "Film".
struct PresetFixture {
    QTemporaryDir dir;
    std::string folder;
    std::unique_ptr<PresetLibrary> library;

    explicit PresetFixture(const ModCatalogue& catalogue)
    {
        folder = QFile::encodeName(dir.path()).toStdString() + "/";
        library = std::make_unique<PresetLibrary>(folder);
        ModList look;
        look.push_back(createMod(catalogue, "Exposure"));
        for (const char* name : {"Mine B", "Mine A"})
            library->saveToPresets(look, name, false);
        look.push_back(createMod(catalogue, "Vignette"));
        for (const char* name : {"Warm_Fade", "cool fade", "Bleach"})
            library->saveToPresets(look, name, false, "Film");
    }
};

MVPanelItemListButton* rowNamed(const MVToolPanel& panel, int tabId, const QString& name, bool mirror = false)
{
    for (MVPanelItemListButton* row : panel.listButtons(tabId))
        if (row->nameText == name && row->isMirror == mirror)
            return row;
    return nullptr;
}

QStringList names(const std::vector<MVPanelItemListButton*>& rows)
{
    QStringList out;
    for (const MVPanelItemListButton* r : rows)
        out << r->nameText;
    return out;
}

} // namespace

class MVToolPanelTest : public QObject {
    Q_OBJECT

    ModCatalogueContents catalogue;

    std::unique_ptr<MVToolPanel> makePanel(MultiData& prefs, int height = 700)
    {
        auto panel = std::make_unique<MVToolPanel>(nullptr, &prefs);
        panel->addTab(QStringLiteral("Adjustments"), MVToolPanel::kAdjustmentsTab);
        panel->addTab(QStringLiteral("Presets"), MVToolPanel::kPresetsTab);
        panel->resize(224, height);
        return panel;
    }

private slots:
    void initTestCase()
    {
        vantrelInitResources();
        // The look the editor gives every widget, so pictures taken here show the real panel.
        qApp->setPalette(AppTheme::buildPalette(qApp->palette()));
        qApp->setStyleSheet(AppTheme::styleSheet());
        qRegisterMetaType<ImageMod*>();
        qRegisterMetaType<MVPanelItemListButton*>();
        catalogue = buildModCatalogue();
    }

    void adjustmentsFollowTheCatalogueSections()
    {
        MultiData prefs;
        auto panel = makePanel(prefs);
        MVToolPanelContent::fillAdjustments(*panel, catalogue);
        const auto& items = panel->tab(MVToolPanel::kAdjustmentsTab)->items;
        QVERIFY(items.size() >= 2);
        // The two tools open the tab.
        QCOMPARE(items[0]->itemKind(), int(MVPanelItem::kBigButton));
        QCOMPARE(items[0]->text(), QStringLiteral("Crop/Straighten"));
        QCOMPARE(static_cast<MVPanelItemBigButton*>(items[0])->commandId, int(MVToolPanelContent::kToolCrop));
        QCOMPARE(items[1]->text(), QStringLiteral("Spot Heal"));
        QCOMPARE(static_cast<MVPanelItemBigButton*>(items[1])->commandId, int(MVToolPanelContent::kToolSpotHeal));

        // Then each section: its header, then exactly its instances in catalogue order.
        size_t i = 2;
        QStringList headers;
        for (const ModCatalogueContents::Range& section : catalogue.sections) {
            QVERIFY(i < items.size());
            QCOMPARE(items[i]->itemKind(), int(MVPanelItem::kHeader));
            headers << items[i]->text();
            ++i;
            for (const ImageMod* mod : catalogue.modsIn(section)) {
                QVERIFY(i < items.size());
                QCOMPARE(items[i]->itemKind(), int(MVPanelItem::kListButton));
                auto* row = static_cast<MVPanelItemListButton*>(items[i]);
                QCOMPARE(row->mod, const_cast<ImageMod*>(mod));
                QVERIFY(!row->ownsMod);
                QCOMPARE(row->nameText, QString::fromStdString(mod->displayName));
                // Only tiles with a slot have a plus: the others always add.
                QCOMPARE(row->hasPlus, !mod->tags.empty());
                ++i;
            }
        }
        QCOMPARE(i, items.size());
        QCOMPARE(headers, (QStringList{"Basics", "Advanced Light", "Advanced Color", "Photographic", "Masks",
                                       "Borders", "Utility"}));
        QCOMPARE(names(panel->sectionRows(MVToolPanel::kAdjustmentsTab, "Basics")).first(),
                 QStringLiteral("Auto Exposure"));
    }

    void collapsedSectionIsStoredAndSurvivesARebuild()
    {
        MultiData prefs;
        auto panel = makePanel(prefs, 3000);
        MVToolPanelContent::fillAdjustments(*panel, catalogue);
        panel->show();
        // The defaults: every section listed, all open.
        QCOMPARE(fromStd(prefs.getStringArray(PrefKeys::kCollapsedToolSections, {})),
                 fromStd(PrefKeys::collapsedToolSectionsDefault()));
        MVPanelItemHeader* masks = panel->header(MVToolPanel::kAdjustmentsTab, "Masks");
        MVPanelItemHeader* borders = panel->header(MVToolPanel::kAdjustmentsTab, "Borders");
        const auto maskRows = panel->sectionRows(MVToolPanel::kAdjustmentsTab, "Masks");
        QCOMPARE(maskRows.size(), size_t(4));
        QCOMPARE(borders->y(), masks->y() + 36 + 4 * 36);

        QTest::mouseClick(masks, Qt::LeftButton);
        QVERIFY(masks->isCollapsed());
        for (MVPanelItemListButton* r : maskRows)
            QVERIFY(r->isHidden());
        QVERIFY(!borders->isHidden());
        QCOMPARE(borders->y(), masks->y() + 36);
        QStringList stored = fromStd(prefs.getStringArray(PrefKeys::kCollapsedToolSections, {}));
        QCOMPARE(stored, (QStringList{"0 Advanced Light", "0 Advanced Color", "0 Photographic", "1 Masks",
                                      "0 Borders", "0 Utility"}));
        // A section the list never held is added to it.
        QTest::mouseClick(panel->header(MVToolPanel::kAdjustmentsTab, "Basics"), Qt::LeftButton);
        stored = fromStd(prefs.getStringArray(PrefKeys::kCollapsedToolSections, {}));
        QCOMPARE(stored.last(), QStringLiteral("1 Basics"));

        // A new panel on the same preferences (the next start) builds folded.
        panel.reset();
        flushDeletes();
        auto again = makePanel(prefs, 3000);
        MVToolPanelContent::fillAdjustments(*again, catalogue);
        again->show();
        QVERIFY(again->header(MVToolPanel::kAdjustmentsTab, "Masks")->isCollapsed());
        QVERIFY(again->header(MVToolPanel::kAdjustmentsTab, "Basics")->isCollapsed());
        QVERIFY(!again->header(MVToolPanel::kAdjustmentsTab, "Borders")->isCollapsed());
        for (MVPanelItemListButton* r : again->sectionRows(MVToolPanel::kAdjustmentsTab, "Masks"))
            QVERIFY(r->isHidden());
        for (MVPanelItemListButton* r : again->sectionRows(MVToolPanel::kAdjustmentsTab, "Borders"))
            QVERIFY(!r->isHidden());
        saveShot(*again, "panel_collapsed");

        // Opening it again stores the open flag in place.
        QTest::mouseClick(again->header(MVToolPanel::kAdjustmentsTab, "Masks"), Qt::LeftButton);
        stored = fromStd(prefs.getStringArray(PrefKeys::kCollapsedToolSections, {}));
        QCOMPARE(stored[3], QStringLiteral("0 Masks"));
        QCOMPARE(stored.count(QStringLiteral("0 Masks")) + stored.count(QStringLiteral("1 Masks")), 1);
        for (MVPanelItemListButton* r : again->sectionRows(MVToolPanel::kAdjustmentsTab, "Masks"))
            QVERIFY(!r->isHidden());
    }

    void presetsTabListsGroupsWithTheUsersFirst()
    {
        MultiData prefs;
        PresetFixture fx(catalogue.mods);
        auto panel = makePanel(prefs);
        MVToolPanelContent::fillPresets(*panel, *fx.library, catalogue.mods);
        QStringList order;
        for (MVPanelItem* item : panel->tab(MVToolPanel::kPresetsTab)->items)
            order << (item->itemKind() == MVPanelItem::kHeader ? QStringLiteral("# ") : QString()) + item->text();
        QCOMPARE(order, (QStringList{"# Starred", "# My Presets", "Mine A", "Mine B", "# Film", "Bleach", "cool fade",
                                     "Warm Fade"}));
        MVPanelItemListButton* warm = rowNamed(*panel, MVToolPanel::kPresetsTab, "Warm Fade");
        QCOMPARE(warm->key, QStringLiteral("Film/Warm Fade"));
        QVERIFY(warm->hasPlus && warm->hasStar && warm->ownsMod && !warm->deletable);
        QVERIFY(rowNamed(*panel, MVToolPanel::kPresetsTab, "Mine A")->deletable);
        // The row's template is the preset as read: both tiles.
        auto* preset = dynamic_cast<FileFilter*>(warm->mod);
        QVERIFY(preset);
        QCOMPARE(preset->childCount(), 2);
        QCOMPARE(preset->children[1]->name, std::string("Vignette"));
        QCOMPARE(MVToolPanelContent::presetPath(warm),
                 QString::fromStdString(fx.library->presetPath("Warm_Fade", "Film")));

        // Saving a preset later puts its row in name order within its section.
        auto* saved = new FileFilter(fx.library->presetPath("Mine AB"), catalogue.mods);
        MVPanelItemListButton* inserted = panel->insertListButton(QStringLiteral("My Presets"), saved);
        QVERIFY(inserted);
        QCOMPARE(inserted->nameText, QStringLiteral("Mine AB"));
        QCOMPARE(names(panel->sectionRows(MVToolPanel::kPresetsTab, "My Presets")),
                 (QStringList{"Mine A", "Mine AB", "Mine B"}));
        QVERIFY(!panel->insertListButton(QStringLiteral("No Such Group"),
                                         new FileFilter(fx.library->presetPath("X"), catalogue.mods)));
    }

    void starringMirrorsRowsIntoStarred()
    {
        MultiData prefs;
        PresetFixture fx(catalogue.mods);
        auto panel = makePanel(prefs);
        MVToolPanelContent::fillPresets(*panel, *fx.library, catalogue.mods);
        panel->setCurrentTab(MVToolPanel::kPresetsTab);
        panel->show();
        QSignalSpy clicks(panel.get(), &MVToolPanel::modButtonClicked);

        // A click in the star area says so; the main window then toggles the star.
        MVPanelItemListButton* warm = rowNamed(*panel, MVToolPanel::kPresetsTab, "Warm Fade");
        QTest::mouseClick(warm, Qt::LeftButton, Qt::NoModifier, QPoint(34, 18));
        QCOMPARE(clicks.count(), 1);
        QCOMPARE(clicks[0][0].value<MVPanelItemListButton*>(), warm);
        QCOMPARE(clicks[0][2].toBool(), true);
        QVERIFY(panel->toggleStarred(warm));
        QVERIFY(warm->isStarred());

        MVPanelItemListButton* mine = rowNamed(*panel, MVToolPanel::kPresetsTab, "Mine B");
        QVERIFY(panel->toggleStarred(mine));
        auto starred = panel->sectionRows(MVToolPanel::kPresetsTab, "Starred");
        QCOMPARE(names(starred), (QStringList{"Warm Fade", "Mine B"}));
        QVERIFY(starred[0]->isMirror && !starred[0]->ownsMod);
        QCOMPARE(starred[0]->mirrorOf, warm);
        QCOMPARE(starred[0]->templateMod(), warm->mod);
        QCOMPARE(fromStd(prefs.getStringArray(PrefKeys::kStarredFilterList, {})),
                 (QStringList{"Film/Warm Fade", "My Presets/Mine B"}));
        QVERIFY(!starred[0]->isHidden());

        // Unstarring through the mirror clears the original and the list.
        QVERIFY(!panel->toggleStarred(starred[0]));
        flushDeletes();
        QVERIFY(!warm->isStarred());
        QCOMPARE(names(panel->sectionRows(MVToolPanel::kPresetsTab, "Starred")), QStringList{"Mine B"});
        QCOMPARE(fromStd(prefs.getStringArray(PrefKeys::kStarredFilterList, {})), QStringList{"My Presets/Mine B"});

        // The stars are there again at the next build, in the stored order.
        QVERIFY(panel->toggleStarred(rowNamed(*panel, MVToolPanel::kPresetsTab, "Bleach")));
        panel.reset();
        flushDeletes();
        auto again = makePanel(prefs);
        MVToolPanelContent::fillPresets(*again, *fx.library, catalogue.mods);
        QCOMPARE(names(again->sectionRows(MVToolPanel::kPresetsTab, "Starred")), (QStringList{"Mine B", "Bleach"}));
        QVERIFY(rowNamed(*again, MVToolPanel::kPresetsTab, "Bleach")->isStarred());
        QVERIFY(!rowNamed(*again, MVToolPanel::kPresetsTab, "Warm Fade")->isStarred());
    }

    void withoutAStarredHeaderNothingIsMirrored()
    {
        MultiData prefs;
        MVToolPanel panel(nullptr, &prefs);
        panel.addTab(QStringLiteral("Presets"), MVToolPanel::kPresetsTab);
        panel.addHeader(MVToolPanel::kPresetsTab, QStringLiteral("Film"), false);
        MVPanelItemListButton* row = panel.addListButton(true, MVToolPanel::kPresetsTab,
                                                         createMod(catalogue.mods, "Exposure").release(), true, true);
        QVERIFY(panel.toggleStarred(row));
        QCOMPARE(panel.listButtons(MVToolPanel::kPresetsTab).size(), size_t(1));
        QCOMPARE(panel.starredNames(), QStringList{row->key});
    }

    void deleteIsOfferedOnlyForTheUsersPresets()
    {
        MultiData prefs;
        PresetFixture fx(catalogue.mods);
        auto panel = makePanel(prefs);
        MVToolPanelContent::fillPresets(*panel, *fx.library, catalogue.mods);
        panel->setCurrentTab(MVToolPanel::kPresetsTab);
        panel->show();
        QSignalSpy deletes(panel.get(), &MVToolPanel::deleteButtonClicked);
        QSignalSpy clicks(panel.get(), &MVToolPanel::modButtonClicked);

        // A shipped preset: the right press is taken, no menu, no click.
        MVPanelItemListButton* bleach = rowNamed(*panel, MVToolPanel::kPresetsTab, "Bleach");
        QTest::mousePress(bleach, Qt::RightButton, Qt::NoModifier, QPoint(80, 18));
        QVERIFY(!panel->contextMenu->isVisible());
        QCOMPARE(clicks.count(), 0);

        // The user's own: the menu, then "Delete".
        MVPanelItemListButton* mine = rowNamed(*panel, MVToolPanel::kPresetsTab, "Mine A");
        QVERIFY(panel->toggleStarred(mine));
        const QString path = MVToolPanelContent::presetPath(mine);
        QVERIFY(QFile::exists(path));
        QTest::mousePress(mine, Qt::RightButton, Qt::NoModifier, QPoint(80, 18));
        QVERIFY(panel->contextMenu->isVisible());
        QCOMPARE(clicks.count(), 0);
        QCOMPARE(panel->contextMenu->actions().size(), 1);
        QAction* del = panel->contextMenu->actions().first();
        QCOMPARE(del->text(), QStringLiteral("Delete"));
        del->trigger();
        panel->contextMenu->hide();
        QCOMPARE(deletes.count(), 1);
        QCOMPARE(deletes[0][0].value<MVPanelItemListButton*>(), mine);

        // What the main window does on confirmation.
        QVERIFY(MVToolPanelContent::deletePreset(*panel, mine));
        flushDeletes();
        QVERIFY(!QFile::exists(path));
        QVERIFY(!rowNamed(*panel, MVToolPanel::kPresetsTab, "Mine A"));
        QVERIFY(!rowNamed(*panel, MVToolPanel::kPresetsTab, "Mine A", true));
        QCOMPARE(names(panel->sectionRows(MVToolPanel::kPresetsTab, "My Presets")), QStringList{"Mine B"});
        QVERIFY(panel->starredNames().isEmpty());
        QVERIFY(fx.library->presetsIn("My Presets") == std::vector<std::string>{"Mine B.vnf"});

        // A shipped preset can't be deleted even when asked directly; its file stays.
        QVERIFY(!MVToolPanelContent::deletePreset(*panel, bleach));
        QVERIFY(QFile::exists(MVToolPanelContent::presetPath(bleach)));
        QVERIFY(rowNamed(*panel, MVToolPanel::kPresetsTab, "Bleach"));
    }

    void eachTabKeepsItsScrollPlace()
    {
        MultiData prefs;
        PresetFixture fx(catalogue.mods);
        auto panel = makePanel(prefs, 300);
        MVToolPanelContent::fillAdjustments(*panel, catalogue);
        MVToolPanelContent::fillPresets(*panel, *fx.library, catalogue.mods);
        panel->show();

        // Range: content height less the visible height; all open, 2 tools, 7 headers, every row.
        size_t rows = 0;
        for (const auto& s : catalogue.sections)
            rows += s.count;
        const int contentHeight = 8 + 2 * 44 + 7 * 36 + int(rows) * 36 + 8;
        QCOMPARE(panel->content->height(), contentHeight);
        QVERIFY(!panel->scroller->contentFits());

        panel->scrollerScrolled(250.0f);
        QCOMPARE(panel->content->y(), -250);
        QPushButton* presetsButton = panel->tab(MVToolPanel::kPresetsTab)->button;
        QTest::mouseClick(presetsButton, Qt::LeftButton);
        QCOMPARE(panel->currentTab(), int(MVToolPanel::kPresetsTab));
        QVERIFY(presetsButton->isChecked());
        QCOMPARE(panel->content->y(), 0);
        QCOMPARE(panel->scroller->getPosition(), 0.0f);
        panel->scrollerScrolled(20.0f);
        QCOMPARE(panel->content->y(), -20);

        QTest::mouseClick(panel->tab(MVToolPanel::kAdjustmentsTab)->button, Qt::LeftButton);
        QCOMPARE(panel->content->y(), -250);
        QCOMPARE(panel->scroller->getPosition(), 250.0f);
        QTest::mouseClick(presetsButton, Qt::LeftButton);
        QCOMPARE(panel->content->y(), -20);

        // Folding sections shortens the content; the place is clamped into the new range.
        panel->setCurrentTab(MVToolPanel::kAdjustmentsTab);
        for (const auto& s : catalogue.sections)
            panel->headerToggled(panel->header(MVToolPanel::kAdjustmentsTab, QString::fromStdString(s.title)));
        QCOMPARE(panel->content->height(), 8 + 2 * 44 + 7 * 36 + 8);
        const float range = float(panel->content->height() - (300 - MVToolPanel::kTabBarHeight));
        QCOMPARE(panel->scroller->getPosition(), range);
        QCOMPARE(panel->content->y(), -int(range));

        // An empty tab shows nothing and doesn't scroll.
        panel->addTab(QStringLiteral("Empty"), 7);
        panel->setCurrentTab(7);
        QVERIFY(panel->scroller->contentFits());
        for (MVPanelItemListButton* r : panel->listButtons(MVToolPanel::kAdjustmentsTab))
            QVERIFY(r->isHidden());
    }

    void hoverAndClickFollowThePlus()
    {
        MultiData prefs;
        PresetFixture fx(catalogue.mods);
        auto panel = makePanel(prefs);
        MVToolPanelContent::fillAdjustments(*panel, catalogue);
        MVToolPanelContent::fillPresets(*panel, *fx.library, catalogue.mods);
        panel->show();
        QSignalSpy hovers(panel.get(), &MVToolPanel::imageModHovered);
        QSignalSpy clicks(panel.get(), &MVToolPanel::modButtonClicked);

        MVPanelItemListButton* exposure = rowNamed(*panel, MVToolPanel::kAdjustmentsTab, "Exposure");
        QEvent enter(QEvent::Enter);
        QCoreApplication::sendEvent(exposure, &enter);
        QCOMPARE(hovers.count(), 1);
        QCOMPARE(hovers[0][0].value<ImageMod*>(), exposure->mod);
        QCOMPARE(hovers[0][1].toBool(), true); // no plus: always adds
        // A row without a plus adds wherever it is clicked.
        QTest::mouseClick(exposure, Qt::LeftButton, Qt::NoModifier, QPoint(exposure->width() - 5, 18));
        QTest::mouseClick(exposure, Qt::LeftButton, Qt::NoModifier, QPoint(40, 18));
        QCOMPARE(clicks.count(), 2);
        QCOMPARE(clicks[0][1].toBool(), true);
        QCOMPARE(clicks[1][1].toBool(), true);
        QCOMPARE(clicks[1][2].toBool(), false);

        // A header ends the hover with the null form, once.
        QCoreApplication::sendEvent(panel->header(MVToolPanel::kAdjustmentsTab, "Basics"), &enter);
        QCOMPARE(hovers.count(), 2);
        QCOMPARE(hovers[1][0].value<ImageMod*>(), static_cast<ImageMod*>(nullptr));
        QCoreApplication::sendEvent(panel->header(MVToolPanel::kAdjustmentsTab, "Masks"), &enter);
        QCOMPARE(hovers.count(), 2);

        // A preset row: the body replaces, the lit plus appends, for hover and click alike.
        panel->setCurrentTab(MVToolPanel::kPresetsTab);
        MVPanelItemListButton* warm = rowNamed(*panel, MVToolPanel::kPresetsTab, "Warm Fade");
        QCoreApplication::sendEvent(warm, &enter);
        QCOMPARE(hovers.last()[0].value<ImageMod*>(), warm->mod);
        QCOMPARE(hovers.last()[1].toBool(), false);
        QTest::mouseMove(warm, QPoint(warm->width() - 10, 18));
        QMouseEvent move(QEvent::MouseMove, QPointF(warm->width() - 10, 18), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(warm, &move);
        QVERIFY(warm->plusLit());
        QCOMPARE(hovers.last()[0].value<ImageMod*>(), warm->mod);
        QCOMPARE(hovers.last()[1].toBool(), true);
        QTest::mouseClick(warm, Qt::LeftButton, Qt::NoModifier, QPoint(warm->width() - 10, 18));
        QCOMPARE(clicks.last()[1].toBool(), true);
        QTest::mouseClick(warm, Qt::LeftButton, Qt::NoModifier, QPoint(80, 18));
        QCOMPARE(clicks.last()[1].toBool(), false);
        QCOMPARE(clicks.last()[2].toBool(), false);

        // A mirror hovers with the template of the row it stands for.
        panel->toggleStarred(warm);
        MVPanelItemListButton* mirror = rowNamed(*panel, MVToolPanel::kPresetsTab, "Warm Fade", true);
        QVERIFY(mirror);
        QCoreApplication::sendEvent(mirror, &enter);
        QCOMPARE(hovers.last()[0].value<ImageMod*>(), warm->mod);

        // Scrolling away from a hovered row ends the preview.
        const int before = hovers.count();
        panel->scrollerScrolled(10.0f);
        QCOMPARE(hovers.count(), before + 1);
        QCOMPARE(hovers.last()[0].value<ImageMod*>(), static_cast<ImageMod*>(nullptr));

        // With hover previews off, nothing is said.
        panel->hoverPreviews = false;
        QCoreApplication::sendEvent(warm, &enter);
        QCOMPARE(hovers.count(), before + 1);
        saveShot(*panel, "panel_presets");
    }

    void mainWindowStepsThroughThePresets()
    {
        MainWindow w(QString{});
        QVERIFY(w.toolPanel);
        // The default groups were unpacked into the (test's private) data folder.
        const auto rows = w.toolPanel->listButtons(MVToolPanel::kPresetsTab, false);
        QVERIFY(rows.size() >= 10);
        QCOMPARE(w.toolPanel->tab(MVToolPanel::kAdjustmentsTab)->items.size(), 2 + 7 + [this] {
            size_t n = 0;
            for (const auto& s : catalogue.sections)
                n += s.count;
            return n;
        }());
        const int n = int(rows.size());
        w.presetStepIndex = -1;
        w.previousPresetButtonPressed();
        QCOMPARE(w.presetStepIndex, n - 1);
        w.nextPresetButtonPressed();
        QCOMPARE(w.presetStepIndex, 0);
        w.nextPresetButtonPressed();
        QCOMPARE(w.presetStepIndex, 1);
        // "Random Preset" starts from rand(), which may be the largest int: still in range.
        w.presetStepIndex = 2147483647;
        w.nextPresetButtonPressed();
        QCOMPARE(w.presetStepIndex, int((int64_t(2147483647) + 1) % n));

        // The crop button's label follows the document's hidden crop.
        w.updateWindowTitle();
        MVPanelItemBigButton* crop = w.toolPanel->bigButton(MVToolPanelContent::kToolCrop);
        QCOMPARE(crop->text(), QStringLiteral("Crop/Straighten"));
        w.currentTray()->setHiddenMod(createMod(catalogue.mods, "Crop"));
        w.updateWindowTitle();
        QCOMPARE(crop->text(), QStringLiteral("Crop/Straighten*"));
        w.currentTray()->clearHiddenMods();
        w.updateWindowTitle();
        QCOMPARE(crop->text(), QStringLiteral("Crop/Straighten"));
    }

    void mainWindowPutsRowsIntoTheTray()
    {
        MainWindow w(QString{});
        TrayWidget* tray = w.currentTray();
        QVERIFY(tray && tray->undoStack());
        tray->clearTray(false);
        const int undoBefore = tray->undoStack()->undoCount();

        // A tile row: one tile, one undo step, a clone and not the template.
        MVPanelItemListButton* exposure = rowNamed(*w.toolPanel, MVToolPanel::kAdjustmentsTab, "Exposure");
        emit w.toolPanel->modButtonClicked(exposure, true, false);
        QCOMPARE(tray->tileCount(), 1);
        QCOMPARE(tray->modAt(0)->name, std::string("Exposure"));
        QVERIFY(tray->modAt(0) != exposure->mod);
        QCOMPARE(tray->undoStack()->undoCount(), undoBefore + 1);
        emit w.toolPanel->modButtonClicked(exposure, true, false);
        QCOMPARE(tray->tileCount(), 2);

        // A preset replaces the tiles, keeping the pinned one, and names the filter.
        tray->modAt(0)->pinned = true;
        const auto presets = w.toolPanel->listButtons(MVToolPanel::kPresetsTab, false);
        MVPanelItemListButton* preset = nullptr;
        for (MVPanelItemListButton* r : presets)
            if (auto* f = dynamic_cast<FileFilter*>(r->mod); f && f->childCount() >= 2) {
                preset = r;
                break;
            }
        QVERIFY(preset);
        const int presetTiles = static_cast<FileFilter*>(preset->mod)->childCount();
        emit w.toolPanel->modButtonClicked(preset, false, false);
        QCOMPARE(tray->filterName, preset->nameText);
        QVERIFY(tray->tileCount() >= presetTiles);
        QVERIFY(tray->tileCount() <= presetTiles + 1);
        QCOMPARE(tray->undoStack()->undoCount(), undoBefore + 3);
        // Through the plus the preset's tiles come on top of what stands.
        const int before = tray->tileCount();
        emit w.toolPanel->modButtonClicked(preset, true, false);
        QVERIFY(tray->tileCount() > before);
        tray->undo();
        QCOMPARE(tray->tileCount(), before);

        // A star click stars and adds nothing.
        const int tiles = tray->tileCount();
        emit w.toolPanel->modButtonClicked(preset, false, true);
        QCOMPARE(tray->tileCount(), tiles);
        QVERIFY(preset->isStarred());
        QVERIFY(w.toolPanel->starredNames().contains(preset->key));
    }

    void mainWindowDeletesAndAddsUserPresets()
    {
        MainWindow w(QString{});
        TrayWidget* tray = w.currentTray();
        tray->clearTray(false);
        emit w.toolPanel->modButtonClicked(rowNamed(*w.toolPanel, MVToolPanel::kAdjustmentsTab, "Contrast"), true, false);

        // "Save Filter to Presets..." shows the new row in "My Presets" at once.
        w.askTextHook = [](const QString&, const QString&, const QString&, const QString&, const QString&,
                           const QString&, QString& answer) {
            answer = QStringLiteral("Panel_Test Look");
            return true;
        };
        QStringList asked;
        int answer = 1;
        w.messageHook = [&](const QString& title, const QString& text, const QStringList&) {
            asked << title + QStringLiteral(": ") + text;
            return answer;
        };
        w.saveFavoriteFilterPrompt();
        MVPanelItemListButton* row = rowNamed(*w.toolPanel, MVToolPanel::kPresetsTab, "Panel Test Look");
        QVERIFY(row);
        QVERIFY(row->deletable);
        QCOMPARE(row->key, QStringLiteral("My Presets/Panel Test Look"));
        const QString path = MVToolPanelContent::presetPath(row);
        QVERIFY(QFile::exists(path));

        // "Cancel" keeps it; "Delete" removes file and row.
        emit w.toolPanel->deleteButtonClicked(row);
        QCOMPARE(asked.size(), 1);
        QVERIFY(asked[0].endsWith(QStringLiteral("Are you sure you want to permanently delete the style Panel Test "
                                                 "Look? This action cannot be undone.")));
        QVERIFY(QFile::exists(path));
        answer = 0;
        emit w.toolPanel->deleteButtonClicked(row);
        flushDeletes();
        QVERIFY(!QFile::exists(path));
        QVERIFY(!rowNamed(*w.toolPanel, MVToolPanel::kPresetsTab, "Panel Test Look"));
    }
};

QTEST_MAIN(MVToolPanelTest)
#include "MVToolPanelTest.moc"
