#pragma once
#include "core/FlexImage.h"
#include "core/ImageMod.h"

#include <memory>
#include <vector>

class MVMediaWidget;

// Makes the preview base off the GUI thread: a large photo takes a good part of a second to
// resample, and a hover must never wait for that.
//
// The build borrows the viewer's worker slot (workerBusy) for its length, so it never runs beside
// one of the viewer's passes and the viewer can't be destroyed under it (its destructor waits for
// the slot). Requests the viewer got meanwhile are reported with the result: the caller asks the
// viewer for that pass again. The thread touches only shared state once it hands the slot back.
class MVPreviewBaseBuilder {
public:
    struct Result {
        std::unique_ptr<FlexImageFloat> image; // null when the geometry left no pixel
        const MVMediaWidget* viewer = nullptr;
        int32_t width = 0, height = 0;
        std::vector<std::unique_ptr<ImageMod>> crop;
        bool viewerWantsPass = false;
    };

    MVPreviewBaseBuilder();
    ~MVPreviewBaseBuilder();
    MVPreviewBaseBuilder(const MVPreviewBaseBuilder&) = delete;
    MVPreviewBaseBuilder& operator=(const MVPreviewBaseBuilder&) = delete;

    // Resamples the viewer's source, with the crop mods given, to fit width x height. False when
    // a build is under way or the viewer's worker is busy (try again shortly).
    bool start(MVMediaWidget* viewer, const std::vector<ImageMod*>& crop, int32_t width, int32_t height);
    bool isRunning() const;
    // Moves a finished build's result out; false while none is waiting.
    bool takeResult(Result& out);
    // Blocks until no build runs (tests).
    void waitForIdle();

private:
    struct Shared;
    std::shared_ptr<Shared> shared;
};
