#include "TestData.h"

#include "desktop_only/MediaLoading.h"
#include "desktop_only/MultiImageLoaderSaver.h"
#include "media/CompactImage.h"
#include "media/NativeImage.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace {

std::vector<uint8_t> header(uint32_t w, uint32_t h, const char* magic = "RGBA8XXXXXXX")
{
    std::vector<uint8_t> b(magic, magic + 12);
    for (uint32_t v : {w, h})
        for (int i = 0; i < 4; ++i)
            b.push_back(uint8_t(v >> (8 * i)));
    return b;
}

// A whole file: the header and then the given pixel bytes.
std::vector<uint8_t> fileOf(uint32_t w, uint32_t h, std::initializer_list<uint8_t> pixels)
{
    std::vector<uint8_t> b = header(w, h);
    b.insert(b.end(), pixels);
    return b;
}

} // namespace

TEST(NativeImageTest, FloatSamplesWriteTheirLowByte)
{
    TempFolder folder;
    FlexImageFloat img(3, 1, 3);
    const float v[9] = {300.0f, -1.0f, 12.9f, 255.0f, 0.0f, 256.0f, 1.5f, 2.5f, 3.5f};
    std::memcpy(img.data, v, sizeof v);
    const std::string path = folder.path("f.vni");
    ASSERT_TRUE(WriteNativeImage(img, path));
    EXPECT_EQ(readFileBytes(path), fileOf(3, 1, {44, 255, 12, 255, 255, 0, 0, 255, 1, 2, 3, 255}));
    EXPECT_FALSE(WriteNativeImage(img, folder.path("g.vni"), 2)); // unknown mode
}

TEST(NativeImageTest, ChannelCountsOnWrite)
{
    TempFolder folder;
    FlexImage8 one(2, 1, 1);
    one.data[0] = 9;
    one.data[1] = 10;
    ASSERT_TRUE(WriteNativeImage(one, folder.path("one.vni")));
    // Not spread over the colours.
    EXPECT_EQ(readFileBytes(folder.path("one.vni")), fileOf(2, 1, {9, 255, 255, 255, 10, 255, 255, 255}));

    FlexImage8 none(2, 2, 3);
    none.channels = 0;
    ASSERT_TRUE(WriteNativeImage(none, folder.path("none.vni")));
    std::vector<uint8_t> white = header(2, 2);
    white.insert(white.end(), 16, 255);
    EXPECT_EQ(readFileBytes(folder.path("none.vni")), white);
}

TEST(NativeImageTest, ThreeChannelRoundTripAndCompactForms)
{
    TempFolder folder;
    FlexImage8 rgb(4, 3, 3);
    for (int i = 0; i < 36; ++i)
        rgb.data[i] = uint8_t(i * 7);
    const std::string path = folder.path("RGB.VNI");
    ASSERT_TRUE(WriteNativeImage(rgb, path));
    const std::vector<uint8_t> bytes = readFileBytes(path);
    EXPECT_EQ(bytes[20 + 3], 255); // alpha in the file
    FlexImage8 back(1, 1, 3);
    ASSERT_TRUE(ReadNativeImage(path, back));
    EXPECT_EQ(back.channels, 3); // and none in memory
    EXPECT_EQ(std::memcmp(back.data, rgb.data, 36), 0);

    // 16-bit compact: the high byte of each sample; grey spreads over three colours.
    CompactImage wide;
    ASSERT_TRUE(wide.allocate(2, 1, CompactImage::RGB, true));
    const uint16_t s[6] = {0x1234, 0xABCD, 0x00FF, 0xFFFF, 0x0100, 0x8000};
    std::memcpy(wide.data, s, sizeof s);
    ASSERT_TRUE(WriteNativeImage(wide, folder.path("wide.vni")));
    EXPECT_EQ(readFileBytes(folder.path("wide.vni")), fileOf(2, 1, {0x12, 0xAB, 0x00, 255, 0xFF, 0x01, 0x80, 255}));
    CompactImage grey;
    ASSERT_TRUE(grey.allocate(1, 1, CompactImage::Grey, false));
    grey.row8(0)[0] = 77;
    ASSERT_TRUE(WriteNativeImage(grey, folder.path("grey.vni")));
    EXPECT_EQ(readFileBytes(folder.path("grey.vni")), fileOf(1, 1, {77, 77, 77, 255}));

    CompactImage in;
    ASSERT_TRUE(ReadNativeImage(folder.path("wide.vni"), in));
    EXPECT_EQ(in.layout, CompactImage::RGBA);
    EXPECT_EQ(in.is16Bit, 0);
    EXPECT_EQ(in.row8(0)[1], 0xAB);
}

TEST(NativeImageTest, ShortFilesEndInWhiteAndBadHeadersFail)
{
    TempFolder folder;
    // 2 x 2 with one pixel of data: one pixel and three white ones.
    writeFileBytes(folder.path("short.vni"), fileOf(2, 2, {1, 2, 3, 4}));
    FlexImageFloat f(1, 1, 4);
    ASSERT_TRUE(ReadNativeImage(folder.path("short.vni"), f));
    ASSERT_EQ(f.width, 2);
    const float want[16] = {1, 2, 3, 4, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255};
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(f.data[i], want[i]) << i;

    FlexImage8 keep(1, 1, 3);
    keep.data[0] = 42;
    writeFileBytes(folder.path("w0.vni"), header(0, 5));
    EXPECT_FALSE(ReadNativeImage(folder.path("w0.vni"), keep));
    writeFileBytes(folder.path("lower.vni"), header(1, 1, "rgba8xxxxxxx"));
    EXPECT_FALSE(ReadNativeImage(folder.path("lower.vni"), keep));
    writeFileBytes(folder.path("empty.vni"), {});
    EXPECT_FALSE(ReadNativeImage(folder.path("empty.vni"), keep));
    // A header claiming more than can be addressed is refused before any allocation.
    writeFileBytes(folder.path("huge.vni"), header(100000, 100000));
    EXPECT_FALSE(ReadNativeImage(folder.path("huge.vni"), keep));
    CompactImage compact;
    EXPECT_FALSE(ReadNativeImage(folder.path("huge.vni"), compact));
    EXPECT_FALSE(ReadNativeImage(folder.path("missing.vni"), keep));
    EXPECT_EQ(keep.width, 1);
    EXPECT_EQ(keep.data[0], 42);
}

TEST(NativeImageTest, DocumentRouteLosesLowBytesOfSixteenBitDocuments)
{
    TempFolder folder;
    FlexImageFloat img(2, 1, 3);
    const float v[6] = {100.25f, 0.0f, 255.0f, 1.0f, 2.0f, 3.0f};
    std::memcpy(img.data, v, sizeof v);
    LoadedMediaInfo info;
    info.bitsPerComponent = 16;
    const std::string path = folder.path("doc.Vni");
    ASSERT_TRUE(saveRenderedMediaFile(img, info, path, 100.0f));
    FlexImageFloat back(100, 100, 3);
    LoadedMediaInfo backInfo;
    ASSERT_TRUE(LoadMediaFile(back, path, &backInfo));
    EXPECT_EQ(backInfo.bitsPerComponent, 8);
    EXPECT_EQ(backInfo.colorSpaceKind, ColorSpaceKind::None);
    EXPECT_FALSE(backInfo.properties);
    EXPECT_NEAR(back.data[0], 100.0f, 1e-3f);
    EXPECT_NEAR(back.data[2], 255.0f, 1e-3f);
}

TEST(NativeImageTest, DisplayImageDataIsNotDispatchedButReadsExplicitly)
{
    EXPECT_NE(displayImageDataPath().find("/com.vantrel.photo/DisplayImage.dat"), std::string::npos);
    TempFolder folder;
    const std::string path = folder.path("DisplayImage.dat");
    FlexImage8 img(5, 4, 4);
    for (int i = 0; i < 80; ++i)
        img.data[i] = uint8_t(i);
    ASSERT_TRUE(WriteNativeImage(img, path));
    FlexImageFloat viaLoader(100, 100, 4);
    MediaLoadStatus status;
    EXPECT_FALSE(LoadMediaFile(viaLoader, path, nullptr, &status));
    EXPECT_EQ(status, MediaLoadStatus::UnsupportedType);
    FlexImage8 back(1, 1, 4);
    ASSERT_TRUE(ReadNativeImage(path, back));
    EXPECT_EQ(std::memcmp(back.data, img.data, 80), 0);
}

// Found by fuzzing: the magic alone; the missing size bytes read as 255, so width and height are
// both 0xffffffff, whose product overflowed the size check. Such a file fails and leaves the
// destination as it was.
TEST(NativeImageTest, HeaderCutAfterTheMagicFails)
{
    TempFolder folder;
    const std::string path = folder.path("cut.vni");
    writeFileBytes(path, {0x52, 0x47, 0x42, 0x41, 0x38, 0x58, 0x58, 0x58, 0x58, 0x58, 0x58, 0x58, 0x00});
    FlexImage8 a(2, 3, 4);
    a.data[0] = 17;
    EXPECT_FALSE(ReadNativeImage(path, a));
    EXPECT_EQ(a.width, 2);
    EXPECT_EQ(a.height, 3);
    EXPECT_EQ(a.data[0], 17);
    FlexImageFloat f;
    EXPECT_FALSE(ReadNativeImage(path, f));
    CompactImage c;
    EXPECT_FALSE(ReadNativeImage(path, c));
    EXPECT_TRUE(c.isEmpty());

    writeFileBytes(path, header(0xffffffffu, 0xfffffff0u));
    EXPECT_FALSE(ReadNativeImage(path, f));
}

TEST(NativeImageTest, DamagedFilesNeverCrash)
{
    TempFolder folder;
    FlexImage8 img(7, 5, 4);
    for (int i = 0; i < 140; ++i)
        img.data[i] = uint8_t(i * 3);
    const std::string good = folder.path("DisplayImage.dat");
    ASSERT_TRUE(WriteNativeImage(img, good));
    const std::vector<uint8_t> bytes = readFileBytes(good);
    std::mt19937 rng(1234);
    const std::string bad = folder.path("bad.vni");
    for (int round = 0; round < 300; ++round) {
        std::vector<uint8_t> b = bytes;
        const size_t cut = rng() % (b.size() + 1);
        if (round % 3 == 0)
            b.resize(cut);
        // Damage the magic, the low bytes of the size and the pixels; big sizes are tested above.
        for (int k = 0; k < 4 && !b.empty(); ++k) {
            size_t at = rng() % b.size();
            if (at > 12 && at < 16)
                at = 12;
            if (at > 16 && at < 20)
                at = 16;
            b[at] ^= uint8_t(1 + rng() % 255);
        }
        writeFileBytes(bad, b);
        FlexImage8 a(1, 1, 4);
        FlexImageFloat f(1, 1, 3);
        CompactImage c;
        const bool okA = ReadNativeImage(bad, a);
        const bool okF = ReadNativeImage(bad, f);
        const bool okC = ReadNativeImage(bad, c);
        EXPECT_EQ(okA, okF);
        EXPECT_EQ(okA, okC);
        if (okA) {
            EXPECT_GT(a.width, 0);
            EXPECT_EQ(int64_t(a.width) * a.height, int64_t(c.width) * c.height);
        }
    }
}
