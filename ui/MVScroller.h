#pragma once
#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

class MVScrollerHandle;
class QWheelEvent;

// A thin vertical scroll bar with inertia. Wheel steps are gathered for 5 ms and applied; a
// gesture that ends while still moving carries on under friction.
class MVScroller : public QWidget {
    Q_OBJECT
public:
    explicit MVScroller(QWidget* parent = nullptr);

    // viewSize is in position units: the share of the range one view covers.
    void setRange(float minimum, float maximum, float view);
    // Clamped into the range; raises nothing.
    void setPosition(float p);
    float getPosition() const { return position; }
    float getMomentum() const { return momentum; }
    bool contentFits() const { return !(maxPosition - minPosition > viewSize); }
    // For owners that pass on wheel events over their content. False when the content fits.
    bool takeWheel(QWheelEvent* event);
    MVScrollerHandle* handle() { return handleWidget; }
    QTimer* activationTimer() { return &activateTimer; }
    QTimer* inertiaTimer() { return &momentumTimer; }

signals:
    void scrolled(float position);

public slots:
    void activateTimerFired();
    void momentumTimerFired();
    void handleDragged(int pixels);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    float clampedPosition(float p) const;
    // True when the handle moved by at least a pixel.
    bool placeHandle();
    float trackLength() const;

    float minPosition = 0.0f;
    float maxPosition = 0.0f;
    float viewSize = 0.0f;
    float position = 0.0f;
    float momentum = 0.0f;
    float accumulated = 0.0f;
    float friction = 0.9f;
    bool gestureEnding = false;
    QElapsedTimer lastWheel;
    MVScrollerHandle* handleWidget = nullptr;
    QTimer activateTimer;
    QTimer momentumTimer;
};
