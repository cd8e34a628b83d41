#include "ui/AppStartup.h"
#include "ui/DevicePixelRatio.h"
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtGui/QFontDatabase>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <sys/stat.h>

float AppStartup::readDevicePixelRatio()
{
    QScreen* screen = QGuiApplication::primaryScreen();
    gDevicePixelRatio = screen ? float(screen->devicePixelRatio()) : 1.0f;
    return gDevicePixelRatio;
}

bool AppStartup::loadFonts()
{
    const int regular = QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/Vera.ttf"));
    const int bold = QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/VeraBd.ttf"));
    return regular >= 0 && bold >= 0;
}

bool AppStartup::addPluginLibraryPath(const QString& applicationDir)
{
    QDir dir(applicationDir);
    if (!dir.cdUp() || !dir.cd(QStringLiteral("PlugIns")))
        return false;
    QCoreApplication::addLibraryPath(dir.absolutePath());
    return true;
}

QByteArray AppStartup::pickStartupFile(const QStringList& pendingFiles, int argc, char** argv)
{
    if (!pendingFiles.isEmpty())
        return pendingFiles.first().toUtf8();
    if (argc >= 2 && argv[1] != nullptr)
        return QByteArray(argv[1]);
    return QByteArray();
}

bool AppStartup::isOpenableFile(const QByteArray& path)
{
    if (path.isEmpty())
        return false;
    struct stat st;
    if (::stat(path.constData(), &st) != 0)
        return false;
    return !S_ISDIR(st.st_mode);
}
