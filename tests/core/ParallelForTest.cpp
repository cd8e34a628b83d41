#include "core/ParallelFor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

// Every row of [0, count) seen exactly once, nothing outside.
bool eachRowOnce(const std::vector<std::atomic<int>>& hits)
{
    for (const auto& h : hits)
        if (h.load() != 1)
            return false;
    return true;
}

} // namespace

TEST(ParallelFor, EveryRowOnceForEmptyOneAndManyRows)
{
    for (int32_t count : {-3, 0, 1, 2, 7, 1000}) {
        std::vector<std::atomic<int>> rows(size_t(count > 0 ? count : 0));
        parallelFor(count, [&](int32_t i) { rows[size_t(i)]++; });
        EXPECT_TRUE(eachRowOnce(rows)) << count;

        std::vector<std::atomic<int>> ranged(rows.size());
        parallelForRanges(count, [&](int32_t begin, int32_t end) {
            for (int32_t i = begin; i < end; ++i)
                ranged[size_t(i)]++;
        });
        EXPECT_TRUE(eachRowOnce(ranged)) << count;
    }
}

TEST(ParallelFor, BackgroundWorkRunsOnTheCallerAndItsNestedLoopsCoverEveryRow)
{
    const std::thread::id caller = std::this_thread::get_id();
    std::thread::id ranOn;
    std::vector<std::atomic<int>> rows(500 * 8);
    runAsBackgroundWork([&] {
        ranOn = std::this_thread::get_id();
        parallelFor(500, [&](int32_t y) {
            parallelFor(8, [&](int32_t x) { rows[size_t(y * 8 + x)]++; });
        });
    });
    EXPECT_EQ(ranOn, caller);
    EXPECT_TRUE(eachRowOnce(rows));
}

TEST(ParallelFor, ForegroundLoopsFinishWhileBackgroundWorkIsBusy)
{
    // The background job waits inside its own loop until the foreground one is done: the two pools
    // must not depend on each other, or this would never end.
    std::atomic<bool> foregroundDone{false};
    std::atomic<int> backgroundRows{0};
    std::thread background([&] {
        runAsBackgroundWork([&] {
            parallelFor(4, [&](int32_t) {
                while (!foregroundDone.load())
                    std::this_thread::yield();
                backgroundRows++;
            });
        });
    });
    std::vector<std::atomic<int>> rows(2000);
    parallelFor(2000, [&](int32_t i) { rows[size_t(i)]++; });
    foregroundDone = true;
    background.join();
    EXPECT_TRUE(eachRowOnce(rows));
    EXPECT_EQ(backgroundRows.load(), 4);
}
