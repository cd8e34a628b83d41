#pragma once
// Mods from the catalogue by name and the names of a tray's tiles, shared by the widget tests.
#include "core/ModCatalogue.h"
#include "ui/TrayWidget.h"

#include <QtCore/QStringList>

#include <initializer_list>
#include <memory>

inline const ModCatalogueContents& catalogue()
{
    static const ModCatalogueContents c = buildModCatalogue();
    return c;
}

// A misspelt name is a broken test, not a case to carry on with.
inline std::unique_ptr<ImageMod> make(const char* name)
{
    std::unique_ptr<ImageMod> m = createMod(catalogue().mods, name);
    if (!m)
        qFatal("no mod named %s", name);
    return m;
}

inline void addTiles(TrayWidget& tray, std::initializer_list<const char*> tiles)
{
    for (const char* name : tiles)
        tray.addMod(*make(name));
}

inline QStringList names(const TrayWidget& tray)
{
    QStringList out;
    for (int i = 0; i < tray.tileCount(); ++i)
        out << QString::fromStdString(tray.modAt(i)->name);
    return out;
}

// A file of the shared test data.
inline QString photo(const char* name)
{
    return QStringLiteral(VANTREL_TESTDATA "/") + QLatin1String(name);
}
