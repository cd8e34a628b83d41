#pragma once
#include "core/FlexImage.h"

#include <cstdint>
#include <string>

class CompactImage;

// The program's own uncompressed file (extension "vni"): the magic "RGBA8XXXXXXX", width and
// height as little-endian 32-bit numbers, then red, green, blue, alpha bytes row by row.
// Writes go through a temporary file that replaces the target only when complete.

// mode is the caller's depth (0: 8-bit, 1: float); anything higher fails at once.
bool WriteNativeImage(const FlexImage8& image, const std::string& path, int32_t mode = 0);
bool WriteNativeImage(const FlexImageFloat& image, const std::string& path, int32_t mode = 1);
bool WriteNativeImage(const CompactImage& image, const std::string& path);

// A file shorter than its header says reads as white, alpha 255, past its end. The destination
// keeps its channel count (fewer than 1 becomes 3). Sizes the images can't address fail.
bool ReadNativeImage(const std::string& path, FlexImage8& image);
bool ReadNativeImage(const std::string& path, FlexImageFloat& image);
// Reads into an 8-bit RGBA compact image.
bool ReadNativeImage(const std::string& path, CompactImage& image);

// Where a viewport keeps its display image for a host: "DisplayImage.dat" in the data folder.
// It holds the native format, read and written by explicit calls above; the loaders' dispatch by
// extension never takes it for a native file.
std::string displayImageDataPath();
