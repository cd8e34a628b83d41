#include "tools/MVToolWidgetRetouch.h"

#include "document/MVMediaWidget.h"
#include "document/UndoCommandChangeImage.h"
#include "document/core/SpotHeal.h"
#include "ui/MVPushButton.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QLabel>

#include <algorithm>
#include <cmath>

MVToolWidgetRetouch::MVToolWidgetRetouch(MVMediaWidget* viewer, QWidget* parent) : MVToolWidget(viewer, parent)
{
    setObjectName(QStringLiteral("retouchTool"));
    hintLabel = new QLabel(QString::fromUtf8(hintText()), bar);
    hintLabel->setWordWrap(true);
    doneButton = new MVPushButton(QStringLiteral("Done"), bar);
    connect(doneButton, &QPushButton::clicked, this, [this] { controlChanged(doneButton); });
    layoutControls();
}

const char* MVToolWidgetRetouch::hintText()
{
    return "Click on spots to remove them. Change the radius by scrolling while holding Ctrl. Hold Alt to "
           "enable panning.";
}

void MVToolWidgetRetouch::layoutControls()
{
    if (!bar)
        return;
    const int h = 56;
    const int w = std::min(std::max(width() - 20, 300), 860);
    bar->setGeometry((width() - w) / 2, height() - h - 10, w, h);
    bar->raise();
    hintLabel->setGeometry(20, 10, w - 20 - 64 - 30, h - 20);
    doneButton->setGeometry(w - 20 - 64, 16, 64, 24);
}

void MVToolWidgetRetouch::showProcessed(bool on)
{
    if (!mediaWidget)
        return;
    {
        std::lock_guard<std::mutex> lock(mediaWidget->stateMutex);
        mediaWidget->suspendRunner = !on;
        mediaWidget->flushCache = true;
        mediaWidget->needsResample = true;
    }
    mediaWidget->requestProcessing();
}

void MVToolWidgetRetouch::beginEditing(ImageMod*)
{
    setMouseTracking(true);
    // The user heals the photo itself, uncut and without the tiles; they come back at the end.
    if (mediaWidget) {
        geometryWasApplied = mediaWidget->applyGeometry;
        mediaWidget->setApplyGeometry(false);
    }
    showProcessed(false);
}

void MVToolWidgetRetouch::endEditing()
{
    setMouseTracking(false);
    if (mediaWidget)
        mediaWidget->setApplyGeometry(geometryWasApplied);
    showProcessed(true);
}

void MVToolWidgetRetouch::controlChanged(QWidget* control)
{
    if (control == doneButton)
        emit requestToolExit(this);
}

bool MVToolWidgetRetouch::undoStep()
{
    if (!toolUndo.canUndo())
        return false;
    toolUndo.undo();
    return true;
}

bool MVToolWidgetRetouch::redoStep()
{
    if (!toolUndo.canRedo())
        return false;
    toolUndo.redo();
    return true;
}

bool MVToolWidgetRetouch::healAt(QPointF pos)
{
    if (!mediaWidget || !(imageWidth > 0.0) || !(imageHeight > 0.0))
        return false;
    std::unique_ptr<UndoCommandChangeImage> command;
    {
        std::lock_guard<std::mutex> source(mediaWidget->sourceMutex);
        FlexImageFloat* image = mediaWidget->sourceImage.get();
        if (!image || image->isEmpty())
            return false;
        const double fx = (pos.x() - imageX) / imageWidth, fy = (pos.y() - imageY) / imageHeight;
        if (!(fx >= 0.0 && fx < 1.0 && fy >= 0.0 && fy < 1.0))
            return false;
        const int32_t x = std::min(int32_t(fx * image->width), image->width - 1);
        const int32_t y = std::min(int32_t(fy * image->height), image->height - 1);
        const int32_t d = spotHealDiameter(image->width, brushPixels, imageWidth);
        auto saved = std::make_unique<FlexImageFloat>();
        SpotHealRect rect;
        if (!spotHeal(*image, x, y, d, saved.get(), rect))
            return false;
        command = std::make_unique<UndoCommandChangeImage>(image, std::move(saved), mediaWidget, rect.x, rect.y);
    }
    toolUndo.push(std::move(command));
    refreshAfterSourceChange(mediaWidget);
    return true;
}

void MVToolWidgetRetouch::mousePressEvent(QMouseEvent* e)
{
    const QPointF p = e->localPos();
    const bool onPicture = p.x() >= imageX && p.x() < imageX + imageWidth && p.y() >= imageY &&
        p.y() < imageY + imageHeight;
    if (e->button() != Qt::LeftButton || !onPicture || (e->modifiers() & Qt::AltModifier)) {
        // Alt or off the picture: the viewer pans.
        wasUsed = false;
        e->ignore();
        return;
    }
    wasUsed = healAt(p);
    e->accept();
}

void MVToolWidgetRetouch::mouseMoveEvent(QMouseEvent* e)
{
    cursorPos = e->localPos();
    update();
    if (wasUsed)
        e->accept();
    else
        e->ignore();
}

void MVToolWidgetRetouch::mouseReleaseEvent(QMouseEvent* e)
{
    if (wasUsed)
        e->accept();
    else
        e->ignore();
}

void MVToolWidgetRetouch::wheelEvent(QWheelEvent* e)
{
    const QPoint delta = e->angleDelta();
    if (!(e->modifiers() & Qt::ControlModifier) || delta.y() == 0 || std::abs(delta.x()) > std::abs(delta.y())) {
        e->ignore();
        return;
    }
    brushPixels = std::max(3.0, brushPixels + delta.y() * 0.05);
    update();
    e->accept();
}

void MVToolWidgetRetouch::leaveEvent(QEvent* e)
{
    MVToolWidget::leaveEvent(e);
    cursorPos = QPointF(-1000.0, -1000.0);
    update();
}

void MVToolWidgetRetouch::paintEvent(QPaintEvent*)
{
    if (cursorPos.x() < -100.0)
        return;
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(114, 187, 255), 1.0));
    const double r = brushPixels * 0.5;
    p.drawEllipse(cursorPos, r, r);
}
