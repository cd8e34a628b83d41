#pragma once
#include <QtCore/QPointer>
#include <QtGui/QImage>
#include <QtWidgets/QMainWindow>

class QLabel;
class MVStartupWindow;

// The program's top window. For now it shows the loaded photo fitted to the window; the
// document tabs, tray and panels replace the photo view.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(const QString& styleSheetText, QWidget* parent = nullptr);
    ~MainWindow() override;

    // The one door by which a file becomes the shown photo. On success the path is kept as the
    // window's file path.
    bool loadFile(const QString& path);

    bool pluginMode = false; // a plug-in host is waiting for a result; file-open events queue

public slots:
    void startupWindowClosed(int resultCode);
    void startupButtonPressed();

protected:
    void resizeEvent(QResizeEvent* e) override;

private:
    void showPhoto();

    QLabel* photoView = nullptr;
    QImage photo;
    QPointer<MVStartupWindow> startupWindow;
};
