#pragma once
#include <QtWidgets/QPushButton>

// A flat dark push button that paints itself, so it looks the same under any style.
class MVPushButton : public QPushButton {
    Q_OBJECT
public:
    explicit MVPushButton(const QString& text = QString(), QWidget* parent = nullptr);
    bool isHovered() const { return hovered; }

signals:
    void mouseEnter();

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    // The face behind the text; subclasses draw their own content over it.
    void paintFace(QPainter& g) const;

private:
    bool hovered = false;
};
