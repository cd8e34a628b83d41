#pragma once
#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

// The steps of start-up that decide something, kept out of main() so they can be tested.
class AppStartup
{
public:
    // Reads the primary screen's ratio into gDevicePixelRatio and returns it.
    static float readDevicePixelRatio();

    // Registers the bundled Vera fonts (regular, then bold). False if either is missing.
    static bool loadFonts();

    // Adds <applicationDir>/../PlugIns to Qt's library paths when that folder exists.
    static bool addPluginLibraryPath(const QString& applicationDir);

    // The file to open at start: the first pending file-open event wins over argv[1]; the rest of
    // the pending files and of the command line are ignored. Empty when there is none.
    // "--plugin-id ID" anywhere on the line is skipped: the first other argument is the file.
    static QByteArray pickStartupFile(const QStringList& pendingFiles, int argc, char** argv);

    // The host's request id after "--plugin-id"; empty when the option is absent. The option
    // without a value gives "NULLID", so plug-in mode still starts.
    static QString pickPluginID(int argc, char** argv, bool* present = nullptr);

    // True when the path names something that exists and is not a folder.
    static bool isOpenableFile(const QByteArray& path);
};
