#pragma once
#include "core/FlexImage.h"
#include "core/ImageMod.h"
#include "media/LoadedMediaInfo.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct RenderQueueItem;

// The depth a save writes.
enum RenderSaveFlags : int32_t {
    kRenderSaveDepthFromFormat = 0, // 16 bits where the path's format offers it and the source had more than 8
    kRenderSave8Bit = 1,
    kRenderSave16Bit = 2,
};

// The depth flag of a row of the save table (depth code 7 writes 16 bits).
int32_t renderSaveFlagsForFormat(int32_t saveFormatIndex);

// Renders source at full quality through modList (geometry first, once, then every tile on the
// whole image with no cache and no frame) and writes path with metadata's properties and
// profile, or the profile of an enabled "Color Space" tile. width and height both above 0 set the
// output size, else the tiles decide. The file is written beside the target and renamed over it
// only when complete, so a failure leaves what was there. True when the file was written.
bool renderAndSave(const FlexImageFloat& source, const LoadedMediaInfo& metadata, const std::string& path,
                   int32_t width, int32_t height, const std::vector<ImageMod*>& modList, int32_t flags,
                   float quality);

// renderAndSave for a caller done with source: when the tiles leave the size and framing as they
// are, the render runs on source's own buffer (one full-size image less), leaving source empty.
// The file is the same as renderAndSave writes.
bool renderAndSaveTaking(FlexImageFloat& source, const LoadedMediaInfo& metadata, const std::string& path,
                         int32_t width, int32_t height, const std::vector<ImageMod*>& modList, int32_t flags,
                         float quality);

// The render queue's work for a still photo: loads the item's source, then renderAndSave with the
// item's size, quality, save row and tiles. Looks at cancelled() after the load. False when the
// load, the render or the write failed, or it was cancelled.
bool renderQueueStillItem(const RenderQueueItem& item, const std::function<bool()>& cancelled);
