#pragma once
#include <QtCore/QString>
#include <QtWidgets/QWidget>

// A small floating window above the main window (render queue, scopes, pixel inspector): a tool
// window that stays on top of its parent, is hidden rather than destroyed when closed, and reports
// resizes so its owner can re-lay what it shows.
class MVSubWindow : public QWidget {
    Q_OBJECT
public:
    MVSubWindow(const QString& title, QWidget* parent);
    // Shows the window if hidden and hides it if shown; returns whether it is now shown.
    bool toggleShown();

signals:
    void subWindowResized(MVSubWindow* which);
    void subWindowClosed(MVSubWindow* which);

protected:
    void resizeEvent(QResizeEvent* e) override;
    void closeEvent(QCloseEvent* e) override;
};
