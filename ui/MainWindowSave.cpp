// The main window's saving side: save and batch flows, the render queue and its window, the
// preferences window, .cube files in and out, and the hand-back to a plug-in host.
#include "ui/MainWindow.h"

#include "cli/CliBatch.h"
#include "core/ImageModVariable.h"
#include "core/ImageModVariableDataFile.h"
#include "desktop_only/RenderAndSave.h"
#include "document/MVMediaWidget.h"
#include "document/core/HeadlessRender.h"
#include "document/core/RenderQueue.h"
#include "filters/FilterFile.h"
#include "filters/MultiData.h"
#include "filters/PreferenceKeys.h"
#include "media/MediaFormats.h"
#include "mods/FilterLutExport.h"
#include "mods/ImageModLUT3D.h"
#include "mods/ImageModLUT3DTable.h"
#include "ui/MVRenderQueueWindow.h"
#include "ui/SaveSizeWindow.h"
#include "ui/TrayWidget.h"
#include "ui/XmlPreferencesWindow.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>
#include <QtCore/QTimer>
#include <QtWidgets/QAction>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>

#include <algorithm>

namespace {

const char* const kLastImageSaveQuality = "LastImageSaveQuality";
const char* const kLastImgSaveExtensionStr = "LastImgSaveExtensionStr";
const char* const kLastImgSavePathStr = "LastImgSavePathStr";
const char* const kLastBatchPostfix = "LastBatchPostfix";
const char* const kLastBatchSaveDir = "LastBatchSaveDir";
const char* const kLastLutPath = "LastLutPath";
constexpr int kDefaultSaveQuality = 85;

std::string utf8(const QString& s)
{
    return s.toUtf8().toStdString();
}

QString fromUtf8(const std::string& s)
{
    return QString::fromUtf8(s.c_str(), int(s.size()));
}

std::vector<ImageMod*> rawList(const std::vector<std::unique_ptr<ImageMod>>& mods)
{
    std::vector<ImageMod*> list;
    list.reserve(mods.size());
    for (const auto& m : mods)
        list.push_back(m.get());
    return list;
}

// The save row's extensions include the path's own.
bool pathHasRowExtension(const QString& path, int rowIndex)
{
    const std::vector<MediaFormat>& formats = mediaSaveFormats();
    if (rowIndex < 0 || rowIndex >= int(formats.size()))
        return false;
    return mediaFormatHasExtension(formats[size_t(rowIndex)], mediaPathExtension(utf8(path)));
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Construction

void MainWindow::setupSaveArea(QMenu* fileMenu, QMenu* editMenu)
{
    saveDialogs.runOptions = [](SaveSizeWindow& dialog) { return dialog.exec() == QDialog::Accepted; };
    saveDialogs.askSavePath = [this](const QString& title, const QString& start, const QString& filter) {
        return chooseFile(true, title, start, filter);
    };
    saveDialogs.askOpenPath = [this](const QString& title, const QString& start, const QString& filter) {
        return chooseFile(false, title, start, filter);
    };
    saveDialogs.askFolder = [this](const QString& title, const QString& start) {
        return QFileDialog::getExistingDirectory(this, title, start);
    };

    renderQueue = std::make_shared<RenderQueue>(renderQueueStillItem);
    auto* window = new MVRenderQueueWindow(this);
    window->hide();
    renderQueueWindow = window;
    connect(window, &MVRenderQueueWindow::cancelItemRequested, this, &MainWindow::cancelRenderQueueItem);
    connect(window, &MVRenderQueueWindow::cancelAllRequested, this, &MainWindow::cancelProcessingButtonPressed);
    processingInfoTimer = new QTimer(this);
    processingInfoTimer->setInterval(500);
    connect(processingInfoTimer, &QTimer::timeout, this, &MainWindow::processingInfoTimerFired);

    sendToPluginButton = new QPushButton(QStringLiteral("Send To Premiere"), central);
    sendToPluginButton->setFocusPolicy(Qt::NoFocus);
    sendToPluginButton->setStyleSheet(QStringLiteral(
        "QPushButton { color: #1e1a16; background: #e3963e; border-radius: 4px; padding: 2px 12px; }"
        "QPushButton:pressed { background: #c27a2c; }"));
    sendToPluginButton->hide();
    connect(sendToPluginButton, &QPushButton::released, this, &MainWindow::sendToPluginHost);

    // The .cube entries sit with the filter files; "Preferences..." takes the platform's place.
    QAction* before = actionByText(QStringLiteral("Save Filter to Presets..."));
    for (const char* text : {"Export Filter LUT...", "Load LUT..."}) {
        QAction* a = addMenuAction(fileMenu, text);
        if (before)
            fileMenu->insertAction(before, a);
    }
    editMenu->addSeparator();
    addMenuAction(editMenu, "Preferences...")->setMenuRole(QAction::PreferencesRole);
}

MVRenderQueueWindow* MainWindow::queueWindow() const
{
    return static_cast<MVRenderQueueWindow*>(renderQueueWindow);
}

bool MainWindow::saveAreaMenuTriggered(const std::string& t, QAction*)
{
    if (t == "Save As...") {
        saveFlow(false, true);
    } else if (t == "Save Over Original") {
        saveFlow(false, false);
    } else if (t == "Batch Process Folder...") {
        batchFlow();
    } else if (t == "Export Filter LUT...") {
        exportFilterLutFlow();
    } else if (t == "Load LUT...") {
        loadLutFlow();
    } else if (t == "Preferences...") {
        showPreferencesWindow();
    } else if (t == "Send To Premiere") {
        sendToPluginHost();
    } else if (t == "Show/Hide Render Queue") {
        processingInfoTimerFired();
        renderQueueWindow->toggleShown();
    } else {
        return false;
    }
    return true;
}

// ---------------------------------------------------------------------------------------------
// The tile list

std::vector<std::unique_ptr<ImageMod>> MainWindow::currentModClones()
{
    std::vector<std::unique_ptr<ImageMod>> clones;
    // Everything the tray runs, "Toggle Original" or not: a save always takes the whole look.
    if (TrayWidget* tray = currentTray()) {
        for (ImageMod* m : tray->flatModList(false))
            if (m)
                clones.push_back(cloneMod(*m));
    }
    return clones;
}

// ---------------------------------------------------------------------------------------------
// Save and batch

void MainWindow::saveFlow(bool, bool showDialog)
{
    MVDocument* doc = currentDocument < documentCount ? &documents[size_t(currentDocument)] : nullptr;
    MVMediaWidget* v = doc ? doc->viewer : nullptr;
    if (!v || !v->hasMedia || doc->filePath.isEmpty()) {
        showMessage(QStringLiteral("No File Loaded"), QStringLiteral("No file loaded to save."));
        return;
    }
    // No video is ever loaded here, so the video refusals and "Save Video Frame..." never arise.
    const std::string original = utf8(doc->filePath);
    if (!showDialog && !isNativeImagePath(original) &&
        !findSaveFormat(original, doc->mediaInfo.bitsPerComponent)) {
        showMessage(QStringLiteral("Can't Save Format"),
                    QStringLiteral("You must use Save As instead, Vantrel can't save in this image's format."));
        return;
    }

    const std::vector<std::unique_ptr<ImageMod>> mods = currentModClones();
    const std::vector<ImageMod*> list = rawList(mods);
    int32_t offeredWidth = 0, offeredHeight = 0;
    {
        std::lock_guard<std::mutex> lock(v->sourceMutex);
        if (!v->sourceImage)
            return;
        fullOutputSize(v->sourceImage->width, v->sourceImage->height, list, offeredWidth, offeredHeight);
    }

    MultiData& prefs = MultiData::global();
    int quality = prefs.getInt(kLastImageSaveQuality, kDefaultSaveQuality);
    int width = offeredWidth, height = offeredHeight;
    int32_t flags = kRenderSaveDepthFromFormat;
    QString path = doc->filePath;
    if (showDialog) {
        SaveSizeWindow dialog(this);
        dialog.setOfferedSize(offeredWidth, offeredHeight);
        dialog.setQuality(quality);
        dialog.setExtension(QStringLiteral(".") + fromUtf8(prefs.getString(kLastImgSaveExtensionStr, "jpg")));
        dialog.disablePostfixFields();
        dialog.setOkButtonText(QStringLiteral("Save"));
        if (!saveDialogs.runOptions || !saveDialogs.runOptions(dialog))
            return;
        width = dialog.resultWidth();
        height = dialog.resultHeight();
        quality = dialog.resultQuality();
        const int row = dialog.resultExtensionIndex();
        const QString extension = dialog.resultExtension();
        prefs.setInt(kLastImageSaveQuality, quality);
        prefs.setString(kLastImgSaveExtensionStr, utf8(extension));
        flags = renderSaveFlagsForFormat(row);

        const QString folder = fromUtf8(prefs.getString(kLastImgSavePathStr, utf8(QFileInfo(doc->filePath).absolutePath())));
        const QString start = folder + QLatin1Char('/') + QFileInfo(doc->filePath).completeBaseName() +
            QLatin1Char('.') + extension;
        const QString filter = QString::fromLatin1(mediaSaveFormats()[size_t(row)].displayName) +
            QStringLiteral(" files (*.") + extension + QLatin1Char(')');
        path = saveDialogs.askSavePath ? saveDialogs.askSavePath(QStringLiteral("Save File As"), start, filter) : QString();
        if (path.isEmpty())
            return;
        if (!pathHasRowExtension(path, row))
            path += QLatin1Char('.') + extension;
        if (QFileInfo(path).absoluteFilePath() == QFileInfo(doc->filePath).absoluteFilePath()) {
            const int answer = showMessage(
                QStringLiteral("Confirm Overwrite"),
                QStringLiteral("You have chosen to save over your original file (") + path +
                    QStringLiteral("). Do you want to continue and overwrite your original file?"),
                QStringLiteral("Overwrite"), QStringLiteral("Cancel"));
            if (answer != 0)
                return;
        }
    }

    prefs.setString(kLastImgSavePathStr, utf8(QFileInfo(path).absolutePath()));
    const bool sized = width != offeredWidth || height != offeredHeight;
    bool ok = false;
    {
        std::lock_guard<std::mutex> lock(v->sourceMutex);
        ok = v->sourceImage && renderAndSave(*v->sourceImage, doc->mediaInfo, utf8(path), sized ? width : 0,
                                             sized ? height : 0, list, flags, float(quality));
    }
    if (!ok)
        showMessage(QStringLiteral("Processing Error"),
                    QStringLiteral("There was an error processing your media. You may need to try another location, "
                                   "format, size, or quality setting."));
}

void MainWindow::batchFlow()
{
    MultiData& prefs = MultiData::global();
    if (showMessage(QStringLiteral("Choose Input Folder"),
                    QStringLiteral("First, select the folder containing the files you want to batch process."),
                    QStringLiteral("Next"), QStringLiteral("Cancel")) != 0)
        return;
    const QString input = saveDialogs.askFolder
        ? saveDialogs.askFolder(QStringLiteral("Choose Folder To Process"),
                                fromUtf8(prefs.getString(PrefKeys::kLastMediaLoadPath, "")))
        : QString();
    if (input.isEmpty())
        return;
    const std::vector<std::string> files = batchInputFiles(utf8(input));
    if (files.empty()) {
        showMessage(QStringLiteral("No media found"), QStringLiteral("No media was found to batch process."));
        return;
    }

    SaveSizeWindow dialog(this);
    dialog.setWindowTitle(QStringLiteral("Image Saving Options"));
    dialog.setDialogText(QStringLiteral("Next, set the saving options for images."));
    dialog.hideSizeFields();
    dialog.setPostfix(fromUtf8(prefs.getString(kLastBatchPostfix, "_batch")));
    dialog.setQuality(prefs.getInt(kLastImageSaveQuality, kDefaultSaveQuality));
    dialog.setExtension(QStringLiteral(".") + fromUtf8(prefs.getString(kLastImgSaveExtensionStr, "jpg")));
    dialog.setOkButtonText(QStringLiteral("Next"));
    if (!saveDialogs.runOptions || !saveDialogs.runOptions(dialog))
        return;
    const QString postfix = dialog.resultPostfix();
    const int quality = dialog.resultQuality();
    const int row = dialog.resultExtensionIndex();
    const QString extension = dialog.resultExtension();
    prefs.setString(kLastBatchPostfix, utf8(postfix));
    prefs.setInt(kLastImageSaveQuality, quality);
    prefs.setString(kLastImgSaveExtensionStr, utf8(extension));

    if (showMessage(QStringLiteral("Choose Output Folder"),
                    QStringLiteral("Finally, select the folder where you want to save your batch processed files."),
                    QStringLiteral("Next"), QStringLiteral("Cancel")) != 0)
        return;
    const QString output = saveDialogs.askFolder
        ? saveDialogs.askFolder(QStringLiteral("Choose Ouput Folder"), fromUtf8(prefs.getString(kLastBatchSaveDir, "")))
        : QString();
    if (output.isEmpty())
        return;
    prefs.setString(kLastBatchSaveDir, utf8(output));

    // A new batch starts a fresh list of failures unless it joins one under way.
    if (!renderQueue->isRunning())
        renderQueue->clearHistory();
    const std::vector<std::unique_ptr<ImageMod>> mods = currentModClones();
    const std::vector<ImageMod*> list = rawList(mods);
    for (const std::string& file : files) {
        RenderQueueItem item;
        item.kind = RenderQueueItem::kindStill;
        item.sourcePath = file;
        item.destPath = batchOutputPath(utf8(output), file, utf8(postfix), utf8(extension));
        item.quality = quality;
        item.extensionIndex = row;
        item.setMods(list);
        renderQueue->addItem(std::move(item));
    }
    renderQueue->start();
    processingInfoTimer->start();
    processingInfoTimerFired();
    renderQueueWindow->show();
    renderQueueWindow->raise();
}

// ---------------------------------------------------------------------------------------------
// Render queue

void MainWindow::processingInfoTimerFired()
{
    const RenderQueueSnapshot s = renderQueue->snapshot();
    queueWindow()->showSnapshot(s);
    if (!s.running)
        processingInfoTimer->stop();
}

void MainWindow::cancelRenderQueueItem(int ID)
{
    renderQueue->cancelItemByID(ID);
    processingInfoTimerFired();
}

void MainWindow::cancelProcessingButtonPressed()
{
    if (showMessage(QStringLiteral("Cancel Processing"),
                    QStringLiteral("Do you want to cancel all items currently in the processing queue?"),
                    QStringLiteral("Yes"), QStringLiteral("No")) == 0) {
        renderQueue->cancelAll();
        processingInfoTimerFired();
    }
}

// ---------------------------------------------------------------------------------------------
// Preferences

void MainWindow::showPreferencesWindow()
{
    delete preferencesWindow.data();
    auto* w = new XmlPreferencesWindow(MultiData::global(), this);
    w->setAttribute(Qt::WA_DeleteOnClose);
    preferencesWindow = w;
    w->addColorRows();
    w->addCheckRow(QString::fromLatin1(PrefKeys::kUseHoverPreviews), QStringLiteral("Show Hover Previews"),
                   QStringLiteral("Show the effect of a tile or preset while the pointer rests on it."),
                   hoverPreviewsAction->isChecked());
    w->addCheckRow(QString::fromLatin1(PrefKeys::kAutohideControls), QStringLiteral("Autohide Controls"),
                   QStringLiteral("Hide the tile controls until the pointer comes near them."),
                   autohideAction->isChecked());
    // Storing the quality as text is fine: the reader takes the number out of the text.
    w->addChoiceRow(QString::fromLatin1(kLastImageSaveQuality),
                    {QStringLiteral("100"), QStringLiteral("95"), QStringLiteral("90"), QStringLiteral("85"),
                     QStringLiteral("80"), QStringLiteral("70"), QStringLiteral("60"), QStringLiteral("50")},
                    QStringLiteral("Default Save Quality"));
    w->addChoiceRow(QString::fromLatin1(kLastImgSaveExtensionStr),
                    {QStringLiteral("jpg"), QStringLiteral("png"), QStringLiteral("tif")},
                    QStringLiteral("Default Save Type"));
    // The menu's check marks follow the window, and the window's values are what closing stores.
    connect(w, &XmlPreferencesWindow::preferenceChanged, this, [this](const QString& key) {
        MultiData& prefs = MultiData::global();
        if (key == QLatin1String(PrefKeys::kUseHoverPreviews))
            hoverPreviewsAction->setChecked(prefs.getBool(PrefKeys::kUseHoverPreviews, true));
        else if (key == QLatin1String(PrefKeys::kAutohideControls))
            autohideAction->setChecked(prefs.getBool(PrefKeys::kAutohideControls, false));
    });
    w->show();
    w->raise();
}

// ---------------------------------------------------------------------------------------------
// .cube files

void MainWindow::exportFilterLutFlow()
{
    const std::vector<std::unique_ptr<ImageMod>> mods = currentModClones();
    MultiData& prefs = MultiData::global();
    const QString folder = fromUtf8(prefs.getString(kLastLutPath, utf8(QDir::homePath())));
    QString path = saveDialogs.askSavePath
        ? saveDialogs.askSavePath(QStringLiteral("Export Filter LUT"), folder + QStringLiteral("/Filter.cube"),
                                  QStringLiteral("Cube LUT files (*.cube)"))
        : QString();
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().compare(QLatin1String("cube"), Qt::CaseInsensitive) != 0)
        path += QStringLiteral(".cube");
    prefs.setString(kLastLutPath, utf8(QFileInfo(path).absolutePath()));
    if (!exportFilterLut(rawList(mods), utf8(path)))
        showMessage(QStringLiteral("Can't Export LUT"),
                    QStringLiteral("The LUT could not be written to ") + path +
                        QStringLiteral(". You may need to try another location."));
}

void MainWindow::loadLutFlow()
{
    MultiData& prefs = MultiData::global();
    const QString path = saveDialogs.askOpenPath
        ? saveDialogs.askOpenPath(QStringLiteral("Load LUT"), fromUtf8(prefs.getString(kLastLutPath, utf8(QDir::homePath()))),
                                  QStringLiteral("Cube LUT files (*.cube *.CUBE)"))
        : QString();
    if (path.isEmpty())
        return;
    prefs.setString(kLastLutPath, utf8(QFileInfo(path).absolutePath()));
    addLutTile(path);
}

bool MainWindow::addLutTile(const QString& path)
{
    auto table = std::make_shared<ImageModLUT3DTable>();
    std::string message;
    if (!readCubeFile(utf8(path), *table, message)) {
        showMessage(QStringLiteral("Can't Load LUT"),
                    QStringLiteral("Vantrel can't read ") + QFileInfo(path).fileName() + QStringLiteral(": ") +
                        fromUtf8(message));
        return false;
    }
    TrayWidget* tray = currentTray();
    if (!tray)
        return false;
    ImageModLUT3D lut;
    if (ImageModVariable* file = lut.variableAt(ImageModLUT3D::fileIndex))
        if (auto* data = static_cast<ImageModVariableDataFile*>(file->variableAs(kVariableFile)))
            data->path = utf8(path);
    lut.setTable(std::move(table), utf8(path));
    tray->pushSequenceUndo();
    if (tray->addMod(lut) < 0)
        return false;
    trayContentChanged();
    return true;
}

// ---------------------------------------------------------------------------------------------
// Plug-in hand-back

QString MainWindow::pluginReturnFilterPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
        QStringLiteral("/pluginreturnfilter.vnf");
}

void MainWindow::setPluginMode(const QString& callID)
{
    pluginMode = true;
    pluginCallID = callID;
    // The hand-back takes "s" and Ctrl+S; the saves keep their other keys.
    if (QAction* saveOver = actionByText(QStringLiteral("Save Over Original")))
        saveOver->setShortcuts({});
    if (QAction* saveAs = actionByText(QStringLiteral("Save As...")))
        saveAs->setShortcuts({QKeySequence(QStringLiteral("Ctrl+Shift+s"))});
    if (!actionByText(QStringLiteral("Send To Premiere"))) {
        QMenu* file = menuBar()->actions().isEmpty() ? nullptr : menuBar()->actions().first()->menu();
        if (file) {
            QAction* a = addMenuAction(file, "Send To Premiere", {"s", "Ctrl+s"});
            if (!file->actions().isEmpty())
                file->insertAction(file->actions().first(), a);
        }
    }
    sendToPluginButton->show();
    placePluginButton();
}

void MainWindow::placePluginButton()
{
    if (!sendToPluginButton || !pluginMode)
        return;
    const QRect area = documentArea();
    sendToPluginButton->setGeometry(area.right() - 150, area.bottom() + 4, 144, miniStripHeight - 8);
    sendToPluginButton->raise();
}

void MainWindow::sendToPluginHost()
{
    const QByteArray id = pluginCallID.isEmpty() ? QByteArray("NULLID") : pluginCallID.toUtf8();
    TrayWidget* tray = currentTray();
    // The file keeps the tray's structure (groups stay groups); disabled tiles count as tiles.
    const std::vector<const ImageMod*> tiles = tray ? tray->rootTiles() : std::vector<const ImageMod*>{};
    if (tiles.empty()) {
        std::fprintf(pluginOutput, "pluginreturn -clearmods -id %s\n", id.constData());
        std::fflush(pluginOutput);
        return;
    }
    const QString path = pluginReturnFilterPath();
    QDir().mkpath(QFileInfo(path).absolutePath());
    if (!writeFilter(tiles, utf8(path))) {
        showMessage(QStringLiteral("Processing Error"),
                    QStringLiteral("The filter could not be written to ") + path + QLatin1Char('.'));
        return;
    }
    std::fprintf(pluginOutput, "pluginreturn -filter %s -id %s\n", path.toUtf8().constData(), id.constData());
    std::fflush(pluginOutput);
}
