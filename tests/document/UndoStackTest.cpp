#include "document/core/UndoStack.h"

#include <gtest/gtest.h>

namespace {

// A swap command over one int, like the tray's snapshots: undo and redo are the same swap.
struct SwapCommand : UndoCommand {
    SwapCommand(int* target, int stored, bool* alive = nullptr) : target(target), stored(stored), alive(alive)
    {
        if (alive)
            *alive = true;
    }
    ~SwapCommand() override
    {
        if (alive)
            *alive = false;
    }
    bool execute() override { return target != nullptr; }
    bool undo() override
    {
        if (valid && !*valid)
            return false;
        std::swap(*target, stored);
        return true;
    }
    bool redo() override { return undo(); }
    int* target;
    int stored;
    bool* alive;
    const bool* valid = nullptr;
};

} // namespace

TEST(UndoStack, UndoRedoSwapsBackAndForth)
{
    UndoStack stack;
    int value = 1;
    stack.push(new SwapCommand(&value, value));
    value = 2;
    stack.push(new SwapCommand(&value, value));
    value = 3;
    stack.undo();
    EXPECT_EQ(value, 2);
    stack.undo();
    EXPECT_EQ(value, 1);
    stack.undo(); // empty: nothing
    EXPECT_EQ(value, 1);
    stack.redo();
    EXPECT_EQ(value, 2);
    stack.redo();
    EXPECT_EQ(value, 3);
    EXPECT_FALSE(stack.canRedo());
    EXPECT_EQ(stack.undoCount(), 2);
}

TEST(UndoStack, PushAfterUndoEmptiesRedoAndFailedExecuteIsDropped)
{
    UndoStack stack;
    int value = 0;
    bool firstAlive = false;
    stack.push(new SwapCommand(&value, 0, &firstAlive));
    stack.undo();
    EXPECT_TRUE(stack.canRedo());
    stack.push(new SwapCommand(&value, 5));
    EXPECT_FALSE(stack.canRedo());
    EXPECT_FALSE(firstAlive);

    bool rejectedAlive = false;
    EXPECT_FALSE(stack.push(new SwapCommand(nullptr, 0, &rejectedAlive)));
    EXPECT_FALSE(rejectedAlive);
    EXPECT_EQ(stack.undoCount(), 1);
}

TEST(UndoStack, HundredAndFirstCommandDropsTheOldest)
{
    UndoStack stack;
    int value = 0;
    bool oldestAlive = false;
    stack.push(new SwapCommand(&value, -1, &oldestAlive));
    for (int i = 1; i <= UndoStack::capacity; ++i)
        stack.push(new SwapCommand(&value, i));
    EXPECT_FALSE(oldestAlive);
    EXPECT_EQ(stack.undoCount(), UndoStack::capacity);
    for (int i = 0; i < UndoStack::capacity + 5; ++i)
        stack.undo();
    // The last undo swapped in the value stored by the command pushed second.
    EXPECT_EQ(value, 1);
    EXPECT_EQ(stack.redoCount(), UndoStack::capacity);
}

TEST(UndoStack, CommandThatLostItsTargetIsDroppedOnUndo)
{
    UndoStack stack;
    int value = 7;
    bool stillValid = true;
    auto* command = new SwapCommand(&value, 3);
    command->valid = &stillValid;
    stack.push(command);
    stillValid = false;
    stack.undo();
    EXPECT_EQ(value, 7);
    EXPECT_FALSE(stack.canUndo());
    EXPECT_FALSE(stack.canRedo());
}
