#pragma once
#include <QtCore/QVector>
#include <QtGui/QColor>
#include <QtWidgets/QWidget>

// A row of colour swatches; one of them is selected.
class MVColorChoiceWidget : public QWidget {
    Q_OBJECT
public:
    static constexpr int swatchSize = 20;
    static constexpr int swatchGap = 4;

    explicit MVColorChoiceWidget(QWidget* parent = nullptr);
    void setColors(const QVector<QColor>& list, int selectedIndex = 0);
    // From code: raises nothing.
    void setSelected(int i);
    int selected() const { return current; }
    QColor selectedColor() const;
    int swatchAt(QPoint p) const;

signals:
    void selectionChanged(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QRect swatchRect(int i) const;

    QVector<QColor> colors;
    int current = -1;
};
