// A forged JPEG frame size behind damaged EXIF is refused from the frame header itself, before
// the JPEG library sets up buffers for it (found by the media fuzz target: a progressive
// 64250 x 64250 frame made the library fill gigabytes before our size check ran).
#include "tests/FaultInjection.h"

#include "desktop_only/MediaLoading.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <chrono>

namespace {

// Our own small JPEG with its frame made progressive and w x h, and a damaged EXIF block first.
std::string forgedJpeg(const std::string& folder, uint16_t w, uint16_t h, bool shortTable = false)
{
    FlexImageFloat img(16, 8, 3);
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        img.data[i] = float(i % 251);
    const std::string path = folder + "/base.jpg";
    if (!saveRenderedMediaFile(img, LoadedMediaInfo(), path, 80.0f))
        return {};
    std::string bytes = fault::slurp(path);
    const size_t sof = bytes.find("\xff\xc0", 2);
    if (sof == std::string::npos || sof + 9 > bytes.size())
        return {};
    bytes[sof + 1] = char(0xC2);
    // A table segment that claims 5 bytes fewer than it holds: the JPEG library skips the stray
    // bytes to the next marker and still finds the frame.
    const size_t dqt = bytes.find("\xff\xdb", 2);
    if (shortTable && dqt != std::string::npos && dqt < sof)
        bytes[dqt + 3] = char(uint8_t(bytes[dqt + 3]) - 5);
    bytes[sof + 5] = char(h >> 8);
    bytes[sof + 6] = char(h & 0xff);
    bytes[sof + 7] = char(w >> 8);
    bytes[sof + 8] = char(w & 0xff);
    const std::string exif = std::string("Exif\0\0MM\0\x2a\xff\xff\xff\xf0", 14) + std::string(8, '\0');
    std::string segment = "\xff\xe1";
    segment += char((exif.size() + 2) >> 8);
    segment += char((exif.size() + 2) & 0xff);
    bytes.insert(2, segment + exif);
    return bytes;
}

} // namespace

TEST(ForgedHeader, HugeProgressiveJpegBehindDamagedExifIsRefusedAsTooLarge)
{
    QTemporaryDir dir;
    const std::string folder = dir.path().toStdString();
    const std::string forged = forgedJpeg(folder, 64250, 64250);
    ASSERT_FALSE(forged.empty());
    const std::string path = folder + "/forged.jpg";
    fault::spill(path, forged);

    FlexImageFloat image(3, 2, 4);
    LoadedMediaInfo info;
    MediaLoadStatus status = MediaLoadStatus::Ok;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(LoadMediaFile(image, path, &info, &status));
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_EQ(status, MediaLoadStatus::TooLarge);
    EXPECT_EQ(mediaLoadFailureMessage(status, path).title, "Can't Load File");
    EXPECT_EQ(image.width, 3);
    EXPECT_EQ(image.height, 2);
    // Refused from the header: far below what filling the buffers takes under the sanitizers.
    EXPECT_LT(seconds, 5.0);

    // With a wrong table length in front of the frame (the second fuzz finding).
    fault::spill(path, forgedJpeg(folder, 64250, 64250, true));
    status = MediaLoadStatus::Ok;
    const auto again = std::chrono::steady_clock::now();
    EXPECT_FALSE(LoadMediaFile(image, path, &info, &status));
    EXPECT_EQ(status, MediaLoadStatus::TooLarge);
    EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - again).count(), 5.0);

    // The same forgery at a size within the ceiling is not refused for its size.
    fault::spill(path, forgedJpeg(folder, 64, 32));
    status = MediaLoadStatus::Ok;
    LoadMediaFile(image, path, nullptr, &status);
    EXPECT_NE(status, MediaLoadStatus::TooLarge);
}

// A box container whose file-type box claims four gigabytes kept the metadata reader looping over
// brands for minutes (found by the media fuzz target). Whatever the name says, it is turned down
// at once.
TEST(ForgedHeader, HugeFileTypeBoxIsTurnedDownAtOnce)
{
    QTemporaryDir dir;
    // The fuzzer's input cut to the first 80 bytes, which still hang the reader.
    const std::string box(
        "\xff\xff\xfa\x1c\x66\x74\x79\x70\x68\x65\x69\x63\x00\x00\x00\x00"
        "\x6d\x69\x66\x31\x68\x65\x69\x63\x6d\x69\x61\x66\x00\x00\x01\xe4"
        "\x6d\x65\x74\x61\x00\x00\x00\x00\x00\x00\x00\x21\x68\x64\x6c\x72"
        "\x00\x00\x00\x00\x00\x00\x00\x00\x70\x69\x63\x74\x00\x00\x00\x00"
        "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x0e\x70\x69\x74",
        80);
    for (const char* name : {"forged.heic", "forged.jpeg", "forged.png"}) {
        const std::string path = dir.filePath(name).toStdString();
        fault::spill(path, box);
        FlexImageFloat image(3, 2, 4);
        LoadedMediaInfo info;
        MediaLoadStatus status = MediaLoadStatus::Ok;
        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(LoadMediaFile(image, path, &info, &status)) << name;
        EXPECT_NE(status, MediaLoadStatus::Ok) << name;
        EXPECT_EQ(image.width, 3);
        EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 5.0) << name;
    }
}
