#include "tools/MVHistogramWindow.h"

#include "tools/MVHistogramWidget.h"

MVHistogramWindow::MVHistogramWindow(QWidget* parent)
    : MVSubWindow(MVHistogramWidget::graphName(MVHistogramWidget::LuminanceHistogram), parent)
{
    setObjectName(QStringLiteral("histogramWindow"));
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(QStringLiteral("QWidget#histogramWindow { background: #1a1a1a; border: 1px solid #383838; }"));
    histogram = new MVHistogramWidget(this);
    setMinimumSize(160, 110);
    resize(340, 230);
}

void MVHistogramWindow::setGraphType(int type)
{
    histogram->setGraphType(type);
    setWindowTitle(MVHistogramWidget::graphName(type));
}

void MVHistogramWindow::resizeEvent(QResizeEvent* e)
{
    // A thin margin keeps the frame off the window's edge.
    histogram->setGeometry(6, 6, std::max(1, width() - 12), std::max(1, height() - 8));
    MVSubWindow::resizeEvent(e);
}
