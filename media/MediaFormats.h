#pragma once
#include <cstdint>
#include <string>
#include <vector>

// A row of the open or save dialog's format table.
struct MediaFormat {
    const char* displayName;
    const char* extensions; // blank-separated, lower case
    int32_t qualityApplies; // save table only
    int32_t depthCode;      // save table only: 7 = 16 bits a component, else 8
};

const std::vector<MediaFormat>& mediaOpenFormats();
const std::vector<MediaFormat>& mediaSaveFormats();

// The extension after the last dot of the file name, lower-cased; "" when there is none.
std::string mediaPathExtension(const std::string& path);
bool mediaFormatHasExtension(const MediaFormat& format, const std::string& lowerExtension);

// True if the path's extension stands in the open table (the native "vni" does not).
bool IsLoadableImagePath(const std::string& path);
// True for the native image extension, compared without regard to case.
bool isNativeImagePath(const std::string& path);

// The save row for a document: a source of more than 8 bits a component looks for depth code 7
// first; otherwise the first row with the extension. nullptr when no row has it.
const MediaFormat* findSaveFormat(const std::string& path, int32_t sourceBitsPerComponent);
