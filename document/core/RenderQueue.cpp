#include "document/core/RenderQueue.h"

#include "core/ParallelFor.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <thread>

namespace {

// The batch runs at a lower CPU priority than the editor, so a slider pass on screen is not kept
// waiting for it. Threads take their creator's priority, so the shared row pool's helper threads
// are started first (a loop of nothing does it) while this thread still has the normal one.
void lowerWorkerPriority()
{
    parallelFor(64, [](int32_t) {});
    const id_t self = id_t(gettid());
    errno = 0;
    const int now = getpriority(PRIO_PROCESS, self);
    if (errno == 0)
        setpriority(PRIO_PROCESS, self, std::min(now + 10, 19));
}

} // namespace

RenderQueueItem RenderQueueItem::clone() const
{
    RenderQueueItem copy;
    copy.kind = kind;
    copy.sourcePath = sourcePath;
    copy.destPath = destPath;
    copy.itemID = itemID;
    copy.width = width;
    copy.height = height;
    copy.quality = quality;
    copy.inPoint = inPoint;
    copy.outPoint = outPoint;
    copy.extensionIndex = extensionIndex;
    copy.setMods(modList());
    return copy;
}

void RenderQueueItem::setMods(const std::vector<ImageMod*>& list)
{
    mods.clear();
    mods.reserve(list.size());
    for (ImageMod* m : list)
        if (m)
            mods.push_back(cloneMod(*m));
}

std::vector<ImageMod*> RenderQueueItem::modList() const
{
    std::vector<ImageMod*> list;
    list.reserve(mods.size());
    for (const auto& m : mods)
        list.push_back(m.get());
    return list;
}

RenderQueue::RenderQueue(RenderQueueProcessor p) : processor(std::move(p)) {}

RenderQueue::~RenderQueue()
{
    cancelAll();
    busyMutex.acquire();
    // The worker lets go of busyMutex while it still holds these two; wait for its last unlock.
    { std::scoped_lock lock(statusMutex, listMutex); }
    busyMutex.release();
}

int32_t RenderQueue::addItem(RenderQueueItem item)
{
    std::lock_guard<std::mutex> lock(listMutex);
    if (item.itemID == 0)
        item.itemID = nextItemID++;
    else if (item.itemID >= nextItemID)
        nextItemID = item.itemID + 1;
    const int32_t id = item.itemID;
    items.push_back(std::move(item));
    return id;
}

bool RenderQueue::start()
{
    if (!busyMutex.try_acquire())
        return false;
    {
        // Running from here on, so a progress check right after start() doesn't see an idle queue.
        std::lock_guard<std::mutex> lock(statusMutex);
        running = true;
    }
    std::thread(workerRoutine, this).detach();
    return true;
}

bool RenderQueue::cancelAtLocked(int32_t index)
{
    if (index < 0 || index >= int32_t(items.size()))
        return false;
    if (runningIndex >= 0) {
        if (index == runningIndex) {
            if (command == commandNone)
                command = commandCancelItem;
            return true;
        }
        if (index < runningIndex)
            return false;
    }
    {
        std::lock_guard<std::mutex> done(doneMutex);
        records.push_back({items[size_t(index)].itemID, items[size_t(index)].sourcePath, items[size_t(index)].destPath,
                           RenderQueueOutcome::Cancelled});
    }
    items.erase(items.begin() + index);
    return true;
}

bool RenderQueue::cancelItem(int32_t index)
{
    std::scoped_lock lock(statusMutex, listMutex);
    return cancelAtLocked(index);
}

bool RenderQueue::cancelItemByID(int32_t itemID)
{
    std::scoped_lock lock(statusMutex, listMutex);
    for (size_t i = 0; i < items.size(); ++i)
        if (items[i].itemID == itemID)
            return cancelAtLocked(int32_t(i));
    return false;
}

void RenderQueue::cancelAll()
{
    std::lock_guard<std::mutex> lock(statusMutex);
    command = commandCancelAll;
}

bool RenderQueue::isRunning()
{
    std::lock_guard<std::mutex> lock(statusMutex);
    return running;
}

int32_t RenderQueue::itemCount()
{
    std::lock_guard<std::mutex> lock(listMutex);
    return int32_t(items.size());
}

RenderQueueSnapshot RenderQueue::snapshot()
{
    RenderQueueSnapshot s;
    std::scoped_lock lock(statusMutex, listMutex);
    s.running = running;
    s.finished = finishedCount;
    s.total = finishedCount + int32_t(items.size());
    s.currentName = currentName;
    s.currentStatus = currentStatus;
    const bool working = running && runningIndex >= 0 && !items.empty();
    if (working) {
        s.position = finishedCount + 1;
        s.runningID = items[size_t(runningIndex)].itemID;
    }
    for (size_t i = working ? size_t(runningIndex) + 1 : 0; i < items.size(); ++i)
        s.waiting.push_back({items[i].itemID, items[i].sourcePath});
    if (running && finishedCount > 0) {
        const double perItem = finishedSeconds / double(finishedCount);
        const double intoCurrent =
            working ? std::chrono::duration<double>(Clock::now() - itemStart).count() : 0.0;
        const double left = perItem * double(items.size()) - intoCurrent;
        s.secondsLeft = left > 0.0 ? left : 0.0;
    }
    std::lock_guard<std::mutex> done(doneMutex);
    for (const RenderQueueRecord& r : records)
        if (r.outcome == RenderQueueOutcome::Failed)
            s.failed.push_back(r);
    return s;
}

std::vector<RenderQueueRecord> RenderQueue::history()
{
    std::lock_guard<std::mutex> lock(doneMutex);
    return records;
}

void RenderQueue::clearHistory()
{
    std::lock_guard<std::mutex> lock(doneMutex);
    records.clear();
}

bool RenderQueue::waitUntilIdle(int32_t milliseconds)
{
    const auto until = Clock::now() + std::chrono::milliseconds(milliseconds);
    while (!busyMutex.try_acquire()) {
        if (Clock::now() >= until)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    busyMutex.release();
    return true;
}

bool RenderQueue::cancelledNow()
{
    std::lock_guard<std::mutex> lock(statusMutex);
    return command != commandNone;
}

void RenderQueue::workerRoutine(RenderQueue* q)
{
    lowerWorkerPriority();
    {
        std::scoped_lock lock(q->statusMutex, q->listMutex);
        q->running = true;
        q->currentIndex = 1;
        q->command = commandNone;
        q->itemDone = false;
        q->currentName.clear();
        q->currentStatus.clear();
        q->finishedCount = 0;
        q->finishedSeconds = 0.0;
        q->runStart = Clock::now();
    }
    const std::function<bool()> cancelled = [q] { return q->cancelledNow(); };
    for (;;) {
        RenderQueueItem local;
        {
            std::scoped_lock lock(q->statusMutex, q->listMutex);
            if (q->items.empty() || q->command == commandCancelAll) {
                // Cancel-all with nothing under work still drops whatever waits.
                {
                    std::lock_guard<std::mutex> done(q->doneMutex);
                    for (const RenderQueueItem& it : q->items)
                        q->records.push_back({it.itemID, it.sourcePath, it.destPath, RenderQueueOutcome::Cancelled});
                }
                q->items.clear();
                q->running = false;
                q->runningIndex = -1;
                q->command = commandNone;
                q->currentName.clear();
                q->currentStatus.clear();
                q->busyMutex.release();
                return;
            }
            local = q->items.front().clone();
            q->runningIndex = 0;
            q->currentIndex = q->finishedCount + 1;
            q->currentName = local.sourcePath;
            q->currentStatus = "Rendering";
            q->itemDone = false;
            q->itemStart = Clock::now();
        }

        bool ok = false;
        if (local.kind == RenderQueueItem::kindStill && q->processor && !cancelled()) {
            std::lock_guard<std::mutex> file(q->fileMutex);
            // Its loops in a pool of their own: the viewport's never wait on rows of the batch.
            runAsBackgroundWork([&] { ok = q->processor(local, cancelled); });
        }
        // No video path on this platform: such an item ends as failed.

        std::scoped_lock lock(q->statusMutex, q->listMutex);
        q->itemDone = true;
        const bool stopAll = q->command == commandCancelAll;
        const RenderQueueOutcome outcome = ok ? RenderQueueOutcome::Done
            : q->command != commandNone      ? RenderQueueOutcome::Cancelled
                                             : RenderQueueOutcome::Failed;
        std::lock_guard<std::mutex> done(q->doneMutex);
        q->records.push_back({local.itemID, local.sourcePath, local.destPath, outcome});
        if (!q->items.empty())
            q->items.erase(q->items.begin());
        q->runningIndex = -1;
        ++q->finishedCount;
        q->finishedSeconds += std::chrono::duration<double>(Clock::now() - q->itemStart).count();
        if (!stopAll)
            q->command = commandNone;
    }
}
