#include "media/ColorSpaceKind.h"

const char* colorSpaceKindName(ColorSpaceKind kind)
{
    switch (kind) {
    case ColorSpaceKind::None: return "None";
    case ColorSpaceKind::Custom: return "Custom";
    case ColorSpaceKind::Display: return "Display";
    case ColorSpaceKind::SRGB: return "sRGB";
    case ColorSpaceKind::AdobeRGB: return "Adobe RGB";
    case ColorSpaceKind::Rec709: return "Rec. 709";
    }
    return "";
}

std::vector<ColorSpaceKind> colorSpaceOfferList(bool includeNone)
{
    std::vector<ColorSpaceKind> kinds;
    if (includeNone)
        kinds.push_back(ColorSpaceKind::None);
    kinds.insert(kinds.end(), {ColorSpaceKind::Display, ColorSpaceKind::SRGB, ColorSpaceKind::AdobeRGB,
                               ColorSpaceKind::Rec709});
    return kinds;
}
