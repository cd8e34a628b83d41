#include "media/MediaPixelCopy.h"

#include "core/ParallelFor.h"
#include "media/LargeBuffer.h"
#include "media/MediaOrientation.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>

namespace {

// Double, so that a sample at full alpha divides back to itself (100 / (100 / 255) is 255, not 254.99).
constexpr double kInv255 = 0.00392156862745098;
constexpr double kInv65535 = 1.52590218966964e-05;
constexpr float kOf16Bit = 0.0038910506f; // 1 / 257

struct Offsets {
    int32_t r, g, b, a;
};
Offsets offsetsFor(int32_t alphaInfo)
{
    return mediaAlphaIsFirst(alphaInfo) ? Offsets {1, 2, 3, 0} : Offsets {0, 1, 2, 3};
}

// Division of a premultiplied sample by its alpha; alpha 0 gives colour 0.
static inline float unpremultiply(float colour, double alphaScaled)
{
    if (!(alphaScaled > 0.0))
        return 0.0f;
    return float(double(colour) * (1.0 / alphaScaled));
}

template <typename T>
static inline T storeSample(float v);
template <>
inline float storeSample<float>(float v) { return v; }
template <>
inline uint8_t storeSample<uint8_t>(float v)
{
    return v >= 255.0f ? 255 : (v > 0.0f ? uint8_t(v) : 0);
}

template <typename T>
static inline void sidePixel(const uint8_t* src, int32_t depth, const Offsets& o, bool hasAlpha, bool premultiplied,
                             T* dst, int32_t dstChannels)
{
    float rgba[4];
    if (depth == 8) {
        rgba[0] = src[o.r];
        rgba[1] = src[o.g];
        rgba[2] = src[o.b];
        rgba[3] = hasAlpha ? float(src[o.a]) : 255.0f;
        if (hasAlpha && premultiplied) {
            const double a = rgba[3] * kInv255;
            for (int c = 0; c < 3; ++c)
                rgba[c] = unpremultiply(rgba[c], a);
        }
    } else {
        uint16_t s[4];
        std::memcpy(s, src, sizeof(uint16_t) * (hasAlpha || o.r ? 4 : 3));
        float v[4] = {float(s[o.r]), float(s[o.g]), float(s[o.b]), hasAlpha ? float(s[o.a]) : 65535.0f};
        if (hasAlpha && premultiplied) {
            const double a = v[3] * kInv65535;
            for (int c = 0; c < 3; ++c)
                v[c] = std::trunc(unpremultiply(v[c], a));
        }
        for (int c = 0; c < 4; ++c)
            rgba[c] = v[c] * kOf16Bit;
    }
    const int32_t colours = std::min(dstChannels, 3);
    for (int32_t c = 0; c < colours; ++c)
        dst[c] = storeSample<T>(rgba[c]);
    if (dstChannels >= 4)
        dst[3] = storeSample<T>(hasAlpha ? rgba[3] : 255.0f);
}

template <typename T>
bool copyToImage(const MediaBitmap& bmp, int32_t orientation, FlexImageT<T>& dest)
{
    const int32_t depth = bmp.bitsPerComponent;
    if (!bmp.data || bmp.width < 1 || bmp.height < 1 || (depth != 8 && depth != 16))
        return false;
    const OrientationMap map = orientationMap(orientation, bmp.width, bmp.height);
    if (!FlexImageT<T>::sizeFits(map.uprightWidth, map.uprightHeight, std::max(dest.channels, 1)))
        return false;
    dest.resize(map.uprightWidth, map.uprightHeight, dest.channels);
    if (dest.isEmpty())
        return false;
    const Offsets o = offsetsFor(bmp.alphaInfo);
    const bool hasAlpha = dest.channels > 3 && mediaAlphaIsPresent(bmp.alphaInfo);
    const bool premultiplied = mediaAlphaIsPremultiplied(bmp.alphaInfo);
    const int32_t step = bmp.bitsPerPixel / 8;
    const int32_t dc = dest.channels;
    const MediaBitmap* b = &bmp;
    FlexImageT<T>* d = &dest;
    parallelFor(bmp.height, [=](int32_t y) {
        const uint8_t* src = b->row(y);
        for (int32_t x = 0; x < b->width; ++x) {
            int32_t ux, uy;
            map.at(x, y, b->height, ux, uy);
            sidePixel<T>(src + int64_t(x) * step, depth, o, hasAlpha, premultiplied, d->row(uy) + int64_t(ux) * dc, dc);
        }
    });
    return true;
}

template <typename T>
static inline void compactPixel(const T* src, const Offsets& o, bool hasAlpha, bool premultiplied, double inv, T* dst)
{
    T a = hasAlpha ? src[o.a] : T(0);
    if (hasAlpha && premultiplied) {
        const double scale = double(a) * inv;
        const float top = float(T(~T(0)));
        for (int c = 0; c < 3; ++c) {
            const float v = unpremultiply(float(src[c == 0 ? o.r : (c == 1 ? o.g : o.b)]), scale);
            dst[c] = v >= top ? T(~T(0)) : T(v);
        }
    } else {
        dst[0] = src[o.r];
        dst[1] = src[o.g];
        dst[2] = src[o.b];
    }
    if (hasAlpha)
        dst[3] = a;
}

template <typename T>
void copyToCompact(const MediaBitmap& bmp, const OrientationMap& map, bool hasAlpha, CompactImage& out)
{
    const Offsets o = offsetsFor(bmp.alphaInfo);
    const bool premultiplied = mediaAlphaIsPremultiplied(bmp.alphaInfo);
    const int32_t spp = bmp.samplesPerPixel();
    const int32_t dc = out.channels;
    const double inv = sizeof(T) == 1 ? kInv255 : kInv65535;
    const MediaBitmap* b = &bmp;
    CompactImage* d = &out;
    parallelFor(bmp.height, [=](int32_t y) {
        const T* src = reinterpret_cast<const T*>(b->row(y));
        T* base = static_cast<T*>(d->data);
        for (int32_t x = 0; x < b->width; ++x) {
            int32_t ux, uy;
            map.at(x, y, b->height, ux, uy);
            compactPixel(src + int64_t(x) * spp, o, hasAlpha, premultiplied, inv,
                         base + (int64_t(uy) * d->width + ux) * dc);
        }
    });
}

// One row of the float copy; the channel counts are constants so the loop vectorises.
template <typename S, int SC, int DC>
static inline void floatRow(const S* src, float* dst, int32_t w, float scale)
{
    constexpr int n = SC < DC ? SC : DC;
    for (int32_t x = 0; x < w; ++x, src += SC, dst += DC) {
        for (int c = 0; c < n; ++c)
            dst[c] = float(src[c]) * scale;
        if constexpr (DC == 4 && SC < 4)
            dst[3] = 255.0f;
    }
}

template <typename S>
static inline void floatRowAny(const S* src, int32_t sc, bool grey, float* dst, int32_t dc, int32_t w, float scale)
{
    const int32_t n = std::min(sc, dc);
    for (int32_t x = 0; x < w; ++x, src += sc, dst += dc) {
        if (dc == 4)
            dst[3] = 255.0f;
        if (grey) {
            for (int32_t k = 0; k < std::min(dc, 3); ++k)
                dst[k] = float(src[0]) * scale;
        } else {
            for (int32_t k = 0; k < n; ++k)
                dst[k] = float(src[k]) * scale;
        }
    }
}

template <typename S>
void floatCopy(const CompactImage& c, FlexImageFloat& d, float scale)
{
    const CompactImage* cp = &c;
    FlexImageFloat* dp = &d;
    const int32_t sc = c.channels, dc = d.channels, w = c.width;
    const bool grey = c.layout == CompactImage::Grey;
    auto src = [cp](int32_t y) { return reinterpret_cast<const S*>(cp->row8(y)); };
    if (!grey && sc == 3 && dc == 3)
        parallelFor(c.height, [=](int32_t y) { floatRow<S, 3, 3>(src(y), dp->row(y), w, scale); });
    else if (!grey && sc == 3 && dc == 4)
        parallelFor(c.height, [=](int32_t y) { floatRow<S, 3, 4>(src(y), dp->row(y), w, scale); });
    else if (!grey && sc == 4 && dc == 4)
        parallelFor(c.height, [=](int32_t y) { floatRow<S, 4, 4>(src(y), dp->row(y), w, scale); });
    else if (!grey && sc == 4 && dc == 3)
        parallelFor(c.height, [=](int32_t y) { floatRow<S, 4, 3>(src(y), dp->row(y), w, scale); });
    else
        parallelFor(c.height, [=](int32_t y) { floatRowAny<S>(src(y), sc, grey, dp->row(y), dc, w, scale); });
}

template <typename T>
void bakeOntoBlack(CompactImage& img)
{
    const float top = float(T(~T(0)));
    CompactImage* p = &img;
    parallelFor(img.height, [=](int32_t y) {
        T* r = reinterpret_cast<T*>(p->row8(y));
        for (int32_t x = 0; x < p->width; ++x) {
            T* px = r + int64_t(x) * 4;
            for (int c = 0; c < 3; ++c)
                px[c] = T(float(px[c]) * float(px[3]) / top);
        }
    });
}

} // namespace

bool copyBitmapToImage(const MediaBitmap& bitmap, int32_t orientation, FlexImageFloat& dest)
{
    return copyToImage(bitmap, orientation, dest);
}

bool copyBitmapToImage(const MediaBitmap& bitmap, int32_t orientation, FlexImage8& dest)
{
    return copyToImage(bitmap, orientation, dest);
}

bool compactFromBitmap(MediaBitmap& bmp, int32_t orientation, CompactImage& out)
{
    const int32_t depth = bmp.bitsPerComponent;
    if (!bmp.data || bmp.width < 1 || bmp.height < 1 || (depth != 8 && depth != 16))
        return false;
    const int32_t spp = bmp.samplesPerPixel();
    if (spp < 3 || spp > 4 || bmp.bytesPerRow < int64_t(bmp.width) * bmp.bitsPerPixel / 8)
        return false;
    const bool hasAlpha = mediaAlphaIsPresent(bmp.alphaInfo) && spp == 4;
    const int32_t layout = hasAlpha ? CompactImage::RGBA : CompactImage::RGB;
    const bool wide = depth > 8;
    const OrientationMap map = orientationMap(orientation, bmp.width, bmp.height);
    if (!FlexImageFloat::sizeFits(map.uprightWidth, map.uprightHeight, 4))
        return false;
    // Upright, tight, in our order and not premultiplied: the decoded buffer is the image.
    const bool plain = !map.steps.turn && !map.steps.swapRows && !map.steps.swapColumns
        && spp == CompactImage::channelsOfLayout(layout) && !mediaAlphaIsFirst(bmp.alphaInfo)
        && !(hasAlpha && mediaAlphaIsPremultiplied(bmp.alphaInfo))
        && bmp.bytesPerRow == int64_t(bmp.width) * spp * (wide ? 2 : 1);
    if (plain)
        return out.adopt(bmp.release(), bmp.width, bmp.height, layout, wide);
    if (!out.allocate(map.uprightWidth, map.uprightHeight, layout, wide))
        return false;
    if (wide)
        copyToCompact<uint16_t>(bmp, map, hasAlpha, out);
    else
        copyToCompact<uint8_t>(bmp, map, hasAlpha, out);
    return true;
}

bool compactToFloat(CompactImage& compact, FlexImageFloat& dest)
{
    if (compact.isEmpty())
        return false;
    const int32_t dc = dest.channels < 1 ? 3 : dest.channels;
    if (dest.data == nullptr || dest.width != compact.width || dest.height != compact.height) {
        // A fresh buffer, first touched by the parallel rows below (every sample is written there).
        FlexImageFloat fresh(compact.width, compact.height, dc);
        if (fresh.isEmpty())
            return false;
        adviseLargeBuffer(fresh.data, size_t(fresh.sampleCount()) * sizeof(float));
        std::swap(dest.data, fresh.data);
        std::swap(dest.ownsData, fresh.ownsData);
        dest.width = compact.width;
        dest.height = compact.height;
        dest.channels = dc;
        dest.colorChannels = dc < 4 ? dc : 3;
    }
    if (dc == 3 && compact.hasAlpha()) {
        if (compact.is16Bit)
            bakeOntoBlack<uint16_t>(compact);
        else
            bakeOntoBlack<uint8_t>(compact);
    }
    const float scale = compact.is16Bit ? kOf16Bit : 257.0f * kOf16Bit;
    if (compact.is16Bit)
        floatCopy<uint16_t>(compact, dest, scale);
    else
        floatCopy<uint8_t>(compact, dest, scale);
    return true;
}

namespace {

// One sample for the file: truncate(v * 257) with its low 16 bits (its high byte for 8 bits), or,
// on the side route's 8-bit path, the float's own low byte.
template <bool Sixteen, bool ViaScale>
static inline uint32_t quantiseSample(double v)
{
    if constexpr (Sixteen || ViaScale) {
        const uint32_t q = truncateToBits(v * 257.0) & 0xffff;
        return Sixteen ? q : q >> 8;
    } else {
        return truncateToBits(v) & 0xff;
    }
}

template <typename S, typename D, int SC, int DC, bool Sixteen, bool ViaScale>
static inline void quantiseRow(const S* src, D* dst, int32_t w)
{
    constexpr int n = SC < DC ? SC : DC;
    constexpr uint32_t opaque = Sixteen ? 65535 : 255;
    for (int32_t x = 0; x < w; ++x, src += SC, dst += DC) {
        for (int c = 0; c < n; ++c)
            dst[c] = D(quantiseSample<Sixteen, ViaScale>(double(src[c])));
        for (int c = n; c < DC; ++c)
            dst[c] = D(c == 3 ? opaque : 0);
    }
}

template <typename S, typename D, int SC, int DC, bool Sixteen, bool ViaScale>
void quantiseRows(const FlexImageT<S>& image, CompactImage& out)
{
    const FlexImageT<S>* src = &image;
    CompactImage* d = &out;
    parallelFor(image.height, [=](int32_t y) {
        quantiseRow<S, D, SC, DC, Sixteen, ViaScale>(src->row(y), reinterpret_cast<D*>(d->row8(y)), src->width);
    });
}

// Channel counts the pixel images use, fixed at compile time; others fall back on 1 (grey) and 2.
template <typename S, typename D, int DC, bool Sixteen, bool ViaScale>
void quantiseBySource(const FlexImageT<S>& image, CompactImage& out)
{
    switch (image.channels) {
    case 1: quantiseRows<S, D, 1, DC, Sixteen, ViaScale>(image, out); break;
    case 2: quantiseRows<S, D, 2, DC, Sixteen, ViaScale>(image, out); break;
    case 3: quantiseRows<S, D, 3, DC, Sixteen, ViaScale>(image, out); break;
    default: quantiseRows<S, D, 4, DC, Sixteen, ViaScale>(image, out); break;
    }
}

template <typename S, bool ViaScale>
bool fillQuantised(const FlexImageT<S>& image, bool sixteenBit, int32_t layout, CompactImage& out)
{
    if (image.isEmpty() || image.channels < 1 || !out.allocate(image.width, image.height, layout, sixteenBit))
        return false;
    const bool four = out.channels == 4;
    if (sixteenBit) {
        if (four)
            quantiseBySource<S, uint16_t, 4, true, ViaScale>(image, out);
        else
            quantiseBySource<S, uint16_t, 3, true, ViaScale>(image, out);
    } else {
        if (four)
            quantiseBySource<S, uint8_t, 4, false, ViaScale>(image, out);
        else
            quantiseBySource<S, uint8_t, 3, false, ViaScale>(image, out);
    }
    return true;
}

static inline bool rowHasAlphaBelowOpaque(const float* row, int32_t w)
{
    bool below = false;
    for (int32_t x = 0; x < w; ++x)
        below |= row[int64_t(x) * 4 + 3] < 255.0f;
    return below;
}

bool anyAlphaBelowOpaque(const FlexImageFloat& image)
{
    if (image.channels != 4)
        return false;
    // Row-parallel: a full-size scan is a whole pass over the image's memory.
    std::atomic<bool> found { false };
    const FlexImageFloat* p = &image;
    parallelForRanges(image.height, [p, &found](int32_t begin, int32_t end) {
        for (int32_t y = begin; y < end && !found.load(std::memory_order_relaxed); ++y)
            if (rowHasAlphaBelowOpaque(p->row(y), p->width))
                found.store(true, std::memory_order_relaxed);
    });
    return found.load();
}

} // namespace

bool quantiseForSave(const FlexImageFloat& image, bool sixteenBit, CompactImage& out)
{
    const int32_t layout = anyAlphaBelowOpaque(image) ? CompactImage::RGBA : CompactImage::RGB;
    return fillQuantised<float, true>(image, sixteenBit, layout, out);
}

bool bufferForSideSave(const FlexImageFloat& image, bool sixteenBit, CompactImage& out)
{
    return fillQuantised<float, false>(image, sixteenBit, image.channels >= 4 ? CompactImage::RGBA : CompactImage::RGB, out);
}

bool bufferForSideSave(const FlexImage8& image, bool sixteenBit, CompactImage& out)
{
    return fillQuantised<uint8_t, false>(image, sixteenBit, image.channels >= 4 ? CompactImage::RGBA : CompactImage::RGB, out);
}
