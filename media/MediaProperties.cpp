#include "media/MediaProperties.h"

#include <cstdlib>

const std::vector<std::string>& mediaPropertyKeysStrippedForSaving()
{
    static const std::vector<std::string> keys = {
        "Exif.Image.Orientation",
        "Iptc.Application2.ImageOrientation",
        "Xmp.tiff.Orientation",
        "Exif.Photo.PixelXDimension",
        "Exif.Photo.PixelYDimension",
        "Exif.Image.ImageWidth",
        "Exif.Image.ImageLength",
        "Xmp.exif.PixelXDimension",
        "Xmp.exif.PixelYDimension",
        "Xmp.tiff.ImageWidth",
        "Xmp.tiff.ImageLength",
        "Exif.Photo.ColorSpace",
        "Xmp.exif.ColorSpace",
        "Exif.Image.InterColorProfile",
    };
    return keys;
}

int32_t mediaPropertiesOrientation(const MediaProperties* properties)
{
    if (!properties || !properties->has("Exif.Image.Orientation"))
        return 1;
    const std::string text = properties->value("Exif.Image.Orientation");
    char* end = nullptr;
    const long v = std::strtol(text.c_str(), &end, 10);
    if (end == text.c_str() || v < 1 || v > 8)
        return 1;
    return int32_t(v);
}

void stripMediaPropertiesForSaving(MediaProperties& properties)
{
    for (const std::string& key : mediaPropertyKeysStrippedForSaving())
        properties.remove(key);
}
