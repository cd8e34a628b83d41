#pragma once
#include "core/ImageMod.h"

#include <memory>
#include <vector>

// The mod lists the previews run. A preview starts from the preview base, which already carries
// the crop, and has a size of its own, so the crop and size tiles (tags 0 and 1) stay out.

// True for a mod that a preview leaves out: it carries tag 0 or tag 1.
bool isLeftOutOfPreview(const ImageMod& mod);

// Clones of list in order, without the mods that a preview leaves out. Null entries are skipped.
std::vector<std::unique_ptr<ImageMod>> previewClones(const std::vector<ImageMod*>& list);

// How a hovered mod joins the list, as a click on its panel row would add it to the tray.
enum class PreviewPlacement {
    Append,      // added; a mod sharing one of its tags still gives way to it, unless pinned
    ReplaceSlot, // added; every mod sharing one of its tags gives way, pinned or not
    ReplaceAll,  // a preset taking the tray's place: only pinned mods stay
};

// Puts a clone of mod into list after the last mod whose group is not above mod's (the tray keeps
// its tiles sorted by group), after taking out what it replaces. Returns the clone's index.
int placeHoveredMod(std::vector<std::unique_ptr<ImageMod>>& list, const ImageMod& mod, PreviewPlacement placement);

// Plain pointers to the list's mods, for the runner.
std::vector<ImageMod*> rawModList(const std::vector<std::unique_ptr<ImageMod>>& list);
