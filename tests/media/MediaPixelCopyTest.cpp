#include "media/CompactImage.h"
#include "media/MediaFormats.h"
#include "media/MediaOrientation.h"
#include "media/MediaPixelCopy.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace {

// A packed w by h bitmap of `samples` samples of `bits` each, holding a copy of `bytes` if given.
void packedBitmap(MediaBitmap& b, int w, int h, int bits, int samples, int alphaInfo, const void* bytes = nullptr)
{
    b.width = w;
    b.height = h;
    b.bitsPerComponent = bits;
    b.bitsPerPixel = bits * samples;
    b.bytesPerRow = int64_t(w) * samples * bits / 8;
    b.alphaInfo = alphaInfo;
    b.data = std::calloc(size_t(b.bytesPerRow) * size_t(h), 1);
    if (bytes)
        std::memcpy(b.data, bytes, size_t(b.bytesPerRow) * size_t(h));
}

// A w by h 8-bit bitmap whose pixel (x, y) holds (x, y, 7), and alpha 200 if it has four samples.
void makeCoordinateBitmap(MediaBitmap& b, int w, int h, int samples = 3, int alphaInfo = MediaAlphaNone)
{
    packedBitmap(b, w, h, 8, samples, alphaInfo);
    auto* p = static_cast<uint8_t*>(b.data);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            uint8_t* px = p + (y * w + x) * samples;
            px[0] = uint8_t(x);
            px[1] = uint8_t(y);
            px[2] = 7;
            if (samples == 4)
                px[3] = 200;
        }
}

// Where the upright pixel (ux, uy) comes from in a w by h stored image, worked out from the
// EXIF definitions of each orientation (where row 0 and column 0 of the stored image belong).
// An orientation outside 1..8 is taken as 1.
void storedCoordinate(int orientation, int w, int h, int ux, int uy, int& sx, int& sy)
{
    switch (orientation) {
    default: sx = ux; sy = uy; break;
    case 2: sx = w - 1 - ux; sy = uy; break;
    case 3: sx = w - 1 - ux; sy = h - 1 - uy; break;
    case 4: sx = ux; sy = h - 1 - uy; break;
    case 5: sx = uy; sy = ux; break;                   // transpose
    case 6: sx = uy; sy = h - 1 - ux; break;           // needs a turn clockwise
    case 7: sx = w - 1 - uy; sy = h - 1 - ux; break;   // transverse
    case 8: sx = w - 1 - uy; sy = ux; break;           // needs a turn anticlockwise
    }
}

} // namespace

TEST(MediaOrientationTest, CompactCopyTurnsEveryOrientationUpright)
{
    const int w = 5, h = 3;
    for (int o : {-3, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9}) {
        MediaBitmap b;
        makeCoordinateBitmap(b, w, h);
        CompactImage c;
        ASSERT_TRUE(compactFromBitmap(b, o, c)) << o;
        const bool turned = o >= 5 && o <= 8;
        ASSERT_EQ(c.width, turned ? h : w) << o;
        ASSERT_EQ(c.height, turned ? w : h) << o;
        EXPECT_EQ(c.layout, CompactImage::RGB);
        for (int uy = 0; uy < c.height; ++uy)
            for (int ux = 0; ux < c.width; ++ux) {
                int sx = 0, sy = 0;
                storedCoordinate(o, w, h, ux, uy, sx, sy);
                const uint8_t* px = c.row8(uy) + ux * 3;
                ASSERT_EQ(px[0], sx) << "orientation " << o << " at " << ux << "," << uy;
                ASSERT_EQ(px[1], sy) << "orientation " << o << " at " << ux << "," << uy;
            }
    }
}

TEST(MediaOrientationTest, SideRouteCopyMatchesTheCompactCopy)
{
    const int w = 4, h = 6;
    for (int o = 1; o <= 8; ++o) {
        MediaBitmap b;
        makeCoordinateBitmap(b, w, h, 4, MediaAlphaLast);
        FlexImageFloat f(1, 1, 4);
        FlexImage8 e(1, 1, 3);
        ASSERT_TRUE(copyBitmapToImage(b, o, f));
        ASSERT_TRUE(copyBitmapToImage(b, o, e));
        EXPECT_EQ(e.channels, 3);
        for (int uy = 0; uy < f.height; ++uy)
            for (int ux = 0; ux < f.width; ++ux) {
                int sx = 0, sy = 0;
                storedCoordinate(o, w, h, ux, uy, sx, sy);
                ASSERT_EQ(f.row(uy)[ux * 4], float(sx));
                ASSERT_EQ(f.row(uy)[ux * 4 + 1], float(sy));
                ASSERT_EQ(f.row(uy)[ux * 4 + 3], 200.0f);
                ASSERT_EQ(e.row(uy)[ux * 3 + 1], sy);
            }
    }
}

TEST(MediaOrientationTest, FlipsAreInvolutionsOnOddSizes)
{
    FlexImageFloat img(3, 5, 2);
    for (int i = 0; i < 30; ++i)
        img.data[i] = float(i);
    FlipImageRows(img);
    EXPECT_EQ(img.row(0)[0], 24.0f);  // old row 4
    EXPECT_EQ(img.row(2)[0], 12.0f);  // middle row stays
    FlipImageColumns(img);
    EXPECT_EQ(img.row(0)[0], 28.0f);  // old (2, 4)
    EXPECT_EQ(img.row(0)[1], 29.0f);  // channels travel together
    EXPECT_EQ(img.row(0)[2], 26.0f);  // middle column stays
    FlipImageColumns(img);
    FlipImageRows(img);
    for (int i = 0; i < 30; ++i)
        ASSERT_EQ(img.data[i], float(i));
    FlexImageFloat empty;
    FlipImageRows(empty); // nothing to do, no crash
    FlipImageColumns(empty);
}

TEST(MediaPixelCopyTest, PremultipliedSamplesAreDividedByAlpha)
{
    MediaBitmap b;
    const uint8_t px[12] = {50, 100, 25, 100, 10, 20, 30, 0, 255, 128, 0, 255};
    packedBitmap(b, 3, 1, 8, 4, MediaAlphaPremultipliedLast, px);
    CompactImage c;
    ASSERT_TRUE(compactFromBitmap(b, 1, c));
    ASSERT_EQ(c.layout, CompactImage::RGBA);
    const uint8_t* out = c.row8(0);
    // 50 / (100 / 255) = 127.5 -> 127; 100 -> 255; 25 -> 63.75 -> 63
    EXPECT_EQ(out[0], 127);
    EXPECT_EQ(out[1], 255);
    EXPECT_EQ(out[2], 63);
    EXPECT_EQ(out[3], 100);
    // Alpha 0: colour ends as 0.
    EXPECT_EQ(out[4], 0);
    EXPECT_EQ(out[6], 0);
    EXPECT_EQ(out[7], 0);
    // Opaque pixels are unchanged.
    EXPECT_EQ(out[8], 255);
    EXPECT_EQ(out[9], 128);

    // 16 bits: 30000 at alpha 40000 -> truncate(30000 / (40000 / 65535)) = 49151.
    MediaBitmap w;
    const uint16_t s[4] = {30000, 40000, 0, 40000};
    packedBitmap(w, 1, 1, 16, 4, MediaAlphaPremultipliedLast, s);
    FlexImageFloat f(1, 1, 4);
    ASSERT_TRUE(copyBitmapToImage(w, 1, f));
    EXPECT_NEAR(f.data[0], 49151 / 257.0f, 0.01f);
    EXPECT_NEAR(f.data[1], 65535 / 257.0f, 0.01f);
    EXPECT_NEAR(f.data[3], 40000 / 257.0f, 0.01f);
    CompactImage wc;
    ASSERT_TRUE(compactFromBitmap(w, 1, wc));
    EXPECT_NEAR(wc.row16(0)[0], 49151, 1);
    EXPECT_EQ(wc.row16(0)[3], 40000);
}

TEST(MediaPixelCopyTest, AlphaFirstOffsetsAndUnsupportedDepths)
{
    MediaBitmap b;
    const uint8_t px[4] = {77, 1, 2, 3};
    packedBitmap(b, 1, 1, 8, 4, MediaAlphaFirst, px);
    CompactImage c;
    ASSERT_TRUE(compactFromBitmap(b, 1, c));
    EXPECT_EQ(c.row8(0)[0], 1);
    EXPECT_EQ(c.row8(0)[2], 3);
    EXPECT_EQ(c.row8(0)[3], 77);

    MediaBitmap odd;
    packedBitmap(odd, 1, 1, 32, 3, MediaAlphaNone);
    CompactImage none;
    EXPECT_FALSE(compactFromBitmap(odd, 1, none));
    FlexImageFloat untouched(2, 2, 3);
    untouched.data[0] = 5.0f;
    EXPECT_FALSE(copyBitmapToImage(odd, 1, untouched));
    EXPECT_EQ(untouched.width, 2);
    EXPECT_EQ(untouched.data[0], 5.0f);
}

TEST(MediaPixelCopyTest, FloatCopyScalesSixteenBitsAndFillsAlpha)
{
    CompactImage c;
    ASSERT_TRUE(c.allocate(2, 1, CompactImage::RGB, true));
    const uint16_t s[6] = {0, 257, 65535, 1000, 2000, 3000};
    std::memcpy(c.data, s, sizeof s);
    FlexImageFloat f(100, 100, 4);
    ASSERT_TRUE(compactToFloat(c, f));
    ASSERT_EQ(f.width, 2);
    ASSERT_EQ(f.channels, 4);
    EXPECT_FLOAT_EQ(f.data[1], 257 * 0.0038910506f);
    EXPECT_NEAR(f.data[2], 255.0f, 1e-3f);
    EXPECT_EQ(f.data[3], 255.0f);
    EXPECT_NEAR(f.data[4], 1000 / 257.0f, 1e-4f);

    // An 8-bit RGBA image into 3 channels is drawn over black first.
    CompactImage a;
    ASSERT_TRUE(a.allocate(1, 1, CompactImage::RGBA, false));
    a.setPixel(0, 0, 200, 100, 255, 51);
    FlexImageFloat g(1, 1, 3);
    ASSERT_TRUE(compactToFloat(a, g));
    EXPECT_NEAR(g.data[0], 40.0f, 0.01f);
    EXPECT_NEAR(g.data[1], 20.0f, 0.01f);
    EXPECT_NEAR(g.data[2], 51.0f, 0.01f);
}

TEST(MediaPixelCopyTest, SaveQuantiserTruncatesWithoutClamp)
{
    FlexImageFloat img(4, 1, 4);
    const float v[16] = {300.0f, -1.0f, 127.99f, 255.0f, 0.5f, 1.0f, 0.996f, 255.0f,
                         std::numeric_limits<float>::quiet_NaN(), 10, 20, 255.0f, 1, 2, 3, 255.0f};
    std::memcpy(img.data, v, sizeof v);
    CompactImage q16;
    ASSERT_TRUE(quantiseForSave(img, true, q16));
    EXPECT_EQ(q16.layout, CompactImage::RGB); // alpha is 255 everywhere
    EXPECT_EQ(q16.row16(0)[0], uint16_t(77100 & 0xffff)); // 300 * 257 = 77100: low bits kept
    EXPECT_EQ(q16.row16(0)[1], uint16_t(-257 & 0xffff));
    EXPECT_EQ(q16.row16(0)[2], uint16_t(32893)); // truncate(127.99 * 257)
    EXPECT_EQ(q16.row16(0)[6], 0);                // NaN
    CompactImage q8;
    ASSERT_TRUE(quantiseForSave(img, false, q8));
    EXPECT_EQ(q8.row8(0)[0], uint8_t((77100 & 0xffff) >> 8));
    EXPECT_EQ(q8.row8(0)[2], 128);  // high byte of 32893
    EXPECT_EQ(q8.row8(0)[3], 0);    // 0.5 * 257 = 128 -> high byte 0
    EXPECT_EQ(q8.row8(0)[4], 1);    // 257 -> 1
    EXPECT_EQ(q8.row8(0)[5], 0);    // 0.996 * 257 = 255.97 -> 255 -> high byte 0, not 1

    img.data[7] = 254.0f; // one alpha below opaque keeps alpha
    CompactImage withAlpha;
    ASSERT_TRUE(quantiseForSave(img, false, withAlpha));
    EXPECT_EQ(withAlpha.layout, CompactImage::RGBA);
    EXPECT_EQ(withAlpha.row8(0)[7], 254);

    // The scan for alpha covers every row: a single translucent pixel anywhere keeps alpha.
    FlexImageFloat tall(37, 513, 4);
    for (int64_t i = 0; i < tall.sampleCount(); ++i)
        tall.data[i] = 255.0f;
    CompactImage opaque;
    ASSERT_TRUE(quantiseForSave(tall, false, opaque));
    EXPECT_EQ(opaque.layout, CompactImage::RGB);
    for (const int32_t y : {0, 256, 512}) {
        tall.row(y)[36 * 4 + 3] = 200.0f;
        CompactImage one;
        ASSERT_TRUE(quantiseForSave(tall, false, one));
        EXPECT_EQ(one.layout, CompactImage::RGBA) << "row " << y;
        EXPECT_EQ(one.row8(y)[36 * 4 + 3], 200) << "row " << y;
        tall.row(y)[36 * 4 + 3] = 255.0f;
    }

    // Side route: 8-bit truncation of the float itself, and missing alpha written as opaque.
    FlexImageFloat rgb(1, 1, 3);
    rgb.data[0] = 300.0f;
    rgb.data[1] = -1.0f;
    rgb.data[2] = 9.9f;
    CompactImage side;
    ASSERT_TRUE(bufferForSideSave(rgb, false, side));
    EXPECT_EQ(side.layout, CompactImage::RGB);
    EXPECT_EQ(side.row8(0)[0], 44);
    EXPECT_EQ(side.row8(0)[1], 255);
    EXPECT_EQ(side.row8(0)[2], 9);
    FlexImage8 rgba8(1, 1, 4);
    rgba8.data[0] = 1;
    rgba8.data[3] = 255;
    CompactImage side16;
    ASSERT_TRUE(bufferForSideSave(rgba8, true, side16));
    EXPECT_EQ(side16.row16(0)[0], 257);
    EXPECT_EQ(side16.row16(0)[3], 65535);
}

TEST(CompactImageTest, GetterAndSetterScaleByTwoFiftySeven)
{
    CompactImage grey;
    ASSERT_TRUE(grey.allocate(1, 1, CompactImage::Grey, false));
    EXPECT_EQ(grey.channels, 1);
    grey.row8(0)[0] = 10;
    uint16_t p[4];
    grey.pixel(0, 0, p);
    EXPECT_EQ(p[0], 2570);
    EXPECT_EQ(p[2], 2570);
    EXPECT_EQ(p[3], 65535);
    CompactImage wide;
    ASSERT_TRUE(wide.allocate(1, 1, CompactImage::RGBA, true));
    wide.setPixel(0, 0, 1, 2, 3, 4);
    wide.pixel(0, 0, p);
    EXPECT_EQ(p[0], 257);
    EXPECT_EQ(p[3], 1028);
    CompactImage moved(std::move(wide));
    EXPECT_EQ(wide.data, nullptr);
    EXPECT_EQ(moved.row16(0)[1], 514);
    CompactImage huge;
    EXPECT_FALSE(huge.allocate(64250, 64250, CompactImage::RGB, false));
    EXPECT_TRUE(huge.isEmpty());
}

TEST(MediaFormatsTest, Lookups)
{    for (const char* p : {"a.JPG", "/x/y.Jpeg", "b.cr2", "c.RW2", "d.heif", "e.exr", "f.psd", "g.TIFF"})
        EXPECT_TRUE(IsLoadableImagePath(p)) << p;
    for (const char* p : {"a.vni", "b.vnf", "c", "/dir.jpg/file", "d.mov", "e.jpgx", ".png.txt"})
        EXPECT_FALSE(IsLoadableImagePath(p)) << p;
    EXPECT_TRUE(isNativeImagePath("/tmp/X.VnI"));
    EXPECT_FALSE(isNativeImagePath("/data/DisplayImage.dat"));
    EXPECT_EQ(mediaPathExtension("/a.b/c"), "");
    EXPECT_EQ(mediaPathExtension("/a/c.TiF"), "tif");

    EXPECT_STREQ(findSaveFormat("out.png", 8)->displayName, "PNG Image");
    EXPECT_STREQ(findSaveFormat("out.png", 16)->displayName, "PNG-16 Image");
    EXPECT_STREQ(findSaveFormat("out.TIF", 16)->displayName, "Tiff-16 Image");
    EXPECT_STREQ(findSaveFormat("out.tiff", 8)->displayName, "Tiff Image");
    // JPEG has no 16-bit row: a deep source falls back to the first hit.
    EXPECT_STREQ(findSaveFormat("out.jpg", 16)->displayName, "Jpeg Image");
    EXPECT_EQ(findSaveFormat("out.heic", 8), nullptr);
    EXPECT_EQ(findSaveFormat("out.vni", 8), nullptr);
}
