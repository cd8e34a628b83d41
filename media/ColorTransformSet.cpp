#include "media/ColorTransformSet.h"

#include "core/ParallelFor.h"
#include "media/BuiltinIccProfiles.h"
#include "media/CompactImage.h"

#include <lcms2.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>

namespace {

std::atomic<DisplayIccProvider> gDisplayProvider {nullptr};

cmsHPROFILE openProfile(const std::vector<uint8_t>& bytes)
{
    if (bytes.empty())
        return nullptr;
    return cmsOpenProfileFromMem(bytes.data(), cmsUInt32Number(bytes.size()));
}

// Pixels of an RGBA row go through a small stack buffer, since the transforms know no alpha.
constexpr int32_t kChunk = 256;

template <typename T>
static inline void transformInterleavedAlpha(cmsHTRANSFORM xf, T* row, int32_t pixels)
{
    T rgb[kChunk * 3];
    for (int32_t start = 0; start < pixels; start += kChunk) {
        const int32_t n = std::min(kChunk, pixels - start);
        T* px = row + size_t(start) * 4;
        for (int32_t i = 0; i < n; ++i) {
            rgb[i * 3] = px[i * 4];
            rgb[i * 3 + 1] = px[i * 4 + 1];
            rgb[i * 3 + 2] = px[i * 4 + 2];
        }
        cmsDoTransform(xf, rgb, rgb, cmsUInt32Number(n));
        for (int32_t i = 0; i < n; ++i) {
            px[i * 4] = rgb[i * 3];
            px[i * 4 + 1] = rgb[i * 3 + 1];
            px[i * 4 + 2] = rgb[i * 3 + 2];
        }
    }
}

} // namespace

ColorTransformSet::~ColorTransformSet()
{
    release();
}

void ColorTransformSet::release()
{
    for (void** xf : {&rgb8ToDisplay, &rgb16ToDisplay, &displayToRgb8, &displayToRgb16}) {
        if (*xf)
            cmsDeleteTransform(static_cast<cmsHTRANSFORM>(*xf));
        *xf = nullptr;
    }
    valid = false;
}

bool ColorTransformSet::converts() const
{
    return valid && kind != ColorSpaceKind::None && kind != ColorSpaceKind::Display;
}

void buildTransformSet(ColorTransformSet& set, ColorSpaceKind kind, const std::vector<uint8_t>& profileBytes)
{
    set.kind = kind;
    set.profile = profileBytes;
    set.displayProfile = displayIccBytes();
    if (set.displayProfile.empty() || set.profile.empty() || kind == ColorSpaceKind::Display)
        return;
    cmsHPROFILE display = openProfile(set.displayProfile);
    cmsHPROFILE other = openProfile(set.profile);
    set.release();
    if (display && other) {
        set.rgb8ToDisplay = cmsCreateTransform(other, TYPE_RGB_8, display, TYPE_RGB_8, INTENT_PERCEPTUAL, 0);
        set.rgb16ToDisplay = cmsCreateTransform(other, TYPE_RGB_16, display, TYPE_RGB_16, INTENT_PERCEPTUAL, 0);
        set.displayToRgb8 = cmsCreateTransform(display, TYPE_RGB_8, other, TYPE_RGB_8, INTENT_PERCEPTUAL, 0);
        set.displayToRgb16 = cmsCreateTransform(display, TYPE_RGB_16, other, TYPE_RGB_16, INTENT_PERCEPTUAL, 0);
        set.valid = set.rgb8ToDisplay && set.rgb16ToDisplay && set.displayToRgb8 && set.displayToRgb16;
        if (!set.valid)
            set.release();
    }
    if (display)
        cmsCloseProfile(display);
    if (other)
        cmsCloseProfile(other);
}

void setKind(ColorTransformSet& set, ColorSpaceKind kind)
{
    switch (kind) {
    case ColorSpaceKind::Display:
        buildTransformSet(set, kind, displayIccBytes());
        break;
    case ColorSpaceKind::SRGB:
    case ColorSpaceKind::AdobeRGB:
    case ColorSpaceKind::Rec709:
        buildTransformSet(set, kind, builtinIccProfile(kind));
        break;
    default:
        break;
    }
}

void setCustomProfile(ColorTransformSet& set, const std::vector<uint8_t>& bytes)
{
    buildTransformSet(set, ColorSpaceKind::Custom, bytes);
}

void setDisplayIccProvider(DisplayIccProvider provider)
{
    gDisplayProvider.store(provider);
}

std::vector<uint8_t> displayIccBytes()
{
    if (DisplayIccProvider provider = gDisplayProvider.load()) {
        std::vector<uint8_t> bytes = provider();
        if (!bytes.empty())
            return bytes;
    }
    return builtinIccProfile(ColorSpaceKind::SRGB);
}

bool transformCompactImage(CompactImage& image, const ColorTransformSet& set, bool toDisplay)
{
    if (!set.valid || image.isEmpty() || (image.layout != CompactImage::RGB && image.layout != CompactImage::RGBA))
        return false;
    void* xf = image.is16Bit ? (toDisplay ? set.rgb16ToDisplay : set.displayToRgb16)
                             : (toDisplay ? set.rgb8ToDisplay : set.displayToRgb8);
    cmsHTRANSFORM transform = static_cast<cmsHTRANSFORM>(xf);
    const bool alpha = image.layout == CompactImage::RGBA;
    const bool wide = image.is16Bit != 0;
    const int32_t w = image.width;
    CompactImage* img = &image;
    parallelFor(image.height, [=](int32_t y) {
        if (!alpha)
            cmsDoTransform(transform, img->row8(y), img->row8(y), cmsUInt32Number(w));
        else if (wide)
            transformInterleavedAlpha(transform, img->row16(y), w);
        else
            transformInterleavedAlpha(transform, img->row8(y), w);
    });
    return true;
}

void transformRgb8RowToDisplay(const ColorTransformSet& set, uint8_t* rgb, int32_t pixels)
{
    if (set.converts() && pixels > 0)
        cmsDoTransform(static_cast<cmsHTRANSFORM>(set.rgb8ToDisplay), rgb, rgb, cmsUInt32Number(pixels));
}

bool isRgbIccProfile(const std::vector<uint8_t>& iccBytes)
{
    cmsHPROFILE p = openProfile(iccBytes);
    if (!p)
        return false;
    const bool rgb = cmsGetColorSpace(p) == cmsSigRgbData;
    cmsCloseProfile(p);
    return rgb;
}

namespace {

// True when every probe colour, from saturated primaries to greys, maps onto itself within one level.
bool behavesLike(cmsHPROFILE file, ColorSpaceKind builtin)
{
    const std::vector<uint8_t> bytes = builtinIccProfile(builtin);
    cmsHPROFILE ref = openProfile(bytes);
    if (!ref)
        return false;
    cmsHTRANSFORM xf = cmsCreateTransform(file, TYPE_RGB_8, ref, TYPE_RGB_8, INTENT_RELATIVE_COLORIMETRIC, 0);
    cmsCloseProfile(ref);
    if (!xf)
        return false;
    const uint8_t levels[] = {0, 16, 64, 128, 192, 255};
    uint8_t probes[6 * 6 * 6 * 3];
    int n = 0;
    for (uint8_t r : levels)
        for (uint8_t g : levels)
            for (uint8_t b : levels) {
                probes[n * 3] = r;
                probes[n * 3 + 1] = g;
                probes[n * 3 + 2] = b;
                ++n;
            }
    uint8_t out[sizeof probes];
    cmsDoTransform(xf, probes, out, cmsUInt32Number(n));
    cmsDeleteTransform(xf);
    for (int i = 0; i < n * 3; ++i)
        if (std::abs(int(out[i]) - int(probes[i])) > 1)
            return false;
    return true;
}

} // namespace

ColorSpaceKind classifyIccProfile(const std::vector<uint8_t>& iccBytes)
{
    if (iccBytes.empty())
        return ColorSpaceKind::None;
    cmsHPROFILE p = openProfile(iccBytes);
    if (!p)
        return ColorSpaceKind::Custom;
    ColorSpaceKind kind = ColorSpaceKind::Custom;
    if (cmsGetColorSpace(p) == cmsSigRgbData) {
        if (behavesLike(p, ColorSpaceKind::SRGB))
            kind = ColorSpaceKind::SRGB;
        else if (behavesLike(p, ColorSpaceKind::AdobeRGB))
            kind = ColorSpaceKind::AdobeRGB;
    }
    cmsCloseProfile(p);
    return kind;
}

bool convertToWorkingSpace(CompactImage& image, ColorSpaceKind fileKind, const std::vector<uint8_t>& iccBytes)
{
    const ColorSpaceKind working = colorSpaceOfferList(false)[1];
    if (fileKind == working || iccBytes.empty())
        return false;
    ColorTransformSet set;
    setCustomProfile(set, iccBytes);
    if (!set.valid)
        return false;
    // Always two steps through the display's profile, so the result depends on the display.
    transformCompactImage(image, set, true);
    setKind(set, working);
    transformCompactImage(image, set, false);
    return true;
}
