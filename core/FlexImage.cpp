#include "core/FlexImage.h"

#include "core/ParallelFor.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

// Float to 8 bits: truncate toward zero and keep the low byte. The caller has clamped; values a
// 32-bit integer cannot hold (and NaN) become 0 instead of undefined behaviour.
inline uint8_t narrowSample(float v)
{
    if (!(v > -2147483648.0f && v < 2147483648.0f))
        return 0;
    return static_cast<uint8_t>(static_cast<uint32_t>(static_cast<int32_t>(v)));
}

template <typename D, typename S>
inline D convertSample(S v)
{
    if constexpr (std::is_same_v<D, uint8_t> && std::is_same_v<S, float>)
        return narrowSample(v);
    else
        return static_cast<D>(v);
}

} // namespace

template <typename Sample>
bool FlexImageT<Sample>::sizeFits(int64_t w, int64_t h, int64_t ch)
{
    if (w < 1 || h < 1 || ch < 1)
        return false;
    // Divided rather than multiplied: two 32-bit sizes from a file header overflow 64 bits.
    constexpr int64_t limit = 0x7fffffff;
    return w <= limit / h && w * h <= limit / ch;
}

template <typename Sample>
FlexImageT<Sample>::FlexImageT(int32_t w, int32_t h, int32_t ch)
{
    channels = ch;
    colorChannels = ch < 4 ? ch : 3;
    if (w >= 1 && h >= 1 && ch >= 1 && sizeFits(w, h, ch)) {
        width = w;
        height = h;
        data = static_cast<Sample*>(std::malloc(sizeof(Sample) * size_t(w) * size_t(h) * size_t(ch)));
        if (!data) {
            width = height = 0;
        }
    }
}

template <typename Sample>
FlexImageT<Sample>::~FlexImageT()
{
    freeData();
    delete metadata;
}

template <typename Sample>
void FlexImageT<Sample>::freeData()
{
    if (ownsData)
        std::free(data);
    data = nullptr;
    ownsData = true;
}

template <typename Sample>
void FlexImageT<Sample>::reset()
{
    freeData();
    delete metadata;
    metadata = nullptr;
    width = 0;
    height = 0;
}

template <typename Sample>
void FlexImageT<Sample>::fixChannels()
{
    if (channels <= 0)
        channels = 3;
    colorChannels = channels < 4 ? channels : 3;
}

template <typename Sample>
void FlexImageT<Sample>::allocate(int32_t w, int32_t h, int32_t ch)
{
    freeData();
    channels = ch;
    fixChannels();
    width = 0;
    height = 0;
    if (!sizeFits(w, h, channels))
        return;
    data = static_cast<Sample*>(std::malloc(sizeof(Sample) * size_t(w) * size_t(h) * size_t(channels)));
    if (!data)
        return;
    width = w;
    height = h;
}

template <typename Sample>
void FlexImageT<Sample>::wrap(Sample* buffer, int32_t w, int32_t h, int32_t ch)
{
    freeData();
    data = buffer;
    ownsData = false;
    width = w;
    height = h;
    channels = ch;
    fixChannels();
}

template <typename Sample>
void FlexImageT<Sample>::resize(int32_t w, int32_t h, int32_t ch)
{
    fixChannels();
    if (w < 0)
        w = width;
    if (h < 0)
        h = height;
    if (ch < 0)
        ch = channels;
    if (w == width && h == height && ch == channels && (data || w < 1 || h < 1))
        return;
    allocate(w, h, ch);
    if (data && channels == 4) {
        // Row-parallel: this is also the first touch of a fresh buffer, so its page faults spread
        // over the workers instead of stalling one thread.
        Sample* base = data;
        const int32_t rowWidth = width;
        parallelForRanges(height, [=](int32_t begin, int32_t end) {
            Sample* p = base + int64_t(begin) * rowWidth * 4;
            const int64_t n = int64_t(end - begin) * rowWidth;
            for (int64_t i = 0; i < n; ++i)
                p[i * 4 + 3] = opaque;
        });
    }
}

template <typename Sample>
template <typename Src>
void FlexImageT<Sample>::copyPixels(const FlexImageT<Src>& src)
{
    const int32_t dc = channels;
    const int32_t sc = src.channels;
    const int32_t n = std::min(dc, sc);
    const int32_t w = width;
    const bool fillAlpha = dc == 4;
    const bool copyAlpha = dc == 4 && sc == 4;
    Sample* dst = data;
    const Src* s = src.data;
    parallelFor(height, [=](int32_t y) {
        Sample* d = dst + int64_t(dc) * (int64_t(y) * w);
        const Src* r = s + int64_t(sc) * (int64_t(y) * w);
        if constexpr (std::is_same_v<Sample, Src>) {
            if (dc == sc) {
                std::memcpy(d, r, sizeof(Sample) * size_t(w) * size_t(dc));
                return;
            }
        }
        for (int32_t x = 0; x < w; ++x, d += dc, r += sc) {
            if (fillAlpha)
                d[3] = opaque;
            for (int32_t c = 0; c < n; ++c)
                d[c] = convertSample<Sample>(r[c]);
            if (copyAlpha)
                d[3] = convertSample<Sample>(r[3]);
        }
    });
}

template <typename Sample>
void FlexImageT<Sample>::copyFrom(const FlexImageT& src, bool matchChannels)
{
    copyFromOtherDepth(src, matchChannels);
}

template <typename Sample>
template <typename Other>
void FlexImageT<Sample>::copyFromOtherDepth(const FlexImageT<Other>& src, bool matchChannels)
{
    fixChannels();
    const bool keep = data && src.width == width && src.height == height
        && (!matchChannels || src.channels == channels);
    if (!keep)
        allocate(src.width, src.height, matchChannels ? src.channels : channels);
    if (data && src.data)
        copyPixels(src);
    marginLeft = src.marginLeft;
    marginRight = src.marginRight;
    marginTop = src.marginTop;
    marginBottom = src.marginBottom;
    scale = src.scale;
}

template <typename Sample>
void FlexImageT<Sample>::resampleFrom(const FlexImageT& src)
{
    if (!data || !src.data || width < 1 || height < 1)
        return;
    const float ratioX = float(src.width) / float(width);
    const float ratioY = float(src.height) / float(height);
    const int32_t offX = int32_t(ratioX * 0.5f);
    const float offY = float(int32_t(ratioY * 0.5f));
    const int32_t dc = channels;
    const int32_t sc = src.channels;
    const int32_t n = std::min(dc, sc);
    const int32_t dw = width;
    const int32_t sw = src.width;
    const int32_t sh = src.height;
    Sample* dst = data;
    const Sample* s = src.data;
    parallelFor(height, [=](int32_t y) {
        const int32_t sy = std::min(int32_t(float(y) * ratioY + offY), sh - 1);
        const Sample* srow = s + int64_t(sc) * (int64_t(sy) * sw);
        Sample* d = dst + int64_t(dc) * (int64_t(y) * dw);
        for (int32_t x = 0; x < dw; ++x, d += dc) {
            const int32_t sx = std::min(int32_t(float(x) * ratioX) + offX, sw - 1);
            const Sample* p = srow + int64_t(sx) * sc;
            if (dc == 3 && sc == 3) {
                d[0] = p[0];
                d[1] = p[1];
                d[2] = p[2];
            } else if (dc == 4 && sc == 4) {
                d[0] = p[0];
                d[1] = p[1];
                d[2] = p[2];
                d[3] = p[3];
            } else {
                for (int32_t c = 0; c < n; ++c)
                    d[c] = p[c];
            }
        }
    });
    marginLeft = int32_t(float(src.marginLeft) * (1.0f / ratioX));
    marginRight = int32_t(float(src.marginRight) * (1.0f / ratioX));
    marginTop = int32_t(float(src.marginTop) * (1.0f / ratioY));
    marginBottom = int32_t(float(src.marginBottom) * (1.0f / ratioY));
}

template class FlexImageT<uint8_t>;
template class FlexImageT<float>;
template void FlexImageT<uint8_t>::copyFromOtherDepth<float>(const FlexImageT<float>&, bool);
template void FlexImageT<float>::copyFromOtherDepth<uint8_t>(const FlexImageT<uint8_t>&, bool);
