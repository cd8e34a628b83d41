#pragma once
#include "core/FlexImage.h"
#include "media/LoadedMediaInfo.h"
#include "media/MediaMessages.h"

#include <cstdint>
#include <functional>
#include <string>

// How a document load or save ended, so the caller can pick the words to show.
enum class MediaLoadStatus {
    Ok,
    UnsupportedType, // neither the native extension nor one of the open table
    CantOpen,        // known type, but the file can't be read (damaged, missing, too large)
    TooLarge,
    WriteFailed,
};

// The message for a failed load of path (unsupported type or "Can't Load File").
MediaMessage mediaLoadFailureMessage(MediaLoadStatus status, const std::string& path);

// The document route: decodes the file upright into image (its channel count is kept), converts
// embedded profiles to sRGB, and fills info when given. On failure image and info are untouched.
bool LoadMediaFile(FlexImageFloat& image, const std::string& path, LoadedMediaInfo* info,
                   MediaLoadStatus* status = nullptr);

// Writes an already rendered image: RGBA only when some alpha is below 255, 16 bits when info
// says so, info's profile and properties embedded. "vni" writes the native file.
bool saveRenderedMediaFile(const FlexImageFloat& rendered, const LoadedMediaInfo& info, const std::string& path,
                           float quality);

// What SaveMediaFile needs from the processing driver: a full-size render of the sequence, the
// record of the path being written (under the driver's locks), and the profile of an enabled
// "Color Space" tile if the sequence holds one.
struct MediaSaveRenderer {
    std::function<void(const std::string& path)> recordPath;
    // Renders into out; width or height below 1 means the sequence's own size.
    std::function<bool(FlexImageFloat& out, int32_t width, int32_t height)> renderFullSize;
    // Fills icc and kind and returns true when a tile sets the output profile.
    std::function<bool(std::vector<uint8_t>& icc, ColorSpaceKind& kind)> outputProfile;
};

// On failure status says WriteFailed ("Processing Error") and any file at path is left as it was.
bool SaveMediaFile(const MediaSaveRenderer& renderer, const LoadedMediaInfo& info, const std::string& path,
                   int32_t width, int32_t height, float quality, MediaLoadStatus* status = nullptr);
