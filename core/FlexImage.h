#pragma once
#include <cstdint>
#include <string>

// Anything a caller wants to carry along with an image; freed with it.
class FlexImageMetadata {
public:
    virtual ~FlexImageMetadata() = default;
};

// Interleaved raster, top row first, rows without padding. Samples are on a 0..255 scale in both
// depths. width * height * channels must fit in 31 bits; larger sizes are refused (data stays null).
template <typename Sample>
class FlexImageT {
public:
    using SampleType = Sample;
    static constexpr Sample opaque = Sample(255);

    Sample* data = nullptr;
    int32_t width = 0;
    int32_t height = 0;
    int32_t channels = 3;
    int32_t colorChannels = 3;
    bool ownsData = true;
    std::string name;
    int32_t marginLeft = 0;
    int32_t marginRight = 0;
    int32_t marginTop = 0;
    int32_t marginBottom = 0;
    float scale = 1.0f;
    FlexImageMetadata* metadata = nullptr;

    FlexImageT() = default;
    FlexImageT(int32_t w, int32_t h, int32_t ch);
    ~FlexImageT();
    FlexImageT(const FlexImageT&) = delete;
    FlexImageT& operator=(const FlexImageT&) = delete;

    // True when a buffer of this shape can be addressed with 32-bit sample indices.
    static bool sizeFits(int64_t w, int64_t h, int64_t ch);

    void reset();
    void resize(int32_t w, int32_t h, int32_t ch = -1);
    void copyFrom(const FlexImageT& src, bool matchChannels);
    template <typename Other>
    void copyFromOtherDepth(const FlexImageT<Other>& src, bool matchChannels);
    void resampleFrom(const FlexImageT& src);

    // Wraps a buffer owned elsewhere; the record will not free it.
    void wrap(Sample* buffer, int32_t w, int32_t h, int32_t ch);

    Sample* row(int32_t y) { return data + int64_t(channels) * (int64_t(y) * width); }
    const Sample* row(int32_t y) const { return data + int64_t(channels) * (int64_t(y) * width); }
    int64_t sampleCount() const { return int64_t(width) * height * channels; }
    bool isEmpty() const { return data == nullptr || width < 1 || height < 1; }

private:
    void freeData();
    void allocate(int32_t w, int32_t h, int32_t ch);
    void fixChannels();
    template <typename Src>
    void copyPixels(const FlexImageT<Src>& src);
};

using FlexImage8 = FlexImageT<uint8_t>;
using FlexImageFloat = FlexImageT<float>;

extern template class FlexImageT<uint8_t>;
extern template class FlexImageT<float>;
extern template void FlexImageT<uint8_t>::copyFromOtherDepth<float>(const FlexImageT<float>&, bool);
extern template void FlexImageT<float>::copyFromOtherDepth<uint8_t>(const FlexImageT<uint8_t>&, bool);
