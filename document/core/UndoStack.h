#pragma once
#include "document/core/UndoCommand.h"

#include <cstdint>
#include <memory>
#include <vector>

// Undo and redo lists of owned commands. The undo list keeps at most `capacity` commands; the
// oldest falls off. `position` counts events (push, undo, redo); nothing reads it as an index.
class UndoStack {
public:
    static constexpr int32_t capacity = 100;

    UndoStack() = default;
    UndoStack(const UndoStack&) = delete;
    UndoStack& operator=(const UndoStack&) = delete;

    // Takes ownership. Clears the redo list and executes; a command whose execute() fails is
    // destroyed and the stack stays as it was. Returns whether the command was kept.
    bool push(UndoCommand* command);
    bool push(std::unique_ptr<UndoCommand> command) { return push(command.release()); }
    // Both do nothing on an empty list; a command that fails is destroyed.
    void undo();
    void redo();
    void clear();
    // Moves another stack's commands to the end of this one's lists (a modal tool's history joining
    // the document's) and adds its count; the other stack ends empty.
    void absorb(UndoStack& other);

    bool canUndo() const { return !undoList.empty(); }
    bool canRedo() const { return !redoList.empty(); }
    int32_t undoCount() const { return int32_t(undoList.size()); }
    int32_t redoCount() const { return int32_t(redoList.size()); }
    int32_t position = 0;

private:
    void append(std::unique_ptr<UndoCommand> command);

    std::vector<std::unique_ptr<UndoCommand>> undoList;
    std::vector<std::unique_ptr<UndoCommand>> redoList;
};
