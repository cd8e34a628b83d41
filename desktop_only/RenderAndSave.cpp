#include "desktop_only/RenderAndSave.h"

#include "desktop_only/MediaLoading.h"
#include "document/core/HeadlessRender.h"
#include "document/core/RenderQueueItem.h"
#include "media/ImageModColorProfile.h"
#include "media/MediaFormats.h"

int32_t renderSaveFlagsForFormat(int32_t saveFormatIndex)
{
    const std::vector<MediaFormat>& formats = mediaSaveFormats();
    if (saveFormatIndex < 0 || saveFormatIndex >= int32_t(formats.size()))
        return kRenderSaveDepthFromFormat;
    return formats[size_t(saveFormatIndex)].depthCode == 7 ? kRenderSave16Bit : kRenderSave8Bit;
}

namespace {

bool renderAndSaveWith(const std::function<bool(FlexImageFloat&, int32_t, int32_t)>& render,
                       const LoadedMediaInfo& metadata, const std::string& path, int32_t width, int32_t height,
                       const std::vector<ImageMod*>& modList, int32_t flags, float quality)
{
    LoadedMediaInfo info = metadata;
    if (flags == kRenderSave16Bit) {
        info.bitsPerComponent = 16;
    } else if (flags == kRenderSave8Bit) {
        info.bitsPerComponent = 8;
    } else {
        const MediaFormat* format = findSaveFormat(path, info.bitsPerComponent);
        info.bitsPerComponent = format && format->depthCode == 7 ? 16 : 8;
    }
    MediaSaveRenderer renderer;
    renderer.renderFullSize = render;
    renderer.outputProfile = [&](std::vector<uint8_t>& icc, ColorSpaceKind& kind) {
        return colorProfileForSave(modList, icc, kind);
    };
    const bool sized = width > 0 && height > 0;
    return SaveMediaFile(renderer, info, path, sized ? width : 0, sized ? height : 0, quality);
}

} // namespace

bool renderAndSave(const FlexImageFloat& source, const LoadedMediaInfo& metadata, const std::string& path,
                   int32_t width, int32_t height, const std::vector<ImageMod*>& modList, int32_t flags,
                   float quality)
{
    if (source.isEmpty() || path.empty())
        return false;
    return renderAndSaveWith(
        [&](FlexImageFloat& out, int32_t w, int32_t h) { return renderFullSize(source, modList, out, w, h); },
        metadata, path, width, height, modList, flags, quality);
}

bool renderAndSaveTaking(FlexImageFloat& source, const LoadedMediaInfo& metadata, const std::string& path,
                         int32_t width, int32_t height, const std::vector<ImageMod*>& modList, int32_t flags,
                         float quality)
{
    if (source.isEmpty() || path.empty())
        return false;
    return renderAndSaveWith(
        [&](FlexImageFloat& out, int32_t w, int32_t h) { return renderFullSizeTaking(source, modList, out, w, h); },
        metadata, path, width, height, modList, flags, quality);
}

bool renderQueueStillItem(const RenderQueueItem& item, const std::function<bool()>& cancelled)
{
    // Four channels, as the editor loads, so a photo with alpha keeps it.
    FlexImageFloat source(10, 10, 4);
    LoadedMediaInfo info;
    if (!LoadMediaFile(source, item.sourcePath, &info))
        return false;
    if (cancelled && cancelled())
        return false;
    return renderAndSaveTaking(source, info, item.destPath, item.width, item.height, item.modList(),
                               renderSaveFlagsForFormat(item.extensionIndex), float(item.quality));
}
