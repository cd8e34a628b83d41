#pragma once
#include "media/MediaBitmap.h"
#include "media/MediaProperties.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class CompactImage;

// The one door to the platform's codecs (OpenImageIO for pixels, Exiv2 for metadata). Nothing
// else includes their headers; every exception they throw stops here.

enum class MediaCodecStatus {
    Ok,
    CantOpen,    // no reader takes the file, or it is damaged
    TooLarge,    // the size can't be addressed by the pixel images; refused before allocating
    ReadFailed,  // the header was fine, the pixels weren't
};

struct MediaDecoded {
    MediaBitmap bitmap;              // stored orientation, 8 or 16 bits, RGB or RGBA
    int32_t orientation = 1;         // EXIF orientation still to apply (1 when the reader applied it)
    std::vector<uint8_t> iccProfile; // as embedded in the file
    std::string profileName;         // the embedded profile's description, if any
    bool sourceIsRgb = true;         // false when grey/CMYK samples were redrawn to 8-bit RGB
    std::string formatName;          // the reader's name for the format ("jpeg", "png", ...)
    std::unique_ptr<MediaProperties> properties; // null without metadata or when not asked for
};

// Decodes the first image of a file. Float sources come back as 16-bit with the sRGB transfer
// applied to their linear values; non-RGB sources as 8-bit RGB.
MediaCodecStatus decodeMediaFile(const std::string& path, MediaDecoded& out, bool withProperties);

// Only the metadata; null when the file has none or can't be read.
std::unique_ptr<MediaProperties> readMediaProperties(const std::string& path);

struct MediaEncodeRequest {
    const CompactImage* image = nullptr;       // RGB or RGBA, 8 or 16 bits
    std::string path;                          // the writer is chosen by its extension
    float quality = 100.0f;                    // 0..100, for lossy writers
    std::vector<uint8_t> iccProfile;           // embedded when it is an RGB profile
    const MediaProperties* properties = nullptr; // written after the pixels
};

// Writes into a temporary file beside the target and renames it over the target only when all
// went well; a failure leaves any existing file untouched.
bool encodeMediaFile(const MediaEncodeRequest& request);

// True if a writer exists for the path's extension.
bool canEncodeMediaPath(const std::string& path);
