// Does a batch in the background make the editor sluggish? The same slider drag as bench_viewport
// (the last of five tiles changes on a 24-megapixel photo fitted in a 1920 x 1080 view), timed from
// the hand-over of the new list until the pass has put the picture on screen: first with the render
// queue idle, then while the queue loads, renders and writes a run of photos of several sizes.
// Both medians come from the same run, so their ratio holds when the machine's load does not.
#include "core/ImageMod.h"
#include "core/ImageModVariable.h"
#include "bench/BatchLookSupport.h"
#include "core/ModCatalogue.h"
#include "desktop_only/MediaLoading.h"
#include "desktop_only/RenderAndSave.h"
#include "document/MVMediaWidget.h"
#include "document/core/RenderQueue.h"
#include "mods/ImageModBrightness.h"
#include "mods/ImageModContrast.h"
#include "mods/ImageModExposure.h"
#include "mods/ImageModSaturation.h"
#include "mods/ImageModToneCurve.h"

#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QApplication>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int kChanges = 30;

QApplication* application()
{
    static int argc = 1;
    static char name[] = "bench_batch_responsiveness";
    static char* argv[] = {name, nullptr};
    static QApplication* app = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new QApplication(argc, argv);
    }();
    return app;
}

void waitForPass(MVMediaWidget& w, int passesBefore)
{
    while (w.finishedPasses() <= passesBefore)
        std::this_thread::sleep_for(std::chrono::microseconds(50));
}

void waitIdle(MVMediaWidget& w)
{
    while (w.isProcessing())
        std::this_thread::sleep_for(std::chrono::microseconds(50));
    QCoreApplication::processEvents();
}

double median(std::vector<double> v)
{
    if (v.empty())
        return 0.0;
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

void BM_SliderDragWhileBatchRuns(benchmark::State& state)
{
    application();
    // Smallest first, so the drag sees several photos loaded, rendered and written, not one.
    const std::vector<std::string> batchPhotos = {
        VANTREL_TESTDATA "/olympus_em1_forest_1920x1080.jpg", VANTREL_TESTDATA "/flower_progressive_420.jpg",
        VANTREL_TESTDATA "/canon_eos70d_leaf_2560x1600.jpg", VANTREL_TESTDATA "/iphone7_displayp3_4032x3024.jpg",
        VANTREL_TESTDATA "/nikon_d5300_6000x4000.jpg"};
    for (const std::string& p : batchPhotos)
        if (!QFileInfo::exists(QString::fromStdString(p))) {
            state.SkipWithError("a batch test photo is not available");
            return;
        }
    auto* photo = new FlexImageFloat(100, 100, 4);
    if (!LoadMediaFile(*photo, VANTREL_TESTDATA "/nikon_d5300_6000x4000.jpg", nullptr)) {
        delete photo;
        state.SkipWithError("the 24-megapixel test photo is not available");
        return;
    }
    const ModCatalogueContents catalogue = buildModCatalogue();
    const std::vector<std::unique_ptr<ImageMod>> look = fiveTileBatchLook(catalogue.mods);
    if (look.empty()) {
        delete photo;
        state.SkipWithError("a tile of the batch look is missing");
        return;
    }
    std::vector<ImageMod*> lookList;
    for (const auto& m : look)
        lookList.push_back(m.get());

    MVMediaWidget w;
    w.resize(1920, 1080);
    w.setSource(photo);
    waitIdle(w);

    ImageModExposure exposure(1.2f);
    ImageModContrast contrast(ImageModContrast::newestVersion, 1.1f);
    ImageModSaturation saturation(ImageModSaturation::newestVersion, 1.2f);
    ImageModToneCurve curve;
    ImageModBrightness brightness(1.1f);
    ImageModContrast dragged(ImageModContrast::newestVersion, 1.0f);
    const std::vector<ImageMod*> list = {&exposure, &brightness, &saturation, &curve, &dragged};
    int passes = w.finishedPasses();
    w.setMods(list);
    waitForPass(w, passes);
    waitIdle(w);

    int step = 0;
    // One slider change; its time in milliseconds.
    auto change = [&]() {
        dragged.variableAt(0)->setFloatValue(0.8f + 0.01f * float(step++ % 40));
        const int before = w.finishedPasses();
        const auto start = std::chrono::steady_clock::now();
        w.setMods(list);
        waitForPass(w, before);
        const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
        waitIdle(w);
        // A gap between changes, so the thirty spread over the load, render and save of the first photos.
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        return elapsed.count();
    };

    std::vector<double> idle;
    std::vector<double> busy;
    int changesWithoutBatch = 0;
    int failed = 0;
    int finished = 0;
    for (auto _ : state) {
        for (int i = 0; i < kChanges; ++i)
            idle.push_back(change());

        QTemporaryDir out;
        RenderQueue queue(renderQueueStillItem);
        // More than the drag outlasts; what is left is cancelled at the end.
        for (int round = 0; round < 8; ++round)
            for (size_t i = 0; i < batchPhotos.size(); ++i) {
                RenderQueueItem item;
                item.sourcePath = batchPhotos[i];
                item.destPath = out.filePath(QStringLiteral("batch_%1_%2.jpg").arg(round).arg(i)).toStdString();
                item.quality = 85;
                item.extensionIndex = 0;
                item.setMods(lookList);
                queue.addItem(std::move(item));
            }
        queue.start();
        // Let the worker get into its first photo before the drag starts.
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        for (int i = 0; i < kChanges; ++i) {
            busy.push_back(change());
            if (!queue.isRunning())
                ++changesWithoutBatch;
        }
        const RenderQueueSnapshot s = queue.snapshot();
        finished = s.finished;
        failed = int(s.failed.size());
        queue.cancelAll();
        queue.waitUntilIdle(10 * 60 * 1000);
        state.SetIterationTime(0.001 * (median(idle) + median(busy)));
    }
    const double idleMs = median(idle);
    const double busyMs = median(busy);
    state.counters["idle_median_ms"] = idleMs;
    state.counters["busy_median_ms"] = busyMs;
    state.counters["busy_over_idle"] = idleMs > 0.0 ? busyMs / idleMs : 0.0;
    state.counters["busy_max_ms"] = busy.empty() ? 0.0 : *std::max_element(busy.begin(), busy.end());
    state.counters["batch_photos_done"] = finished;
    state.counters["batch_failed"] = failed;
    // Changes timed after the batch had ended: nonzero means the busy figure is diluted.
    state.counters["changes_without_batch"] = changesWithoutBatch;
}

} // namespace

BENCHMARK(BM_SliderDragWhileBatchRuns)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
