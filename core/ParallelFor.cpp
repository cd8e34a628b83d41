#include "core/ParallelFor.h"

#if defined(__SANITIZE_THREAD__)
#include <algorithm>
#include <thread>
#include <vector>
#else
#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>
#endif

#if defined(__SANITIZE_THREAD__)
// Under ThreadSanitizer the rows go to plain threads: TBB's library is not instrumented, so the
// hand-over of its tasks is invisible and every loop would report races that are not there.
// With threads it can see, a race inside a loop body of ours is still found.
namespace {

void splitOverThreads(int32_t count, const std::function<void(int32_t, int32_t)>& body)
{
    const int32_t parts = std::min<int32_t>(count, 3);
    std::vector<std::thread> threads;
    for (int32_t p = 1; p < parts; ++p)
        threads.emplace_back([&, p] { body(int32_t(int64_t(count) * p / parts), int32_t(int64_t(count) * (p + 1) / parts)); });
    body(0, int32_t(int64_t(count) / parts));
    for (std::thread& t : threads)
        t.join();
}

} // namespace
#endif

void parallelFor(int32_t count, const std::function<void(int32_t)>& body)
{
    if (count <= 0)
        return;
    if (count == 1) {
        body(0);
        return;
    }
#if defined(__SANITIZE_THREAD__)
    splitOverThreads(count, [&](int32_t begin, int32_t end) {
        for (int32_t i = begin; i != end; ++i)
            body(i);
    });
#else
    tbb::parallel_for(tbb::blocked_range<int32_t>(0, count), [&](const tbb::blocked_range<int32_t>& r) {
        for (int32_t i = r.begin(); i != r.end(); ++i)
            body(i);
    });
#endif
}

void parallelForRanges(int32_t count, const std::function<void(int32_t, int32_t)>& body)
{
    if (count <= 0)
        return;
#if defined(__SANITIZE_THREAD__)
    splitOverThreads(count, body);
#else
    tbb::parallel_for(tbb::blocked_range<int32_t>(0, count),
                      [&](const tbb::blocked_range<int32_t>& r) { body(r.begin(), r.end()); });
#endif
}

void runAsBackgroundWork(const std::function<void()>& body)
{
#if defined(__SANITIZE_THREAD__)
    body();
#else
    tbb::task_arena arena(tbb::task_arena::automatic, 1, tbb::task_arena::priority::low);
    arena.execute(body);
#endif
}
