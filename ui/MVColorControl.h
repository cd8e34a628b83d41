#pragma once
#include <QtGui/QColor>
#include <QtWidgets/QWidget>

class ColorChooserWidget;
class MVColorChoiceWidget;

// The control of a colour variable: a row of ready swatches over the full chooser. Reports like
// the numeric controls: editingStarted before a change, sliderChanged after each one.
class MVColorControl : public QWidget {
    Q_OBJECT
public:
    explicit MVColorControl(QWidget* parent = nullptr);

    // From code: raises nothing. A swatch is marked when it matches the colour.
    void setColor(const QColor& c);
    QColor color() const;
    MVColorChoiceWidget* swatches() const { return swatchRow; }
    ColorChooserWidget* chooser() const { return chooserWidget; }

signals:
    void editingStarted();
    void sliderChanged(QWidget* sender);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void swatchChosen(int index);
    void markSwatch();

    MVColorChoiceWidget* swatchRow = nullptr;
    ColorChooserWidget* chooserWidget = nullptr;
};
