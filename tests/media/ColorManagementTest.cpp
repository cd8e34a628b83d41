#include "TestData.h"

#include "media/BuiltinIccProfiles.h"
#include "media/ColorTransformSet.h"
#include "media/CompactImage.h"
#include "media/IccProfileMaker.h"

#include <gtest/gtest.h>
#include <lcms2.h>

#include <cmath>
#include <cstring>

namespace {

const ColorSpaceKind kBuiltins[] = {ColorSpaceKind::SRGB, ColorSpaceKind::AdobeRGB, ColorSpaceKind::Rec709};

std::vector<uint8_t> lcmsConvert8(const std::vector<uint8_t>& from, const std::vector<uint8_t>& to,
                                  const std::vector<uint8_t>& rgb)
{
    cmsHPROFILE a = cmsOpenProfileFromMem(from.data(), cmsUInt32Number(from.size()));
    cmsHPROFILE b = cmsOpenProfileFromMem(to.data(), cmsUInt32Number(to.size()));
    cmsHTRANSFORM xf = cmsCreateTransform(a, TYPE_RGB_8, b, TYPE_RGB_8, INTENT_PERCEPTUAL, 0);
    std::vector<uint8_t> out(rgb.size());
    cmsDoTransform(xf, rgb.data(), out.data(), cmsUInt32Number(rgb.size() / 3));
    cmsDeleteTransform(xf);
    cmsCloseProfile(a);
    cmsCloseProfile(b);
    return out;
}

std::vector<uint8_t> gDisplayForTest;
std::vector<uint8_t> testDisplay() { return gDisplayForTest; }

// Restores the default display profile whatever a test did.
struct DisplayGuard {
    ~DisplayGuard() { setDisplayIccProvider(nullptr); }
};

} // namespace

TEST(BuiltinIccProfiles, RegeneratingGivesTheStoredBytes)
{
    for (ColorSpaceKind kind : kBuiltins) {
        const std::vector<uint8_t> stored = builtinIccProfile(kind);
        ASSERT_FALSE(stored.empty()) << colorSpaceKindName(kind);
        EXPECT_EQ(stored, makeBuiltinIccProfile(kind)) << colorSpaceKindName(kind);
        // A second build in the same run is identical too (no clock in the bytes).
        EXPECT_EQ(makeBuiltinIccProfile(kind), makeBuiltinIccProfile(kind));
    }
    EXPECT_TRUE(builtinIccProfile(ColorSpaceKind::Display).empty());
    EXPECT_TRUE(builtinIccProfile(ColorSpaceKind::None).empty());
    EXPECT_EQ(builtinIccProfileBase64(ColorSpaceKind::Custom), nullptr);
}

TEST(BuiltinIccProfiles, OpenAsRgbDisplayProfilesWithTheirCurves)
{
    struct Expect {
        ColorSpaceKind kind;
        double mid;        // linear value of the encoded 0.5
        double version;
        double greenX;     // chromaticity x of the green primary
    };
    const Expect expects[] = {
        {ColorSpaceKind::SRGB, std::pow((0.5 + 0.055) / 1.055, 2.4), 2.1, 0.30},
        {ColorSpaceKind::AdobeRGB, std::pow(0.5, 563.0 / 256.0), 2.1, 0.21},
        {ColorSpaceKind::Rec709, std::pow((0.5 + 0.099) / 1.099, 1.0 / 0.45), 4.3, 0.30},
    };
    for (const Expect& e : expects) {
        const std::vector<uint8_t> bytes = builtinIccProfile(e.kind);
        cmsHPROFILE p = cmsOpenProfileFromMem(bytes.data(), cmsUInt32Number(bytes.size()));
        ASSERT_NE(p, nullptr) << colorSpaceKindName(e.kind);
        EXPECT_EQ(cmsGetColorSpace(p), cmsSigRgbData);
        EXPECT_EQ(cmsGetDeviceClass(p), cmsSigDisplayClass);
        EXPECT_NEAR(cmsGetProfileVersion(p), e.version, 1e-6);
        auto* trc = static_cast<cmsToneCurve*>(cmsReadTag(p, cmsSigRedTRCTag));
        ASSERT_NE(trc, nullptr);
        EXPECT_NEAR(cmsEvalToneCurveFloat(trc, 0.5f), e.mid, 2e-4) << colorSpaceKindName(e.kind);
        // Near black the two piecewise curves are linear.
        if (e.kind == ColorSpaceKind::Rec709) {
            EXPECT_NEAR(cmsEvalToneCurveFloat(trc, 0.04f), 0.04 / 4.5, 1e-4);
        }
        if (e.kind == ColorSpaceKind::SRGB) {
            EXPECT_NEAR(cmsEvalToneCurveFloat(trc, 0.03f), 0.03 / 12.92, 1e-4);
        }
        // Green primary, read back through the colorant (D50-adapted) and the chad tag.
        auto* g = static_cast<cmsCIEXYZ*>(cmsReadTag(p, cmsSigGreenColorantTag));
        ASSERT_NE(g, nullptr);
        cmsCIExyY xyY;
        cmsXYZ2xyY(&xyY, g);
        cmsCloseProfile(p);
        EXPECT_GT(xyY.x, e.greenX - 0.03);
        EXPECT_LT(xyY.x, e.greenX + 0.03);
    }
}

TEST(BuiltinIccProfiles, MatchPublishedProfilesOfTheSameSpace)
{
    struct Pair {
        ColorSpaceKind kind;
        const char* file;
    };
    for (const Pair& pr : {Pair {ColorSpaceKind::SRGB, "sRGB.icc"},
                           Pair {ColorSpaceKind::AdobeRGB, "compatibleWithAdobeRGB1998.icc"}}) {
        REQUIRE_TESTDATA(path, pr.file);
        std::vector<uint8_t> rgb;
        for (int v = 0; v < 256; v += 15)
            rgb.insert(rgb.end(), {uint8_t(v), uint8_t(255 - v), uint8_t(v / 2)});
        const std::vector<uint8_t> out = lcmsConvert8(readFileBytes(path), builtinIccProfile(pr.kind), rgb);
        for (size_t i = 0; i < rgb.size(); ++i)
            EXPECT_NEAR(out[i], rgb[i], 1) << pr.file << " sample " << i;
    }
}

TEST(ColorSpaceKindList, UnknownKindHasNoNameAndNoneIsOfferedOnlyWhenAsked)
{
    EXPECT_STREQ(colorSpaceKindName(ColorSpaceKind(9)), "");
    const std::vector<ColorSpaceKind> all = colorSpaceOfferList(true);
    const std::vector<ColorSpaceKind> want = {ColorSpaceKind::None, ColorSpaceKind::Display, ColorSpaceKind::SRGB,
                                              ColorSpaceKind::AdobeRGB, ColorSpaceKind::Rec709};
    EXPECT_EQ(all, want);
    const std::vector<ColorSpaceKind> noNone = colorSpaceOfferList(false);
    ASSERT_EQ(noNone.size(), 4u);
    EXPECT_EQ(noNone[0], ColorSpaceKind::Display);
    EXPECT_EQ(noNone[1], ColorSpaceKind::SRGB); // the working space of every load
}

TEST(ColorTransformSetTest, ValidOnlyForTwoUsableProfilesAndNotForDisplay)
{
    ColorTransformSet set;
    setKind(set, ColorSpaceKind::AdobeRGB);
    EXPECT_TRUE(set.valid);
    EXPECT_TRUE(set.converts());
    EXPECT_EQ(set.kind, ColorSpaceKind::AdobeRGB);
    EXPECT_EQ(set.profile, builtinIccProfile(ColorSpaceKind::AdobeRGB));
    EXPECT_EQ(set.displayProfile, builtinIccProfile(ColorSpaceKind::SRGB));

    // Rebuilding as Display drops nothing it doesn't own and converts nothing.
    ColorTransformSet display;
    setKind(display, ColorSpaceKind::Display);
    EXPECT_FALSE(display.valid);
    EXPECT_EQ(display.kind, ColorSpaceKind::Display);

    ColorTransformSet none;
    setKind(none, ColorSpaceKind::None);
    EXPECT_FALSE(none.valid);
    EXPECT_TRUE(none.profile.empty());

    ColorTransformSet garbage;
    setCustomProfile(garbage, std::vector<uint8_t>(200, 7));
    EXPECT_FALSE(garbage.valid);
    EXPECT_EQ(garbage.kind, ColorSpaceKind::Custom);

    // A grey profile can't take RGB numbers.
    REQUIRE_TESTDATA(grey, "Gray.icc");
    ColorTransformSet greySet;
    setCustomProfile(greySet, readFileBytes(grey));
    EXPECT_FALSE(greySet.valid);

    // A valid set rebuilt from a bad profile ends invalid, its old transforms freed.
    setCustomProfile(set, std::vector<uint8_t>(10, 1));
    EXPECT_FALSE(set.valid);
    EXPECT_EQ(set.rgb8ToDisplay, nullptr);
}

TEST(ColorTransformSetTest, CompactRowsMatchDirectTransformAndKeepAlpha)
{
    DisplayGuard guard;
    ColorTransformSet set;
    setKind(set, ColorSpaceKind::AdobeRGB);
    ASSERT_TRUE(set.valid);
    const int w = 300, h = 3; // wider than one stack chunk
    CompactImage rgba;
    ASSERT_TRUE(rgba.allocate(w, h, CompactImage::RGBA, false));
    std::vector<uint8_t> rgb;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const uint8_t r = uint8_t(x), g = uint8_t(255 - x), b = uint8_t(y * 80), a = uint8_t(x * 7);
            rgba.setPixel(x, y, r, g, b, a);
            rgb.insert(rgb.end(), {r, g, b});
        }
    ASSERT_TRUE(transformCompactImage(rgba, set, true));
    const std::vector<uint8_t> want =
        lcmsConvert8(builtinIccProfile(ColorSpaceKind::AdobeRGB), builtinIccProfile(ColorSpaceKind::SRGB), rgb);
    int mismatches = 0;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const uint8_t* px = rgba.row8(y) + x * 4;
            const size_t i = size_t(y * w + x) * 3;
            mismatches += px[0] != want[i] || px[1] != want[i + 1] || px[2] != want[i + 2];
            ASSERT_EQ(px[3], uint8_t(x * 7));
        }
    EXPECT_EQ(mismatches, 0);
    // An Adobe green lies outside sRGB and is clipped to full sRGB green.
    EXPECT_GT(want[3 * 0 + 1], 250); // x = 0: (0, 255, 0)

    // 16 bits: the RGB layout goes row by row through the 16-bit transform.
    CompactImage wide;
    ASSERT_TRUE(wide.allocate(2, 1, CompactImage::RGB, true));
    const uint16_t in[6] = {0, 65535, 0, 30000, 30000, 30000};
    std::memcpy(wide.row16(0), in, sizeof in);
    ASSERT_TRUE(transformCompactImage(wide, set, true));
    EXPECT_LT(wide.row16(0)[0], 1000);       // green stays green in sRGB, clipped
    EXPECT_GT(wide.row16(0)[1], 65000);
    EXPECT_NEAR(wide.row16(0)[3], wide.row16(0)[4], 40); // grey stays grey
    EXPECT_NE(wide.row16(0)[3], 30000);      // but the gammas differ

    ColorTransformSet invalid;
    EXPECT_FALSE(transformCompactImage(wide, invalid, true));
}

TEST(ColorTransformSetTest, ClassifiesEmbeddedProfiles)
{
    EXPECT_EQ(classifyIccProfile({}), ColorSpaceKind::None);
    EXPECT_EQ(classifyIccProfile(std::vector<uint8_t>(64, 3)), ColorSpaceKind::Custom);
    // Our own sRGB and Adobe RGB are known; our Rec. 709 is a custom profile to a file's reader.
    for (ColorSpaceKind k : kBuiltins)
        EXPECT_EQ(classifyIccProfile(builtinIccProfile(k)), k == ColorSpaceKind::Rec709 ? ColorSpaceKind::Custom : k);
    struct Case {
        const char* file;
        ColorSpaceKind kind;
    };
    for (const Case& c : {Case {"sRGB.icc", ColorSpaceKind::SRGB},
                          Case {"compatibleWithAdobeRGB1998.icc", ColorSpaceKind::AdobeRGB},
                          Case {"DisplayP3.icc", ColorSpaceKind::Custom},
                          Case {"ProPhotoRGB.icc", ColorSpaceKind::Custom}, Case {"Gray.icc", ColorSpaceKind::Custom}}) {
        REQUIRE_TESTDATA(path, c.file);
        EXPECT_EQ(classifyIccProfile(readFileBytes(path)), c.kind) << c.file;
    }
    EXPECT_TRUE(isRgbIccProfile(builtinIccProfile(ColorSpaceKind::Rec709)));
    REQUIRE_TESTDATA(grey, "Gray.icc");
    EXPECT_FALSE(isRgbIccProfile(readFileBytes(grey)));
    EXPECT_FALSE(isRgbIccProfile({}));
}

TEST(ColorTransformSetTest, WorkingSpaceConversionGoesThroughTheDisplay)
{
    DisplayGuard guard;
    const std::vector<uint8_t> adobe = builtinIccProfile(ColorSpaceKind::AdobeRGB);
    const std::vector<uint8_t> srgb = builtinIccProfile(ColorSpaceKind::SRGB);
    std::vector<uint8_t> rgb = {200, 40, 40, 10, 200, 30, 128, 128, 128, 250, 250, 250};
    const std::vector<uint8_t> direct = lcmsConvert8(adobe, srgb, rgb);

    auto makeImage = [&](CompactImage& img) {
        ASSERT_TRUE(img.allocate(4, 1, CompactImage::RGB, false));
        std::memcpy(img.row8(0), rgb.data(), rgb.size());
    };
    CompactImage viaSrgbDisplay;
    makeImage(viaSrgbDisplay);
    EXPECT_TRUE(convertToWorkingSpace(viaSrgbDisplay, ColorSpaceKind::AdobeRGB, adobe));
    for (size_t i = 0; i < rgb.size(); ++i)
        EXPECT_NEAR(viaSrgbDisplay.row8(0)[i], direct[i], 1) << i;

    // A wide-gamut display keeps these colours, so two steps still land near the direct result.
    REQUIRE_TESTDATA(p3, "DisplayP3.icc");
    gDisplayForTest = readFileBytes(p3);
    setDisplayIccProvider(&testDisplay);
    EXPECT_EQ(displayIccBytes(), gDisplayForTest);
    CompactImage viaP3;
    makeImage(viaP3);
    EXPECT_TRUE(convertToWorkingSpace(viaP3, ColorSpaceKind::Custom, adobe));
    for (size_t i = 0; i < rgb.size(); ++i)
        EXPECT_NEAR(viaP3.row8(0)[i], direct[i], 2) << i;

    // sRGB files, untagged files and unusable profiles are left alone.
    CompactImage untouched;
    makeImage(untouched);
    EXPECT_FALSE(convertToWorkingSpace(untouched, ColorSpaceKind::SRGB, srgb));
    EXPECT_FALSE(convertToWorkingSpace(untouched, ColorSpaceKind::None, {}));
    EXPECT_FALSE(convertToWorkingSpace(untouched, ColorSpaceKind::Custom, std::vector<uint8_t>(50, 0)));
    EXPECT_EQ(std::vector<uint8_t>(untouched.row8(0), untouched.row8(0) + 12), rgb);
}
