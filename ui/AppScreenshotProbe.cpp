#include "ui/AppScreenshotProbe.h"
#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>
#include <QtGui/QImage>
#include <QtGui/QPixmap>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

AppScreenshotProbe::AppScreenshotProbe(QWidget* preferred, const QString& path, QObject* parent)
    : QObject(parent), preferredWindow(preferred), pngPath(path), pollTimer(new QTimer(this))
{
    pollTimer->setInterval(50);
    connect(pollTimer, &QTimer::timeout, this, &AppScreenshotProbe::pollTimerFired);
    pollTimer->start();
}

static bool isOnScreen(QWidget* w)
{
    return w && w->isVisible() && w->windowHandle() && w->windowHandle()->isExposed();
}

QWidget* AppScreenshotProbe::shownWindow() const
{
    if (isOnScreen(preferredWindow))
        return preferredWindow;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (isOnScreen(w))
            return w;
    return nullptr;
}

void AppScreenshotProbe::pollTimerFired()
{
    QWidget* w = shownWindow();
    // Wait one more poll after the first exposure so pending layout and paint events are done.
    if (w && ++exposedPolls >= 2 && (!readyCheck || w != preferredWindow || readyCheck())) {
        pollTimer->stop();
        QImage shot = w->grab().toImage();
        shot.setText(QStringLiteral("Title"), w->windowTitle());
        QCoreApplication::exit(shot.save(pngPath, "PNG") ? 0 : 4);
        return;
    }
    if (--pollsLeft <= 0) {
        pollTimer->stop();
        QCoreApplication::exit(3);
    }
}
