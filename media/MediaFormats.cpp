#include "media/MediaFormats.h"

#include <cctype>
#include <cstring>

const std::vector<MediaFormat>& mediaOpenFormats()
{
    static const std::vector<MediaFormat> table = {
        {"Jpeg Image", "jpg jpeg", 0, 0},
        {"Portable Network Graphic", "png", 0, 0},
        {"Tiff Image", "tif tiff", 0, 0},
        {"High Efficiency Image", "heic heif", 0, 0},
        {"HDR Image", "hdr", 0, 0},
        {"OpenEXR Image", "exr", 0, 0},
        {"Raw Photo", "crw cr2 nef nrw dng arw sr2 raf mrw pef rw2 orf rwl", 0, 0},
        {"Photoshop Image", "psd", 0, 0},
    };
    return table;
}

const std::vector<MediaFormat>& mediaSaveFormats()
{
    static const std::vector<MediaFormat> table = {
        {"Jpeg Image", "jpg jpeg", 1, 0},
        {"PNG Image", "png", 0, 6},
        {"Tiff Image", "tif tiff", 0, 6},
        {"PNG-16 Image", "png", 0, 7},
        {"Tiff-16 Image", "tif tiff", 0, 7},
    };
    return table;
}

std::string mediaPathExtension(const std::string& path)
{
    const size_t slash = path.find_last_of('/');
    const size_t dot = path.find_last_of('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return {};
    std::string ext = path.substr(dot + 1);
    for (char& ch : ext)
        ch = char(std::tolower(static_cast<unsigned char>(ch)));
    return ext;
}

bool mediaFormatHasExtension(const MediaFormat& format, const std::string& lowerExtension)
{
    if (lowerExtension.empty())
        return false;
    const char* p = format.extensions;
    while (*p) {
        const char* end = std::strchr(p, ' ');
        const size_t len = end ? size_t(end - p) : std::strlen(p);
        if (len == lowerExtension.size() && lowerExtension.compare(0, len, p, len) == 0)
            return true;
        if (!end)
            break;
        p = end + 1;
    }
    return false;
}

bool IsLoadableImagePath(const std::string& path)
{
    const std::string ext = mediaPathExtension(path);
    for (const MediaFormat& f : mediaOpenFormats())
        if (mediaFormatHasExtension(f, ext))
            return true;
    return false;
}

bool isNativeImagePath(const std::string& path)
{
    return mediaPathExtension(path) == "vni";
}

const MediaFormat* findSaveFormat(const std::string& path, int32_t sourceBitsPerComponent)
{
    const std::string ext = mediaPathExtension(path);
    const std::vector<MediaFormat>& table = mediaSaveFormats();
    if (sourceBitsPerComponent > 8)
        for (const MediaFormat& f : table)
            if (f.depthCode == 7 && mediaFormatHasExtension(f, ext))
                return &f;
    for (const MediaFormat& f : table)
        if (mediaFormatHasExtension(f, ext))
            return &f;
    return nullptr;
}
