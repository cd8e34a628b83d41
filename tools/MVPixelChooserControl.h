#pragma once
#include "tools/MVFullScreenControl.h"

#include <functional>

// Round handles for the points of a pixel variable (a mask's or vignette's centre, a dead pixel).
// A press on a handle takes it; with a single point, a press elsewhere on the picture moves the
// point there. In pick mode the control instead sets a colour variable from the pixel under a click
// (the white point's neutral colour).
class MVPixelChooserControl : public MVFullScreenControl
{
    Q_OBJECT
public:
    MVPixelChooserControl(ImageMod* mod, int32_t variableIndex, QWidget* parent = nullptr);

    // Reads the document's colour at a point (0..255 each); false when there is nothing to read.
    using ColorSampler = std::function<bool(float docX, float docY, float rgb[3])>;
    void setPickMode(ColorSampler sampler);
    bool isPickMode() const { return static_cast<bool>(sampler); }

    // The variable was changed elsewhere (panel, undo): redraw from it.
    virtual void variableChangedElsewhere();

    int32_t hitRadius = 14;
    int activePoint = -1;
    bool dragging = false;
    QPoint lastPos;
    QPointF lastPick{-1.0, -1.0};

protected:
    void mousePressEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void paintEvent(QPaintEvent* e) override;

private:
    void movePoint(int i, QPointF widgetPos);
    ColorSampler sampler;
};
