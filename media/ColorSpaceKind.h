#pragma once
#include <cstdint>
#include <vector>

// Which colour space a set of numbers is meant in. Values are stored in files: keep them.
enum class ColorSpaceKind : int32_t {
    None = 0,
    Custom = 1,
    Display = 2,
    SRGB = 3,
    AdobeRGB = 4,
    Rec709 = 5,
};

// The name the program shows for a kind ("None", "Custom", ...); "" for an unknown value.
const char* colorSpaceKindName(ColorSpaceKind kind);

// The kinds offered in lists: None (only if asked), Display, sRGB, Adobe RGB, Rec. 709.
std::vector<ColorSpaceKind> colorSpaceOfferList(bool includeNone);
