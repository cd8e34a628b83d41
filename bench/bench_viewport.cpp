// A slider drag as a person makes it: the last of five tiles changes, and the time runs from the
// hand-over of the new list to the viewport until its pass has put the picture on screen (the
// moment displayUpdatedSignal goes out). A 24-megapixel photo fitted in a 1920 x 1080 view.
#include "bench/ViewportBenchSupport.h"
#include "desktop_only/MediaLoading.h"
#include "desktop_only/qtImageConverters.h"
#include "document/MVMediaWidget.h"
#include "document/core/ModSequenceRunner.h"

#include <QtGui/QImage>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <memory>
#include <semaphore>
#include <thread>
#include <vector>

namespace {

// CPU time of the whole process (worker, row pool and this thread): what a pass costs the machine,
// which holds when other work shares the cores and wall time does not.
double processCpuMs()
{
    timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) * 1e-6;
}

void waitForPass(MVMediaWidget& w, int passesBefore)
{
    // A short sleep, not a spin: the pass needs both cores.
    while (w.finishedPasses() <= passesBefore)
        std::this_thread::sleep_for(std::chrono::microseconds(50));
}

// woken: the timing thread blocks until displayUpdatedSignal releases it (a direct connection on the
// worker) instead of polling, so the polls' own wake-ups take no turns from the pass's threads; the
// time ends at the signal itself, read on the worker, not when this thread gets to run again.
void sliderDrag(benchmark::State& state, bool woken)
{
    offscreenApplication("bench_viewport");
    auto* photo = new FlexImageFloat(100, 100, 4);
    if (!LoadMediaFile(*photo, VANTREL_TESTDATA "/nikon_d5300_6000x4000.jpg", nullptr)) {
        delete photo;
        state.SkipWithError("the 24-megapixel test photo is not available");
        return;
    }
    MVMediaWidget w;
    w.resize(1920, 1080);
    w.setSource(photo);
    while (w.isProcessing())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));

    SliderSession session;
    const std::vector<ImageMod*>& list = session.list;

    // The first pass runs all five and stores the picture before the dragged tile.
    int passes = w.finishedPasses();
    w.setMods(list);
    waitForPass(w, passes);
    while (w.isProcessing())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));

    std::counting_semaphore<> shown{0};
    std::chrono::steady_clock::time_point signalled;
    if (woken)
        QObject::connect(
            &w, &MVMediaWidget::displayUpdatedSignal, &w,
            [&shown, &signalled] {
                signalled = std::chrono::steady_clock::now();
                shown.release(); // publishes signalled to the acquiring thread
            },
            Qt::DirectConnection);

    std::vector<double> times;
    std::vector<double> cpuTimes;
    int step = 0;
    for (auto _ : state) {
        session.dragTo(step++);
        passes = w.finishedPasses();
        const double cpuStart = processCpuMs();
        const auto start = std::chrono::steady_clock::now();
        w.setMods(list);
        if (woken)
            shown.acquire();
        else
            waitForPass(w, passes);
        const std::chrono::duration<double> elapsed = (woken ? signalled : std::chrono::steady_clock::now()) - start;
        state.SetIterationTime(elapsed.count());
        times.push_back(elapsed.count() * 1e3);
        cpuTimes.push_back(processCpuMs() - cpuStart);
        // Let the worker end and drain the queued repaint signals between changes.
        while (w.isProcessing())
            std::this_thread::sleep_for(std::chrono::microseconds(50));
        QCoreApplication::processEvents();
    }
    std::sort(times.begin(), times.end());
    if (!times.empty())
        state.counters["median_ms"] = times[times.size() / 2];
    std::sort(cpuTimes.begin(), cpuTimes.end());
    if (!cpuTimes.empty())
        state.counters["median_cpu_ms"] = cpuTimes[cpuTimes.size() / 2];
    state.counters["cached_stage"] = w.runner->currentCachedStage();
    state.counters["view_w"] = w.drawWidth;
    state.counters["view_h"] = w.drawHeight;
}

void BM_ViewportSliderDrag(benchmark::State& state)
{
    sliderDrag(state, false);
}

void BM_ViewportSliderDragWoken(benchmark::State& state)
{
    sliderDrag(state, true);
}

} // namespace

BENCHMARK(BM_ViewportSliderDrag)->UseManualTime()->Iterations(50)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ViewportSliderDragWoken)->UseManualTime()->Iterations(50)->Unit(benchmark::kMillisecond);

// The hand-over of a processed 1590 x 1060 RGB region (the fitted drag above) to the QImage.
static void BM_DisplayCopy(benchmark::State& state)
{
    FlexImageFloat region(1590, 1060, 3);
    for (int64_t i = 0; i < region.sampleCount(); ++i)
        region.data[i] = float(i % 263) - 4.0f; // a little outside 0..255 at both ends
    QImage target(1590, 1060, QImage::Format_ARGB32);
    target.fill(0);
    for (auto _ : state) {
        copyContentsIntoQtImage(region, target, 0, 0, nullptr);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_DisplayCopy)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
