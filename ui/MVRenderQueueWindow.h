#pragma once
#include "ui/MVSubWindow.h"

#include <QtCore/QString>

class MVRenderQueueWidget;
class QLabel;
class QProgressBar;
class QPushButton;
struct RenderQueueSnapshot;

// "Render Queue": a floating window with the state of the batch under way ("File n of N" and the
// time left), a progress bar, the list of waiting files with their cancel buttons and of those
// that failed, and "Cancel Processing".
class MVRenderQueueWindow : public MVSubWindow {
    Q_OBJECT
public:
    explicit MVRenderQueueWindow(QWidget* parent = nullptr);

    // Rebuilds everything from a copy of the queue's state.
    void showSnapshot(const RenderQueueSnapshot& s);

    // "File 3 of 20, about 1:05 left" (the estimate only once one is known); "" when idle.
    static QString progressText(const RenderQueueSnapshot& s);
    static QString fileName(const std::string& path);

    QLabel* statusLabel = nullptr;
    QProgressBar* progressBar = nullptr;
    MVRenderQueueWidget* list = nullptr;
    QPushButton* cancelAllButton = nullptr;

signals:
    void cancelItemRequested(int itemID);
    void cancelAllRequested();

public slots:
    void cancelItemPressed(int myID);

protected:
    void resizeEvent(QResizeEvent* e) override;

private:
    void layoutChildren();
};
