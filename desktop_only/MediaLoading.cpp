#include "desktop_only/MediaLoading.h"

#include "desktop_only/MediaCodec.h"
#include "media/ColorTransformSet.h"
#include "media/CompactImage.h"
#include "media/MediaFormats.h"
#include "media/MediaPixelCopy.h"
#include "media/NativeImage.h"

MediaMessage mediaLoadFailureMessage(MediaLoadStatus status, const std::string& path)
{
    if (status == MediaLoadStatus::UnsupportedType)
        return mediaUnsupportedTypeMessage();
    if (status == MediaLoadStatus::WriteFailed)
        return mediaProcessingErrorMessage();
    return mediaCantLoadFileMessage(path);
}

namespace {

bool fail(MediaLoadStatus* status, MediaLoadStatus value)
{
    if (status)
        *status = value;
    return false;
}

} // namespace

bool LoadMediaFile(FlexImageFloat& image, const std::string& path, LoadedMediaInfo* info, MediaLoadStatus* status)
{
    CompactImage compact;
    LoadedMediaInfo record;
    if (isNativeImagePath(path)) {
        if (!ReadNativeImage(path, compact))
            return fail(status, MediaLoadStatus::CantOpen);
    } else {
        if (!IsLoadableImagePath(path))
            return fail(status, MediaLoadStatus::UnsupportedType);
        MediaDecoded decoded;
        const MediaCodecStatus s = decodeMediaFile(path, decoded, info != nullptr);
        if (s == MediaCodecStatus::TooLarge)
            return fail(status, MediaLoadStatus::TooLarge);
        if (s != MediaCodecStatus::Ok)
            return fail(status, MediaLoadStatus::CantOpen);
        if (decoded.properties) {
            stripMediaPropertiesForSaving(*decoded.properties);
            if (!decoded.properties->isEmpty())
                record.properties = std::shared_ptr<MediaProperties>(std::move(decoded.properties));
        }
        record.bitsPerComponent = decoded.bitmap.bitsPerComponent;
        record.iccProfile = decoded.iccProfile;
        record.colorSpaceKind = classifyIccProfile(record.iccProfile);
        record.profileName = record.colorSpaceKind == ColorSpaceKind::None ? decoded.profileName
                                                                            : colorSpaceKindName(record.colorSpaceKind);
        if (!compactFromBitmap(decoded.bitmap, decoded.orientation, compact))
            return fail(status, MediaLoadStatus::CantOpen);
        convertToWorkingSpace(compact, record.colorSpaceKind, record.iccProfile);
    }
    // Decode into a scratch image first so a failure leaves the caller's image as it was.
    FlexImageFloat result(1, 1, image.channels < 1 ? 3 : image.channels);
    if (!compactToFloat(compact, result))
        return fail(status, MediaLoadStatus::TooLarge);
    std::swap(image.data, result.data);
    std::swap(image.width, result.width);
    std::swap(image.height, result.height);
    std::swap(image.channels, result.channels);
    std::swap(image.colorChannels, result.colorChannels);
    std::swap(image.ownsData, result.ownsData);
    if (info)
        *info = std::move(record);
    if (status)
        *status = MediaLoadStatus::Ok;
    return true;
}

bool saveRenderedMediaFile(const FlexImageFloat& rendered, const LoadedMediaInfo& info, const std::string& path,
                           float quality)
{
    CompactImage compact;
    if (!quantiseForSave(rendered, info.bitsPerComponent > 8, compact))
        return false;
    if (isNativeImagePath(path))
        return WriteNativeImage(compact, path);
    MediaEncodeRequest req;
    req.image = &compact;
    req.path = path;
    req.quality = quality;
    req.iccProfile = info.iccProfile;
    req.properties = info.properties.get();
    return encodeMediaFile(req);
}

bool SaveMediaFile(const MediaSaveRenderer& renderer, const LoadedMediaInfo& info, const std::string& path,
                   int32_t width, int32_t height, float quality, MediaLoadStatus* status)
{
    if (!renderer.renderFullSize)
        return fail(status, MediaLoadStatus::WriteFailed);
    if (renderer.recordPath)
        renderer.recordPath(path);
    FlexImageFloat rendered(1, 1, 4);
    if (!renderer.renderFullSize(rendered, width, height) || rendered.isEmpty())
        return fail(status, MediaLoadStatus::WriteFailed);
    LoadedMediaInfo out = info;
    std::vector<uint8_t> icc;
    ColorSpaceKind kind = ColorSpaceKind::None;
    if (renderer.outputProfile && renderer.outputProfile(icc, kind)) {
        out.iccProfile = icc;
        out.colorSpaceKind = kind;
    }
    if (!saveRenderedMediaFile(rendered, out, path, quality))
        return fail(status, MediaLoadStatus::WriteFailed);
    if (status)
        *status = MediaLoadStatus::Ok;
    return true;
}
