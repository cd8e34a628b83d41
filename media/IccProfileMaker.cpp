#include "media/IccProfileMaker.h"

#include <lcms2.h>

#include <cstring>

namespace {

// 2015-01-01 00:00:00, written big-endian as six 16-bit numbers at offset 24 of the header.
constexpr uint16_t kFixedDate[6] = {2015, 1, 1, 0, 0, 0};

struct ProfileRecipe {
    cmsCIExyYTRIPLE primaries;
    int curveType;          // lcms parametric type, or 0 for a pure gamma
    cmsFloat64Number params[7];
    const char* description;
    double version;
};

bool recipeFor(ColorSpaceKind kind, ProfileRecipe& r)
{
    const cmsCIExyY red709 {0.64, 0.33, 1.0}, green709 {0.30, 0.60, 1.0}, blue709 {0.15, 0.06, 1.0};
    switch (kind) {
    case ColorSpaceKind::SRGB:
        // IEC 61966-2.1: Y = ((X + 0.055) / 1.055)^2.4 above 0.04045, X / 12.92 below.
        r = {{red709, green709, blue709}, 4, {2.4, 1.0 / 1.055, 0.055 / 1.055, 1.0 / 12.92, 0.04045, 0, 0},
             "sRGB IEC61966-2.1 (Vantrel)", 2.1};
        return true;
    case ColorSpaceKind::AdobeRGB:
        r = {{{0.64, 0.33, 1.0}, {0.21, 0.71, 1.0}, {0.15, 0.06, 1.0}}, 0, {563.0 / 256.0, 0, 0, 0, 0, 0, 0},
             "Compatible with Adobe RGB (1998) (Vantrel)", 2.1};
        return true;
    case ColorSpaceKind::Rec709:
        // BT.709 inverse OETF: Y = ((X + 0.099) / 1.099)^(1 / 0.45) above 0.081, X / 4.5 below.
        r = {{red709, green709, blue709}, 4, {1.0 / 0.45, 1.0 / 1.099, 0.099 / 1.099, 1.0 / 4.5, 0.081, 0, 0},
             "Rec. ITU-R BT.709-5 (Vantrel)", 4.3};
        return true;
    default:
        return false;
    }
}

std::vector<uint8_t> saveToBytes(cmsHPROFILE profile)
{
    cmsUInt32Number size = 0;
    if (!cmsSaveProfileToMem(profile, nullptr, &size) || size == 0)
        return {};
    std::vector<uint8_t> bytes(size);
    if (!cmsSaveProfileToMem(profile, bytes.data(), &size))
        return {};
    bytes.resize(size);
    return bytes;
}

} // namespace

std::vector<uint8_t> makeBuiltinIccProfile(ColorSpaceKind kind)
{
    ProfileRecipe r;
    if (!recipeFor(kind, r))
        return {};
    cmsContext ctx = cmsCreateContext(nullptr, nullptr);
    cmsCIExyY d65 {0.3127, 0.3290, 1.0};
    cmsToneCurve* curve = r.curveType == 0 ? cmsBuildGamma(ctx, r.params[0])
                                           : cmsBuildParametricToneCurve(ctx, r.curveType, r.params);
    std::vector<uint8_t> bytes;
    if (curve) {
        cmsToneCurve* curves[3] = {curve, curve, curve};
        cmsHPROFILE p = cmsCreateRGBProfileTHR(ctx, &d65, &r.primaries, curves);
        if (p) {
            cmsSetProfileVersion(p, r.version);
            cmsMLU* desc = cmsMLUalloc(ctx, 1);
            cmsMLU* copyright = cmsMLUalloc(ctx, 1);
            cmsMLUsetASCII(desc, "en", "US", r.description);
            cmsMLUsetASCII(copyright, "en", "US", "No copyright, use freely");
            cmsWriteTag(p, cmsSigProfileDescriptionTag, desc);
            cmsWriteTag(p, cmsSigCopyrightTag, copyright);
            cmsMLUfree(desc);
            cmsMLUfree(copyright);
            bytes = saveToBytes(p);
            cmsCloseProfile(p);
        }
        cmsFreeToneCurve(curve);
    }
    // The library stamps the current time: replace it, then recompute the ID over the fixed bytes.
    if (bytes.size() >= 128) {
        for (int i = 0; i < 6; ++i) {
            bytes[24 + 2 * i] = uint8_t(kFixedDate[i] >> 8);
            bytes[25 + 2 * i] = uint8_t(kFixedDate[i] & 0xff);
        }
        std::memset(bytes.data() + 84, 0, 16);
        if (r.version >= 4.0) {
            cmsHPROFILE again = cmsOpenProfileFromMemTHR(ctx, bytes.data(), cmsUInt32Number(bytes.size()));
            if (again && cmsMD5computeID(again))
                bytes = saveToBytes(again);
            else
                bytes.clear();
            if (again)
                cmsCloseProfile(again);
        }
    }
    cmsDeleteContext(ctx);
    return bytes;
}
