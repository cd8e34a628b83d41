// Resident memory over a long slider session: 1000 passes of the viewport on one photo, each a
// new value of the last tile, with the event loop drained between them as the window does. The
// counters give the resident size after the warm-up (the first 100 passes) and at the end.
// bench/long-run.sh runs it and prints the growth.
#include "core/ImageMod.h"
#include "core/ImageModVariable.h"
#include "desktop_only/MediaLoading.h"
#include "document/MVMediaWidget.h"
#include "mods/ImageModBrightness.h"
#include "mods/ImageModContrast.h"
#include "mods/ImageModExposure.h"
#include "mods/ImageModSaturation.h"
#include "mods/ImageModToneCurve.h"

#include <QtWidgets/QApplication>
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

QApplication* application()
{
    static int argc = 1;
    static char name[] = "bench_soak";
    static char* argv[] = {name, nullptr};
    static QApplication* app = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new QApplication(argc, argv);
    }();
    return app;
}

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
    application();
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

    ImageModExposure exposure(1.2f);
    ImageModContrast contrast(ImageModContrast::newestVersion, 1.1f);
    ImageModSaturation saturation(ImageModSaturation::newestVersion, 1.2f);
    ImageModToneCurve curve;
    ImageModBrightness brightness(1.1f);
    ImageModContrast dragged(ImageModContrast::newestVersion, 1.0f);
    const std::vector<ImageMod*> list = {&exposure, &brightness, &saturation, &curve, &dragged};

    double warm = 0.0;
    double peak = 0.0;
    for (auto _ : state) {
        for (int i = 0; i < passes; ++i) {
            dragged.variableAt(0)->setFloatValue(0.8f + 0.01f * float(i % 40));
            const int before = w.finishedPasses();
            w.setMods(list);
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
