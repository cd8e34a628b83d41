#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// What a file says about itself (EXIF, IPTC, XMP, GPS), as keyed values named "Exif.Image.Make",
// "Iptc.Application2.Caption", "Xmp.tiff.Orientation" and so on. Opaque to the program except
// for a few keys; the codec layer reads it from a file and writes it into another.
class MediaProperties {
public:
    virtual ~MediaProperties() = default;
    virtual std::unique_ptr<MediaProperties> clone() const = 0;
    virtual bool isEmpty() const = 0;
    virtual bool has(const std::string& key) const = 0;
    // The value as text ("" when absent).
    virtual std::string value(const std::string& key) const = 0;
    // Every key, in the file's order (a key may repeat).
    virtual std::vector<std::string> keys() const = 0;
    // Removes every entry of that key; true if one existed.
    virtual bool remove(const std::string& key) = 0;
};

// The keys that would be false once the pixels are upright, re-sized or converted: orientation,
// pixel size, the EXIF colour space, and the profile (which travels on its own).
const std::vector<std::string>& mediaPropertyKeysStrippedForSaving();

// The EXIF orientation 1..8; 1 when absent or out of range.
int32_t mediaPropertiesOrientation(const MediaProperties* properties);

// Removes the keys above that exist.
void stripMediaPropertiesForSaving(MediaProperties& properties);
