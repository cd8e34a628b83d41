#include "ui/MVStartupWindow.h"
#include "ui/DevicePixelRatio.h"
#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QScreen>
#include <QtWidgets/QPushButton>

MVStartupWindow::MVStartupWindow(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint)
{
    setWindowTitle(QStringLiteral("Vantrel Photo"));
    setFixedSize(cardWidth, cardHeight);
    setAttribute(Qt::WA_OpaquePaintEvent);

    // The @2x art keeps the card crisp on high-density screens.
    if (gDevicePixelRatio > 1.0f && background.load(QStringLiteral(":/img/vn_photo_startup@2x.png")))
        background.setDevicePixelRatio(2.0);
    else
        background.load(QStringLiteral(":/img/vn_photo_startup.png"));

    loadButton = new QPushButton(this);
    loadButton->setObjectName(QStringLiteral("startupLoadPhoto"));
    loadButton->setGeometry(buttonX, buttonY, buttonWidth, buttonHeight);
    loadButton->setCursor(Qt::PointingHandCursor);
    loadButton->setFocusPolicy(Qt::NoFocus);
    loadButton->setToolTip(QStringLiteral("Open a photo to edit."));
    loadButton->setStyleSheet(buttonStyleSheet());

    if (QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->availableGeometry();
        move(area.center() - QPoint(cardWidth / 2, cardHeight / 2));
    }
}

QString MVStartupWindow::buttonStyleSheet()
{
    QString s;
    for (const char* part : {"QPushButton {", "border: 0px;", "border-image: url(", ":/img/startup_loadphoto.png",
                             ");", "}", "QPushButton:hover {", "background:none;", "border-image: url(",
                             ":/img/startup_loadphoto_high.png", ");", "}"})
        s += QLatin1String(part);
    return s;
}

void MVStartupWindow::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    if (background.isNull())
        p.fillRect(rect(), QColor(36, 36, 36));
    else
        p.drawPixmap(rect(), background);
}

void MVStartupWindow::mousePressEvent(QMouseEvent* e)
{
    // A click beside the button dismisses the card, as the hint on the art says.
    if (e->button() == Qt::LeftButton)
        reject();
}
