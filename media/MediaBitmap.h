#pragma once
#include <cstdint>
#include <cstdlib>

// How a decoded bitmap carries alpha, with the codes of the platform's alpha info.
enum MediaAlphaInfo : int32_t {
    MediaAlphaNone = 0,
    MediaAlphaPremultipliedLast = 1,
    MediaAlphaPremultipliedFirst = 2,
    MediaAlphaLast = 3,
    MediaAlphaFirst = 4,
    MediaAlphaNoneSkipLast = 5,
    MediaAlphaNoneSkipFirst = 6,
    MediaAlphaOnly = 7,
};

// A bitmap as the codec seam decodes it: stored orientation (not yet upright), interleaved RGB
// samples of 8 or 16 bits with rows `bytesPerRow` apart, in a malloc'd buffer it owns.
struct MediaBitmap {
    void* data = nullptr;
    int32_t width = 0;
    int32_t height = 0;
    int32_t bitsPerComponent = 8;
    int32_t bitsPerPixel = 24;
    int64_t bytesPerRow = 0;
    int32_t alphaInfo = MediaAlphaNone;

    MediaBitmap() = default;
    ~MediaBitmap() { std::free(data); }
    MediaBitmap(const MediaBitmap&) = delete;
    MediaBitmap& operator=(const MediaBitmap&) = delete;

    int32_t samplesPerPixel() const { return bitsPerComponent > 0 ? bitsPerPixel / bitsPerComponent : 0; }
    const uint8_t* row(int32_t y) const { return static_cast<const uint8_t*>(data) + y * bytesPerRow; }
    // Hands the buffer over; the bitmap is empty afterwards.
    void* release()
    {
        void* d = data;
        data = nullptr;
        return d;
    }
};

// Alpha infos whose samples are premultiplied, and whose alpha (or padding) comes first.
inline bool mediaAlphaIsPremultiplied(int32_t info) { return info == MediaAlphaPremultipliedLast || info == MediaAlphaPremultipliedFirst; }
inline bool mediaAlphaIsFirst(int32_t info)
{
    return info == MediaAlphaPremultipliedFirst || info == MediaAlphaFirst || info == MediaAlphaNoneSkipFirst;
}
// Alpha infos that carry a real alpha sample (the padding variants don't).
inline bool mediaAlphaIsPresent(int32_t info)
{
    return info == MediaAlphaPremultipliedLast || info == MediaAlphaPremultipliedFirst || info == MediaAlphaLast
        || info == MediaAlphaFirst || info == MediaAlphaOnly;
}
