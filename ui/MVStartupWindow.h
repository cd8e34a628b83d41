#pragma once
#include <QtGui/QPixmap>
#include <QtWidgets/QDialog>

class QPushButton;

// The frameless welcome card shown while the main window is still hidden. Its one button asks
// for a photo; closing it in any way lets the main window appear.
class MVStartupWindow : public QDialog
{
    Q_OBJECT
public:
    explicit MVStartupWindow(QWidget* parent = nullptr);

    QPushButton* loadButton = nullptr;

    // Logical size of the card and the slot its background art leaves for the button.
    static constexpr int cardWidth = 640;
    static constexpr int cardHeight = 400;
    static constexpr int buttonX = 304;
    static constexpr int buttonY = 296;
    static constexpr int buttonWidth = 240;
    static constexpr int buttonHeight = 48;

    static QString buttonStyleSheet();

protected:
    void paintEvent(QPaintEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;

private:
    QPixmap background;
};
