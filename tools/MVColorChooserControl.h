#pragma once
#include "tools/MVFullScreenControl.h"

// A floating panel over the picture for a colour variable: a saturation and value square, a hue bar
// beside it and an "RGB" read-out. Presses outside the panel go on to the viewer.
class MVColorChooserControl : public MVFullScreenControl
{
    Q_OBJECT
public:
    MVColorChooserControl(ImageMod* mod, int32_t variableIndex, QWidget* parent = nullptr);

    // Panel parts in widget pixels.
    QRectF panelRect() const;
    QRectF squareRect() const;
    QRectF hueRect() const;

    bool hovering = false;

protected:
    void mousePressEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void paintEvent(QPaintEvent* e) override;
    void leaveEvent(QEvent* e) override;

private:
    enum class Part { None, Square, Hue };
    void setFromPoint(QPointF p);
    QColor currentColor() const;
    Part dragPart = Part::None;
    double hue = 0.0; // kept apart so a grey doesn't lose it
};
