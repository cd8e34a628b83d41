#pragma once
#include <QtWidgets/QWidget>

// The thumb of an MVScroller. Reports each drag step in pixels.
class MVScrollerHandle : public QWidget {
    Q_OBJECT
public:
    explicit MVScrollerHandle(QWidget* parent = nullptr);

signals:
    void dragged(int pixels);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    bool dragging = false;
    bool hovered = false;
    int lastY = 0;
};
