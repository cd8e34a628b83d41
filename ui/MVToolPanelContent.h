#pragma once
#include "core/ModCatalogue.h"

#include <QtCore/QString>

class MVPanelItemListButton;
class MVToolPanel;
class PresetLibrary;

// What the tool panel offers: the Adjustments tab from the catalogue's sections, the Presets tab
// from the preset folders on disk, and the removal of a user's preset.
class MVToolPanelContent {
public:
    // Command numbers of the two tool buttons above the sections.
    enum ToolCommand { kToolCrop = 0, kToolSpotHeal = 1 };

    static QString cropButtonLabel(bool cropInForce);

    // Empties the Adjustments tab and fills it: the tool buttons, then each catalogue section
    // under its header, folded as the stored section state says. The rows point at the
    // catalogue's instances, which must outlive them.
    static void fillAdjustments(MVToolPanel& panel, const ModCatalogueContents& catalogue);
    // Empties the Presets tab and fills it: "Starred", then "My Presets", then the other groups
    // in name order, each preset read from its file. Rows of "My Presets" can be deleted.
    static void fillPresets(MVToolPanel& panel, const PresetLibrary& library, const ModCatalogue& catalogue);

    // Removes the preset's file, its star and its rows. False (nothing changed) when the row
    // isn't a deletable preset or the file can't be removed.
    static bool deletePreset(MVToolPanel& panel, MVPanelItemListButton* row);

    // The file a preset row was read from; empty for other rows.
    static QString presetPath(const MVPanelItemListButton* row);
};
