#pragma once
#include "core/FlexImage.h"
#include "core/ImageMod.h"
#include "core/ImageModApplyContext.h"
#include "core/ImageModSelectorPointerArray.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <semaphore>
#include <vector>

// A small copy of image for analysis passes: the long side at most longSide, aspect kept, nearest
// pixels, and a scale of image width * image scale over its own width. Null for an empty image.
std::unique_ptr<FlexImageFloat> makeAnalysisProxy(const FlexImageFloat& image, int32_t longSide);

// Runs a flat list of mods over one image, in order, on private clones. With `useCache` it keeps
// one intermediate image: a list that differs from the last one only from stage k on restarts
// from the stored pixels instead of running stages 0..k-1 again (a slider drag on tile k).
//
// Compounds at full strength, enabled and unmasked are opened up so their children are stages of
// their own; any other compound is one stage. Masks act through the selector walk on the clones.
class ModSequenceRunner {
public:
    ModSequenceRunner(bool useCache, bool runAsync, int32_t minimumSize, float ratio);
    ~ModSequenceRunner();
    ModSequenceRunner(const ModSequenceRunner&) = delete;
    ModSequenceRunner& operator=(const ModSequenceRunner&) = delete;

    // Applies modList to image (in place when destination is null or the image itself). The list
    // is cloned before this returns, so the caller may change or free it at once. With `runAsync`
    // the pixels are worked on a detached thread: keep the images alive while isBusy().
    void run(const std::vector<ImageMod*>& modList, FlexImageFloat* image, FlexImageFloat* destination,
             int32_t selectedStage, int32_t frameNumber, const ReferenceFrame* frame);
    // The 8-bit twin; the cache is kept in float, which holds 8-bit samples exactly.
    void run(const std::vector<ImageMod*>& modList, FlexImage8* image, FlexImage8* destination,
             int32_t selectedStage, int32_t frameNumber, const ReferenceFrame* frame);
    template <typename Owned>
    void run(const std::vector<std::unique_ptr<Owned>>& modList, FlexImageFloat* image, FlexImageFloat* destination,
             int32_t selectedStage, int32_t frameNumber, const ReferenceFrame* frame)
    {
        run(rawList(modList), image, destination, selectedStage, frameNumber, frame);
    }

    // Drops the intermediate image; waits for a run under way.
    void flushCache();
    bool isBusy();
    // Asks a run under way to stop before its next stage.
    void requestCancel();

    // The flat list of stages the runner makes of a tile list.
    static std::vector<ImageMod*> flattenList(const std::vector<ImageMod*>& modList);

    // Read under stateMutex, for callers and tests.
    int32_t currentCachedStage();
    int32_t stageCount();

    bool useCache;
    bool runAsync;
    int32_t minimumSize;
    std::unique_ptr<FlexImageFloat> cacheImage;
    std::vector<std::unique_ptr<ImageMod>> mods;
    int32_t cachedStage = -1;
    int32_t saveStage = -1;
    int32_t selectedStage = -1;
    int32_t frameNumber = 0;
    ReferenceFrame* frame = nullptr;
    ReferenceFrame frameCopy;
    bool finished = true;
    bool hasResult = false;
    bool cancelRequested = false;
    float ratio;
    FlexImageFloat* floatSource = nullptr;
    FlexImageFloat* floatDest = nullptr;
    FlexImage8* byteSource = nullptr;
    FlexImage8* byteDest = nullptr;
    std::mutex stateMutex;
    // Held from the start of a run to its end, possibly released by the run's own thread, hence a
    // semaphore rather than a mutex.
    std::binary_semaphore runMutex{1};

private:
    template <typename Owned>
    static std::vector<ImageMod*> rawList(const std::vector<std::unique_ptr<Owned>>& list)
    {
        std::vector<ImageMod*> out;
        out.reserve(list.size());
        for (const auto& m : list)
            out.push_back(m.get());
        return out;
    }
    template <typename Sample>
    void start(const std::vector<ImageMod*>& modList, FlexImageT<Sample>* image, FlexImageT<Sample>* destination,
               int32_t selected, int32_t frameNo, const ReferenceFrame* callerFrame);
    // Under stateMutex: sets saveStage and cachedStage from the new list against the old clones.
    void compareWithPrevious(const std::vector<ImageMod*>& stages, int32_t width, int32_t height, int32_t channels);
    // Under stateMutex: replaces the clones, reusing equal ones from the old list.
    void keepClones(const std::vector<ImageMod*>& stages);
    template <typename Sample>
    void runStages(FlexImageT<Sample>* image, FlexImageT<Sample>* destination);
    template <typename Sample>
    void analyzeStages(FlexImageT<Sample>* working);
    // Runs stage index from cacheImage straight into working when the tile can (see
    // ImageModSourcedApply): the restore and the tile in one sweep. False: nothing was done.
    bool restoreAndApply(int32_t index, FlexImageFloat& working, ImageModSelectorPointerArray& wrapper);
    bool restoreAndApply(int32_t index, FlexImage8& working, ImageModSelectorPointerArray& wrapper);
};
