#include "document/core/ModSequenceRunner.h"

#include "core/ImageModCompoundFlattening.h"
#include "core/ImageModSelectorWalk.h"
#include "core/ImageModSourcedApply.h"

#include <algorithm>
#include <thread>

namespace {

constexpr int32_t kBorderKind = 1;
constexpr int32_t kProxyLongSide = 100;

template <typename List>
int32_t lastOfKind(const List& list, int32_t kind)
{
    for (int32_t i = int32_t(list.size()) - 1; i >= 0; --i) {
        const ImageMod* m = selectorWalkTile(list[size_t(i)]);
        if (m && m->kind() == kind)
            return i;
    }
    return -1;
}

template <typename Sample>
std::unique_ptr<FlexImageT<Sample>> makeProxy(const FlexImageT<Sample>& image, int32_t longSide)
{
    int32_t pw, ph;
    if (image.width >= image.height) {
        pw = std::min(image.width, longSide);
        ph = std::max(1, int32_t(double(image.height) * pw / image.width + 0.5));
    } else {
        ph = std::min(image.height, longSide);
        pw = std::max(1, int32_t(double(image.width) * ph / image.height + 0.5));
    }
    auto proxy = std::make_unique<FlexImageT<Sample>>(pw, ph, image.channels);
    proxy->resampleFrom(image);
    proxy->scale = float(double(image.width) * image.scale / pw);
    return proxy;
}

// The caller's float proxy at the depth of the run.
std::unique_ptr<FlexImage8> proxyAtDepth(const FlexImageFloat& proxy, const FlexImage8*)
{
    auto p = std::make_unique<FlexImage8>(0, 0, proxy.channels);
    FlexImageFloat clamped(0, 0, proxy.channels);
    clamped.copyFrom(proxy, true);
    for (int64_t i = 0; i < clamped.sampleCount(); ++i)
        clamped.data[i] = std::max(0.0f, std::min(clamped.data[i], 255.0f));
    p->copyFromOtherDepth(clamped, true);
    p->scale = proxy.scale;
    return p;
}

void storeCache(FlexImageFloat& cache, const FlexImageFloat& working)
{
    cache.copyFrom(working, true);
}

void storeCache(FlexImageFloat& cache, const FlexImage8& working)
{
    cache.copyFromOtherDepth(working, true);
}

void restoreCache(FlexImageFloat& working, const FlexImageFloat& cache)
{
    working.copyFrom(cache, true);
}

void restoreCache(FlexImage8& working, const FlexImageFloat& cache)
{
    working.copyFromOtherDepth(cache, true);
}

template <typename Sample>
void copyPlacement(FlexImageT<Sample>& to, const FlexImageT<Sample>& from)
{
    to.marginLeft = from.marginLeft;
    to.marginRight = from.marginRight;
    to.marginTop = from.marginTop;
    to.marginBottom = from.marginBottom;
    to.scale = from.scale;
}

} // namespace

std::unique_ptr<FlexImageFloat> makeAnalysisProxy(const FlexImageFloat& image, int32_t longSide)
{
    if (image.isEmpty() || longSide < 1)
        return nullptr;
    return makeProxy(image, longSide);
}

ModSequenceRunner::ModSequenceRunner(bool cache, bool async, int32_t minimum, float givenRatio)
    : useCache(cache), runAsync(async), minimumSize(std::max(minimum, 16)), ratio(givenRatio)
{
}

ModSequenceRunner::~ModSequenceRunner()
{
    // A detached run still uses the clones and the cache.
    runMutex.acquire();
    runMutex.release();
}

std::vector<ImageMod*> ModSequenceRunner::flattenList(const std::vector<ImageMod*>& modList)
{
    std::vector<ImageMod*> flat;
    flat.reserve(modList.size());
    flattenTiles(modList, flat);
    return flat;
}

void ModSequenceRunner::flushCache()
{
    runMutex.acquire();
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        cacheImage.reset();
        cachedStage = -1;
    }
    runMutex.release();
}

bool ModSequenceRunner::isBusy()
{
    std::lock_guard<std::mutex> lock(stateMutex);
    return !finished;
}

void ModSequenceRunner::requestCancel()
{
    std::lock_guard<std::mutex> lock(stateMutex);
    cancelRequested = true;
}

int32_t ModSequenceRunner::currentCachedStage()
{
    std::lock_guard<std::mutex> lock(stateMutex);
    return cachedStage;
}

int32_t ModSequenceRunner::stageCount()
{
    std::lock_guard<std::mutex> lock(stateMutex);
    return int32_t(mods.size());
}

void ModSequenceRunner::compareWithPrevious(const std::vector<ImageMod*>& stages, int32_t width, int32_t height,
                                            int32_t channels)
{
    saveStage = -1;
    finished = false;
    if (!useCache) {
        cachedStage = -1;
        return;
    }
    const int32_t newCount = int32_t(stages.size());
    const int32_t oldCount = int32_t(mods.size());
    int32_t lastEqual = -1;
    for (int32_t i = 0; i < newCount && i < oldCount; ++i) {
        if (!stages[size_t(i)] || !mods[size_t(i)] || !stages[size_t(i)]->isEqual(*mods[size_t(i)]))
            break;
        lastEqual = i;
    }
    if (lastEqual >= 0 && lastEqual != cachedStage && lastEqual < newCount - 1)
        saveStage = lastEqual;
    if (lastEqual < cachedStage)
        cachedStage = -1;

    // A border changes the layout of everything.
    const int32_t oldBorder = lastOfKind(mods, kBorderKind);
    const int32_t newBorder = lastOfKind(stages, kBorderKind);
    if ((oldBorder >= 0) != (newBorder >= 0))
        cachedStage = -1;
    else if (oldBorder >= 0 && !stages[size_t(newBorder)]->isEqual(*mods[size_t(oldBorder)]))
        cachedStage = -1;

    if (!cacheImage || cacheImage->width != width || cacheImage->height != height) {
        cachedStage = -1;
        if (cacheImage)
            cacheImage->resize(width, height, channels);
    }
}

void ModSequenceRunner::keepClones(const std::vector<ImageMod*>& stages)
{
    std::vector<std::unique_ptr<ImageMod>> pool = std::move(mods);
    mods.clear();
    mods.reserve(stages.size());
    for (ImageMod* stage : stages) {
        std::unique_ptr<ImageMod> clone;
        for (auto& pooled : pool) {
            if (pooled && pooled->isEqual(*stage)) {
                clone = std::move(pooled);
                break;
            }
        }
        if (!clone)
            clone = stage->newInstance();
        clone->copyFrom(*stage);
        mods.push_back(std::move(clone));
    }
}

template <typename Sample>
void ModSequenceRunner::start(const std::vector<ImageMod*>& modList, FlexImageT<Sample>* image,
                              FlexImageT<Sample>* destination, int32_t selected, int32_t frameNo,
                              const ReferenceFrame* callerFrame)
{
    if (!image || image->isEmpty())
        return;
    runMutex.acquire();
    std::vector<ImageMod*> stages;
    for (ImageMod* m : flattenList(modList)) {
        if (m)
            stages.push_back(m);
    }
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        cancelRequested = false;
        compareWithPrevious(stages, image->width, image->height, image->channels);
        keepClones(stages);
        selectedStage = selected;
        frameNumber = frameNo;
        if (callerFrame) {
            frameCopy = *callerFrame;
            frame = &frameCopy;
        } else {
            frame = nullptr;
        }
        if constexpr (sizeof(Sample) == 1) {
            byteSource = image;
            byteDest = destination;
        } else {
            floatSource = image;
            floatDest = destination;
        }
    }
    if (runAsync) {
        std::thread([this, image, destination] {
            runStages(image, destination);
            runMutex.release();
        }).detach();
        return;
    }
    runStages(image, destination);
    runMutex.release();
}

void ModSequenceRunner::run(const std::vector<ImageMod*>& modList, FlexImageFloat* image,
                            FlexImageFloat* destination, int32_t selected, int32_t frameNo,
                            const ReferenceFrame* callerFrame)
{
    start(modList, image, destination, selected, frameNo, callerFrame);
}

void ModSequenceRunner::run(const std::vector<ImageMod*>& modList, FlexImage8* image, FlexImage8* destination,
                            int32_t selected, int32_t frameNo, const ReferenceFrame* callerFrame)
{
    start(modList, image, destination, selected, frameNo, callerFrame);
}

template <typename Sample>
void ModSequenceRunner::analyzeStages(FlexImageT<Sample>* working)
{
    bool any = false;
    for (const auto& m : mods)
        any = any || m->needsAnalysis();
    if (!any)
        return;
    std::unique_ptr<FlexImageT<Sample>> built;
    FlexImageT<Sample>* proxy = nullptr;
    if (frame && frame->proxy && !frame->proxy->isEmpty()) {
        if constexpr (sizeof(Sample) == 1) {
            built = proxyAtDepth(*frame->proxy, working);
            proxy = built.get();
        } else {
            proxy = frame->proxy;
        }
    } else {
        built = makeProxy(*working, kProxyLongSide);
        proxy = built.get();
    }
    ImageModSelectorPointerArray wrapper;
    for (size_t i = 0; i < mods.size(); ++i) {
        ImageMod* stage = mods[i].get();
        if (!stage->enabled || stage->kind() == ImageModSelector::selectorKind)
            continue;
        ImageModApplyContext context;
        context.referenceFrame = nullptr;
        context.selector = selectorForList(selectorsForTile(mods, int32_t(i)), wrapper);
        context.frame = frameNumber;
        for (int32_t pass = 0; pass < stage->passCount(); ++pass) {
            context.pass = pass;
            stage->analyze(proxy, &context);
        }
    }
}

bool ModSequenceRunner::restoreAndApply(int32_t index, FlexImageFloat& working, ImageModSelectorPointerArray& wrapper)
{
    ImageMod* stage = mods[size_t(index)].get();
    if (!stage->enabled || stage->kind() == ImageModSelector::selectorKind || stage->passCount() != 1)
        return false;
    auto* sourced = dynamic_cast<ImageModSourcedApply*>(stage);
    if (!sourced)
        return false;
    ImageModApplyContext context;
    context.referenceFrame = frame;
    context.selector = selectorForList(selectorsForTile(mods, index), wrapper);
    context.frame = frameNumber;
    context.pass = 0;
    return sourced->applyFrom(*cacheImage, &working, &context);
}

bool ModSequenceRunner::restoreAndApply(int32_t, FlexImage8&, ImageModSelectorPointerArray&)
{
    return false; // the cache is float, the 8-bit tiles have no such path
}

template <typename Sample>
void ModSequenceRunner::runStages(FlexImageT<Sample>* image, FlexImageT<Sample>* destination)
{
    bool analysis = false;
    for (const auto& m : mods)
        analysis = analysis || m->needsAnalysis();
    bool restores;
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        restores = saveStage == -1 && cachedStage >= 0 && cacheImage;
    }
    FlexImageT<Sample>* working = image;
    if (destination && destination != image) {
        // Pixels about to be restored from the cache needn't be copied first: the restore (or the
        // first tile run straight from the cache) fills them.
        if (!restores || analysis)
            destination->copyFrom(*image, true);
        copyPlacement(*destination, *image);
        working = destination;
    }
    if (analysis)
        analyzeStages(working);

    int32_t restoreAt;
    int32_t saveAt;
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        if (saveStage != -1) {
            cachedStage = -1;
            if (!cacheImage)
                cacheImage = std::make_unique<FlexImageFloat>(0, 0, working->channels);
            cacheImage->resize(working->width, working->height, working->channels);
            cacheImage->scale = working->scale;
            cacheImage->marginLeft = working->marginLeft;
            cacheImage->marginRight = working->marginRight;
            cacheImage->marginTop = working->marginTop;
            cacheImage->marginBottom = working->marginBottom;
        }
        restoreAt = cachedStage;
        saveAt = saveStage;
    }

    ImageModSelectorPointerArray wrapper;
    const int32_t count = int32_t(mods.size());
    for (int32_t i = 0; i < count; ++i) {
        {
            std::lock_guard<std::mutex> lock(stateMutex);
            if (cancelRequested) {
                cancelRequested = false;
                finished = true;
                return;
            }
        }
        if (i == restoreAt && cacheImage) {
            // The tile after the cache may read the cached pixels and write the working ones in one
            // sweep; otherwise the cache is copied back and the tile runs in place as usual.
            if (i + 1 < count && restoreAndApply(i + 1, *working, wrapper)) {
                copyPlacement(*working, *image);
                if (i + 1 == saveAt)
                    storeCache(*cacheImage, *working);
                ++i;
                continue;
            }
            restoreCache(*working, *cacheImage);
            copyPlacement(*working, *image);
            continue;
        }
        if (i < restoreAt)
            continue;
        ImageMod* stage = mods[size_t(i)].get();
        if (stage->enabled && stage->kind() != ImageModSelector::selectorKind) {
            ImageModApplyContext context;
            context.referenceFrame = frame;
            context.selector = selectorForList(selectorsForTile(mods, i), wrapper);
            context.frame = frameNumber;
            for (int32_t pass = 0; pass < stage->passCount(); ++pass) {
                context.pass = pass;
                stage->apply(working, &context);
            }
        }
        if (i == saveAt && cacheImage)
            storeCache(*cacheImage, *working);
    }

    std::lock_guard<std::mutex> lock(stateMutex);
    if (saveStage != -1)
        cachedStage = saveStage;
    hasResult = true;
    finished = true;
    cancelRequested = false;
}
