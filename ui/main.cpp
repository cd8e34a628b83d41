#include "ResourceInit.h"
#include "desktop_only/OverlaySeams.h"
#include "filters/MultiData.h"
#include "filters/PreferenceKeys.h"
#include "mods/ImageModTextOverlay.h"
#include "ui/AppScreenshotProbe.h"
#include "ui/AppStartup.h"
#include "ui/AppTheme.h"
#include "ui/CustomApplication.h"
#include "ui/MainWindow.h"
#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleFactory>
#include <cstdio>

int main(int argc, char** argv)
{
    vantrelInitResources();
    CustomApplication app(argc, argv);
    AppStartup::readDevicePixelRatio();
    QStyle* style = QStyleFactory::create(QStringLiteral("fusion"));
    AppStartup::loadFonts();
    installOverlaySeams();

    const QPalette palette = AppTheme::buildPalette(QGuiApplication::palette());
    QApplication::setPalette(palette);
    if (style)
        QApplication::setStyle(style);
    const QString styleSheet = AppTheme::styleSheet();

    // A file-open event that launched us is delivered here and lands in pendingFiles.
    QCoreApplication::processEvents();
    AppStartup::addPluginLibraryPath(QCoreApplication::applicationDirPath());

    MainWindow* mainWindow = new MainWindow(styleSheet);
    mainWindow->hide();
    app.mainWindow = mainWindow;
    // New text tiles start in the family chosen last.
    ImageModTextOverlay::setDefaultFontFamily(MultiData::global().getString(PrefKeys::kLastFont, ""));

    bool pluginRequested = false;
    const QString pluginID = AppStartup::pickPluginID(argc, argv, &pluginRequested);
    if (pluginRequested)
        mainWindow->setPluginMode(pluginID);

    const QByteArray path = AppStartup::pickStartupFile(app.pendingFiles, argc, argv);
    if (AppStartup::isOpenableFile(path))
        mainWindow->loadFile(QString::fromUtf8(path));

    // Smoke-test hook: grab the first window on screen into a PNG and quit.
    const QByteArray shotPath = qgetenv("VANTREL_SMOKE_SCREENSHOT");
    if (!shotPath.isEmpty()) {
        auto* probe = new AppScreenshotProbe(mainWindow, QString::fromLocal8Bit(shotPath), &app);
        probe->readyCheck = [mainWindow] { return mainWindow->displaySettled(); };
    }

    const int result = app.exec();
    app.mainWindow = nullptr;
    delete mainWindow;
    std::fflush(stdout);
    return result;
}
