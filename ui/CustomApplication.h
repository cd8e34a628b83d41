#pragma once
#include <QtCore/QStringList>
#include <QtWidgets/QApplication>

class MainWindow;

// The application object. Its one behaviour of its own is taking file-open events from the
// desktop: they open at once when the main window can take them, otherwise they wait here.
class CustomApplication : public QApplication
{
    Q_OBJECT
public:
    CustomApplication(int& argc, char** argv);

    QStringList pendingFiles;        // paths that arrived before the main window could take them
    MainWindow* mainWindow = nullptr; // where later file-open events go

protected:
    bool event(QEvent* e) override;
};
