#pragma once
#include "core/FlexImage.h"
#include "document/core/UndoCommand.h"

#include <functional>

class MVMediaWidget;

// A quarter turn of the document's source. Undo turns back, redo turns again; `onTurn` lets the
// owner turn what depends on the picture's orientation (the crop's insets) in step.
class UndoCommandRotateMedia : public UndoCommand
{
public:
    UndoCommandRotateMedia(MVMediaWidget* viewer, bool clockwise, std::function<void(bool clockwise)> onTurn = {});

    // Turns the picture now; false when there is nothing to turn.
    bool execute() override;
    bool undo() override;
    bool redo() override;

    MVMediaWidget* viewer = nullptr;
    FlexImageFloat* image = nullptr;
    bool clockwise = true;
    std::function<void(bool)> onTurn;

private:
    bool turn(bool cw);
};

// Turns the viewer's source a quarter in place and makes the viewer take the new size.
bool turnViewerSource(MVMediaWidget* viewer, bool clockwise);
