#pragma once
#include <QtCore/QObject>
#include <QtCore/QString>

#include <functional>

class QTimer;
class QWidget;

// Test hook for the real-window smoke test: once a top-level window is on screen, grabs it into a
// PNG (window title stored as the "Title" text key) and ends the event loop. Gives up after a
// bounded number of polls with exit code 3; a failed write ends with 4.
class AppScreenshotProbe : public QObject
{
    Q_OBJECT
public:
    AppScreenshotProbe(QWidget* preferredWindow, const QString& pngPath, QObject* parent = nullptr);

    // Optional: the shot also waits (within the same bound) until this says the content is final,
    // e.g. until the picture's processing has settled.
    std::function<bool()> readyCheck;

private slots:
    void pollTimerFired();

private:
    QWidget* shownWindow() const;

    QWidget* preferredWindow;
    QString pngPath;
    QTimer* pollTimer;
    int pollsLeft = 400; // 50 ms apart: 20 s before giving up
    int exposedPolls = 0;
};
