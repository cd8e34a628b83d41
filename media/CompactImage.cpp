#include "media/CompactImage.h"

#include "core/FlexImage.h"
#include "media/LargeBuffer.h"

#include <cstdlib>
#include <utility>

CompactImage::~CompactImage()
{
    std::free(data);
}

CompactImage::CompactImage(CompactImage&& other) noexcept
{
    *this = std::move(other);
}

CompactImage& CompactImage::operator=(CompactImage&& other) noexcept
{
    if (this != &other) {
        std::free(data);
        width = other.width;
        height = other.height;
        channels = other.channels;
        colourChannels = other.colourChannels;
        data = other.data;
        is16Bit = other.is16Bit;
        layout = other.layout;
        other.data = nullptr;
        other.width = other.height = other.channels = 0;
    }
    return *this;
}

int32_t CompactImage::channelsOfLayout(int32_t layoutCode)
{
    switch (layoutCode) {
    case RGBA: return 4;
    case RGB: return 3;
    case Grey: return 1;
    default: return 0;
    }
}

void CompactImage::reset()
{
    std::free(data);
    data = nullptr;
    width = height = channels = 0;
}

bool CompactImage::allocate(int32_t w, int32_t h, int32_t layoutCode, bool sixteenBit)
{
    reset();
    const int32_t ch = channelsOfLayout(layoutCode);
    // The float copy always has 4 channels at most; refuse what it could not hold.
    if (ch == 0 || !FlexImageFloat::sizeFits(w, h, 4))
        return false;
    const size_t bytes = size_t(w) * size_t(h) * size_t(ch) * (sixteenBit ? 2 : 1);
    void* buffer = std::malloc(bytes);
    if (!buffer)
        return false;
    adviseLargeBuffer(buffer, bytes);
    return adopt(buffer, w, h, layoutCode, sixteenBit);
}

bool CompactImage::adopt(void* mallocBuffer, int32_t w, int32_t h, int32_t layoutCode, bool sixteenBit)
{
    reset();
    const int32_t ch = channelsOfLayout(layoutCode);
    if (!mallocBuffer || ch == 0 || w < 1 || h < 1) {
        std::free(mallocBuffer);
        return false;
    }
    data = mallocBuffer;
    width = w;
    height = h;
    channels = ch;
    colourChannels = 3;
    layout = layoutCode;
    is16Bit = sixteenBit ? 1 : 0;
    return true;
}

void CompactImage::pixel(int32_t x, int32_t y, uint16_t out[4]) const
{
    uint16_t s[4] = {0, 0, 0, 65535};
    const size_t at = size_t(x) * size_t(channels);
    for (int32_t c = 0; c < channels && c < 4; ++c)
        s[c] = is16Bit ? row16(y)[at + c] : uint16_t(row8(y)[at + c] * 257);
    if (layout == Grey) {
        s[1] = s[2] = s[0];
        s[3] = 65535;
    } else if (layout == RGB) {
        s[3] = 65535;
    }
    for (int i = 0; i < 4; ++i)
        out[i] = s[i];
}

void CompactImage::setPixel(int32_t x, int32_t y, uint8_t r, uint8_t g, uint8_t b, uint8_t a)
{
    const uint8_t v[4] = {r, g, b, a};
    const size_t at = size_t(x) * size_t(channels);
    for (int32_t c = 0; c < channels && c < 4; ++c) {
        if (is16Bit)
            row16(y)[at + c] = uint16_t(v[c] * 257);
        else
            row8(y)[at + c] = v[c];
    }
}
