#include "TestData.h"

#include "desktop_only/MediaCodec.h"
#include "desktop_only/MediaLoading.h"
#include "media/BuiltinIccProfiles.h"
#include "media/ColorTransformSet.h"
#include "media/MediaMemoryCeiling.h"

#include <gtest/gtest.h>
#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace {

// One load into a 100 x 100 image of the given channel count, as the editor calls it.
struct Loaded {
    Loaded() = default;
    explicit Loaded(const std::string& path, int32_t channels = 4) { load(path, channels); }
    void load(const std::string& path, int32_t channels = 4)
    {
        image.resize(100, 100, channels);
        ok = LoadMediaFile(image, path, &info, &status);
    }

    FlexImageFloat image {100, 100, 4};
    LoadedMediaInfo info;
    MediaLoadStatus status = MediaLoadStatus::Ok;
    bool ok = false;
};

double meanAbsDiff(const FlexImageFloat& a, const FlexImageFloat& b)
{
    double sum = 0;
    const int64_t n = int64_t(a.width) * a.height;
    for (int64_t i = 0; i < n; ++i)
        for (int c = 0; c < 3; ++c)
            sum += std::fabs(a.data[i * a.channels + c] - b.data[i * b.channels + c]);
    return sum / double(n * 3);
}

} // namespace

TEST(LoadMediaFileTest, EveryOrientationLoadsTheSameUprightPicture)
{
    REQUIRE_TESTDATA(reference, "orientation_1.jpg");
    Loaded ref(reference);
    ASSERT_TRUE(ref.ok);
    ASSERT_EQ(ref.image.width, 640);
    ASSERT_EQ(ref.image.height, 400);
    for (int o = 2; o <= 8; ++o) {
        const std::string name = "orientation_" + std::to_string(o) + ".jpg";
        REQUIRE_TESTDATA(path, name.c_str());
        Loaded l(path);
        ASSERT_TRUE(l.ok) << name;
        ASSERT_EQ(l.image.width, 640) << name;
        ASSERT_EQ(l.image.height, 400) << name;
        // Lossless transforms of one picture: only chroma upsampling differs.
        EXPECT_LT(meanAbsDiff(ref.image, l.image), 1.5) << name;
        // The orientation tag is gone from what a save would write.
        ASSERT_TRUE(l.info.properties);
        EXPECT_FALSE(l.info.properties->has("Exif.Image.Orientation")) << name;
        EXPECT_EQ(l.info.properties->value("Exif.Image.Make"), "Nokia") << name;
    }
}

TEST(LoadMediaFileTest, CameraOrientationReadFromExif)
{
    REQUIRE_TESTDATA(path, "panasonic_gf1_orientation6.jpg");
    Loaded l(path, 3);
    ASSERT_TRUE(l.ok);
    EXPECT_EQ(l.image.width, 428);
    EXPECT_EQ(l.image.height, 640);
    EXPECT_EQ(l.image.channels, 3);
    // The stored (unturned) bitmap: upright row 0 is stored column 0 read bottom to top.
    MediaDecoded raw;
    ASSERT_EQ(decodeMediaFile(path, raw, false), MediaCodecStatus::Ok);
    EXPECT_EQ(raw.orientation, 6);
    ASSERT_EQ(raw.bitmap.width, 640);
    const uint8_t* bottomLeft = raw.bitmap.row(427);
    for (int c = 0; c < 3; ++c)
        EXPECT_NEAR(l.image.data[c], bottomLeft[c], 0.01);
}

TEST(LoadMediaFileTest, SixteenBitSourcesKeepTheirLevels)
{
    for (const char* name : {"canon_eos30d_srgb_16bit_1200x800.tif", "canon_eos30d_adobergb_16bit_1200x800.png"}) {
        REQUIRE_TESTDATA(path, name);
        Loaded l(path);
        ASSERT_TRUE(l.ok) << name;
        EXPECT_EQ(l.info.bitsPerComponent, 16) << name;
        std::set<int> levels;
        int64_t fractional = 0;
        const int64_t n = int64_t(l.image.width) * l.image.height;
        for (int64_t i = 0; i < n; ++i) {
            const float v = l.image.data[i * 4 + 1];
            levels.insert(int(std::lround(v * 257.0f)));
            fractional += std::fabs(v - std::round(v)) > 0.01f;
        }
        EXPECT_GT(levels.size(), 256u) << name;
        EXPECT_GT(fractional, n / 4) << name;
        EXPECT_EQ(l.image.data[3], 255.0f);
    }
}

TEST(LoadMediaFileTest, AdobeRgbPngIsConvertedToSrgbThroughLittleCms)
{
    REQUIRE_TESTDATA(path, "canon_eos30d_adobergb_16bit_1200x800.png");
    Loaded l(path, 3);
    ASSERT_TRUE(l.ok);
    EXPECT_EQ(l.info.colorSpaceKind, ColorSpaceKind::AdobeRGB);
    EXPECT_EQ(l.info.profileName, "Adobe RGB");
    EXPECT_EQ(l.info.bitsPerComponent, 16);
    MediaDecoded raw;
    ASSERT_EQ(decodeMediaFile(path, raw, false), MediaCodecStatus::Ok);
    ASSERT_EQ(raw.bitmap.bitsPerComponent, 16);
    cmsHPROFILE file = cmsOpenProfileFromMem(raw.iccProfile.data(), cmsUInt32Number(raw.iccProfile.size()));
    const std::vector<uint8_t> srgb = builtinIccProfile(ColorSpaceKind::SRGB);
    cmsHPROFILE target = cmsOpenProfileFromMem(srgb.data(), cmsUInt32Number(srgb.size()));
    cmsHTRANSFORM xf = cmsCreateTransform(file, TYPE_RGB_16, target, TYPE_RGB_16, INTENT_PERCEPTUAL, 0);
    ASSERT_NE(xf, nullptr);
    int changed = 0;
    for (int i = 0; i < 50; ++i) {
        const int x = (i * 97) % 1200, y = (i * 53) % 800;
        const uint16_t* px = reinterpret_cast<const uint16_t*>(raw.bitmap.row(y)) + x * 3;
        uint16_t want[3];
        cmsDoTransform(xf, px, want, 1);
        const float* got = l.image.row(y) + x * 3;
        for (int c = 0; c < 3; ++c) {
            EXPECT_NEAR(got[c], want[c] / 257.0, 1.0) << x << "," << y;
            changed += std::fabs(got[c] - px[c] / 257.0) > 2.0;
        }
    }
    EXPECT_GT(changed, 10); // the conversion really moved numbers
    cmsDeleteTransform(xf);
    cmsCloseProfile(file);
    cmsCloseProfile(target);
}

TEST(LoadMediaFileTest, SrgbTaggedAndUntaggedFilesAreNotConverted)
{
    struct Case {
        const char* name;
        ColorSpaceKind kind;
    };
    for (const Case& c : {Case {"olympus_em1_forest_1920x1080.jpg", ColorSpaceKind::SRGB},
                          Case {"canon_eos70d_leaf_2560x1600.jpg", ColorSpaceKind::None}}) {
        REQUIRE_TESTDATA(path, c.name);
        Loaded l(path, 3);
        ASSERT_TRUE(l.ok) << c.name;
        EXPECT_EQ(l.info.colorSpaceKind, c.kind) << c.name;
        MediaDecoded raw;
        ASSERT_EQ(decodeMediaFile(path, raw, false), MediaCodecStatus::Ok);
        const int64_t n = int64_t(l.image.width) * l.image.height * 3;
        const uint8_t* bytes = static_cast<const uint8_t*>(raw.bitmap.data);
        int64_t off = 0;
        for (int64_t i = 0; i < n; i += 997)
            off += std::fabs(l.image.data[i] - bytes[i]) > 0.01f;
        EXPECT_EQ(off, 0) << c.name;
    }
}

TEST(LoadMediaFileTest, NonRgbSourcesBecomeEightBitRgb)
{
    REQUIRE_TESTDATA(grey, "camera_grey8.png");
    Loaded g(grey, 3);
    ASSERT_TRUE(g.ok);
    EXPECT_EQ(g.image.width, 512);
    EXPECT_EQ(g.info.bitsPerComponent, 8);
    for (int i = 0; i < 512 * 512; i += 1013) {
        EXPECT_EQ(g.image.data[i * 3], g.image.data[i * 3 + 1]);
        EXPECT_EQ(g.image.data[i * 3], g.image.data[i * 3 + 2]);
    }
    // Grey 16-bit with alpha: 8-bit RGB, alpha drawn over black and gone.
    REQUIRE_TESTDATA(greyAlpha, "grey16_alpha_32px.png");
    Loaded ga(greyAlpha, 4);
    ASSERT_TRUE(ga.ok);
    EXPECT_EQ(ga.info.bitsPerComponent, 8);
    EXPECT_EQ(ga.image.width, 32);
    for (int i = 0; i < 32 * 32; ++i)
        ASSERT_EQ(ga.image.data[i * 4 + 3], 255.0f);
    REQUIRE_TESTDATA(jpegGrey, "flower_grey.jpg");
    Loaded jg(jpegGrey, 3);
    ASSERT_TRUE(jg.ok);
    EXPECT_EQ(jg.image.width, 2268);
    EXPECT_EQ(jg.image.data[100 * 3], jg.image.data[100 * 3 + 2]);
}

TEST(LoadMediaFileTest, AlphaComesBackUnassociated)
{
    // Unassociated TIFF: the samples are taken as they stand.
    REQUIRE_TESTDATA(unassoc, "rgba8_unassoc_32px.tiff");
    MediaDecoded raw;
    ASSERT_EQ(decodeMediaFile(unassoc, raw, false), MediaCodecStatus::Ok);
    EXPECT_EQ(raw.bitmap.alphaInfo, MediaAlphaLast);
    Loaded u(unassoc, 4);
    ASSERT_TRUE(u.ok);
    bool partial = false;
    for (int i = 0; i < 32 * 32; ++i) {
        const uint8_t* px = static_cast<const uint8_t*>(raw.bitmap.data) + i * 4;
        if (px[3] > 0 && px[3] < 255)
            partial = true;
        // Same numbers as the file (sRGB-tagged, so no conversion).
        ASSERT_NEAR(u.image.data[i * 4], px[0], 0.01);
        ASSERT_NEAR(u.image.data[i * 4 + 3], px[3], 0.01);
    }
    EXPECT_TRUE(partial);

    // Associated float TIFF: divided by alpha in the seam, no longer premultiplied.
    REQUIRE_TESTDATA(assoc, "float32_rgba_assoc_32px.tiff");
    MediaDecoded f;
    ASSERT_EQ(decodeMediaFile(assoc, f, false), MediaCodecStatus::Ok);
    EXPECT_EQ(f.bitmap.bitsPerComponent, 16);
    EXPECT_EQ(f.bitmap.alphaInfo, MediaAlphaLast);

    // With a 3-channel destination the alpha is baked onto black.
    REQUIRE_TESTDATA(tulips, "tulips_rgba_500px.png");
    Loaded rgba(tulips, 4), rgb(tulips, 3);
    ASSERT_TRUE(rgba.ok && rgb.ok);
    int checked = 0;
    for (int i = 0; i < 500 * 500; i += 7) {
        const float a = rgba.image.data[i * 4 + 3];
        if (a > 0 && a < 255) {
            ++checked;
            EXPECT_NEAR(rgb.image.data[i * 3], rgba.image.data[i * 4] * a / 255.0f, 1.01f);
        }
    }
    EXPECT_GT(checked, 0);
}

TEST(LoadMediaFileTest, HdrExrHeifRawAndPhotoshopLoad)
{
    struct Case {
        const char* name;
        int w, h;
        int bits;
    };
    for (const Case& c : {Case {"ilm_desk_half_rgba.exr", 644, 874, 16}, Case {"hdri_forest_float_dwab.exr", 1024, 512, 16},
                          Case {"tigers.hdr", 400, 294, 16}, Case {"iphone_xr_orientation6_p3.heic", 3024, 4032, 8},
                          Case {"tuebingen_two_images.heic", 1280, 854, 8}}) {
        REQUIRE_TESTDATA(path, c.name);
        Loaded l(path, 4);
        ASSERT_TRUE(l.ok) << c.name;
        EXPECT_EQ(l.image.width, c.w) << c.name;
        EXPECT_EQ(l.image.height, c.h) << c.name;
        EXPECT_EQ(l.info.bitsPerComponent, c.bits) << c.name;
        double sum = 0;
        float lo = 1e9f, hi = -1e9f;
        const int64_t n = int64_t(l.image.width) * l.image.height;
        for (int64_t i = 0; i < n; i += 17) {
            const float v = l.image.data[i * 4 + 1];
            sum += v;
            lo = std::min(lo, v);
            hi = std::max(hi, v);
        }
        const double mean = sum / double((n + 16) / 17);
        EXPECT_GE(lo, 0.0f) << c.name;
        EXPECT_LE(hi, 255.01f) << c.name;
        EXPECT_GT(mean, 10.0) << c.name;
        EXPECT_LT(mean, 245.0) << c.name;
    }
}

TEST(LoadMediaFileTest, CameraRawLoadsAtSixteenBits)
{
    REQUIRE_TESTDATA(path, "canon_eos30d.CR2");
    Loaded l(path, 3);
    ASSERT_TRUE(l.ok);
    EXPECT_GE(l.image.width, 3504);
    EXPECT_GE(l.image.height, 2336);
    EXPECT_EQ(l.info.bitsPerComponent, 16);
    ASSERT_TRUE(l.info.properties);
    EXPECT_EQ(l.info.properties->value("Exif.Image.Model"), "Canon EOS 30D");
}

TEST(LoadMediaFileTest, DamagedFilesFailWithTheMessageAndLeaveTheImage)
{
    struct Case {
        const char* name;
        MediaLoadStatus status;
    };
    for (const Case& c : {Case {"zero_bytes.jpg", MediaLoadStatus::CantOpen}, Case {"text_named.jpg", MediaLoadStatus::CantOpen},
                          Case {"truncated_park.heic", MediaLoadStatus::CantOpen},
                          Case {"huge_dimensions_64250x64250.jpg", MediaLoadStatus::TooLarge}}) {
        REQUIRE_TESTDATA(path, c.name);
        Loaded l;
        l.image.data[0] = 42.0f;
        l.info.profileName = "kept";
        l.load(path, 4);
        EXPECT_FALSE(l.ok) << c.name;
        EXPECT_EQ(l.status, c.status) << c.name;
        EXPECT_EQ(l.image.width, 100);
        EXPECT_EQ(l.image.data[0], 42.0f);
        EXPECT_EQ(l.info.profileName, "kept");
        const MediaMessage m = mediaLoadFailureMessage(l.status, path);
        EXPECT_EQ(m.title, "Can't Load File");
        EXPECT_EQ(m.text.rfind("Vantrel can't open " + path + ". You may need to install drivers for this file "
                               "format or update your operating system.", 0), 0u);
    }
    // A truncated JPEG still decodes what it has (the decoder pads the rest); it must not crash.
    REQUIRE_TESTDATA(truncated, "truncated_leaf.jpg");
    Loaded t(truncated, 3);
    if (t.ok) {
        EXPECT_EQ(t.image.width, 2560);
    }
    Loaded missing("/nonexistent/folder/photo.jpg");
    EXPECT_FALSE(missing.ok);
    Loaded unknown("/tmp/whatever.xyz");
    EXPECT_EQ(unknown.status, MediaLoadStatus::UnsupportedType);
    const MediaMessage m = mediaLoadFailureMessage(unknown.status, "/tmp/whatever.xyz");
    EXPECT_EQ(m.title, "Load Image Error");
    EXPECT_EQ(m.text, "That file type is not supported.");
}

TEST(LoadMediaFileTest, PhotosPastTheMemoryCeilingAreRefusedBeforeDecoding)
{
    REQUIRE_TESTDATA(path, "olympus_em1_forest_1920x1080.jpg");
    // 1920 x 1080 needs about 80 MB as a document; a 64 MB ceiling refuses it, 128 MB takes it.
    setenv("VANTREL_MEMORY_LIMIT_MB", "64", 1);
    EXPECT_FALSE(mediaSizeWithinMemoryCeiling(1920, 1080));
    Loaded refused(path, 4);
    EXPECT_FALSE(refused.ok);
    EXPECT_EQ(refused.status, MediaLoadStatus::TooLarge);
    setenv("VANTREL_MEMORY_LIMIT_MB", "128", 1);
    Loaded taken(path, 4);
    EXPECT_TRUE(taken.ok);
    // A nonsense limit falls back to the machine's memory; forged sizes can't overflow the test.
    setenv("VANTREL_MEMORY_LIMIT_MB", "lots", 1);
    EXPECT_GT(mediaMemoryCeilingBytes(), int64_t(64) << 20);
    EXPECT_FALSE(mediaSizeWithinMemoryCeiling(int64_t(1) << 40, int64_t(1) << 40));
    unsetenv("VANTREL_MEMORY_LIMIT_MB");
}
