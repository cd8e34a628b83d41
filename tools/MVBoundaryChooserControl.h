#pragma once
#include "mods/CropToolGeometry.h"
#include "tools/MVFullScreenControl.h"

// A frame with handles for a boundary variable, read as the edges' places in fractions of the
// picture (left, top, right, bottom). Edges and corners are grabbed within 20 pixels as in the crop
// tool, and the inside moves the frame whole.
class MVBoundaryChooserControl : public MVFullScreenControl
{
    Q_OBJECT
public:
    MVBoundaryChooserControl(ImageMod* mod, int32_t variableIndex, QWidget* parent = nullptr);

    CropToolGeometry geometry;

protected:
    void mousePressEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void leaveEvent(QEvent* e) override;
    void paintEvent(QPaintEvent* e) override;

private:
    void readVariable();
    void writeVariable();
    CropViewRect viewRect() const { return {imageX, imageY, imageWidth, imageHeight}; }
};
