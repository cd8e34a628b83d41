#include "tools/MVBoundaryChooserControl.h"

#include "core/ImageMod.h"
#include "core/ImageModVariableDataBoundary.h"
#include "tools/CropGeometryMouse.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

namespace {

ImageModVariableDataBoundary* boundaryOf(ImageModVariable* var)
{
    return var && var->data && var->data->kind() == kVariableBoundary
        ? static_cast<ImageModVariableDataBoundary*>(var->data.get())
        : nullptr;
}

} // namespace

MVBoundaryChooserControl::MVBoundaryChooserControl(ImageMod* mod, int32_t variableIndex, QWidget* parent)
    : MVFullScreenControl(mod, variableIndex, parent)
{
    readVariable();
}

void MVBoundaryChooserControl::readVariable()
{
    if (const ImageModVariableDataBoundary* b = boundaryOf(variable())) {
        geometry.leftInset = b->left;
        geometry.topInset = b->top;
        geometry.rightInset = 1.0f - b->right;
        geometry.bottomInset = 1.0f - b->bottom;
    }
}

void MVBoundaryChooserControl::writeVariable()
{
    if (ImageModVariableDataBoundary* b = boundaryOf(variable())) {
        b->left = geometry.leftInset;
        b->top = geometry.topInset;
        b->right = 1.0f - geometry.rightInset;
        b->bottom = 1.0f - geometry.bottomInset;
        variableWritten();
    }
}

void MVBoundaryChooserControl::mousePressEvent(QMouseEvent* e)
{
    readVariable();
    const QPointF p = e->localPos();
    geometry.hitTest(p.x(), p.y(), viewRect(), width(), height());
    if (e->button() == Qt::LeftButton && boundaryOf(variable()) && geometry.press(p.x(), p.y())) {
        emit aboutToAdjust(this);
        e->accept();
        return;
    }
    e->ignore();
}

void MVBoundaryChooserControl::mouseMoveEvent(QMouseEvent* e)
{
    if (continueCropDrag(geometry, e, viewRect(), [this] { writeVariable(); }))
        return;
    readVariable();
    const QPointF p = e->localPos();
    const bool was = geometry.anyHit();
    if (geometry.hitTest(p.x(), p.y(), viewRect(), width(), height()) || was)
        update();
    e->ignore();
}

void MVBoundaryChooserControl::mouseReleaseEvent(QMouseEvent* e)
{
    releaseCropDrag(geometry, this, e);
}

void MVBoundaryChooserControl::leaveEvent(QEvent* e)
{
    MVFullScreenControl::leaveEvent(e);
    leaveCropGeometry(geometry, this);
}

void MVBoundaryChooserControl::paintEvent(QPaintEvent*)
{
    if (!boundaryOf(variable()) || !(imageWidth > 0.0))
        return;
    if (!geometry.buttonDown)
        readVariable();
    const CropFrameEdges e = geometry.edges(viewRect());
    const QRectF frame(QPointF(e.left, e.top), QPointF(e.right, e.bottom));
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(0, 0, 0, 190), 3.0));
    p.drawRect(frame.normalized());
    p.setPen(QPen(QColor(255, 255, 255), 1.0));
    p.drawRect(frame.normalized());
    const CropToolGeometry& g = geometry;
    const struct {
        bool on;
        QPointF at;
    } handles[4] = {{g.hitLeft && g.hitTop, frame.topLeft()}, {g.hitRight && g.hitTop, frame.topRight()},
                    {g.hitLeft && g.hitBottom, frame.bottomLeft()}, {g.hitRight && g.hitBottom, frame.bottomRight()}};
    for (const auto& h : handles) {
        p.setPen(QPen(QColor(0, 0, 0, 200), 1.0));
        p.setBrush(h.on ? QColor(114, 187, 255) : QColor(240, 240, 240));
        p.drawRect(QRectF(h.at.x() - 4.0, h.at.y() - 4.0, 8.0, 8.0));
    }
}
