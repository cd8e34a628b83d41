#pragma once
#include <QtWidgets/QWidget>

// A tab header with a label; the selected tab is lit and underlined.
class MVTabButton : public QWidget {
    Q_OBJECT
public:
    explicit MVTabButton(const QString& label = QString(), QWidget* parent = nullptr);
    void setLabel(const QString& label);
    QString label() const { return text; }
    void setSelected(bool on);
    bool isSelected() const { return selected; }

signals:
    void buttonPressed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QString text;
    bool selected = false;
    bool hovered = false;
};
