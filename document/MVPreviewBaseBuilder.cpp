#include "document/MVPreviewBaseBuilder.h"

#include "document/MVMediaWidget.h"
#include "document/core/GeometryResampling.h"

#include <condition_variable>
#include <mutex>
#include <thread>

struct MVPreviewBaseBuilder::Shared {
    std::mutex mutex;
    std::condition_variable idle;
    bool running = false;
    bool ready = false;
    Result result;
};

MVPreviewBaseBuilder::MVPreviewBaseBuilder() : shared(std::make_shared<Shared>()) {}

MVPreviewBaseBuilder::~MVPreviewBaseBuilder() = default;

bool MVPreviewBaseBuilder::start(MVMediaWidget* viewer, const std::vector<ImageMod*>& crop, int32_t width,
                                 int32_t height)
{
    if (!viewer || width < 1 || height < 1)
        return false;
    {
        std::lock_guard<std::mutex> lock(shared->mutex);
        if (shared->running)
            return false;
    }
    if (!viewer->workerBusy.try_acquire())
        return false;
    std::vector<std::unique_ptr<ImageMod>> clones;
    for (const ImageMod* m : crop)
        if (m)
            clones.push_back(cloneMod(*m));
    {
        std::lock_guard<std::mutex> lock(viewer->stateMutex);
        // A new source from here on marks the base stale again.
        viewer->previewBaseStale = false;
    }
    {
        std::lock_guard<std::mutex> lock(shared->mutex);
        shared->running = true;
        shared->ready = false;
        shared->result = Result();
    }
    std::thread([viewer, clones = std::move(clones), width, height, state = shared]() mutable {
        Result r;
        r.viewer = viewer;
        r.width = width;
        r.height = height;
        {
            std::vector<ImageMod*> raw;
            for (const auto& c : clones)
                raw.push_back(c.get());
            std::lock_guard<std::mutex> source(viewer->sourceMutex);
            if (viewer->sourceImage) {
                auto image = std::make_unique<FlexImageFloat>();
                if (geometryResample(*viewer->sourceImage, *image, raw, width, height, false))
                    r.image = std::move(image);
            }
        }
        {
            std::lock_guard<std::mutex> lock(viewer->stateMutex);
            r.viewerWantsPass = viewer->processAgain;
        }
        // From here on the viewer may go: nothing of it is touched again.
        viewer->workerBusy.release();
        r.crop = std::move(clones);
        std::lock_guard<std::mutex> lock(state->mutex);
        state->result = std::move(r);
        state->ready = true;
        state->running = false;
        state->idle.notify_all();
    }).detach();
    return true;
}

bool MVPreviewBaseBuilder::isRunning() const
{
    std::lock_guard<std::mutex> lock(shared->mutex);
    return shared->running;
}

bool MVPreviewBaseBuilder::takeResult(Result& out)
{
    std::lock_guard<std::mutex> lock(shared->mutex);
    if (!shared->ready)
        return false;
    out = std::move(shared->result);
    shared->result = Result();
    shared->ready = false;
    return true;
}

void MVPreviewBaseBuilder::waitForIdle()
{
    std::unique_lock<std::mutex> lock(shared->mutex);
    shared->idle.wait(lock, [this] { return !shared->running; });
}
