#pragma once
#include "core/ImageModVariableData.h"
#include "document/core/UndoCommand.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class ImageMod;
class TrayWidget;

// A snapshot of one tile's values, taken as a control starts to move. The tile is found again by
// its nesting path and index and must still bear the same name, so a step whose tile went away
// through a structural undo is dropped quietly.
class UndoCommandAdjustFilter : public UndoCommand {
public:
    // Records the tray's selected tile and nesting path; no values yet.
    explicit UndoCommandAdjustFilter(TrayWidget* tray);

    // Copies the tile's values; false when the tile isn't there.
    bool execute() override;
    bool undo() override;
    bool redo() override { return undo(); }

    int32_t tileIndex = -1;
    std::vector<int32_t> nestPath;
    std::string modName;
    std::vector<std::unique_ptr<ImageModVariableData>> variables;
    TrayWidget* tray;

private:
    ImageMod* findTile() const;
};
