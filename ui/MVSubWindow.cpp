#include "ui/MVSubWindow.h"

#include <QtGui/QCloseEvent>

MVSubWindow::MVSubWindow(const QString& title, QWidget* parent) : QWidget(parent, Qt::Tool)
{
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose, false);
    setAutoFillBackground(true);
}

bool MVSubWindow::toggleShown()
{
    if (isVisible()) {
        hide();
        return false;
    }
    show();
    raise();
    return true;
}

void MVSubWindow::resizeEvent(QResizeEvent* e)
{
    QWidget::resizeEvent(e);
    emit subWindowResized(this);
}

void MVSubWindow::closeEvent(QCloseEvent* e)
{
    // Hidden, not destroyed: the owner keeps its pointer and shows it again from the menu.
    e->ignore();
    hide();
    emit subWindowClosed(this);
}
