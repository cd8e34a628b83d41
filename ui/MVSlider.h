#pragma once
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <cstdint>

class QLineEdit;
class ImageModVariableData;

// A horizontal slider with end labels and a value box. Reports editingStarted before a change
// (the undo step opens there) and sliderChanged after it. Wheel steps are gathered for 30 ms;
// a one-second pause between wheel bursts starts a new undo step.
class MVSlider : public QWidget {
    Q_OBJECT
public:
    explicit MVSlider(QWidget* parent = nullptr);

    // Takes range, clamps, display scale and value from a float variable.
    void setFromVariableData(const ImageModVariableData& data);
    // Setting from code raises nothing.
    void setValue(float v);
    float value() const { return currentValue; }
    void setDisplayRange(float minimum, float maximum);
    void setHardMin(bool on, float v);
    void setHardMax(bool on, float v);
    void setDisplayScale(bool on, float minimum, float maximum);
    void setRecentering(bool on);
    void setKind(int32_t k);

    float getDisplayMin() const { return displayMin; }
    float getDisplayMax() const { return displayMax; }
    float getScaleMin() const { return scaleMin; }
    float getScaleMax() const { return scaleMax; }
    float getTrackLeft() const { return trackLeft; }
    float getTrackRight() const { return trackRight; }
    // The value as the labels show it (display scale applied).
    float shownValue() const;
    QString valueText() const;
    QString minLabelText() const;
    QString maxLabelText() const;
    QTimer* wheelTimer() { return &scrollTimer; }
    QTimer* wheelFinishTimer() { return &scrollFinishTimer; }

signals:
    void sliderChanged(QWidget* sender);
    void editingStarted();

public slots:
    void textEdited();
    void scrollTimerFired();
    void scrollFinishTimerFired();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void setValueFromX(float x);
    float clamped(float v) const;
    void recentre();
    void repositionHandle();
    void layoutParts();

    int32_t kind = 0;
    float displayMin = 0.0f;
    float displayMax = 1.0f;
    float hardMin = 0.0f;
    float hardMax = 1.0f;
    bool hasHardMin = false;
    bool hasHardMax = false;
    bool hasDisplayScale = false;
    float scaleMin = 0.0f;
    float scaleMax = 1.0f;
    bool recentering = false;
    float currentValue = 0.0f;
    float trackLeft = 0.0f;
    float trackRight = 1.0f;
    bool dragging = false;
    float pendingWheel = 0.0f;
    bool wheelStarted = true;
    QPoint pressPos;
    float handleX = 0.0f;

    QLineEdit* valueBox = nullptr;
    QTimer scrollTimer;
    QTimer scrollFinishTimer;
};
