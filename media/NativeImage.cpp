#include "media/NativeImage.h"

#include "core/SafeFileWriter.h"
#include "media/CompactImage.h"
#include "media/MediaMemoryCeiling.h"
#include "media/MediaPixelCopy.h"

#include <QFile>
#include <QStandardPaths>
#include <QString>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr char kMagic[12] = {'R', 'G', 'B', 'A', '8', 'X', 'X', 'X', 'X', 'X', 'X', 'X'};
constexpr int64_t kHeaderSize = 20;

void putLE32(uint8_t* p, uint32_t v)
{
    p[0] = uint8_t(v);
    p[1] = uint8_t(v >> 8);
    p[2] = uint8_t(v >> 16);
    p[3] = uint8_t(v >> 24);
}

uint32_t getLE32(const uint8_t* p)
{
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

// A float sample as its low byte, as a plain float-to-integer conversion leaves it (300 -> 44).
static inline uint8_t nativeByte(float v) { return uint8_t(truncateToBits(v) & 0xff); }
static inline uint8_t nativeByte(uint8_t v) { return v; }

// Writes header and rows; fillRow(y, rgba) supplies 4 * width bytes.
template <typename FillRow>
bool writeFile(const std::string& path, int32_t width, int32_t height, FillRow fillRow)
{
    if (width < 0 || height < 0)
        return false;
    SafeFileWriter file;
    if (!file.open(path, ".vni"))
        return false;
    uint8_t header[kHeaderSize];
    std::memcpy(header, kMagic, sizeof kMagic);
    putLE32(header + 12, uint32_t(width));
    putLE32(header + 16, uint32_t(height));
    bool ok = file.write(header, kHeaderSize);
    std::vector<uint8_t> row(size_t(width) * 4);
    for (int32_t y = 0; ok && y < height; ++y) {
        fillRow(y, row.data());
        ok = file.write(row.data(), row.size());
    }
    return ok && file.commit(); // an uncommitted writer removes its temporary file
}

template <typename T>
bool writeImage(const FlexImageT<T>& image, const std::string& path, int32_t mode)
{
    if (mode > 1)
        return false;
    const int32_t w = image.data ? image.width : 0;
    const int32_t h = image.data ? image.height : 0;
    const int32_t c = image.channels;
    return writeFile(path, w, h, [&](int32_t y, uint8_t* out) {
        std::memset(out, 255, size_t(w) * 4);
        if (c <= 0)
            return;
        const T* src = image.row(y);
        const int32_t n = std::min(c, 4);
        for (int32_t x = 0; x < w; ++x)
            for (int32_t k = 0; k < n; ++k)
                out[x * 4 + k] = nativeByte(src[int64_t(x) * c + k]);
    });
}

// Opens and checks the header. False for a wrong magic or a zero size.
bool readHeader(QFile& file, const std::string& path, uint32_t& width, uint32_t& height)
{
    file.setFileName(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    uint8_t header[kHeaderSize];
    if (file.read(reinterpret_cast<char*>(header), 12) != 12 || std::memcmp(header, kMagic, 12) != 0)
        return false;
    // A short header reads as 255s, like the pixels past the end.
    std::memset(header + 12, 255, 8);
    file.read(reinterpret_cast<char*>(header + 12), 8);
    width = getLE32(header + 12);
    height = getLE32(header + 16);
    return width != 0 && height != 0;
}

// Reads one row of 4 * width bytes; what the file lacks is 255.
void readRow(QFile& file, uint8_t* row, int64_t bytes)
{
    const qint64 got = file.atEnd() ? 0 : file.read(reinterpret_cast<char*>(row), bytes);
    const int64_t have = got > 0 ? got : 0;
    if (have < bytes)
        std::memset(row + have, 255, size_t(bytes - have));
}

template <typename T>
bool readImage(const std::string& path, FlexImageT<T>& image)
{
    QFile file;
    uint32_t w = 0, h = 0;
    if (!readHeader(file, path, w, h))
        return false;
    int32_t c = image.channels < 1 ? 3 : image.channels;
    // The document's float copy has up to 4 channels: refuse what it could not address.
    if (!FlexImageT<T>::sizeFits(w, h, c) || !FlexImageFloat::sizeFits(w, h, 4) || !mediaSizeWithinMemoryCeiling(w, h))
        return false;
    if (image.data == nullptr || image.width != int32_t(w) || image.height != int32_t(h) || image.channels != c)
        image.resize(int32_t(w), int32_t(h), c); // a new 4-channel image starts opaque
    if (image.isEmpty())
        return false;
    std::vector<uint8_t> row(size_t(w) * 4);
    const int32_t n = std::min(c, 4);
    for (int32_t y = 0; y < int32_t(h); ++y) {
        readRow(file, row.data(), int64_t(row.size()));
        T* dst = image.row(y);
        for (int32_t x = 0; x < int32_t(w); ++x)
            for (int32_t k = 0; k < n; ++k)
                dst[int64_t(x) * c + k] = T(row[size_t(x) * 4 + k]);
    }
    return true;
}

} // namespace

bool WriteNativeImage(const FlexImage8& image, const std::string& path, int32_t mode)
{
    return writeImage(image, path, mode);
}

bool WriteNativeImage(const FlexImageFloat& image, const std::string& path, int32_t mode)
{
    return writeImage(image, path, mode);
}

bool WriteNativeImage(const CompactImage& image, const std::string& path)
{
    if (image.isEmpty())
        return false;
    const int32_t w = image.width;
    return writeFile(path, w, image.height, [&](int32_t y, uint8_t* out) {
        for (int32_t x = 0; x < w; ++x) {
            uint16_t px[4];
            image.pixel(x, y, px);
            for (int k = 0; k < 4; ++k)
                out[x * 4 + k] = uint8_t(px[k] >> 8);
        }
    });
}

bool ReadNativeImage(const std::string& path, FlexImage8& image)
{
    return readImage(path, image);
}

bool ReadNativeImage(const std::string& path, FlexImageFloat& image)
{
    return readImage(path, image);
}

bool ReadNativeImage(const std::string& path, CompactImage& image)
{
    QFile file;
    uint32_t w = 0, h = 0;
    if (!readHeader(file, path, w, h))
        return false;
    if (!FlexImageFloat::sizeFits(w, h, 4) || !mediaSizeWithinMemoryCeiling(w, h) ||
        !image.allocate(int32_t(w), int32_t(h), CompactImage::RGBA, false))
        return false;
    for (int32_t y = 0; y < int32_t(h); ++y)
        readRow(file, image.row8(y), int64_t(image.rowBytes()));
    return true;
}

std::string displayImageDataPath()
{
    return (QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/com.vantrel.photo/DisplayImage.dat")
        .toStdString();
}
