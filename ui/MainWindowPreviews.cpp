// Previews: the hover preview of a panel row over the picture, live list choices, and the
// quicklook chooser of presets.
#include "ui/MainWindow.h"

#include "core/ImageModVariableDataChoice.h"
#include "document/MVMediaWidget.h"
#include "document/MVPreviewBaseBuilder.h"
#include "document/MVPreviewChooser.h"
#include "document/MVPreviewPanel.h"
#include "document/core/PreviewList.h"
#include "filters/FileFilter.h"
#include "ui/DevicePixelRatio.h"
#include "ui/MVControlColumn.h"
#include "ui/MVListChooser.h"
#include "ui/MVPanelItemHeader.h"
#include "ui/MVPanelItemListButton.h"
#include "ui/MVToolPanel.h"
#include "ui/TrayWidget.h"

#include <QtCore/QTimer>

#include <algorithm>
#include <mutex>

namespace {

// The viewer keeps this much room around a fitted picture; the preview fits the same way.
constexpr int kFitMargin = 20;
// While the base is being made, waiting hovers and quicklooks look again this often, for at most
// this many ticks (a base that can't be made doesn't keep the timer going).
constexpr int kBaseWaitInterval = 15;
constexpr int kBaseWaitLimit = 1000;
// How often an idle viewer is checked for a base to make ahead of the first hover.
constexpr int kIdleCheckInterval = 250;

std::vector<ImageMod*> cropMods(const std::vector<ImageMod*>& list)
{
    std::vector<ImageMod*> out;
    for (ImageMod* m : list)
        if (m && std::find(m->tags.begin(), m->tags.end(), 0) != m->tags.end())
            out.push_back(m);
    return out;
}

bool sameMods(const std::vector<ImageMod*>& now, const std::vector<std::unique_ptr<ImageMod>>& before)
{
    if (now.size() != before.size())
        return false;
    for (size_t i = 0; i < now.size(); ++i)
        if (!now[i]->isEqual(*before[i]))
            return false;
    return true;
}

} // namespace

void MainWindow::buildPreviews()
{
    previewBaseBuilder = std::make_shared<MVPreviewBaseBuilder>();
    // The panel's signal carries the append flag, which the hover needs to place the mod.
    disconnect(toolPanel, &MVToolPanel::imageModHovered, this, &MainWindow::imageModHovered);
    connect(toolPanel, &MVToolPanel::imageModHovered, this, [this](ImageMod* mod, bool append) {
        hoverAppend = append;
        imageModHovered(mod);
    });
    // A click carries the row out; the preview of it would stand over the real thing, one step behind.
    connect(toolPanel, &MVToolPanel::modButtonClicked, this, [this] { endHoverPreview(); });
    previewBaseTimer = new QTimer(this);
    previewBaseTimer->setInterval(kBaseWaitInterval);
    connect(previewBaseTimer, &QTimer::timeout, this, [this] {
        const QSize bound = previewBaseBound();
        refreshPreviewBase(bound.width(), bound.height());
        const bool waiting = hoverWaitingMod || quicklookWaiting >= 0;
        if (!waiting || ++hoverWaitTicks > kBaseWaitLimit) {
            hoverWaitingMod = nullptr;
            quicklookWaiting = -1;
            if (!previewBaseBuilder->isRunning())
                previewBaseTimer->stop();
            return;
        }
        if (!previewBaseMatches(bound.width(), bound.height()))
            return;
        if (hoverWaitingMod) {
            ImageMod* mod = hoverWaitingMod;
            hoverWaitingMod = nullptr;
            imageModHovered(mod);
        }
        if (quicklookWaiting >= 0) {
            const bool append = quicklookWaiting == 1;
            quicklookWaiting = -1;
            openQuicklook(append);
        }
    });
    previewIdleTimer = new QTimer(this);
    previewIdleTimer->setInterval(kIdleCheckInterval);
    connect(previewIdleTimer, &QTimer::timeout, this, [this] {
        MVMediaWidget* v = currentViewer();
        if (!toolPanel || !toolPanel->hoverPreviews || !v || !v->hasMedia || v->isHidden() || !displaySettled())
            return;
        const QSize bound = previewBaseBound();
        if (!previewBaseMatches(bound.width(), bound.height()))
            refreshPreviewBase(bound.width(), bound.height());
    });
    previewIdleTimer->start();
}

QSize MainWindow::previewBaseBound() const
{
    const MVMediaWidget* v = currentViewer();
    if (!v)
        return QSize();
    const float d = gDevicePixelRatio > 0.0f ? gDevicePixelRatio : 1.0f;
    return QSize(std::max(1, int((v->width() - kFitMargin) * d)), std::max(1, int((v->height() - kFitMargin) * d)));
}

bool MainWindow::previewBaseMatches(int width, int height)
{
    MVMediaWidget* v = currentViewer();
    TrayWidget* tray = currentTray();
    if (previewBaseOutdated || !v || !v->hasMedia || previewBase.isEmpty() || v != previewBaseViewer ||
        previewBaseSize != QSize(width, height))
        return false;
    {
        std::lock_guard<std::mutex> lock(v->stateMutex);
        if (v->previewBaseStale)
            return false;
    }
    return sameMods(cropMods(tray ? tray->flatModList(false) : std::vector<ImageMod*>{}), previewBaseCrop);
}

bool MainWindow::refreshPreviewBase(int width, int height)
{
    bool fresh = false;
    MVPreviewBaseBuilder::Result done;
    if (previewBaseBuilder->takeResult(done)) {
        previewBaseOutdated = false;
        // Requests the viewer got while the build held its worker get their pass now.
        if (done.viewerWantsPass)
            for (MVDocument& d : documents)
                if (d.viewer == done.viewer)
                    d.viewer->requestProcessing();
        if (done.image && done.viewer == currentViewer()) {
            previewBase.copyFrom(*done.image, true);
            previewBaseViewer = done.viewer;
            previewBaseSize = QSize(done.width, done.height);
            previewBaseCrop = std::move(done.crop);
            ++previewBaseGeneration;
            fresh = true;
        }
    }
    MVMediaWidget* v = currentViewer();
    TrayWidget* tray = currentTray();
    if (!v || !v->hasMedia || width < 1 || height < 1 || previewBaseMatches(width, height))
        return fresh;
    // A busy viewer or a build under way: the timer looks again shortly.
    if (previewBaseBuilder->start(v, cropMods(tray ? tray->flatModList(false) : std::vector<ImageMod*>{}), width,
                                  height)) {
        previewBaseOutdated = true;
        if (!previewBaseTimer->isActive())
            previewBaseTimer->start();
    }
    return fresh;
}

void MainWindow::imageModHovered(ImageMod* mod)
{
    if (mod != hoverWaitingMod)
        hoverWaitTicks = 0;
    hoverWaitingMod = nullptr;
    if (!mod) {
        endHoverPreview();
        return;
    }
    if (!toolPanel || !toolPanel->hoverPreviews)
        return;
    MVMediaWidget* viewer = currentViewer();
    TrayWidget* tray = currentTray();
    // Geometry, masks, look-up tables and overlays can't be shown from the small base; nor can
    // anything while a tool shows the whole uncropped picture.
    if (!mod->isPlainAdjustment() || !viewer || !viewer->hasMedia || !tray || activeTool) {
        endHoverPreview();
        return;
    }
    if (!previewPanel)
        previewPanel = new MVPreviewPanel(central);

    const QSize bound = previewBaseBound();
    refreshPreviewBase(bound.width(), bound.height());
    if (!previewBaseMatches(bound.width(), bound.height())) {
        // The base is being made: the hover shows as soon as it stands.
        hoverWaitingMod = mod;
        if (!previewBaseTimer->isActive())
            previewBaseTimer->start();
        return;
    }

    std::vector<std::unique_ptr<ImageMod>> clones = previewClones(tray->flatModList(true));
    const bool preset = dynamic_cast<const FileFilter*>(mod) != nullptr;
    placeHoveredMod(clones, *mod,
                    hoverAppend ? PreviewPlacement::Append
                                : (preset ? PreviewPlacement::ReplaceAll : PreviewPlacement::ReplaceSlot));
    const bool fresh = previewPanelGeneration != previewBaseGeneration;
    if (fresh) {
        previewPanel->flushCache();
        previewPanelGeneration = previewBaseGeneration;
    }
    std::shared_ptr<ColorTransformSet> transform;
    {
        std::lock_guard<std::mutex> lock(viewer->stateMutex);
        transform = viewer->displayTransform;
    }
    previewPanel->setGeometry(QRect(viewer->mapTo(central, QPoint(0, 0)), viewer->size()));
    // A preset is known by its file's name; a tile by its label.
    previewPanel->showPreview(std::move(clones), fresh ? &previewBase : nullptr, transform,
                              QString::fromStdString(preset ? mod->name : mod->displayName));
}

void MainWindow::endHoverPreview()
{
    if (!previewPanel || !previewPanel->isActive())
        return;
    previewPanel->endPreview();
    if (currentDocument >= 0 && currentDocument < documentCount)
        handListToViewer(documents[size_t(currentDocument)]);
}

void MainWindow::controlHovered(QWidget* control)
{
    if (!controlColumn || !control || !controlledMod || !toolPanel || !toolPanel->hoverPreviews)
        return;
    auto* list = qobject_cast<MVListChooser*>(control);
    const int32_t index = controlColumn->variableIndexOf(control);
    ImageModVariable* variable = controlledMod->variableAt(index);
    ImageModVariableDataChoice* choice = variable ? variable->asChoice() : nullptr;
    if (!list || !choice)
        return;
    const int item = list->hoveredIndex();
    if (item < 0 || item >= choice->labelCount())
        return;
    TrayWidget* tray = currentTray();
    // A list on a switched-off tile would show nothing: the tile comes on.
    if (!controlledMod->enabled) {
        controlledMod->enabled = true;
        if (tray)
            tray->refreshNodes();
    }
    // Live, without an undo step: the list undoes its hover before a choice is reported.
    choice->index = item;
    controlledMod->variableChanged(index);
    if (tray)
        tray->modified = true;
    controlAdjusted(control);
}

void MainWindow::openQuicklook(bool append)
{
    if (quicklook)
        quicklook->closeButtonPressed();
    MVMediaWidget* viewer = currentViewer();
    TrayWidget* tray = currentTray();
    if (!viewer || !viewer->hasMedia || !tray || !toolPanel || activeTool)
        return;
    endHoverPreview();
    const QSize bound = previewBaseBound();
    refreshPreviewBase(bound.width(), bound.height());
    if (!previewBaseMatches(bound.width(), bound.height())) {
        // The chooser opens as soon as the base stands.
        quicklookWaiting = append ? 1 : 0;
        hoverWaitTicks = 0;
        if (!previewBaseTimer->isActive())
            previewBaseTimer->start();
        return;
    }

    // In append mode every thumbnail starts from the tray's look; otherwise only pinned tiles stay.
    std::vector<ImageMod*> shared;
    for (ImageMod* m : tray->flatModList(true))
        if (m && (append || m->pinned))
            shared.push_back(m);

    auto* chooser = new MVPreviewChooser(append, central);
    chooser->setSource(previewBase, shared);
    chooser->placement = [this] {
        QRect r = central->rect();
        // The panel stays in sight: its sections fold in step with the chooser's.
        if (panelVisible)
            r.setRight(r.right() - panelWidth);
        return r;
    };
    const MVToolPanel::Tab* tab = toolPanel->tab(MVToolPanel::kPresetsTab);
    if (tab) {
        QString section;
        for (MVPanelItem* item : tab->items) {
            if (auto* header = dynamic_cast<MVPanelItemHeader*>(item)) {
                section = header->text();
                chooser->addSection(MVToolPanel::kPresetsTab, section, toolPanel->isSectionCollapsed(section));
            } else if (auto* row = dynamic_cast<MVPanelItemListButton*>(item)) {
                const MVPanelItemListButton* original = row->isMirror && row->mirrorOf ? row->mirrorOf : row;
                if (original->templateMod())
                    chooser->addPreset(original->nameText, *original->templateMod());
            }
        }
    }
    connect(chooser, &MVPreviewChooser::previewChosen, this, &MainWindow::filterPreviewChosen);
    connect(chooser, &MVPreviewChooser::sectionEnabled, this, &MainWindow::previewSectionEnabled);
    quicklook = chooser;
    chooser->begin();
    chooser->show();
    chooser->raise();
    chooser->setFocus();
}

void MainWindow::filterPreviewChosen(ImageMod* mod, bool append)
{
    // The same road as the panel's preset rows: one undo step, replace or append.
    addPanelModToTray(mod, append);
}

void MainWindow::previewSectionEnabled(int tabID, QString sectionName, bool enabled)
{
    if (!toolPanel)
        return;
    MVPanelItemHeader* header = toolPanel->header(tabID, sectionName);
    if (header && toolPanel->isSectionCollapsed(sectionName) == enabled)
        toolPanel->headerToggled(header);
}
