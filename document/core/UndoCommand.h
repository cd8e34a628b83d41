#pragma once

// One undoable change. Commands are whole snapshots that swap with the live state, so redo is
// usually the same swap as undo. Each call returns false when the command has nothing to do any
// more (its tile is gone, say); the stack then drops it.
class UndoCommand {
public:
    virtual bool execute() = 0;
    virtual bool undo() = 0;
    virtual bool redo() = 0;
    virtual ~UndoCommand() = default;
};
