#include "tools/MVPixelInfoWindow.h"

#include "tools/MVPixelInfoWidget.h"

namespace {
constexpr int kBorder = 12;
constexpr int kWidth = 250;
} // namespace

MVPixelInfoWindow::MVPixelInfoWindow(QWidget* parent) : MVSubWindow(QStringLiteral("Pixel Inspector"), parent)
{
    setObjectName(QStringLiteral("pixelInfoWindow"));
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(QStringLiteral("QWidget#pixelInfoWindow { background: #1e1e1e; color: #bbbbbb; border: 1px solid #383838; }"));
    info = new MVPixelInfoWidget(this);
    // The recent list grows the window rather than scrolling.
    connect(info, &MVPixelInfoWidget::heightNeeded, this,
            [this](int h) { setFixedSize(kWidth, h + 2 * kBorder); });
    setFixedSize(kWidth, info->preferredHeight() + 2 * kBorder);
}

void MVPixelInfoWindow::resizeEvent(QResizeEvent* e)
{
    info->setGeometry(kBorder, kBorder, width() - 2 * kBorder, height() - 2 * kBorder);
    MVSubWindow::resizeEvent(e);
}
