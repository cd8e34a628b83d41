// The main window's side of the tool panel: building it, and carrying out what its rows ask.
#include "ui/MainWindow.h"

#include "filters/FileFilter.h"
#include "filters/MultiData.h"
#include "filters/PreferenceKeys.h"
#include "filters/PresetLibrary.h"
#include "ui/MVPanelItemBigButton.h"
#include "ui/MVPanelItemListButton.h"
#include "ui/MVToolPanel.h"
#include "mods/ImageModSize2.h"
#include "ui/MVToolPanelContent.h"
#include "ui/TrayWidget.h"

#include <QtCore/QTimer>

#include <cstdint>

void MainWindow::buildToolPanel()
{
    MultiData& prefs = MultiData::global();
    modCatalogue = buildModCatalogue();

    // The default preset groups are unpacked when the set on disk is older than ours.
    PresetLibrary library(dataFolder());
    const PresetLibrary::StartupResult startup = library.startupCheck(prefs);
    if (startup.unpacked)
        prefs.writeFile(preferencesPath());

    toolPanel = new MVToolPanel(central);
    toolPanel->addTab(QStringLiteral("Adjustments"), MVToolPanel::kAdjustmentsTab);
    toolPanel->addTab(QStringLiteral("Presets"), MVToolPanel::kPresetsTab);
    toolPanel->hoverPreviews = prefs.getBool(PrefKeys::kUseHoverPreviews, PrefKeys::kUseHoverPreviewsDefault);
    MVToolPanelContent::fillAdjustments(*toolPanel, modCatalogue);
    MVToolPanelContent::fillPresets(*toolPanel, library, modCatalogue.mods);
    toolPanel->setCurrentTab(prefs.getInt(PrefKeys::kCurrentTab, PrefKeys::kCurrentTabDefault));

    connect(toolPanel, &MVToolPanel::modButtonClicked, this, &MainWindow::modButtonClicked);
    connect(toolPanel, &MVToolPanel::comIDButtonClicked, this, &MainWindow::comIDButtonClicked);
    connect(toolPanel, &MVToolPanel::deleteButtonClicked, this, &MainWindow::deleteFavoriteClicked);
    connect(toolPanel, &MVToolPanel::imageModHovered, this, &MainWindow::imageModHovered);

    if (library.filtersUpdated()) {
        // Said once the window stands, so the message has something to sit on.
        QTimer::singleShot(0, this, [this] {
            showNotice(QStringLiteral("Filters Updated"),
                       QStringLiteral("Your filters have been updated! You can always find archived backups of "
                                      "previous versions by choosing \"Reveal Presets Folder\" from the File menu "
                                      "and browsing up one level to the Presets Archive folder."));
        });
    }
}

void MainWindow::rebuildPresetsTab()
{
    if (!toolPanel)
        return;
    MVToolPanelContent::fillPresets(*toolPanel, PresetLibrary(dataFolder()), modCatalogue.mods);
}

void MainWindow::modButtonClicked(MVPanelItemListButton* clicker, bool append, bool star)
{
    if (!clicker)
        return;
    if (star) {
        toolPanel->toggleStarred(clicker);
        return;
    }
    addPanelModToTray(clicker->templateMod(), append);
}

void MainWindow::comIDButtonClicked(MVPanelItemBigButton* button)
{
    if (button)
        startTool(button->commandId);
}

void MainWindow::deleteFavoriteClicked(MVPanelItemListButton* row)
{
    if (!row)
        return;
    const int choice = showMessage(QStringLiteral("Delete Style"),
                                   QStringLiteral("Are you sure you want to permanently delete the style ") +
                                       row->nameText + QStringLiteral("? This action cannot be undone."),
                                   QStringLiteral("Delete"), QStringLiteral("Cancel"));
    if (choice != 0)
        return;
    if (!MVToolPanelContent::deletePreset(*toolPanel, row))
        showMessage(QStringLiteral("Can't Delete Style"),
                    QStringLiteral("The style could not be removed from the presets folder."));
}

bool MainWindow::stepPreset(int delta)
{
    const std::vector<MVPanelItemListButton*> rows = toolPanel->listButtons(MVToolPanel::kPresetsTab, false);
    if (rows.empty())
        return false;
    const int64_t n = int64_t(rows.size());
    // The first step forward lands on the first preset, the first step back on the last.
    const int64_t from = presetStepIndex < 0 ? (delta > 0 ? -1 : 0) : int64_t(presetStepIndex);
    const int64_t index = ((from + delta) % n + n) % n;
    presetStepIndex = int(index);
    addPanelModToTray(rows[size_t(index)]->templateMod(), false);
    return true;
}

void MainWindow::nextPresetButtonPressed()
{
    stepPreset(1);
}

void MainWindow::previousPresetButtonPressed()
{
    stepPreset(-1);
}

void MainWindow::updateCropButtonLabel()
{
    MVPanelItemBigButton* crop = toolPanel ? toolPanel->bigButton(MVToolPanelContent::kToolCrop) : nullptr;
    if (!crop)
        return;
    // A crop in force lives among the tray's hidden mods, not among the tiles.
    const TrayWidget* tray = currentTray();
    const bool cropInForce = tray && tray->hasHiddenModWithTag(kTagCrop);
    crop->setText(MVToolPanelContent::cropButtonLabel(cropInForce));
    crop->update();
}

void MainWindow::addPanelModToTray(ImageMod* mod, bool append)
{
    TrayWidget* tray = currentTray();
    if (!tray || !mod)
        return;
    tray->pushSequenceUndo();
    if (const auto* preset = dynamic_cast<const FileFilter*>(mod)) {
        // A preset brings its tiles one by one; without append it takes the place of what the
        // tray held, pinned tiles apart, and names the filter.
        if (!append)
            tray->clearTray(true);
        for (const auto& child : preset->children)
            if (child)
                tray->addMod(*child, false, true);
        if (!append) {
            tray->filterName = QString::fromStdString(preset->name);
            tray->modified = false;
        }
    } else {
        // Without append a tile replaces any tile of its slot, pinned ones too.
        tray->addMod(*mod, !append, true);
    }
    trayContentChanged();
}

void MainWindow::presetSavedToLibrary(const QString& name)
{
    if (!toolPanel)
        return;
    const QString group = QLatin1String(PresetLibrary::kMyPresets);
    // Rows are keyed by the shown name, where "_" reads as a blank.
    const QString key = group + QLatin1Char('/') + QString(name).replace(QLatin1Char('_'), QLatin1Char(' '));
    // An overwritten preset is read again: its old row goes first.
    for (MVPanelItemListButton* row : toolPanel->listButtons(MVToolPanel::kPresetsTab, false))
        if (row->key == key)
            toolPanel->removeListButton(row);
    if (!toolPanel->header(MVToolPanel::kPresetsTab, group)) {
        // The first preset of the user's own group: the group's header has to be made.
        rebuildPresetsTab();
        return;
    }
    const PresetLibrary library(dataFolder());
    auto* preset = new FileFilter(library.presetPath(name.toStdString()), modCatalogue.mods);
    if (MVPanelItemListButton* row = toolPanel->insertListButton(group, preset)) {
        row->key = key;
        row->deletable = true;
        toolPanel->setStarredNames(toolPanel->starredNames());
    }
}
