#pragma once
#include "document/core/UndoCommand.h"

#include <memory>
#include <vector>

class ImageMod;
class TrayWidget;

// A snapshot of a whole tray, taken before a change of its tile list: the root's tiles and the
// hidden mods as clones. Undo swaps them with what stands; redo is the same swap again.
class UndoCommandFilterSequence : public UndoCommand {
public:
    explicit UndoCommandFilterSequence(TrayWidget* tray);

    bool execute() override { return true; }
    bool undo() override;
    bool redo() override { return undo(); }

    std::vector<std::unique_ptr<ImageMod>> tiles;
    std::vector<std::unique_ptr<ImageMod>> hiddenMods;
    TrayWidget* tray;
};
