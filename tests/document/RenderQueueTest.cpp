#include "document/core/RenderQueue.h"

#include "RunnerTestMods.h"
#include "core/ParallelFor.h"
#include "desktop_only/MediaLoading.h"
#include "desktop_only/RenderAndSave.h"
#include "media/MediaFormats.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <tuple>

namespace {

// A processor the test drives: each item waits at a gate until the test lets it through, and
// every call is logged with the thread it ran on and whether it saw a cancel.
class GatedProcessor {
public:
    RenderQueueProcessor function()
    {
        return [this](const RenderQueueItem& item, const std::function<bool()>& cancelled) {
            std::unique_lock<std::mutex> lock(mutex);
            started.push_back(item.sourcePath);
            threads.push_back(std::this_thread::get_id());
            changed.notify_all();
            changed.wait(lock, [&] { return opened > 0; });
            --opened;
            lock.unlock();
            const bool stop = cancelled();
            lock.lock();
            sawCancel.push_back(stop);
            return !stop && item.sourcePath.find("bad") == std::string::npos;
        };
    }
    // Lets n items through.
    void open(int n)
    {
        std::lock_guard<std::mutex> lock(mutex);
        opened += n;
        changed.notify_all();
    }
    bool waitStarted(size_t n)
    {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(10), [&] { return started.size() >= n; });
    }

    std::mutex mutex;
    std::condition_variable changed;
    int opened = 0;
    std::vector<std::string> started;
    std::vector<std::thread::id> threads;
    std::vector<bool> sawCancel;
};

RenderQueueItem item(const std::string& name)
{
    RenderQueueItem it;
    it.sourcePath = name;
    it.destPath = name + ".out";
    return it;
}

std::vector<RenderQueueOutcome> outcomes(RenderQueue& q)
{
    std::vector<RenderQueueOutcome> list;
    for (const RenderQueueRecord& r : q.history())
        list.push_back(r.outcome);
    return list;
}

// A queue whose items wait at the gate.
class GatedQueue : public ::testing::Test {
protected:
    // Adds the items, starts, and returns once the first is under way.
    void startWith(std::initializer_list<const char*> names)
    {
        for (const char* n : names)
            q.addItem(item(n));
        ASSERT_TRUE(q.start());
        ASSERT_TRUE(gate.waitStarted(1));
    }

    GatedProcessor gate;
    RenderQueue q{gate.function()};
};

} // namespace

TEST(RenderQueueItem, CloneCopiesFieldsAndOwnsItsOwnTiles)
{
    TestCountMod mod(3, 7.0f);
    RenderQueueItem a = item("a.jpg");
    a.width = 640;
    a.height = 480;
    a.quality = 70;
    a.extensionIndex = 3;
    a.setMods({&mod, nullptr});
    ASSERT_EQ(a.mods.size(), 1u); // a null entry is skipped
    EXPECT_NE(a.mods[0].get(), &mod);
    const RenderQueueItem b = a.clone();
    auto fields = [](const RenderQueueItem& i) {
        return std::tie(i.sourcePath, i.destPath, i.width, i.height, i.quality, i.extensionIndex);
    };
    EXPECT_EQ(fields(b), fields(a));
    ASSERT_EQ(b.mods.size(), 1u);
    EXPECT_NE(b.mods[0].get(), a.mods[0].get());
    a.mods[0]->variableAt(0)->setFloatValue(1.0f);
    EXPECT_FLOAT_EQ(b.mods[0]->floatValue(0), 7.0f); // changing the original leaves the clone
}

TEST_F(GatedQueue, CancellingAWaitingItemRemovesJustThatOne)
{
    const int32_t a = q.addItem(item("a"));
    const int32_t b = q.addItem(item("b"));
    const int32_t c = q.addItem(item("c"));
    EXPECT_EQ(a, 1);
    EXPECT_EQ(c, 3);
    ASSERT_TRUE(q.start());
    EXPECT_TRUE(q.isRunning()); // at once, before the worker has taken anything
    ASSERT_TRUE(gate.waitStarted(1));

    RenderQueueSnapshot s = q.snapshot();
    EXPECT_TRUE(s.running);
    EXPECT_EQ(s.position, 1);
    EXPECT_EQ(s.total, 3);
    EXPECT_EQ(s.runningID, a);
    ASSERT_EQ(s.waiting.size(), 2u);

    EXPECT_FALSE(q.cancelItem(7));  // a bad index does nothing
    EXPECT_FALSE(q.cancelItem(-1));
    EXPECT_TRUE(q.cancelItemByID(b)); // waiting: removed at once
    EXPECT_FALSE(q.cancelItemByID(b));
    s = q.snapshot();
    ASSERT_EQ(s.waiting.size(), 1u);
    EXPECT_EQ(s.waiting[0].itemID, c);
    EXPECT_EQ(s.total, 2);

    gate.open(2);
    ASSERT_TRUE(q.waitUntilIdle(10000));
    EXPECT_EQ(gate.started, (std::vector<std::string>{"a", "c"}));
    const std::vector<RenderQueueRecord> h = q.history();
    ASSERT_EQ(h.size(), 3u);
    EXPECT_EQ(h[0].itemID, b);
    EXPECT_EQ(h[0].outcome, RenderQueueOutcome::Cancelled);
    EXPECT_EQ(h[1].outcome, RenderQueueOutcome::Done);
    EXPECT_EQ(h[2].outcome, RenderQueueOutcome::Done);
    EXPECT_FALSE(q.isRunning());
    EXPECT_EQ(q.itemCount(), 0);
}

TEST_F(GatedQueue, CancellingTheRunningItemStopsOnlyIt)
{
    ASSERT_NO_FATAL_FAILURE(startWith({"a", "b"}));
    EXPECT_TRUE(q.cancelItem(0)); // the running one is told, not removed
    EXPECT_EQ(q.itemCount(), 2);
    gate.open(2);
    ASSERT_TRUE(q.waitUntilIdle(10000));
    EXPECT_EQ(gate.sawCancel, (std::vector<bool>{true, false})); // the command is cleared for the next
    EXPECT_EQ(outcomes(q), (std::vector<RenderQueueOutcome>{RenderQueueOutcome::Cancelled, RenderQueueOutcome::Done}));
}

TEST_F(GatedQueue, CancelAllStopsAfterTheRunningItemGivesUp)
{
    ASSERT_NO_FATAL_FAILURE(startWith({"a", "b", "c", "d"}));
    q.cancelAll();
    EXPECT_TRUE(q.isRunning()); // still on "a" until it looks
    gate.open(4);
    ASSERT_TRUE(q.waitUntilIdle(10000));
    EXPECT_EQ(gate.started, (std::vector<std::string>{"a"}));
    EXPECT_EQ(gate.sawCancel, (std::vector<bool>{true}));
    EXPECT_EQ(outcomes(q), std::vector<RenderQueueOutcome>(4, RenderQueueOutcome::Cancelled));
    EXPECT_EQ(q.itemCount(), 0);
    EXPECT_FALSE(q.isRunning());

    // The queue works again afterwards: the command belongs to the run that saw it.
    q.clearHistory();
    q.addItem(item("e"));
    ASSERT_TRUE(q.start());
    ASSERT_TRUE(q.waitUntilIdle(10000));
    EXPECT_EQ(outcomes(q), std::vector<RenderQueueOutcome>{RenderQueueOutcome::Done});
}

TEST_F(GatedQueue, ItemsAddedDuringARunAreServedBySameWorker)
{
    ASSERT_NO_FATAL_FAILURE(startWith({"a"}));
    q.addItem(item("b"));
    q.addItem(item("c"));
    EXPECT_FALSE(q.start()); // the running worker takes them
    EXPECT_EQ(q.snapshot().total, 3);
    gate.open(3);
    ASSERT_TRUE(q.waitUntilIdle(10000));
    EXPECT_EQ(gate.started, (std::vector<std::string>{"a", "b", "c"}));
    ASSERT_EQ(gate.threads.size(), 3u);
    EXPECT_EQ(gate.threads[0], gate.threads[1]);
    EXPECT_EQ(gate.threads[1], gate.threads[2]);
    EXPECT_NE(gate.threads[0], std::this_thread::get_id());
}

TEST_F(GatedQueue, AFailedItemIsRecordedAndTheQueueGoesOn)
{
    q.addItem(item("bad one"));
    q.addItem(item("good"));
    RenderQueueItem video = item("clip");
    video.kind = 2; // no video path: it fails without reaching the processor
    q.addItem(std::move(video));
    ASSERT_TRUE(q.start());
    ASSERT_TRUE(gate.waitStarted(1));
    // The estimate waits for a finished item.
    EXPECT_LT(q.snapshot().secondsLeft, 0.0);
    gate.open(1);
    ASSERT_TRUE(gate.waitStarted(2));
    const RenderQueueSnapshot s = q.snapshot();
    EXPECT_EQ(s.position, 2);
    EXPECT_EQ(s.finished, 1);
    EXPECT_GE(s.secondsLeft, 0.0);
    ASSERT_EQ(s.failed.size(), 1u);
    EXPECT_EQ(s.failed[0].sourcePath, "bad one");
    gate.open(1);
    ASSERT_TRUE(q.waitUntilIdle(10000));
    EXPECT_EQ(gate.started.size(), 2u);
    EXPECT_EQ(outcomes(q), (std::vector<RenderQueueOutcome>{RenderQueueOutcome::Failed, RenderQueueOutcome::Done,
                                                           RenderQueueOutcome::Failed}));
    EXPECT_EQ(q.snapshot().failed.size(), 2u);
}

TEST(RenderQueue, WithoutAProcessorEveryItemFails)
{
    RenderQueue q;
    q.addItem(item("a"));
    ASSERT_TRUE(q.start());
    ASSERT_TRUE(q.waitUntilIdle(10000));
    EXPECT_EQ(outcomes(q), std::vector<RenderQueueOutcome>{RenderQueueOutcome::Failed});
}

// Threads of this process whose nice value differs from `normal`.
static std::vector<int> threadsNotAt(int normal)
{
    std::vector<int> found;
    for (const QFileInfo& t : QDir(QStringLiteral("/proc/self/task")).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        errno = 0;
        const int p = getpriority(PRIO_PROCESS, id_t(t.fileName().toInt()));
        if (errno == 0 && p != normal)
            found.push_back(p);
    }
    return found;
}

// One item whose rows go through the pool; true when it was done and, while it ran, the worker was
// the only thread below the editor's priority, ten steps down.
static bool onlyTheWorkerRunsLower(int editor)
{
    std::vector<int> lowered;
    RenderQueue q([&](const RenderQueueItem&, const std::function<bool()>&) {
        std::atomic<int> rows{0};
        parallelFor(4096, [&](int32_t) { rows++; });
        lowered = threadsNotAt(editor);
        return rows.load() == 4096;
    });
    q.addItem(item("a"));
    if (!q.start() || !q.waitUntilIdle(10000))
        return false;
    return outcomes(q) == std::vector<RenderQueueOutcome>{RenderQueueOutcome::Done} &&
        lowered == std::vector<int>{editor + 10};
}

TEST(RenderQueue, TheWorkerRunsBelowTheEditorAndTheRowPoolKeepsItsPriority)
{
    const int editor = getpriority(PRIO_PROCESS, id_t(gettid()));
    if (editor > 9)
        GTEST_SKIP() << "too near the lowest priority to tell";
    // In a fresh process, so the queue's worker is the first to use the row pool: its helper threads
    // must still start at the editor's priority, not inherit the worker's lower one.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::_Exit(onlyTheWorkerRunsLower(editor) ? 0 : 1), ::testing::ExitedWithCode(0), "");
}

TEST(RenderQueue, DestroyingARunningQueueWaitsForItsWorker)
{
    GatedProcessor gate;
    {
        RenderQueue q(gate.function());
        q.addItem(item("a"));
        q.addItem(item("b"));
        ASSERT_TRUE(q.start());
        ASSERT_TRUE(gate.waitStarted(1));
        std::thread opener([&gate] {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            gate.open(2);
        });
        opener.detach();
    } // the destructor cancels all and waits for "a" to give up
    EXPECT_EQ(gate.started.size(), 1u);
    EXPECT_EQ(gate.sawCancel, (std::vector<bool>{true}));
}

// The real work of a still item: a missing file fails, the next one is written.
TEST(RenderQueue, StillItemsLoadRenderAndWriteAndAMissingFileFails)
{
    const std::string photo = VANTREL_TESTDATA "/orientation_6.jpg";
    if (!QFileInfo::exists(QString::fromStdString(photo)))
        GTEST_SKIP() << "test photos are not available";
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::string out = dir.path().toStdString();
    RenderQueue q(renderQueueStillItem);
    TestCountMod brighten(0, 20.0f);
    RenderQueueItem missing;
    missing.sourcePath = out + "/no such photo.jpg";
    missing.destPath = out + "/missing_out.jpg";
    missing.setMods({&brighten});
    q.addItem(std::move(missing));
    RenderQueueItem good;
    good.sourcePath = photo;
    good.destPath = out + "/good_out.png";
    good.extensionIndex = 1; // "PNG Image"
    good.setMods({&brighten});
    q.addItem(std::move(good));
    ASSERT_TRUE(q.start());
    ASSERT_TRUE(q.waitUntilIdle(60000));
    EXPECT_EQ(outcomes(q), (std::vector<RenderQueueOutcome>{RenderQueueOutcome::Failed, RenderQueueOutcome::Done}));
    EXPECT_FALSE(QFileInfo::exists(QString::fromStdString(out + "/missing_out.jpg")));

    // The written file is the loaded photo, 20 brighter. The test tile doesn't clamp and the writer
    // wraps what lies past white, so only samples that stay in range are compared.
    FlexImageFloat source(1, 1, 4), written(1, 1, 4), expected(1, 1, 4);
    ASSERT_TRUE(LoadMediaFile(source, photo, nullptr));
    ASSERT_TRUE(LoadMediaFile(written, out + "/good_out.png", nullptr));
    ASSERT_EQ(written.width, source.width); // upright, as loaded
    ASSERT_EQ(written.height, source.height);
    for (int32_t y = 0; y < source.height; y += 7)
        for (int32_t x = 0; x < source.width; x += 5) {
            const float want = source.row(y)[x * source.channels + 1] + 20.0f;
            if (want > 254.0f)
                continue;
            ASSERT_NEAR(written.row(y)[x * written.channels + 1], want, 1.0f) << x << "," << y;
        }
}
