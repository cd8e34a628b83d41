// The main window's side of the tray: one tray per document in the tray strip, the paths that
// follow a change of tiles or selection, undo and redo, remix, and the filter files (load,
// export, save to presets, dropped files).
#include "core/ImageMod.h"
#include "document/MVMediaWidget.h"
#include "filters/FilterFile.h"
#include "filters/MultiData.h"
#include "filters/PresetLibrary.h"
#include "mods/RemixTiles.h"
#include "ui/MainWindow.h"
#include "ui/ModalQuestions.h"
#include "ui/TrayWidget.h"

#include <QtCore/QEvent>
#include <QtCore/QFileInfo>
#include <QtWidgets/QFileDialog>

namespace {

constexpr const char* kLastFilterPathKey = "LastFilterLoadPath";

// The class lookup of filter files: built once, kept for the program's life.
const ModCatalogue& filterCatalogue()
{
    static const ModCatalogueContents contents = buildModCatalogue();
    return contents.mods;
}

QString filterDialogFilter()
{
    return QStringLiteral("Filter Files (*.vnf *.VNF);;All Files (*)");
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Trays of the documents

TrayWidget* MainWindow::currentTray() const
{
    return currentDocument >= 0 && currentDocument < documentCount ? documents[size_t(currentDocument)].tray : nullptr;
}

void MainWindow::attachTray(MVDocument& doc)
{
    auto* tray = new TrayWidget(trayArea);
    tray->message = [this](const QString& title, const QString& text, const QStringList& buttons) {
        return showMessage(title, text, buttons.value(0, QStringLiteral("OK")), buttons.value(1), buttons.value(2));
    };
    tray->askText = [this](const QString& title, const QString& prompt, const QString& fieldLabel,
                           const QString& defaultText, const QString& okCaption, const QString& cancelCaption,
                           QString& answer) {
        return askForText(title, prompt, fieldLabel, defaultText, okCaption, cancelCaption, answer);
    };
    connect(tray, &TrayWidget::trayAdjusted, this, &MainWindow::trayContentChanged);
    connect(tray, &TrayWidget::selectionChanged, this, &MainWindow::traySelectionChanged);
    doc.tray = tray;
}

void MainWindow::detachTray(MVDocument& doc)
{
    if (!doc.tray)
        return;
    doc.tray->clearTray(false);
    doc.tray->clearHiddenMods();
    delete doc.tray;
    doc.tray = nullptr;
}

void MainWindow::resetTrayForNewMedia(MVDocument& doc)
{
    // An old crop doesn't fit new media, and its undo steps speak of the old photo.
    if (!doc.tray)
        return;
    doc.tray->clearHiddenMods();
    if (doc.tray->undoStack())
        doc.tray->undoStack()->clear();
}

void MainWindow::layoutTray()
{
    if (!trayArea)
        return;
    // Inside the strip's one-pixel frame.
    const QRect inner = trayArea->rect().adjusted(1, 1, -1, -1);
    for (int i = 0; i < documentCount; ++i) {
        TrayWidget* tray = documents[size_t(i)].tray;
        if (!tray)
            continue;
        if (tray->geometry() != inner)
            tray->setGeometry(inner);
        tray->setVisible(i == currentDocument);
    }
}

void MainWindow::handListToViewer(MVDocument& doc)
{
    doc.viewer->setMods(doc.tray ? doc.tray->flatModList(true) : std::vector<ImageMod*>{});
}

void MainWindow::trayContentChanged()
{
    if (MVMediaWidget* v = currentViewer()) {
        {
            std::lock_guard<std::mutex> lock(v->stateMutex);
            v->flushCache = true;
        }
        handListToViewer(documents[size_t(currentDocument)]);
    }
    rebuildControls();
    updateWindowTitle();
}

void MainWindow::traySelectionChanged()
{
    rebuildControls();
}

void MainWindow::rebuildControls()
{
    TrayWidget* tray = currentTray();
    showControlsFor(tray ? tray->selectedMod() : nullptr);
}

void MainWindow::clearTraySelection()
{
    if (TrayWidget* tray = currentTray()) {
        const bool any = !tray->selectedIndices().empty();
        tray->clearSelection();
        if (any)
            traySelectionChanged();
    }
}

void MainWindow::deleteSelectedTiles()
{
    TrayWidget* tray = currentTray();
    if (!tray || tray->selectedIndices().empty())
        return;
    tray->pushSequenceUndo();
    tray->removeMods(tray->selectedIndices());
    trayContentChanged();
}

void MainWindow::deleteNodesButtonPressed()
{
    TrayWidget* tray = currentTray();
    if (!tray || (tray->rootSequence.childCount() == 0 && tray->nestedPath().empty()))
        return;
    // The first press spares the pinned tiles; when only pinned ones are left, they go too.
    bool anyUnpinned = false;
    for (const auto& m : tray->rootSequence.children)
        anyUnpinned |= m && !m->pinned;
    tray->pushSequenceUndo();
    tray->clearTray(anyUnpinned);
    if (tray->rootSequence.childCount() == 0)
        tray->filterName.clear();
    trayContentChanged();
}

// ---------------------------------------------------------------------------------------------
// Menu entries of the tray

bool MainWindow::trayMenuAction(const std::string& t)
{
    TrayWidget* tray = currentTray();
    if (t == "Undo" || t == "Redo") {
        // A running tool keeps its own steps; it answers the menu while it lasts.
        if (activeTool || !tray)
            return true;
        if (t == "Undo")
            tray->undo();
        else
            tray->redo();
        updateWindowTitle();
    } else if (t == "Remix Up" || t == "Remix Down") {
        if (tray && remixTiles(tray->flatModList(false), t == "Remix Up" ? 10.0f : -10.0f,
                               [tray] { tray->pushSequenceUndo(); })) {
            tray->refreshNodes();
            trayContentChanged();
        }
    } else if (t == "Nest Selected Tiles") {
        // The tray records the undo step itself once the name is given.
        if (tray)
            tray->nestSelected();
    } else if (t == "Unnest Selected Tile") {
        if (tray)
            tray->unnestSelected();
    } else if (t == "Load Filter...") {
        const QString start = QString::fromStdString(MultiData::global().getString(kLastFilterPathKey, ""));
        const QString path = chooseFile(false, QStringLiteral("Load Filter"), start, filterDialogFilter());
        if (!path.isEmpty()) {
            MultiData::global().setString(kLastFilterPathKey, QFileInfo(path).absolutePath().toStdString());
            loadFilterSlot(path, true);
        }
    } else if (t == "Export Filter...") {
        if (!tray)
            return true;
        if (tray->rootSequence.childCount() == 0) {
            showMessage(QStringLiteral("Export Filter"), QStringLiteral("The tray holds no tiles to export."));
            return true;
        }
        const QString start = QString::fromStdString(MultiData::global().getString(kLastFilterPathKey, ""));
        const QString name = tray->filterName.isEmpty() ? QStringLiteral("Untitled") : tray->filterName;
        QString path = chooseFile(true, QStringLiteral("Export Filter"), start + QLatin1Char('/') + name + QStringLiteral(".vnf"),
                                  filterDialogFilter());
        if (path.isEmpty())
            return true;
        if (QFileInfo(path).suffix().compare(QLatin1String(kFilterExtension), Qt::CaseInsensitive) != 0)
            path += QStringLiteral(".vnf");
        if (!exportFilterTo(path))
            showMessage(QStringLiteral("Export Filter"),
                        QStringLiteral("The filter could not be written to ") + QFileInfo(path).fileName() + QLatin1Char('.'));
    } else {
        return false;
    }
    return true;
}

bool MainWindow::exportFilterTo(const QString& path)
{
    TrayWidget* tray = currentTray();
    if (!tray)
        return false;
    return writeFilter(tray->rootTiles(), path.toUtf8().toStdString());
}

// ---------------------------------------------------------------------------------------------
// Filter files

void MainWindow::loadFilterSlot(QString fileName, bool removeTrayNodes)
{
    TrayWidget* tray = currentTray();
    if (!tray)
        return;
    if (fileName.isEmpty()) {
        if (!removeTrayNodes)
            return;
        tray->pushSequenceUndo();
        tray->clearTray(true);
        tray->filterName.clear();
        trayContentChanged();
        return;
    }
    loadFilterFile(fileName, removeTrayNodes);
}

bool MainWindow::loadFilterFile(const QString& path, bool removeTrayNodes)
{
    TrayWidget* tray = currentTray();
    if (!tray)
        return false;
    int32_t status = kFilterReadOk;
    ModList mods = readFilter(path.toUtf8().toStdString(), filterCatalogue(), status);
    if (!mods.empty()) {
        tray->pushSequenceUndo();
        if (removeTrayNodes)
            tray->clearTray(true);
        for (const auto& m : mods)
            if (m)
                tray->addMod(&tray->rootSequence, *m, false, true);
        if (removeTrayNodes)
            tray->filterName = QFileInfo(path).completeBaseName().replace(QLatin1Char('_'), QLatin1Char(' '));
        tray->modified = false;
        trayContentChanged();
    }
    // What could be read stands in the tray; the words come after.
    if (status != kFilterReadOk)
        showMessage(QStringLiteral("Filter Load Error"),
                    QStringLiteral("This filter may have loaded incorrectly. It may either be damaged or have come "
                                   "from a newer version of Vantrel."));
    return status == kFilterReadOk;
}

void MainWindow::saveFavoriteFilterPrompt()
{
    TrayWidget* tray = currentTray();
    if (!tray)
        return;
    QString name;
    if (!askForText(QStringLiteral("Choose Preset Name"), QStringLiteral("Enter a name for this style"),
                    QStringLiteral("Preset Name"), tray->filterName, QStringLiteral("Save"), QStringLiteral("Cancel"), name))
        return;
    name = name.trimmed();
    ModList mods;
    for (const ImageMod* m : tray->rootTiles())
        if (m)
            mods.push_back(cloneMod(*m));
    PresetLibrary library(dataFolder());
    PresetLibrary::SaveResult result = library.saveToPresets(mods, name.toStdString(), false);
    if (result == PresetLibrary::kNeedsOverwrite) {
        if (showMessage(QStringLiteral("Filter Overwrite Warning"),
                        QStringLiteral("A filter already exists with that name. Overwrite filter?"),
                        QStringLiteral("Overwrite"), QStringLiteral("Cancel")) != 0)
            return;
        result = library.saveToPresets(mods, name.toStdString(), true);
    }
    switch (result) {
    case PresetLibrary::kSaved:
        tray->filterName = name;
        tray->modified = false;
        presetSavedToLibrary(name);
        updateWindowTitle();
        break;
    case PresetLibrary::kNoName:
        showMessage(QStringLiteral("Name Filter"), QStringLiteral("No filter name was chosen"));
        break;
    case PresetLibrary::kBadName:
        showMessage(QStringLiteral("Name Filter"), QStringLiteral("A filter name can't contain \"/\" or start with \".\"."));
        break;
    case PresetLibrary::kNothingToSave:
        showMessage(QStringLiteral("Save Filter"), QStringLiteral("The tray holds no tiles to save."));
        break;
    case PresetLibrary::kWriteFailed:
        showMessage(QStringLiteral("Save Filter"), QStringLiteral("The preset could not be written."));
        break;
    case PresetLibrary::kNeedsOverwrite:
        break;
    }
}

// ---------------------------------------------------------------------------------------------
// Questions

bool MainWindow::askForText(const QString& title, const QString& prompt, const QString& fieldLabel,
                            const QString& defaultText, const QString& okCaption, const QString& cancelCaption,
                            QString& answer)
{
    if (askTextHook)
        return askTextHook(title, prompt, fieldLabel, defaultText, okCaption, cancelCaption, answer);
    return askForTextInDialog(this, title, prompt, fieldLabel, defaultText, okCaption, cancelCaption, answer);
}

QString MainWindow::chooseFile(bool save, const QString& title, const QString& start, const QString& filter)
{
    if (fileDialogHook)
        return fileDialogHook(save, title, start, filter);
    return save ? QFileDialog::getSaveFileName(this, title, start, filter)
                : QFileDialog::getOpenFileName(this, title, start, filter);
}
