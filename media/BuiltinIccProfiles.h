#pragma once
#include "media/ColorSpaceKind.h"

#include <cstdint>
#include <vector>

// The ICC bytes of a built-in profile (sRGB, Adobe RGB, Rec. 709), decoded from the text stored
// in the program. Any other kind gives an empty vector.
std::vector<uint8_t> builtinIccProfile(ColorSpaceKind kind);

// The stored base64 text of a built-in profile, or nullptr.
const char* builtinIccProfileBase64(ColorSpaceKind kind);
