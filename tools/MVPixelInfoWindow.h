#pragma once
#include "ui/MVSubWindow.h"

class MVPixelInfoWidget;

// The floating "Pixel Inspector" window around its read-out.
class MVPixelInfoWindow : public MVSubWindow
{
    Q_OBJECT
public:
    explicit MVPixelInfoWindow(QWidget* parent);

    MVPixelInfoWidget* info = nullptr;

protected:
    void resizeEvent(QResizeEvent* e) override;
};
