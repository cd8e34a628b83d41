#pragma once
#include <QtCore/QStringList>
#include <QtWidgets/QWidget>

// The floating list of an MVListChooser. The highlight follows the cursor and the arrow keys;
// a press chooses the row under the cursor.
class MVListChooserList : public QWidget {
    Q_OBJECT
public:
    static constexpr int rowHeight = 20;

    explicit MVListChooserList(const QStringList& items, int current, QWidget* parent = nullptr);

    int highlightedRow() const { return highlighted; }
    int scrollOffset() const { return offset; }
    // Row under a point in widget coordinates, -1 outside the rows.
    int rowAt(QPoint p) const;
    // Fits the list under a rectangle in global coordinates, within maxHeight.
    void placeBelow(const QRect& globalAnchor, int maxHeight);

signals:
    void itemChosen(int row);
    // The highlight moved to row (the pointer, the arrow keys, or back to the current row when
    // the pointer leaves).
    void rowHighlighted(int row);
    // The list went away, with or without a choice.
    void listHidden();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void setOffset(int o);
    void showRow(int row);

    QStringList items;
    int original = -1;
    int highlighted = -1;
    int offset = 0;
};
