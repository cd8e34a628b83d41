#pragma once
#include "ui/MVPushButton.h"

#include <QtGui/QPixmap>

// A small picture button with an image for rest, hover and press. Without images it falls back
// to the plain face with its text.
class MVTrayButton : public MVPushButton {
    Q_OBJECT
public:
    explicit MVTrayButton(QWidget* parent = nullptr);
    // Paths such as ":/img/..."; an empty hover or press path reuses the rest image.
    void setImages(const QString& rest, const QString& hover = QString(), const QString& press = QString());

signals:
    void buttonPressed();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap restImage;
    QPixmap hoverImage;
    QPixmap pressImage;
};
