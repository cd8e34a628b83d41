#pragma once
#include "core/FlexImage.h"
#include "document/core/UndoCommand.h"

#include <cstdint>
#include <memory>

class MVMediaWidget;

// A rectangle of source pixels as they were before a spot heal. Undo and redo both swap it with the
// live image under the viewer's source lock and ask for a fresh render. When the viewer's source is
// no longer `image` (new media, a quarter turn) the command has nothing to do and is dropped.
class UndoCommandChangeImage : public UndoCommand
{
public:
    UndoCommandChangeImage(FlexImageFloat* image, std::unique_ptr<FlexImageFloat> savedPixels, MVMediaWidget* viewer,
                           int32_t x, int32_t y);

    bool execute() override;
    bool undo() override;
    bool redo() override;

    FlexImageFloat* image = nullptr;
    std::unique_ptr<FlexImageFloat> savedPixels;
    MVMediaWidget* viewer = nullptr;
    int32_t x = 0;
    int32_t y = 0;

private:
    bool swap();
};

// Marks the viewer's working image stale after its source changed and renders again at full quality.
void refreshAfterSourceChange(MVMediaWidget* viewer);
