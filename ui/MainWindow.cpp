#include "ui/MainWindow.h"
#include "ui/MVStartupWindow.h"
#include <QtCore/QFileInfo>
#include <QtGui/QImageReader>
#include <QtGui/QPixmap>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

MainWindow::MainWindow(const QString& styleSheetText, QWidget* parent) : QMainWindow(parent)
{
    setWindowTitle(QStringLiteral("Vantrel Photo"));
    setStyleSheet(styleSheetText);
    resize(1200, 800);

    photoView = new QLabel(this);
    photoView->setAlignment(Qt::AlignCenter);
    photoView->setMinimumSize(1, 1);
    photoView->setStyleSheet(QStringLiteral("QLabel { background-color: #282828; color: #8c8c8c; }"));
    photoView->setText(QStringLiteral("No photo loaded"));
    setCentralWidget(photoView);

    // Construction ends with the welcome card; the window itself appears when the card closes.
    startupWindow = new MVStartupWindow();
    startupWindow->setAttribute(Qt::WA_DeleteOnClose);
    connect(startupWindow->loadButton, &QPushButton::clicked, this, &MainWindow::startupButtonPressed);
    connect(startupWindow, &QDialog::finished, this, &MainWindow::startupWindowClosed);
    startupWindow->show();
}

MainWindow::~MainWindow()
{
    delete startupWindow.data();
}

bool MainWindow::loadFile(const QString& path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    QImage image = reader.read();
    if (image.isNull())
        return false;
    photo = image.convertToFormat(QImage::Format_RGB32);
    setWindowFilePath(path);
    // A photo to show makes the welcome card pointless.
    if (startupWindow)
        startupWindow->done(QDialog::Accepted);
    showPhoto();
    return true;
}

void MainWindow::startupWindowClosed(int)
{
    if (!isVisible())
        show();
}

void MainWindow::startupButtonPressed()
{
    if (startupWindow)
        startupWindow->done(QDialog::Accepted);
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Load Photo"), QString(),
        QStringLiteral("Images (*.jpg *.jpeg *.png *.tif *.tiff *.webp *.bmp);;All files (*)"));
    if (!path.isEmpty())
        loadFile(path);
}

void MainWindow::resizeEvent(QResizeEvent* e)
{
    QMainWindow::resizeEvent(e);
    showPhoto();
}

void MainWindow::showPhoto()
{
    if (photo.isNull() || photoView == nullptr)
        return;
    const qreal ratio = devicePixelRatioF();
    const QSize room = (photoView->size() - QSize(32, 32)) * ratio;
    if (room.width() < 1 || room.height() < 1)
        return;
    QPixmap pm = QPixmap::fromImage(photo.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    pm.setDevicePixelRatio(ratio);
    photoView->setPixmap(pm);
}
