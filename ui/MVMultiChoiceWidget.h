#pragma once
#include <QtCore/QStringList>
#include <QtWidgets/QWidget>

#include <cstdint>
#include <vector>

// A row of chips, any number of them on. The selection keeps the order in which chips were
// turned on. A label of three numbers "r g b" shows as a chip of that colour. Reports like the
// numeric controls: editingStarted, then sliderChanged.
class MVMultiChoiceWidget : public QWidget {
    Q_OBJECT
public:
    static constexpr int chipHeight = 20;

    explicit MVMultiChoiceWidget(QWidget* parent = nullptr);

    // From code: raises nothing; indices out of range and repeats are dropped.
    void setItems(const QStringList& labels, const std::vector<int32_t>& selected);
    const std::vector<int32_t>& selection() const { return selectedOrder; }
    int chipAt(QPoint p) const;
    QRect chipRect(int i) const;
    // The colour a label stands for; invalid when it isn't "r g b".
    static QColor labelColor(const QString& label);

signals:
    void editingStarted();
    void sliderChanged(QWidget* sender);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    bool isOn(int i) const;

    QStringList items;
    std::vector<int32_t> selectedOrder;
};
