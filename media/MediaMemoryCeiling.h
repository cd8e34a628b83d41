#pragma once
#include <cstdint>

// How much memory one open photo may take. A document holds the compact source, its float copy
// and the viewer's working images: about kDocumentBytesPerPixel bytes a pixel in all. Photos
// whose size would pass the ceiling are refused before any pixel buffer is made.
//
// The ceiling is three quarters of the machine's memory, or VANTREL_MEMORY_LIMIT_MB when that is
// set to a positive number (for servers running several renders, and for tests).
constexpr int64_t kDocumentBytesPerPixel = 40;

int64_t mediaMemoryCeilingBytes();
bool mediaSizeWithinMemoryCeiling(int64_t width, int64_t height);
