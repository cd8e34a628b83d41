#include "tools/MVFullScreenControl.h"

#include "core/ImageMod.h"
#include "document/MVMediaWidget.h"

#include <QtCore/QEvent>

MVFullScreenControl::MVFullScreenControl(ImageMod* mod, int32_t variableIndex, QWidget* parent)
    : QWidget(parent), mod(mod), index(variableIndex)
{
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_TranslucentBackground);
    setMouseTracking(true);
}

ImageModVariable* MVFullScreenControl::variable() const
{
    return mod ? mod->variableAt(index) : nullptr;
}

void MVFullScreenControl::setDocumentSize(int32_t width, int32_t height)
{
    documentWidth = width;
    documentHeight = height;
    update();
}

void MVFullScreenControl::setImageRect(double x, double y, double width, double height)
{
    imageX = x;
    imageY = y;
    imageWidth = width;
    imageHeight = height;
    update();
}

void MVFullScreenControl::followViewer(MVMediaWidget* v)
{
    if (viewer)
        viewer->removeEventFilter(this);
    viewer = v;
    if (!viewer)
        return;
    viewer->installEventFilter(this);
    setGeometry(0, 0, viewer->width(), viewer->height());
    auto sync = [this] {
        if (!viewer)
            return;
        const QSize out = viewer->outputPixelSize();
        setDocumentSize(out.width(), out.height());
        setImageRect(viewer->drawX, viewer->drawY, viewer->drawWidth, viewer->drawHeight);
    };
    connect(viewer, &MVMediaWidget::imageRepositionedSignal, this, sync);
    connect(viewer, &QObject::destroyed, this, [this] { viewer = nullptr; });
    sync();
}

bool MVFullScreenControl::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == viewer && event->type() == QEvent::Resize)
        setGeometry(0, 0, viewer->width(), viewer->height());
    return QWidget::eventFilter(watched, event);
}

QPointF MVFullScreenControl::widgetPoint(float docX, float docY) const
{
    const double fx = documentWidth > 0 ? double(docX) / documentWidth : 0.5;
    const double fy = documentHeight > 0 ? double(docY) / documentHeight : 0.5;
    return QPointF(imageX + fx * imageWidth, imageY + fy * imageHeight);
}

bool MVFullScreenControl::documentPoint(QPointF p, float& docX, float& docY) const
{
    if (!(imageWidth > 0.0) || !(imageHeight > 0.0) || documentWidth < 1 || documentHeight < 1) {
        docX = docY = -1.0f;
        return false;
    }
    const double fx = (p.x() - imageX) / imageWidth, fy = (p.y() - imageY) / imageHeight;
    docX = float(fx * documentWidth);
    docY = float(fy * documentHeight);
    return fx >= 0.0 && fx <= 1.0 && fy >= 0.0 && fy <= 1.0;
}

void MVFullScreenControl::variableWritten()
{
    if (mod)
        mod->variableChanged(index);
    update();
    emit didAdjust(this);
}
