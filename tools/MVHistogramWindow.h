#pragma once
#include "ui/MVSubWindow.h"

class MVHistogramWidget;

// The floating window of the scopes; its title follows the graph shown.
class MVHistogramWindow : public MVSubWindow
{
    Q_OBJECT
public:
    explicit MVHistogramWindow(QWidget* parent);
    void setGraphType(int type);

    MVHistogramWidget* histogram = nullptr;

protected:
    void resizeEvent(QResizeEvent* e) override;
};
