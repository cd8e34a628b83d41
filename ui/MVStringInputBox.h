#pragma once
#include <QtWidgets/QWidget>

class QLineEdit;

// A text in a line edit. A finished edit that changed the text raises editingStarted, then
// sliderChanged; setting from code raises nothing.
class MVStringInputBox : public QWidget {
    Q_OBJECT
public:
    explicit MVStringInputBox(QWidget* parent = nullptr);

    void setText(const QString& t);
    // The committed text: what was last set or reported, not a half-typed edit.
    QString text() const { return committed; }
    void setPlaceholderText(const QString& t);
    QLineEdit* lineEdit() const { return edit; }

signals:
    void editingStarted();
    void sliderChanged(QWidget* sender);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void finished();

    QString committed;
    QLineEdit* edit = nullptr;
};
