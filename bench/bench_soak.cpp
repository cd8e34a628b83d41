// Resident memory over a long slider session: 1000 passes of the viewport on one photo, each a
// new value of the last tile, with the event loop drained between them as the window does. The
// counters give the resident size after the warm-up (the first 100 passes) and at the end.
// bench/long-run.sh runs it and prints the growth.
#include "bench/ViewportBenchSupport.h"
#include "desktop_only/MediaLoading.h"
#include "document/MVMediaWidget.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

double residentMegabytes()
{
    long pages = 0;
    long resident = 0;
    if (FILE* f = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2)
            resident = 0;
        std::fclose(f);
    }
    return double(resident) * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

void settle(MVMediaWidget& w)
{
    while (w.isProcessing()) {
        QCoreApplication::processEvents();
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    QCoreApplication::processEvents();
}

void BM_ViewportSoak(benchmark::State& state)
{
    offscreenApplication("bench_soak");
    const char* photoPath = std::getenv("VANTREL_SOAK_PHOTO");
    auto* photo = new FlexImageFloat(100, 100, 4);
    if (!LoadMediaFile(*photo, photoPath ? photoPath : VANTREL_TESTDATA "/olympus_em1_forest_1920x1080.jpg", nullptr)) {
        delete photo;
        state.SkipWithError("the soak photo is not available");
        return;
    }
    const int passes = int(state.range(0));
    MVMediaWidget w;
    w.resize(1280, 800);
    w.setSource(photo);
    settle(w);

    SliderSession session;

    double warm = 0.0;
    double peak = 0.0;
    for (auto _ : state) {
        for (int i = 0; i < passes; ++i) {
            session.dragTo(i);
            const int before = w.finishedPasses();
            w.setMods(session.list);
            while (w.finishedPasses() <= before) {
                QCoreApplication::processEvents();
                std::this_thread::sleep_for(std::chrono::microseconds(100));
            }
            settle(w);
            const double rss = residentMegabytes();
            if (i + 1 == passes / 10)
                warm = rss;
            if (i + 1 >= passes / 10)
                peak = std::max(peak, rss);
        }
    }
    state.counters["passes"] = passes;
    state.counters["rss_warm_mb"] = warm;
    state.counters["rss_end_mb"] = residentMegabytes();
    state.counters["rss_peak_mb"] = peak;
    state.counters["growth_pct"] = warm > 0.0 ? (residentMegabytes() - warm) / warm * 100.0 : 0.0;
}

} // namespace

BENCHMARK(BM_ViewportSoak)->Arg(1000)->Iterations(1)->Unit(benchmark::kSecond);
