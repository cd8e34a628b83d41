#include "media/BuiltinIccProfiles.h"

#include <QByteArray>

#include "media/BuiltinIccProfileText.inc"

const char* builtinIccProfileBase64(ColorSpaceKind kind)
{
    switch (kind) {
    case ColorSpaceKind::SRGB: return kSrgbIccBase64;
    case ColorSpaceKind::AdobeRGB: return kAdobeRgbIccBase64;
    case ColorSpaceKind::Rec709: return kRec709IccBase64;
    default: return nullptr;
    }
}

std::vector<uint8_t> builtinIccProfile(ColorSpaceKind kind)
{
    const char* text = builtinIccProfileBase64(kind);
    if (!text)
        return {};
    const QByteArray bytes = QByteArray::fromBase64(QByteArray(text));
    return std::vector<uint8_t>(bytes.begin(), bytes.end());
}
