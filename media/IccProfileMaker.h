#pragma once
#include "media/ColorSpaceKind.h"

#include <cstdint>
#include <vector>

// Builds the ICC bytes of the built-in profiles from their primaries and curves. Deterministic:
// the header date and the profile ID are fixed, so the same library always yields the same bytes.
// Only the profile tool and the tests call this; the program decodes the stored copies.
std::vector<uint8_t> makeBuiltinIccProfile(ColorSpaceKind kind);
