#pragma once
#include "core/ImageMod.h"

#include <cstdint>
#include <string>
#include <vector>

// "Export Filter LUT...": samples a tile sequence through a 33-point identity lattice and writes
// the result as a .cube file. Each enabled tile runs at float depth with no frame, taking the
// masks to its left as in a nested group; tiles that change the picture's shape (crop, sizes,
// borders, overlays, profile) are left out, as a colour table can't hold them. Mods that need
// analysis use whatever they measured last. The file is written beside the target under a
// temporary name and renamed over it only when complete. False when nothing could be written.
inline constexpr int32_t kFilterLutSize = 33;
inline constexpr float kFilterLutStep = 7.96875f; // 255 / 32

bool exportFilterLut(const std::vector<ImageMod*>& mods, const std::string& path);

// The TITLE written for a path: its file name without the extension.
std::string filterLutTitle(const std::string& path);
