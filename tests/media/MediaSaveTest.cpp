#include "TestData.h"

#include "desktop_only/MediaCodec.h"
#include "desktop_only/MediaLoading.h"
#include "desktop_only/MultiImageLoaderSaver.h"
#include "media/BuiltinIccProfiles.h"
#include "media/MultiImageLoaderSaverMetadata.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace {

// The first entry of the first quantisation table of a JPEG (1 at quality 100).
int firstQuantiser(const std::vector<uint8_t>& jpeg)
{
    for (size_t i = 2; i + 5 < jpeg.size(); ++i)
        if (jpeg[i] == 0xFF && jpeg[i + 1] == 0xDB)
            return (jpeg[i + 4] >> 4) ? (jpeg[i + 5] << 8 | jpeg[i + 6]) : jpeg[i + 5];
    return -1;
}

void gradient(FlexImageFloat& img, int w, int h, int channels)
{
    img.resize(w, h, channels);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            float* px = img.row(y) + x * channels;
            px[0] = float(x) * 255.0f / float(w - 1);
            px[1] = float(y) * 255.0f / float(h - 1);
            px[2] = 100.25f;
            if (channels == 4)
                px[3] = 255.0f;
        }
}

// A folder to save into, the picture to save and what its load left.
class MediaSaveTest : public ::testing::Test {
protected:
    bool load(const std::string& path)
    {
        img.resize(100, 100, 4);
        return LoadMediaFile(img, path, &info);
    }

    TempFolder folder;
    FlexImageFloat img;
    LoadedMediaInfo info;
};

} // namespace

TEST_F(MediaSaveTest, JpegQualityReachesTheEncoder)
{
    gradient(img, 64, 48, 3);
    ASSERT_TRUE(saveRenderedMediaFile(img, info, folder.path("q100.jpg"), 100.0f));
    ASSERT_TRUE(saveRenderedMediaFile(img, info, folder.path("q0.JPG"), 0.0f));
    ASSERT_TRUE(saveRenderedMediaFile(img, info, folder.path("q85.jpeg"), 85.0f));
    EXPECT_EQ(firstQuantiser(readFileBytes(folder.path("q100.jpg"))), 1);
    EXPECT_GE(firstQuantiser(readFileBytes(folder.path("q0.JPG"))), 200);
    const int q85 = firstQuantiser(readFileBytes(folder.path("q85.jpeg")));
    EXPECT_EQ(q85, 5); // 16 * (200 - 2 * 85) / 100, the standard scaling
    EXPECT_EQ(folder.entryCount(), 3); // no temporary left behind
}

TEST_F(MediaSaveTest, OpaqueRgbaSavesAsRgbAndTranslucentKeepsAlpha)
{
    gradient(img, 20, 10, 4);
    ASSERT_TRUE(saveRenderedMediaFile(img, info, folder.path("opaque.png"), 100.0f));
    MediaDecoded d;
    ASSERT_EQ(decodeMediaFile(folder.path("opaque.png"), d, false), MediaCodecStatus::Ok);
    EXPECT_EQ(d.bitmap.samplesPerPixel(), 3);
    EXPECT_EQ(d.bitmap.alphaInfo, MediaAlphaNone);

    img.row(5)[7 * 4 + 3] = 128.0f;
    ASSERT_TRUE(saveRenderedMediaFile(img, info, folder.path("alpha.png"), 100.0f));
    MediaDecoded a;
    ASSERT_EQ(decodeMediaFile(folder.path("alpha.png"), a, false), MediaCodecStatus::Ok);
    EXPECT_EQ(a.bitmap.samplesPerPixel(), 4);
    EXPECT_EQ(a.bitmap.row(5)[7 * 4 + 3], 128);
    // Opaque pixels come back exactly: 8 bits take the high byte of truncate(v * 257).
    EXPECT_EQ(a.bitmap.row(0)[1 * 4], uint8_t((int(img.row(0)[4] * 257.0) & 0xffff) >> 8));
}

TEST_F(MediaSaveTest, JpegDropsAlphaAndWritersAreKnownByExtension)
{
    gradient(img, 16, 16, 4);
    img.data[3] = 0.0f;
    ASSERT_TRUE(saveRenderedMediaFile(img, info, folder.path("a.jpg"), 100.0f));
    MediaDecoded d;
    ASSERT_EQ(decodeMediaFile(folder.path("a.jpg"), d, false), MediaCodecStatus::Ok);
    EXPECT_EQ(d.bitmap.samplesPerPixel(), 3);
    EXPECT_NEAR(d.bitmap.row(8)[8 * 3 + 2], 100, 2); // colour read at the right stride
    EXPECT_TRUE(canEncodeMediaPath("x.jpg"));
    EXPECT_TRUE(canEncodeMediaPath("x.TIFF"));
    EXPECT_TRUE(canEncodeMediaPath("x.png"));
    EXPECT_FALSE(canEncodeMediaPath("x.xyz"));
}

TEST_F(MediaSaveTest, SixteenBitPngAndTiffRoundTripExactly)
{
    gradient(img, 300, 7, 3);
    info.bitsPerComponent = 16;
    for (const char* name : {"deep.png", "deep.tif"}) {
        ASSERT_TRUE(saveRenderedMediaFile(img, info, folder.path(name), 100.0f)) << name;
        MediaDecoded d;
        ASSERT_EQ(decodeMediaFile(folder.path(name), d, false), MediaCodecStatus::Ok) << name;
        ASSERT_EQ(d.bitmap.bitsPerComponent, 16) << name;
        const uint16_t* row = reinterpret_cast<const uint16_t*>(d.bitmap.row(3));
        for (int x = 0; x < 300; ++x)
            ASSERT_EQ(row[x * 3], uint16_t(img.row(3)[x * 3] * 257.0)) << name << " x " << x;
        EXPECT_EQ(row[2], uint16_t(100.25 * 257.0)); // 25764: a level 8 bits can't hold
        FlexImageFloat back(1, 1, 3);
        LoadedMediaInfo backInfo;
        ASSERT_TRUE(LoadMediaFile(back, folder.path(name), &backInfo));
        EXPECT_EQ(backInfo.bitsPerComponent, 16);
        EXPECT_NEAR(back.row(3)[2], 100.25f, 0.004f) << name;
    }
}

TEST_F(MediaSaveTest, CameraMetadataSurvivesWhileOrientationAndSizeGo)
{
    REQUIRE_TESTDATA(panasonic, "panasonic_gf1_orientation6.jpg");
    ASSERT_TRUE(load(panasonic));
    ASSERT_TRUE(info.properties);
    for (const char* name : {"upright.jpg", "upright.png", "upright.tif"}) {
        const std::string out = folder.path(name);
        ASSERT_TRUE(saveRenderedMediaFile(img, info, out, 90.0f)) << name;
        std::unique_ptr<MediaProperties> props = readMediaProperties(out);
        ASSERT_TRUE(props) << name;
        EXPECT_EQ(props->value("Exif.Image.Make"), info.properties->value("Exif.Image.Make")) << name;
        EXPECT_EQ(props->value("Exif.Image.Model"), "DMC-GF1") << name;
        EXPECT_EQ(props->value("Exif.Photo.DateTimeOriginal"), info.properties->value("Exif.Photo.DateTimeOriginal"));
        EXPECT_FALSE(props->has("Exif.Image.Orientation")) << name;
        EXPECT_FALSE(props->has("Exif.Photo.PixelXDimension")) << name;
        EXPECT_FALSE(props->has("Exif.Photo.ColorSpace")) << name;
        int makerKeys = 0;
        for (const std::string& k : props->keys())
            makerKeys += k.rfind("Exif.Panasonic.", 0) == 0;
        EXPECT_GT(makerKeys, 20) << name << ": the maker note was lost";
        MediaDecoded d;
        ASSERT_EQ(decodeMediaFile(out, d, false), MediaCodecStatus::Ok);
        EXPECT_EQ(d.bitmap.width, 428) << name; // written upright, with no rotation flag
        EXPECT_EQ(d.bitmap.height, 640) << name;
        EXPECT_EQ(d.orientation, 1) << name;
    }
}

TEST_F(MediaSaveTest, GpsAndLargeProfileSurviveAJpegRoundTrip)
{
    REQUIRE_TESTDATA(nikon, "nikon_d1x_large_icc_multichunk.jpg");
    ASSERT_TRUE(load(nikon));
    EXPECT_EQ(info.colorSpaceKind, ColorSpaceKind::Custom);
    ASSERT_GT(info.iccProfile.size(), 1000000u);
    const std::string out = folder.path("nikon.jpg");
    ASSERT_TRUE(saveRenderedMediaFile(img, info, out, 95.0f));
    std::unique_ptr<MediaProperties> props = readMediaProperties(out);
    ASSERT_TRUE(props);
    const std::unique_ptr<MediaProperties> source = readMediaProperties(nikon);
    int gps = 0;
    for (const std::string& k : source->keys())
        if (k.rfind("Exif.GPSInfo.", 0) == 0) {
            ++gps;
            EXPECT_EQ(props->value(k), source->value(k)) << k;
        }
    EXPECT_GT(gps, 0);
    // The source's preview of the old picture isn't carried into the new file.
    EXPECT_TRUE(source->has("Exif.Thumbnail.JPEGInterchangeFormat"));
    EXPECT_FALSE(props->has("Exif.Thumbnail.JPEGInterchangeFormat"));
    EXPECT_EQ(props->value("Exif.Image.Model"), "NIKON D1X");
    MediaDecoded d;
    ASSERT_EQ(decodeMediaFile(out, d, false), MediaCodecStatus::Ok);
    ASSERT_EQ(d.iccProfile.size(), info.iccProfile.size());
    size_t firstDiff = 0;
    while (firstDiff < d.iccProfile.size() && d.iccProfile[firstDiff] == info.iccProfile[firstDiff])
        ++firstDiff;
    EXPECT_EQ(firstDiff, info.iccProfile.size());
}

TEST_F(MediaSaveTest, UntaggedPngWithoutMetadataSavesWithoutAny)
{
    REQUIRE_TESTDATA(tulips, "tulips_rgba_500px.png");
    ASSERT_TRUE(load(tulips));
    EXPECT_FALSE(info.properties);
    ASSERT_TRUE(saveRenderedMediaFile(img, info, folder.path("t.png"), 100.0f));
    EXPECT_FALSE(readMediaProperties(folder.path("t.png")));
    MediaDecoded d;
    ASSERT_EQ(decodeMediaFile(folder.path("t.png"), d, false), MediaCodecStatus::Ok);
    EXPECT_EQ(d.iccProfile, info.iccProfile); // the file's own sRGB tag travels on
}

TEST_F(MediaSaveTest, FailedSaveLeavesTheTargetAndNoTemporary)
{
    gradient(img, 8, 8, 3);
    // A target that can't be replaced: a folder in its place.
    const std::string blocked = folder.path("blocked.jpg");
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(blocked + "/inside")));
    EXPECT_FALSE(saveRenderedMediaFile(img, info, blocked, 90.0f));
    EXPECT_TRUE(QDir(QString::fromStdString(blocked + "/inside")).exists());
    // An extension no writer takes, over an existing file.
    const std::string existing = folder.path("keep.xyz");
    writeFileBytes(existing, {'p', 'r', 'e', 'c', 'i', 'o', 'u', 's'});
    EXPECT_FALSE(saveRenderedMediaFile(img, info, existing, 90.0f));
    EXPECT_EQ(readFileBytes(existing), std::vector<uint8_t>({'p', 'r', 'e', 'c', 'i', 'o', 'u', 's'}));
    EXPECT_EQ(folder.entryCount(), 1);
    EXPECT_FALSE(saveRenderedMediaFile(img, info, "/nonexistent-folder/x.png", 90.0f));
    FlexImageFloat empty;
    EXPECT_FALSE(saveRenderedMediaFile(empty, info, folder.path("e.png"), 90.0f));
}

TEST_F(MediaSaveTest, SaveMediaFileRendersThenWritesTheTileProfile)
{
    const std::string out = folder.path("rendered.png");
    std::string recorded;
    int askedWidth = 0;
    MediaSaveRenderer renderer;
    renderer.recordPath = [&](const std::string& p) { recorded = p; };
    renderer.renderFullSize = [&](FlexImageFloat& image, int32_t w, int32_t h) {
        askedWidth = w;
        gradient(image, w, h, 4);
        return true;
    };
    renderer.outputProfile = [](std::vector<uint8_t>& icc, ColorSpaceKind& kind) {
        icc = builtinIccProfile(ColorSpaceKind::AdobeRGB);
        kind = ColorSpaceKind::AdobeRGB;
        return true;
    };
    info.iccProfile = builtinIccProfile(ColorSpaceKind::SRGB);
    ASSERT_TRUE(SaveMediaFile(renderer, info, out, 33, 21, 100.0f));
    EXPECT_EQ(recorded, out);
    EXPECT_EQ(askedWidth, 33);
    MediaDecoded d;
    ASSERT_EQ(decodeMediaFile(out, d, false), MediaCodecStatus::Ok);
    EXPECT_EQ(d.bitmap.width, 33);
    EXPECT_EQ(d.iccProfile, builtinIccProfile(ColorSpaceKind::AdobeRGB));
    // Pixels are not converted for the tag.
    EXPECT_EQ(d.bitmap.row(0)[32 * 3], 255);

    MediaSaveRenderer failing;
    failing.renderFullSize = [](FlexImageFloat&, int32_t, int32_t) { return false; };
    EXPECT_FALSE(SaveMediaFile(failing, info, folder.path("never.png"), 10, 10, 100.0f));
    EXPECT_FALSE(SaveMediaFile(MediaSaveRenderer {}, info, folder.path("never.png"), 10, 10, 100.0f));
}

TEST(MultiImageLoaderSaverTest, SideRouteKeepsPropertiesUnstrippedAndSavesBothDepths)
{
    REQUIRE_TESTDATA(path, "orientation_6.jpg");
    MultiImageLoaderSaver io;
    FlexImage8 img(1, 1, 4);
    ASSERT_TRUE(io.loadImage(path, img, false));
    EXPECT_EQ(img.width, 640);
    EXPECT_EQ(img.height, 400);
    EXPECT_EQ(img.row(0)[3], 255);
    auto* meta = dynamic_cast<MultiImageLoaderSaverMetadata*>(img.metadata);
    ASSERT_NE(meta, nullptr);
    EXPECT_EQ(meta->bitsPerComponent, 8);
    ASSERT_TRUE(meta->properties);
    EXPECT_EQ(meta->properties->value("Exif.Image.Orientation"), "6");
    std::unique_ptr<MultiImageLoaderSaverMetadata> copy(meta->clone());
    copy->stripForSaving();
    EXPECT_FALSE(copy->properties->has("Exif.Image.Orientation"));
    EXPECT_TRUE(meta->properties->has("Exif.Image.Orientation")); // the original is untouched

    TempFolder folder;
    meta->stripForSaving();
    io.saveBitMode = 1;
    ASSERT_TRUE(io.saveImage(folder.path("side16.png"), img, false, 100.0f));
    MediaDecoded d;
    ASSERT_EQ(decodeMediaFile(folder.path("side16.png"), d, false), MediaCodecStatus::Ok);
    EXPECT_EQ(d.bitmap.bitsPerComponent, 16);
    EXPECT_EQ(reinterpret_cast<const uint16_t*>(d.bitmap.row(0))[0], img.row(0)[0] * 257);
    std::unique_ptr<MediaProperties> props = readMediaProperties(folder.path("side16.png"));
    ASSERT_TRUE(props);
    EXPECT_EQ(props->value("Exif.Image.Make"), "Nokia");

    io.saveBitMode = 0;
    FlexImageFloat f(1, 1, 3);
    ASSERT_TRUE(io.loadImage(folder.path("side16.png"), f, false));
    ASSERT_TRUE(io.saveImage(folder.path("side.vni"), f, false, 100.0f));
    FlexImage8 back(1, 1, 4);
    ASSERT_TRUE(io.loadImage(folder.path("side.vni"), back, false));
    EXPECT_EQ(back.width, 640);
    EXPECT_EQ(back.row(7)[4 * 9 + 1], img.row(7)[4 * 9 + 1]);
    EXPECT_FALSE(io.loadImage(folder.path("missing.png"), back, false));
    EXPECT_EQ(back.width, 640);
}
