#pragma once
#include "core/ImageMod.h"
#include "document/VideoLoaderSaverTime.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// One job of the render queue: load sourcePath, run the tiles, write destPath. The tiles are the
// item's own clones, so the document may change while the job waits or runs.
struct RenderQueueItem {
    static constexpr int32_t kindStill = 1;

    int32_t kind = kindStill; // 1 a still photo; anything else is a video
    std::string sourcePath;
    std::string destPath;
    int32_t itemID = 0;
    int32_t width = 0; // both above 0: the output size; else the size the tiles give
    int32_t height = 0;
    int32_t quality = 85;
    VideoLoaderSaverTime inPoint, outPoint;
    int32_t extensionIndex = 0; // row of the save table
    std::vector<std::unique_ptr<ImageMod>> mods;

    RenderQueueItem() = default;
    RenderQueueItem(RenderQueueItem&&) = default;
    RenderQueueItem& operator=(RenderQueueItem&&) = default;

    // A deep copy: every tile is cloned.
    RenderQueueItem clone() const;
    // Clones list into mods, replacing what was there.
    void setMods(const std::vector<ImageMod*>& list);
    // The tiles as the renderer takes them.
    std::vector<ImageMod*> modList() const;
};
