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
    for (int i = 1; i < argc && argv[i] != nullptr; ++i) {
        if (QByteArray(argv[i]) == "--plugin-id") {
            ++i;
            continue;
        }
        return QByteArray(argv[i]);
    }
    return QByteArray();
}

QString AppStartup::pickPluginID(int argc, char** argv, bool* present)
{
    if (present)
        *present = false;
    for (int i = 1; i < argc && argv[i] != nullptr; ++i) {
        if (QByteArray(argv[i]) != "--plugin-id")
            continue;
        if (present)
            *present = true;
        const QString id = i + 1 < argc && argv[i + 1] ? QString::fromUtf8(argv[i + 1]) : QString();
        return id.isEmpty() ? QStringLiteral("NULLID") : id;
    }
    return QString();
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
