// The control column of the selected tile: building it, placing it over the picture, the road
// of one edit (undo step, value, new pass), right-click reset and the curve clipboard, autohide.
#include "ui/MainWindow.h"

#include "core/ImageMod.h"
#include "document/MVMediaWidget.h"
#include "filters/MultiData.h"
#include "filters/PreferenceKeys.h"
#include "mods/ImageModTextOverlay.h"
#include "ui/MVControlColumn.h"
#include "ui/TrayWidget.h"

#include <QtGui/QClipboard>
#include <QtGui/QCursor>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QAction>
#include <QtWidgets/QGraphicsOpacityEffect>
#include <QtWidgets/QMenu>

#include <algorithm>

namespace {
// How far above the column's top the cursor still calls it back.
constexpr int kAutohideReach = 24;
constexpr float kFadeStep = 0.125f;
constexpr int kFadeInterval = 16;
} // namespace

void MainWindow::showControlsFor(ImageMod* mod)
{
    if (!controlColumn) {
        controlColumn = new MVControlColumn(central);
        controlsOpacity = new QGraphicsOpacityEffect(controlColumn);
        controlsOpacity->setOpacity(1.0);
        controlColumn->setGraphicsEffect(controlsOpacity);
        connect(controlColumn, &MVControlColumn::aboutToAdjust, this, &MainWindow::controlAboutToBeAdjusted);
        connect(controlColumn, &MVControlColumn::adjusted, this, &MainWindow::controlAdjusted);
        connect(controlColumn, &MVControlColumn::rightClicked, this, &MainWindow::controlRightClicked);
        connect(controlColumn, &MVControlColumn::heightChanged, this, &MainWindow::controlHeightChanged);
        // New text tiles start in the family picked last, in this run and the next.
        connect(controlColumn, &MVControlColumn::fontChosen, this, [](const QString& family) {
            MultiData::global().setString(PrefKeys::kLastFont, family.toStdString());
            ImageModTextOverlay::setDefaultFontFamily(family.toStdString());
        });
        connect(controlColumn, &MVControlColumn::hovered, this, &MainWindow::controlHovered);
        nodeControlAnimationTimer = new QTimer(this);
        nodeControlAnimationTimer->setInterval(kFadeInterval);
        connect(nodeControlAnimationTimer, &QTimer::timeout, this, &MainWindow::nodeControlAnimationTimerFired);
        copyCurveAction = new QAction(QStringLiteral("Copy Curve"), this);
        pasteCurveAction = new QAction(QStringLiteral("Paste Curve"), this);
        // Autohide follows the cursor through hover moves.
        setAttribute(Qt::WA_Hover, true);
    }
    controlledMod = mod;
    curveMenuControl = nullptr;
    controlColumn->setMod(mod);
    panelControls = controlColumn->controls();
    nodeControlAnimationTimer->stop();
    controlsTargetOpacity = 1.0f;
    controlsOpacity->setOpacity(1.0);
    controlColumn->setVisible(mod && !panelControls.empty());
    controlHeightChanged();
    showOnCanvasControlsFor(mod);
}

void MainWindow::controlHeightChanged()
{
    if (!controlColumn)
        return;
    controlColumn->placeIn(documentArea(), trayVisible, trayArea->geometry().top());
    controlColumn->raise();
}

void MainWindow::controlAboutToBeAdjusted()
{
    pushTileAdjustUndo();
    updateWindowTitle();
}

void MainWindow::pushTileAdjustUndo()
{
    // The tray snapshots its selected tile before the value moves.
    ++adjustUndoRequests;
    if (TrayWidget* tray = currentTray())
        tray->pushAdjustUndo();
}

void MainWindow::controlAdjusted(QWidget*)
{
    // The column has written the value into the live variable and run variableChanged; the
    // viewer now gets fresh clones and a pass.
    if (currentDocument < 0 || currentDocument >= documentCount)
        return;
    MVDocument& doc = documents[size_t(currentDocument)];
    const std::vector<ImageMod*> all = doc.tray ? doc.tray->flatModList(false) : std::vector<ImageMod*>{};
    if (std::find(all.begin(), all.end(), controlledMod) != all.end())
        handListToViewer(doc);
    else if (controlledMod)
        doc.viewer->setMods({controlledMod}); // a tile shown outside the tray is the whole list
    updateWindowTitle();
}

void MainWindow::controlRightClicked(QWidget* control)
{
    if (!controlColumn || !control)
        return;
    if (!controlColumn->isCurveControl(control)) {
        controlColumn->resetToDefault(control);
        return;
    }
    curveMenuControl = control;
    QMenu menu(this);
    menu.addAction(copyCurveAction);
    menu.addAction(pasteCurveAction);
    const QClipboard* board = QGuiApplication::clipboard();
    pasteCurveAction->setEnabled(MVControlColumn::isCurveText(MVControlColumn::curveClipboard()) ||
                                 (board && MVControlColumn::isCurveText(board->text())));
    connect(&menu, &QMenu::triggered, this, &MainWindow::menuTriggered);
    menu.exec(QCursor::pos());
}

bool MainWindow::controlMenuTriggered(QAction* act)
{
    if (act == autohideAction && !act->isChecked() && controlColumn && controlledMod) {
        // Turning autohide off brings the controls back at once.
        controlsTargetOpacity = 1.0f;
        if (controlColumn->isHidden() && !panelControls.empty())
            controlColumn->show();
        nodeControlAnimationTimer->start();
        return false;
    }
    if (!act || (act != copyCurveAction && act != pasteCurveAction))
        return false;
    if (controlColumn && curveMenuControl) {
        if (act == copyCurveAction)
            controlColumn->copyCurve(curveMenuControl);
        else
            controlColumn->pasteCurve(curveMenuControl);
    }
    return true;
}

void MainWindow::controlsHoverMoved(QPoint pos)
{
    if (!controlColumn || !controlledMod || panelControls.empty() || !autohideAction->isChecked())
        return;
    const int panelLeft = central->width() - (panelVisible ? panelWidth : 0);
    if (pos.x() >= panelLeft)
        return;
    const float wanted = pos.y() >= controlColumn->geometry().top() - kAutohideReach ? 1.0f : 0.0f;
    if (wanted == controlsTargetOpacity && !nodeControlAnimationTimer->isActive())
        return;
    controlsTargetOpacity = wanted;
    if (wanted > 0.0f && controlColumn->isHidden()) {
        controlsOpacity->setOpacity(0.0);
        controlColumn->show();
    }
    nodeControlAnimationTimer->start();
}

void MainWindow::nodeControlAnimationTimerFired()
{
    if (!controlColumn || !controlsOpacity) {
        if (nodeControlAnimationTimer)
            nodeControlAnimationTimer->stop();
        return;
    }
    const float now = float(controlsOpacity->opacity());
    const float next = now < controlsTargetOpacity ? std::min(controlsTargetOpacity, now + kFadeStep)
                                                   : std::max(controlsTargetOpacity, now - kFadeStep);
    controlsOpacity->setOpacity(qreal(next));
    if (next != controlsTargetOpacity)
        return;
    nodeControlAnimationTimer->stop();
    if (next <= 0.0f)
        controlColumn->hide();
}
