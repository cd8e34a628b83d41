#pragma once
#include "document/core/RenderQueueItem.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <semaphore>
#include <string>
#include <vector>

// How a finished item ended.
enum class RenderQueueOutcome : int32_t { Done, Failed, Cancelled };

struct RenderQueueRecord {
    int32_t itemID = 0;
    std::string sourcePath;
    std::string destPath;
    RenderQueueOutcome outcome = RenderQueueOutcome::Done;
};

struct RenderQueueWaiting {
    int32_t itemID = 0;
    std::string sourcePath;
};

// What the progress window shows, copied under the locks in one go.
struct RenderQueueSnapshot {
    bool running = false;
    int32_t position = 0; // of the item under work, counting from 1; 0 between items
    int32_t total = 0;    // items of this run: finished, under work and waiting
    int32_t finished = 0;
    int32_t runningID = -1;
    std::string currentName;
    std::string currentStatus;
    double secondsLeft = -1.0; // estimate from the finished items; -1 before the first ends
    std::vector<RenderQueueWaiting> waiting; // behind the one under work, in order
    std::vector<RenderQueueRecord> failed;   // since the last clearHistory
};

// Does one item: load, render, write. cancelled() turns true once the user cancelled this item or
// all of them; a processor looks at it between its steps. True when the output was written.
using RenderQueueProcessor =
    std::function<bool(const RenderQueueItem& item, const std::function<bool()>& cancelled)>;

// Jobs that run in the background while the user goes on editing. One detached worker at a time
// takes the items in order; items added while it runs are served by the same worker. A failed item
// is recorded and the worker goes on with the next. The worker lowers its own CPU priority by ten
// nice steps (19 at most) and runs each item's loops in a background pool (runAsBackgroundWork), so
// a batch does not make the editor sluggish.
//
// Locks: statusMutex before listMutex, doneMutex inside both; fileMutex only around one item's
// load and save, with neither of the others held. busyMutex belongs to the worker for its life.
class RenderQueue {
public:
    static constexpr int32_t commandNone = 0;
    static constexpr int32_t commandCancelItem = 1;
    static constexpr int32_t commandCancelAll = 2;

    explicit RenderQueue(RenderQueueProcessor processor = {});
    // Cancels everything and waits for the worker to give up its item.
    ~RenderQueue();
    RenderQueue(const RenderQueue&) = delete;
    RenderQueue& operator=(const RenderQueue&) = delete;

    // Appends under listMutex. An itemID of 0 gets the next free number; returns the id.
    int32_t addItem(RenderQueueItem item);
    // Starts a worker unless one runs (that one picks the new items up). True when one started.
    bool start();
    // By position in items: the one under work is told to stop, a waiting one is removed with its
    // tiles; a bad index does nothing. False when nothing was done.
    bool cancelItem(int32_t index);
    bool cancelItemByID(int32_t itemID);
    // The item under work stops when it next looks; the waiting ones are dropped after it.
    void cancelAll();

    bool isRunning();
    int32_t itemCount();
    RenderQueueSnapshot snapshot();
    std::vector<RenderQueueRecord> history();
    void clearHistory();
    // Waits until no worker owns the queue; false on timeout.
    bool waitUntilIdle(int32_t milliseconds);

    std::mutex fileMutex;
    std::binary_semaphore busyMutex{1};
    std::mutex listMutex;
    std::vector<RenderQueueItem> items;
    std::mutex doneMutex;
    std::mutex statusMutex;
    bool running = false;
    int32_t command = commandNone;
    bool itemDone = false;
    int32_t currentIndex = 0;
    std::string currentName;
    std::string currentStatus;

private:
    using Clock = std::chrono::steady_clock;

    static void workerRoutine(RenderQueue* queue);
    bool cancelledNow();
    // Under statusMutex and listMutex.
    bool cancelAtLocked(int32_t index);

    RenderQueueProcessor processor;
    int32_t nextItemID = 1;      // listMutex
    int32_t runningIndex = -1;   // statusMutex: 0 while an item is under work
    int32_t finishedCount = 0;   // statusMutex: of this run
    Clock::time_point runStart;  // statusMutex
    Clock::time_point itemStart; // statusMutex
    double finishedSeconds = 0.0; // statusMutex: time spent on finished items of this run
    std::vector<RenderQueueRecord> records; // doneMutex
};
