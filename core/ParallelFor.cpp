#include "core/ParallelFor.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

void parallelFor(int32_t count, const std::function<void(int32_t)>& body)
{
    if (count <= 0)
        return;
    if (count == 1) {
        body(0);
        return;
    }
    tbb::parallel_for(tbb::blocked_range<int32_t>(0, count), [&](const tbb::blocked_range<int32_t>& r) {
        for (int32_t i = r.begin(); i != r.end(); ++i)
            body(i);
    });
}

void parallelForRanges(int32_t count, const std::function<void(int32_t, int32_t)>& body)
{
    if (count <= 0)
        return;
    tbb::parallel_for(tbb::blocked_range<int32_t>(0, count),
                      [&](const tbb::blocked_range<int32_t>& r) { body(r.begin(), r.end()); });
}
