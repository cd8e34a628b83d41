// The main window's side of the modal tools: starting and ending them, Undo while one runs, and
// the quarter turns of the photo.
#include "ui/MainWindow.h"

#include "document/MVMediaWidget.h"
#include "document/UndoCommandRotateMedia.h"
#include "mods/CropToolGeometry.h"
#include "mods/ImageModCrop.h"
#include "mods/ImageModSize2.h"
#include "tools/MVFullScreenControl.h"
#include "tools/OnCanvasControls.h"
#include "tools/MVToolWidgetCrop.h"
#include "tools/MVToolWidgetRetouch.h"
#include "ui/TrayWidget.h"

#include <QtCore/QPointer>

#include <algorithm>

namespace {

bool carriesTag(const ImageMod& mod, int32_t tag)
{
    for (int32_t t : mod.tags)
        if (t == tag)
            return true;
    return false;
}

// The aspect a size tile fixes for the crop, 0 when none does.
void sizeTileAspect(const std::vector<ImageMod*>& list, int32_t w, int32_t h, float& ratio, bool& follows)
{
    ratio = 0.0f;
    follows = true;
    for (ImageMod* m : list) {
        auto* size = dynamic_cast<ImageModSize2*>(m);
        if (!size || !size->enabled || !carriesTag(*size, kTagSize))
            continue;
        const float ow = size->outputWidth(float(w), float(h));
        const float oh = size->outputHeight(float(w), float(h));
        const float r = oh > 0.0f ? ow / oh : 0.0f;
        if (r > 0.0f && size->locksCropAspect(r)) {
            ratio = r;
            follows = size->cropAspectFollowsOrientation();
        }
        return;
    }
}

} // namespace

ImageMod* MainWindow::documentCrop(MVDocument& doc) const
{
    if (!doc.tray)
        return nullptr;
    for (const auto& m : doc.tray->hiddenMods)
        if (m && carriesTag(*m, kTagCrop))
            return m.get();
    return nullptr;
}

void MainWindow::commitCropToDocument(MVDocument& doc, std::unique_ptr<ImageMod> crop)
{
    if (doc.tray && crop)
        doc.tray->setHiddenMod(std::move(crop));
}

void MainWindow::showOnCanvasControlsFor(ImageMod* mod)
{
    std::vector<QWidget*> old = std::move(nodeControls);
    nodeControls.clear();
    for (QWidget* w : old)
        delete w;
    MVMediaWidget* viewer = currentViewer();
    if (!mod || !viewer || activeTool)
        return;
    for (MVFullScreenControl* c : createOnCanvasControls(mod, viewer)) {
        connect(c, &MVFullScreenControl::aboutToAdjust, this, [this] { controlAboutToBeAdjusted(); });
        connect(c, &MVFullScreenControl::didAdjust, this, &MainWindow::controlAdjusted);
        // A control goes with its viewer when the tab closes.
        connect(c, &QObject::destroyed, this, [this, c] {
            nodeControls.erase(std::remove(nodeControls.begin(), nodeControls.end(), static_cast<QWidget*>(c)),
                               nodeControls.end());
        });
        nodeControls.push_back(c);
    }
}

void MainWindow::startTool(int toolID)
{
    if (toolID != 0 && toolID != 1)
        return;
    if (activeTool) {
        const bool same = toolID == 0 ? qobject_cast<MVToolWidgetCrop*>(activeTool) != nullptr
                                      : qobject_cast<MVToolWidgetRetouch*>(activeTool) != nullptr;
        if (same)
            return;
        toolRequestedExit(activeTool);
    }
    if (currentDocument < 0 || currentDocument >= documentCount)
        return;
    MVDocument& doc = documents[size_t(currentDocument)];
    MVMediaWidget* viewer = doc.viewer;
    bool media = false;
    if (viewer) {
        std::lock_guard<std::mutex> lock(viewer->stateMutex);
        media = viewer->hasMedia;
    }
    if (!media) {
        showMessage(QStringLiteral("No Media Loaded"), QStringLiteral("No media is currently loaded."),
                    QStringLiteral("OK"));
        return;
    }
    if (toolID == 1 && viewer->videoLoader) {
        showMessage(QStringLiteral("Can't Spot Heal Videos"), QStringLiteral("Spot Heal can only be used on photos."),
                    QStringLiteral("OK"));
        return;
    }
    clearTraySelection();

    MVToolWidget* tool = nullptr;
    if (toolID == 0) {
        auto* crop = new MVToolWidgetCrop(viewer);
        const std::vector<ImageMod*> list = doc.tray ? doc.tray->flatModList(false) : std::vector<ImageMod*>{};
        float ratio = 0.0f;
        bool follows = true;
        sizeTileAspect(list, viewer->sourceWidth, viewer->sourceHeight, ratio, follows);
        crop->disableOverlappingMods(list);
        crop->setAspectLock(ratio, follows);
        crop->beginEditing(documentCrop(doc));
        connect(crop, &MVToolWidgetCrop::rotateRequested, this, [this](bool cw) { rotateCurrentMedia(cw); });
        tool = crop;
    } else {
        auto* heal = new MVToolWidgetRetouch(viewer);
        heal->disableOverlappingMods({});
        heal->beginEditing(nullptr);
        tool = heal;
    }
    connect(tool, &MVToolWidget::requestToolExit, this, &MainWindow::toolRequestedExit);
    // Should its viewer go first, the tool goes with it.
    connect(tool, &QObject::destroyed, this, [this, tool] {
        if (activeTool == tool)
            activeTool = nullptr;
    });
    activeTool = tool;
    handListToViewer(doc);
    tool->show();
    tool->raise();
    tool->setFocus();
    updateWindowTitle();
}

void MainWindow::toolRequestedExit(MVToolWidget* whichTool)
{
    if (!whichTool || whichTool != activeTool)
        return;
    activeTool = nullptr;
    MVDocument* doc = nullptr;
    for (MVDocument& d : documents)
        if (d.viewer == whichTool->viewer())
            doc = &d;

    if (auto* crop = qobject_cast<MVToolWidgetCrop*>(whichTool)) {
        // The tiles come back before the snapshot, so undo restores them switched on.
        crop->restoreDisabledMods();
        const bool changed = crop->cropChanged();
        if (changed && doc && doc->tray)
            doc->tray->pushSequenceUndo();
        crop->endEditing();
        if (doc && crop->freshCrop && changed)
            commitCropToDocument(*doc, std::move(crop->freshCrop));
    } else if (auto* heal = qobject_cast<MVToolWidgetRetouch*>(whichTool)) {
        heal->endEditing();
        heal->restoreDisabledMods();
        // Every spot becomes a step of the document's own history.
        if (doc && doc->tray && doc->tray->undoStack()) {
            if (heal->toolUndo.canUndo())
                doc->tray->modified = true;
            doc->tray->undoStack()->absorb(heal->toolUndo);
        }
        heal->toolUndo.clear();
    } else {
        whichTool->endEditing();
        whichTool->restoreDisabledMods();
    }
    whichTool->hide();
    whichTool->deleteLater();
    if (doc)
        handListToViewer(*doc);
    updateWindowTitle();
}

void MainWindow::rotateCurrentMedia(bool clockwise)
{
    if (currentDocument < 0 || currentDocument >= documentCount)
        return;
    MVDocument& doc = documents[size_t(currentDocument)];
    if (!doc.viewer || !doc.viewer->sourceImage)
        return;
    // Heal steps wait in the spot heal tool's own history; a turn now would land before them.
    if (qobject_cast<MVToolWidgetRetouch*>(activeTool))
        return;
    TrayWidget* tray = doc.tray;
    QPointer<MVToolWidgetCrop> cropTool = qobject_cast<MVToolWidgetCrop*>(activeTool);
    // The cut follows the photo round: the document's crop, or the tool's copy while the tool runs
    // (it writes the crop back when it ends). Undone later, the turn finds the tool gone.
    auto onTurn = [tray, cropTool](bool cw) {
        MVToolWidgetCrop* crop = cropTool.data();
        const ImageMod* inEdit = crop ? crop->modBeingEdited : nullptr;
        if (tray) {
            for (const auto& m : tray->hiddenMods) {
                if (!m || !carriesTag(*m, kTagCrop) || m.get() == inEdit)
                    continue;
                float v[4];
                for (int32_t i = 0; i < 4; ++i)
                    v[i] = m->floatValue(i + 1);
                rotateCropInsets(v[0], v[1], v[2], v[3], cw);
                for (int32_t i = 0; i < 4; ++i)
                    if (ImageModVariable* var = m->variableAt(i + 1); var && var->asFloat())
                        var->asFloat()->value = v[i];
            }
        }
        if (crop)
            crop->mediaRotated(cw);
    };
    auto* command = new UndoCommandRotateMedia(doc.viewer, clockwise, onTurn);
    bool kept = false;
    if (tray && tray->undoStack()) {
        tray->modified = true;
        kept = tray->undoStack()->push(command);
    } else {
        kept = command->execute();
        delete command;
    }
    if (kept) {
        handListToViewer(doc);
        updateWindowTitle();
    }
}

bool MainWindow::toolMenuAction(const std::string& t)
{
    if (t == "Crop/Straighten") {
        startTool(0);
    } else if (t == "Rotate Left" || t == "Rotate Right") {
        rotateCurrentMedia(t == "Rotate Right");
    } else if ((t == "Undo" || t == "Redo") && activeTool) {
        // A running tool keeps its own steps; the document's wait until it ends.
        if (t == "Undo")
            activeTool->undoStep();
        else
            activeTool->redoStep();
    } else {
        return false;
    }
    return true;
}
