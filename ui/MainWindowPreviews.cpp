// Previews: the hover preview of a panel row over the picture, live list choices, and the
// quicklook chooser of presets.
#include "ui/MainWindow.h"

#include "core/ImageModVariableDataChoice.h"
#include "document/MVMediaWidget.h"
#include "document/MVPreviewChooser.h"
#include "document/MVPreviewPanel.h"
#include "document/core/GeometryResampling.h"
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
// How soon a hover that found the source busy (a pass reading it) asks again, and how often.
constexpr int kHoverRetryInterval = 15;
constexpr int kHoverRetryLimit = 200;

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
    // The panel's signal carries the append flag, which the hover needs to place the mod.
    disconnect(toolPanel, &MVToolPanel::imageModHovered, this, &MainWindow::imageModHovered);
    connect(toolPanel, &MVToolPanel::imageModHovered, this, [this](ImageMod* mod, bool append) {
        hoverAppend = append;
        imageModHovered(mod);
    });
    hoverRetryTimer = new QTimer(this);
    hoverRetryTimer->setSingleShot(true);
    hoverRetryTimer->setInterval(kHoverRetryInterval);
    connect(hoverRetryTimer, &QTimer::timeout, this, [this] {
        if (hoverRetryMod)
            imageModHovered(hoverRetryMod);
    });
}

QSize MainWindow::previewBaseBound() const
{
    const MVMediaWidget* v = currentViewer();
    if (!v)
        return QSize();
    const float d = gDevicePixelRatio > 0.0f ? gDevicePixelRatio : 1.0f;
    return QSize(std::max(1, int((v->width() - kFitMargin) * d)), std::max(1, int((v->height() - kFitMargin) * d)));
}

bool MainWindow::refreshPreviewBase(int width, int height)
{
    MVMediaWidget* v = currentViewer();
    TrayWidget* tray = currentTray();
    if (!v || !v->hasMedia || width < 1 || height < 1)
        return false;
    const std::vector<ImageMod*> crop = cropMods(tray ? tray->flatModList(false) : std::vector<ImageMod*>{});
    bool stale = false;
    {
        std::lock_guard<std::mutex> lock(v->stateMutex);
        stale = v->previewBaseStale;
    }
    if (!stale && v == previewBaseViewer && previewBaseSize == QSize(width, height) && !previewBase.isEmpty() &&
        sameMods(crop, previewBaseCrop))
        return false;
    {
        // A pass reads the source for its whole length: the caller tries again shortly rather
        // than wait on the GUI thread.
        std::unique_lock<std::mutex> source(v->sourceMutex, std::try_to_lock);
        if (!source.owns_lock() || !v->sourceImage)
            return false;
        if (!geometryResample(*v->sourceImage, previewBase, crop, width, height, false))
            return false;
    }
    {
        std::lock_guard<std::mutex> lock(v->stateMutex);
        v->previewBaseStale = false;
    }
    previewBaseViewer = v;
    previewBaseSize = QSize(width, height);
    previewBaseCrop.clear();
    for (ImageMod* m : crop)
        previewBaseCrop.push_back(cloneMod(*m));
    return true;
}

void MainWindow::imageModHovered(ImageMod* mod)
{
    if (mod != hoverRetryMod)
        hoverRetries = 0;
    hoverRetryMod = nullptr;
    if (hoverRetryTimer)
        hoverRetryTimer->stop();
    if (!mod) {
        endHoverPreview();
        return;
    }
    if (!toolPanel || !toolPanel->hoverPreviews)
        return;
    MVMediaWidget* viewer = currentViewer();
    TrayWidget* tray = currentTray();
    // Geometry, masks, look-up tables and overlays can't be shown from the small base.
    if (!mod->isPlainAdjustment() || !viewer || !viewer->hasMedia || !tray) {
        endHoverPreview();
        return;
    }
    if (!previewPanel)
        previewPanel = new MVPreviewPanel(central);

    const QSize bound = previewBaseBound();
    const bool fresh = refreshPreviewBase(bound.width(), bound.height());
    if (previewBase.isEmpty() || previewBaseViewer != viewer || previewBaseSize != bound) {
        // The viewer's pass holds the source: ask again in a moment.
        if (++hoverRetries < kHoverRetryLimit) {
            hoverRetryMod = mod;
            hoverRetryTimer->start();
        }
        return;
    }

    std::vector<std::unique_ptr<ImageMod>> clones = previewClones(tray->flatModList(true));
    const bool preset = dynamic_cast<const FileFilter*>(mod) != nullptr;
    placeHoveredMod(clones, *mod,
                    hoverAppend ? PreviewPlacement::Append
                                : (preset ? PreviewPlacement::ReplaceAll : PreviewPlacement::ReplaceSlot));
    if (fresh)
        previewPanel->flushCache();
    std::shared_ptr<ColorTransformSet> transform;
    {
        std::lock_guard<std::mutex> lock(viewer->stateMutex);
        transform = viewer->displayTransform;
    }
    previewPanel->setGeometry(QRect(viewer->mapTo(central, QPoint(0, 0)), viewer->size()));
    previewPanel->showPreview(std::move(clones), fresh ? &previewBase : nullptr, transform,
                              QString::fromStdString(mod->displayName));
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
    if (!viewer || !viewer->hasMedia || !tray || !toolPanel)
        return;
    endHoverPreview();
    const QSize bound = previewBaseBound();
    refreshPreviewBase(bound.width(), bound.height());
    if (previewBase.isEmpty() || previewBaseViewer != viewer)
        return;

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
