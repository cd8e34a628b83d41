#include "ui/CustomApplication.h"
#include "ui/MainWindow.h"
#include <QtGui/QFileOpenEvent>

CustomApplication::CustomApplication(int& argc, char** argv) : QApplication(argc, argv)
{
    pendingFiles.reserve(2);
}

bool CustomApplication::event(QEvent* e)
{
    if (e->type() != QEvent::FileOpen)
        return QApplication::event(e);
    const QString path = static_cast<QFileOpenEvent*>(e)->file();
    // While the window is being built, or is serving a plug-in host, the file must wait.
    if (mainWindow == nullptr || mainWindow->pluginMode)
        pendingFiles.append(path);
    else
        mainWindow->loadFile(path);
    return true;
}
