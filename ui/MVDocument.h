#pragma once
#include "document/VideoLoaderSaverTime.h"
#include "media/LoadedMediaInfo.h"

#include <QtCore/QString>

class MVMediaWidget;
class TrayWidget;
class MVShuttleControl;
class qtWidgetDivider;

// One document tab: a media file with its viewer. The tray and the video shuttle join when their
// widgets exist; until then they stay null and the viewer sees an empty tile list.
struct MVDocument {
    QString filePath;
    TrayWidget* tray = nullptr;
    MVMediaWidget* viewer = nullptr;
    MVShuttleControl* shuttle = nullptr;
    VideoLoaderSaverTime shuttleIn, shuttleOut, shuttleNow;
    int tabID = 0;
    qtWidgetDivider* divider = nullptr;
    // The source's record (profile, depth, properties), kept with the viewer for saving and info.
    LoadedMediaInfo mediaInfo;
};
