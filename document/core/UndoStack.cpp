#include "document/core/UndoStack.h"

bool UndoStack::push(UndoCommand* command)
{
    std::unique_ptr<UndoCommand> owned(command);
    if (!owned)
        return false;
    redoList.clear();
    if (!owned->execute())
        return false;
    append(std::move(owned));
    return true;
}

void UndoStack::append(std::unique_ptr<UndoCommand> command)
{
    if (int32_t(undoList.size()) >= capacity)
        undoList.erase(undoList.begin());
    undoList.push_back(std::move(command));
    if (position < 0 && !redoList.empty())
        position = int32_t(undoList.size() + redoList.size());
    ++position;
}

void UndoStack::undo()
{
    if (undoList.empty())
        return;
    --position;
    std::unique_ptr<UndoCommand> command = std::move(undoList.back());
    undoList.pop_back();
    if (command->undo())
        redoList.push_back(std::move(command));
}

void UndoStack::redo()
{
    if (redoList.empty())
        return;
    ++position;
    std::unique_ptr<UndoCommand> command = std::move(redoList.back());
    redoList.pop_back();
    if (command->redo())
        append(std::move(command));
}

void UndoStack::clear()
{
    undoList.clear();
    redoList.clear();
}

void UndoStack::absorb(UndoStack& other)
{
    if (&other == this)
        return;
    for (auto& command : other.undoList) {
        if (int32_t(undoList.size()) >= capacity)
            undoList.erase(undoList.begin());
        undoList.push_back(std::move(command));
    }
    for (auto& command : other.redoList)
        redoList.push_back(std::move(command));
    position += other.position;
    other.undoList.clear();
    other.redoList.clear();
    other.position = 0;
}
