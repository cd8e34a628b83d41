#pragma once
#include <QtWidgets/QWidget>

// The 4-pixel bar between two panes of a split view. Dragging it moves the boundary; the owner
// reads dragPosition (in the parent's coordinates along the split) and lays the panes out again.
class qtWidgetDivider : public QWidget
{
    Q_OBJECT
public:
    static constexpr int thickness = 4;

    explicit qtWidgetDivider(QWidget* parent = nullptr);

    // true: a vertical bar between panes side by side; false: a horizontal bar between stacked panes.
    void setVerticalBar(bool vertical);
    bool isVerticalBar() const { return verticalBar; }
    // Where the bar's middle was dragged to, in parent coordinates along the split.
    int dragPosition = 0;

signals:
    void dividerMoved(qtWidgetDivider* which);

protected:
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void paintEvent(QPaintEvent* e) override;
    void enterEvent(QEvent* e) override;
    void leaveEvent(QEvent* e) override;

private:
    bool verticalBar = true;
    bool hot = false;
};
