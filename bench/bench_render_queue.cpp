#include "bench/BatchLookSupport.h"
#include "core/ModCatalogue.h"
#include "desktop_only/RenderAndSave.h"
#include "document/core/RenderQueue.h"

#include <benchmark/benchmark.h>

#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

// A batch as the editor's queue runs it: 20 photos of 24 megapixels, each loaded, taken through a
// five-tile look at full size and written as a JPEG at quality 85, one after another on the queue's
// worker (each tile still runs its own row-parallel loop).
namespace {

const std::string kPhoto = VANTREL_TESTDATA "/nikon_d5300_6000x4000.jpg";
constexpr int kPhotos = 20;

void BM_RenderQueueBatch(benchmark::State& state)
{
    if (!QFileInfo::exists(QString::fromStdString(kPhoto))) {
        state.SkipWithError("test photo missing");
        return;
    }
    const ModCatalogueContents catalogue = buildModCatalogue();
    const std::vector<std::unique_ptr<ImageMod>> look = fiveTileBatchLook(catalogue.mods);
    if (look.empty()) {
        state.SkipWithError("a tile of the look is missing");
        return;
    }
    std::vector<ImageMod*> list;
    for (const auto& m : look)
        list.push_back(m.get());
    int failed = 0;
    double seconds = 0.0;
    for (auto _ : state) {
        QTemporaryDir out;
        RenderQueue queue(renderQueueStillItem);
        for (int i = 0; i < kPhotos; ++i) {
            RenderQueueItem item;
            item.sourcePath = kPhoto;
            item.destPath = out.filePath(QStringLiteral("photo_%1_batch.jpg").arg(i)).toStdString();
            item.quality = 85;
            item.extensionIndex = 0;
            item.setMods(list);
            queue.addItem(std::move(item));
        }
        const auto start = std::chrono::steady_clock::now();
        queue.start();
        queue.waitUntilIdle(60 * 60 * 1000);
        seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        for (const RenderQueueRecord& r : queue.history())
            failed += r.outcome != RenderQueueOutcome::Done;
    }
    const double photos = double(kPhotos) * double(state.iterations());
    state.counters["photos_per_minute"] = photos * 60.0 / seconds;
    state.counters["seconds_per_photo"] = seconds / photos;
    state.counters["failed"] = failed;
}

} // namespace

BENCHMARK(BM_RenderQueueBatch)->Iterations(1)->Unit(benchmark::kSecond)->UseRealTime();
