#include "tools/MVPixelChooserControl.h"

#include "core/ImageMod.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataPixel.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

MVPixelChooserControl::MVPixelChooserControl(ImageMod* mod, int32_t variableIndex, QWidget* parent)
    : MVFullScreenControl(mod, variableIndex, parent)
{
}

void MVPixelChooserControl::setPickMode(ColorSampler s)
{
    sampler = std::move(s);
}

void MVPixelChooserControl::variableChangedElsewhere()
{
    update();
}

void MVPixelChooserControl::movePoint(int i, QPointF p)
{
    ImageModVariable* var = variable();
    ImageModVariableDataPixel* data = var ? var->asPixel() : nullptr;
    if (!data || i < 0)
        return;
    float x = 0.0f, y = 0.0f;
    documentPoint(p, x, y);
    // Kept on the picture, whatever the cursor does.
    x = std::clamp(x, 0.0f, float(std::max(documentWidth - 1, 0)));
    y = std::clamp(y, 0.0f, float(std::max(documentHeight - 1, 0)));
    if (size_t(i) >= data->points.size())
        data->points.resize(size_t(i) + 1);
    data->points[size_t(i)] = {x, y};
    variableWritten();
}

void MVPixelChooserControl::mousePressEvent(QMouseEvent* e)
{
    dragging = false;
    lastPos = QPoint(int(std::lround(e->localPos().x())), int(std::lround(e->localPos().y())));
    activePoint = -1;
    if (e->button() != Qt::LeftButton) {
        e->ignore();
        return;
    }
    float docX = 0.0f, docY = 0.0f;
    const bool onPicture = documentPoint(e->localPos(), docX, docY);

    if (sampler) {
        ImageModVariable* var = variable();
        ImageModVariableDataColor* color = var && var->data && var->data->kind() == kVariableColor
            ? static_cast<ImageModVariableDataColor*>(var->data.get())
            : nullptr;
        float rgb[3];
        if (!color || !onPicture || !sampler(docX, docY, rgb)) {
            e->ignore();
            return;
        }
        emit aboutToAdjust(this);
        color->red = rgb[0];
        color->green = rgb[1];
        color->blue = rgb[2];
        lastPick = e->localPos();
        variableWritten();
        e->accept();
        return;
    }

    ImageModVariable* var = variable();
    ImageModVariableDataPixel* data = var ? var->asPixel() : nullptr;
    if (!data) {
        e->ignore();
        return;
    }
    for (size_t i = 0; i < data->points.size(); ++i) {
        const ImageModPixelPoint& pt = data->points[i];
        const QPointF at = ImageModVariableDataPixel::isUnset(pt)
            ? QPointF(imageX + imageWidth * 0.5, imageY + imageHeight * 0.5)
            : widgetPoint(pt.x, pt.y);
        const double d = std::hypot(at.x() - lastPos.x(), at.y() - lastPos.y());
        if (!(d > double(hitRadius))) {
            activePoint = int(i);
            emit aboutToAdjust(this);
            e->accept();
            return;
        }
    }
    // One point: a click on the picture puts it there. Several: the click is the viewer's.
    if (data->points.size() <= 1 && onPicture) {
        activePoint = 0;
        emit aboutToAdjust(this);
        movePoint(0, e->localPos());
        e->accept();
        return;
    }
    e->ignore();
}

void MVPixelChooserControl::mouseMoveEvent(QMouseEvent* e)
{
    if (activePoint < 0 || !(e->buttons() & Qt::LeftButton)) {
        e->ignore();
        return;
    }
    dragging = true;
    movePoint(activePoint, e->localPos());
    e->accept();
}

void MVPixelChooserControl::mouseReleaseEvent(QMouseEvent* e)
{
    if (activePoint < 0) {
        e->ignore();
        return;
    }
    activePoint = -1;
    dragging = false;
    update();
    e->accept();
}

void MVPixelChooserControl::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing, true);
    if (sampler) {
        if (lastPick.x() < 0.0)
            return;
        p.setPen(QPen(QColor(0, 0, 0, 200), 3.0));
        p.drawEllipse(lastPick, 7.0, 7.0);
        p.setPen(QPen(QColor(255, 255, 255), 1.5));
        p.drawEllipse(lastPick, 7.0, 7.0);
        return;
    }
    ImageModVariable* var = variable();
    const ImageModVariableDataPixel* data = var ? var->asPixel() : nullptr;
    if (!data)
        return;
    for (size_t i = 0; i < data->points.size(); ++i) {
        const ImageModPixelPoint& pt = data->points[i];
        const bool unset = ImageModVariableDataPixel::isUnset(pt);
        // An unset point stands where the tile puts it by default, the middle.
        const QPointF at = unset ? QPointF(imageX + imageWidth * 0.5, imageY + imageHeight * 0.5)
                                 : widgetPoint(pt.x, pt.y);
        p.setBrush(int(i) == activePoint ? QBrush(QColor(114, 187, 255, 200)) : QBrush(Qt::NoBrush));
        p.setPen(QPen(QColor(0, 0, 0, 190), 3.0));
        p.drawEllipse(at, 9.0, 9.0);
        p.setPen(QPen(unset ? QColor(220, 220, 220) : QColor(255, 255, 255), 1.5, unset ? Qt::DotLine : Qt::SolidLine));
        p.drawEllipse(at, 9.0, 9.0);
        p.setPen(QPen(QColor(255, 255, 255), 1.0));
        p.drawLine(QLineF(at.x() - 3, at.y(), at.x() + 3, at.y()));
        p.drawLine(QLineF(at.x(), at.y() - 3, at.x(), at.y() + 3));
    }
}
