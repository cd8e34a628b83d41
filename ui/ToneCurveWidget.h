#pragma once
#include "core/ToneCurve.h"

#include <QtCore/QTimer>
#include <QtGui/QColor>
#include <QtWidgets/QWidget>

#include <algorithm>
#include <cstdint>

class ImageModVariableDataCurve;

// Curve editor over a ToneCurve: press to insert or pick a point, drag it, drag an inner point far
// outside the square to remove it. Mode 3 edits a closed hue ring whose strip can be shifted.
class ToneCurveWidget : public QWidget {
    Q_OBJECT
public:
    static constexpr float hitRadius = 0.05f;
    static constexpr float removeLow = -0.3f;
    static constexpr float removeHigh = 1.3f;

    explicit ToneCurveWidget(QWidget* parent = nullptr);

    // Edits the variable's curve in place; null edits a private identity curve. A closed curve
    // switches to mode 3.
    void setCurveData(ImageModVariableDataCurve* data);
    ToneCurve& curve() { return *editedCurve; }
    // 0 plain, 1 channel tint (see setTint), 2 saturation, 3 hue ring.
    void setMode(int32_t m);
    int32_t getMode() const { return mode; }
    void setTint(const QColor& c);

    int32_t getActivePoint() const { return activePoint; }
    int32_t getHoverPoint() const { return hoverPoint; }
    float getHueShift() const { return hueShift; }
    // Unit square <-> widget pixels.
    QPointF unitFromPixel(QPointF p) const;
    QPointF pixelFromUnit(float x, float y) const;
    QRectF hueStripRect() const;
    QTimer* wheelTimer() { return &scrollTimer; }

signals:
    void editingStarted(QWidget* sender);
    void curveChanged(QWidget* sender);
    void rightClicked(QWidget* sender);

public slots:
    void scrollTimerFired();
    void scrollFinishTimerFired();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // Measured from the current size: a hidden widget gets no resize event.
    float graphWidth() const { return std::max(1.0f, float(width()) - 2.0f * margin); }
    float graphHeight() const { return std::max(1.0f, float(height()) - 2.0f * margin - barHeight - 4.0f); }
    bool updateHover(QPointF unit);
    void dragTo(QPointF unit);
    void removePointAt(int32_t i);
    void tieRingEnds(int32_t moved);
    void setHueFromT(float t);

    ToneCurve ownCurve;
    ToneCurve* editedCurve = &ownCurve;
    ImageModVariableDataCurve* curveData = nullptr;
    int32_t activePoint = -1;
    int32_t hoverPoint = -1;
    int32_t mode = 0;
    QColor tint = QColor(230, 70, 60);
    float margin = 8.0f;
    float barHeight = 10.0f;
    QPointF lastPos;
    float dragOffsetX = 0.0f;
    float dragOffsetY = 0.0f;
    bool scrollingHue = false;
    float hueShift = 0.0f;
    float hueDegrees = 180.0f;
    float pendingWheelX = 0.0f;
    float pendingWheelY = 0.0f;
    bool wheelOwed = true;
    QTimer scrollTimer;
    QTimer scrollFinishTimer;
};
