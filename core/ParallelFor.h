#pragma once
#include <cstdint>
#include <functional>

// Runs body(i) for every i in [0, count) on the shared worker pool and returns when all are done.
// Order and thread are unspecified. Safe from any thread, also from inside another parallelFor.
// The body is a std::function on purpose: this header must not pull in TBB, whose headers clash
// with Qt's macros. One indirect call per row costs nothing next to the row's work.
void parallelFor(int32_t count, const std::function<void(int32_t)>& body);

// Same, but hands out contiguous ranges [begin, end) so tiny per-row bodies amortise the call.
void parallelForRanges(int32_t count, const std::function<void(int32_t, int32_t)>& body);

// Runs body on the calling thread; every parallelFor inside it shares out its rows in a pool of its
// own that gives way to the rest of the program: helper threads serve other loops first, and a
// thread waiting for another loop never picks up rows of this one. For background jobs (the render
// queue) that must not slow the editor down while it is in use, yet take every core when it is not.
void runAsBackgroundWork(const std::function<void()>& body);
