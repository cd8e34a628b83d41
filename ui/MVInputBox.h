#pragma once
#include <QtWidgets/QWidget>

class QLineEdit;
class QToolButton;

// A number in a line edit. The box shows value / scale, so a stored 0.25 with scale 0.01 reads
// "25.000"; typing 30 stores 0.3. Two small arrows step the shown number by `step`. Edits by the
// user raise editingStarted, then sliderChanged; setting from code raises nothing.
class MVInputBox : public QWidget {
    Q_OBJECT
public:
    explicit MVInputBox(QWidget* parent = nullptr);

    // The stored value; clamped to the limits when they are on.
    void setValue(float v);
    float value() const { return currentValue; }
    // A zero scale is refused (it would make every shown number infinite).
    bool setScale(float s);
    float scale() const { return scaleFactor; }
    // Step of the arrows in shown units.
    void setStep(float s) { step = s; }
    void setLimits(bool on, float minimum, float maximum);
    QString text() const;
    // The text for a stored value: "%.0f" when the scale is exactly 1, else "%.3f".
    QString textFor(float storedValue) const;
    QLineEdit* lineEdit() const { return edit; }
    QToolButton* upButton() const { return up; }
    QToolButton* downButton() const { return down; }

signals:
    void sliderChanged(QWidget* sender);
    void editingStarted();

public slots:
    void textEdited();
    void adjustButtonPressed();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    float clamped(float v) const;
    // Stores v and reports it when it differs from the present value.
    void commit(float v);

    float currentValue = 0.0f;
    float scaleFactor = 1.0f;
    float step = 1.0f;
    bool limited = false;
    float minimumValue = 0.0f;
    float maximumValue = 0.0f;
    QLineEdit* edit = nullptr;
    QToolButton* up = nullptr;
    QToolButton* down = nullptr;
};
