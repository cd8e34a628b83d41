#pragma once
#include <cstddef>
#include <cstdint>

// The decoded form of a file before the float copy: 8 or 16 bits a sample, interleaved, rows
// without padding, upright. It owns its buffer.
class CompactImage {
public:
    enum Layout : int32_t { RGBA = 0, RGB = 1, Grey = 2 };

    int32_t width = 0;
    int32_t height = 0;
    int32_t channels = 0;
    int32_t colourChannels = 3;
    void* data = nullptr;
    int32_t is16Bit = 0;
    int32_t layout = RGB;

    CompactImage() = default;
    ~CompactImage();
    CompactImage(const CompactImage&) = delete;
    CompactImage& operator=(const CompactImage&) = delete;
    CompactImage(CompactImage&& other) noexcept;
    CompactImage& operator=(CompactImage&& other) noexcept;

    // Allocates an uninitialised buffer. Refuses (returns false, stays empty) any size whose float
    // copy the pixel images could not address.
    bool allocate(int32_t w, int32_t h, int32_t layoutCode, bool sixteenBit);
    // Takes over a malloc'd buffer of the right size.
    bool adopt(void* mallocBuffer, int32_t w, int32_t h, int32_t layoutCode, bool sixteenBit);
    void reset();

    bool isEmpty() const { return data == nullptr || width < 1 || height < 1; }
    bool hasAlpha() const { return layout == RGBA; }
    size_t bytesPerSample() const { return is16Bit ? 2 : 1; }
    size_t rowBytes() const { return size_t(width) * size_t(channels) * bytesPerSample(); }
    size_t byteCount() const { return rowBytes() * size_t(height); }

    uint8_t* row8(int32_t y) { return static_cast<uint8_t*>(data) + size_t(y) * rowBytes(); }
    const uint8_t* row8(int32_t y) const { return static_cast<const uint8_t*>(data) + size_t(y) * rowBytes(); }
    uint16_t* row16(int32_t y) { return reinterpret_cast<uint16_t*>(row8(y)); }
    const uint16_t* row16(int32_t y) const { return reinterpret_cast<const uint16_t*>(row8(y)); }

    // Four 16-bit values: 8-bit samples times 257, grey repeated, 65535 alpha without an alpha channel.
    void pixel(int32_t x, int32_t y, uint16_t out[4]) const;
    // Four 8-bit values; a 16-bit image stores each times 257. Channels it lacks are ignored.
    void setPixel(int32_t x, int32_t y, uint8_t r, uint8_t g, uint8_t b, uint8_t a);

    static int32_t channelsOfLayout(int32_t layoutCode);
};
