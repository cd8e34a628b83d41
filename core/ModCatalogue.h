#pragma once
#include "core/ImageMod.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The factory instances of every tile class the program knows. Nothing registers itself: each
// section builder constructs one neutral instance per class, and the owner appends them to one
// array in this order: the seven panel sections, the unlisted mods, the camera styles. Names
// are looked up by a linear scan; the list is short.
using ModCatalogue = std::vector<std::unique_ptr<ImageMod>>;

// One row of the catalogue tables: what files call the class, what the tile shows, the newest
// version and the tool tip.
struct ModCatalogueRow {
    const char* name;
    const char* label;
    int32_t version;
    const char* toolTip;
    std::unique_ptr<ImageMod> (*make)();
};

// A panel section: title, icon resource and the builder of its instances.
struct ModCatalogueSectionInfo {
    const char* title;
    const char* icon;
    ModCatalogue (*build)();
};

// The seven panel sections in panel order.
const std::vector<ModCatalogueSectionInfo>& modCatalogueSections();

ModCatalogue buildBasicsSection();
ModCatalogue buildAdvancedLightSection();
ModCatalogue buildAdvancedColorSection();
ModCatalogue buildPhotographicSection();
ModCatalogue buildMasksSection();
ModCatalogue buildBordersSection();
ModCatalogue buildUtilitySection();
// Tiles only old filters and presets hold; kept so those files load.
ModCatalogue buildUnlistedMods();
// The camera looks (kind 2).
ModCatalogue buildCameraStyles();

// The rows the builders read, in catalogue order up to the end of the unlisted mods; each row's
// class exists in the program. The camera styles follow them in the catalogue without rows.
const std::vector<ModCatalogueRow>& modCatalogueRows();

// A built catalogue with the ranges of its parts.
struct ModCatalogueContents {
    struct Range {
        std::string title;
        std::string icon;
        size_t first = 0;
        size_t count = 0;
    };

    ModCatalogue mods;
    std::vector<Range> sections; // the seven panel sections, in panel order
    Range unlisted;
    Range styles;

    std::vector<const ImageMod*> modsIn(const Range& range) const;
};

ModCatalogueContents buildModCatalogue();

// The instance whose name equals modName byte for byte; of several, the last. Null when none.
// Tiles outside the catalogue that files may still hold (see extraModFactories) are consulted
// after it.
const ImageMod* findInCatalogue(const ModCatalogue& catalogue, const std::string& modName);

// A fresh tile of the named class: newest version, neutral values, with the catalogue's label and
// tool tip where the class sets none. Null for an unknown name.
std::unique_ptr<ImageMod> createMod(const ModCatalogue& catalogue, const std::string& modName);

// The lookup of the filter reader: the groups defined earlier in the same file come first (last
// match wins there too), and only when none matches, the catalogue. Null when neither knows it.
std::unique_ptr<ImageMod> createModForFile(const std::vector<const ImageMod*>& defined,
    const ModCatalogue& catalogue, const std::string& modName);
