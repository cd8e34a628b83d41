#pragma once
#include <QtGui/QColor>
#include <QtWidgets/QWidget>

// Picks a colour: saturation across and value up a square, hue on a bar beside it, alpha on a
// bar below. Raises editingStarted on press and colorChanged on each change.
class ColorChooserWidget : public QWidget {
    Q_OBJECT
public:
    explicit ColorChooserWidget(QWidget* parent = nullptr);

    // From code: raises nothing.
    void setColor(const QColor& c);
    QColor color() const;
    float hue() const { return hueValue; }
    QRect squareRect() const;
    QRect hueRect() const;
    QRect alphaRect() const;

signals:
    void editingStarted();
    void colorChanged(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    enum class Part { None, Square, Hue, Alpha };
    void pick(QPoint p);

    // Hue 0..360, the rest 0..1; kept apart so a grey keeps its hue.
    float hueValue = 0.0f;
    float saturation = 0.0f;
    float brightness = 1.0f;
    float alphaValue = 1.0f;
    Part dragging = Part::None;
};
