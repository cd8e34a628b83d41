#pragma once
#include <cstdint>
#include <string>

// The stored pixel size and channel count of an image file from its header alone, without
// decoding the pixels. False when no reader takes the file.
bool probeMediaSize(const std::string& path, int32_t& width, int32_t& height, int32_t& channels);
