#include "TonalTestHelpers.h"

#include "mods/ImageModBrightness.h"
#include "mods/ImageModExposure.h"
#include "mods/ImageModGammaLegacy.h"
#include "mods/ImageModSaturation.h"

namespace {
template <typename Mod>
std::unique_ptr<ImageMod> withAmount(float a, int32_t version = -1)
{
    auto mod = std::make_unique<Mod>();
    mod->variableAt(0)->setFloatValue(a);
    if (version >= 0)
        mod->setVersion(version);
    return mod;
}

using Make = std::unique_ptr<ImageMod> (*)(float, int32_t);
const Make sat = withAmount<ImageModSaturation>, expo = withAmount<ImageModExposure>,
           gam = withAmount<ImageModGammaLegacy>, bri = withAmount<ImageModBrightness>;

// One pixel through one tile: version -1 is the newest, mask -1 is none; 8-bit results are exact,
// float ones within tol.
struct TonalCase {
    const char* what;
    Make make;
    float amount;
    int32_t version;
    float mask;
    bool eightBit;
    TonalPixel in, out;
    float tol;
};

void expectCases(std::initializer_list<TonalCase> cases)
{
    for (const TonalCase& c : cases) {
        SCOPED_TRACE(testing::Message() << c.what << (c.eightBit ? " 8-bit" : " float"));
        auto mod = c.make(c.amount, c.version);
        CurveTestMask mask(c.mask);
        ImageModSelector* sel = c.mask < 0.0f ? nullptr : &mask;
        if (c.eightBit)
            expectPixelEq(tonalApply<FlexImage8>(*mod, c.in, sel), c.out);
        else
            expectPixelNear(tonalApply<FlexImageFloat>(*mod, c.in, sel), c.out, c.tol);
    }
}
} // namespace

TEST(TonalSaturation, AnchorsAmountsAndMask)
{
    const float g2 = 139.436276f, g1 = 76.245f;
    expectCases({
        // Amount 0 greys a pure red: version 2 on sqrt(0.299) * 255, version 1 on 0.299 * 255.
        { "v2 grey", sat, 0.0f, -1, -1.0f, false, { 255, 0, 0 }, { g2, g2, g2 }, 1e-3f },
        { "v2 grey", sat, 0.0f, -1, -1.0f, true, { 255, 0, 0 }, { 139, 139, 139 }, 0.0f },
        { "v1 grey", sat, 0.0f, 1, -1.0f, false, { 255, 0, 0 }, { g1, g1, g1 }, 1e-3f },
        { "v1 grey", sat, 0.0f, 1, -1.0f, true, { 255, 0, 0 }, { 76, 76, 76 }, 0.0f },
        // Anchor of (200, 100, 50) is 134.59; a factor near 100000 throws every channel to a bound.
        { "amount 2", sat, 2.0f, -1, -1.0f, false, { 200, 100, 50 }, { 255, 0, 0 }, 0.0f },
        { "amount 2", sat, 2.0f, -1, -1.0f, true, { 200, 100, 50 }, { 255, 0, 0 }, 0.0f },
        // Amount 1.5 doubles the distance from the anchor, clamped.
        { "amount 1.5", sat, 1.5f, 1, -1.0f, false, { 200, 100, 50 }, { 255, 75.8f, 0 }, 1e-3f },
        { "mask 0", sat, 0.0f, 1, 0.0f, false, { 200, 100, 50 }, { 200, 100, 50 }, 0.0f },
        { "mask 0", sat, 0.0f, 1, 0.0f, true, { 200, 100, 50 }, { 200, 100, 50 }, 0.0f },
        // Rule A: amount 0 at mask 0.5 acts as 0.5.
        { "mask 0.5", sat, 0.0f, 1, 0.5f, false, { 200, 100, 50 }, { 162.1f, 112.1f, 87.1f }, 1e-3f },
        { "mask 0.5", sat, 0.0f, 1, 0.5f, true, { 200, 100, 50 }, { 162, 112, 87 }, 0.0f },
    });
    // Per-pixel masks: even columns change, odd ones don't.
    auto mod = withAmount<ImageModSaturation>(0.0f, 1);
    auto img = curveTestImage<FlexImage8>({{200, 100, 50}, {200, 100, 50}});
    CurveTestStripeMask stripes;
    ImageModApplyContext context = maskContext(&stripes);
    mod->apply(img.get(), &context);
    EXPECT_EQ(img->data[0], 124);
    EXPECT_EQ(img->data[3], 200);
}

TEST(TonalSaturation, GreyAndFourChannelImages)
{
    // Version 2 needs three channels; a grey image is left alone. Version 1 anchors on channel 0.
    for (int32_t version : {1, 2}) {
        auto mod = withAmount<ImageModSaturation>(0.3f, version);
        FlexImageFloat grey(3, 1, 1);
        for (int32_t i = 0; i < 3; ++i)
            grey.data[i] = 77.0f;
        mod->apply(&grey, nullptr);
        EXPECT_EQ(grey.data[2], 77.0f);
    }
    auto mod = withAmount<ImageModSaturation>(0.0f);
    auto rgba = curveTestImage<FlexImage8>({{255, 0, 0, 200}}, 4);
    mod->apply(rgba.get(), nullptr);
    EXPECT_EQ(rgba->data[0], 139);
    EXPECT_EQ(rgba->data[3], 200);
}

TEST(TonalExposure, FloatAndIntegerGammaAndMask)
{
    const float lo = 0.0999902f, hi = 254.9000098f;
    expectCases({
        // Exponent 2 from a floored black; darkening from a capped white, then saturation towards Y
        // with factor 0.5^0.4.
        { "brighter", expo, 1.5f, -1, -1.0f, false, { 0, 127.5f, 255 }, { lo, 191.25f, 255 }, 1e-3f },
        { "darker", expo, 0.5f, -1, -1.0f, false, { 255, 127.5f, 0 },
          { 220.694185f, 75.829567f, 27.516102f }, 1e-3f },
        { "capped white", expo, 0.5f, -1, -1.0f, false, { 255, 255, 255 }, { hi, hi, hi }, 1e-3f },
        // 8-bit: darkening blacks out every channel; brightening whitens everything that is not black.
        { "darker", expo, 0.9f, -1, -1.0f, true, { 255, 128, 1 }, { 0, 0, 0 }, 0.0f },
        { "brighter", expo, 1.1f, -1, -1.0f, true, { 0, 1, 254 }, { 0, 255, 255 }, 0.0f },
        { "mask 0", expo, 2.0f, -1, 0.0f, false, { 10, 20, 30 }, { 10, 20, 30 }, 0.0f },
        { "mask 0", expo, 2.0f, -1, 0.0f, true, { 10, 20, 30 }, { 10, 20, 30 }, 0.0f },
        // Amount 2 at mask 0.5 acts as 1.5.
        { "mask 0.5", expo, 2.0f, -1, 0.5f, false, { 0, 127.5f, 255 }, { lo, 191.25f, 255 }, 1e-3f },
    });
}

TEST(TonalGamma, VersionsDepthsAndNoMask)
{
    const float lo = 0.0999902f, hi = 254.9000098f;
    expectCases({
        // Float version 2 caps white and floors black.
        { "v2 darker", gam, 0.5f, -1, -1.0f, false, { 255, 127.5f, 0 }, { hi, 63.75f, 0 }, 1e-3f },
        { "v2 brighter", gam, 1.5f, -1, -1.0f, false, { 0, 127.5f, 255 }, { lo, 191.25f, 255 }, 1e-3f },
        // Float version 1 is a plain power: white and black stay exactly.
        { "v1 brighter", gam, 1.5f, 1, -1.0f, false, { 0, 63.75f, 255 }, { 0, 127.5f, 255 }, 1e-3f },
        { "v1 darker", gam, 0.5f, 1, -1.0f, false, { 0, 127.5f, 255 }, { 0, 63.75f, 255 }, 1e-4f },
        // 8-bit integer division is kept. Version 2 below 1: black everywhere, white included;
        // above 1: black stays, the rest goes white.
        { "v2 darker", gam, 0.5f, -1, -1.0f, true, { 255, 128, 0 }, { 0, 0, 0 }, 0.0f },
        { "v2 brighter", gam, 1.5f, -1, -1.0f, true, { 0, 1, 200 }, { 0, 255, 255 }, 0.0f },
        // Version 1: only white survives; exponent 0 (Amount 2) makes every channel white.
        { "v1 darker", gam, 0.5f, 1, -1.0f, true, { 255, 254, 0 }, { 255, 0, 0 }, 0.0f },
        { "v1 exponent 0", gam, 2.0f, 1, -1.0f, true, { 255, 254, 0 }, { 255, 255, 255 }, 0.0f },
        // The mask is not read.
        { "mask 0", gam, 1.5f, 1, 0.0f, false, { 0, 63.75f, 255 }, { 0, 127.5f, 255 }, 1e-3f },
    });
}

TEST(TonalBrightness, FloatInterpolatesEightBitReadsTheEnds)
{
    expectCases({
        // Amount 1.5 lifts black to half: the curve runs from (0, 0.5) to (1, 1).
        { "lift", bri, 1.5f, -1, -1.0f, false, { 0, 127.5f, 255 }, { 127.5f, 191.25f, 255 }, 0.05f },
        // Amount 0.5 lowers white to half; values beyond the scale read the end entries.
        { "lower", bri, 0.5f, -1, -1.0f, false, { 0, 200, 255 }, { 0, 100, 127.5f }, 0.05f },
        { "beyond", bri, 0.5f, -1, -1.0f, false, { -20, 254.99998f, 300 }, { 0, 127.5f, 127.5f }, 0.05f },
        // 8-bit: every value but 255 reads entry 0, so lowering white turns everything else black.
        { "lower", bri, 0.5f, -1, -1.0f, true, { 0, 200, 255 }, { 0, 0, 127 }, 0.0f },
        { "lift", bri, 1.5f, -1, -1.0f, true, { 0, 100, 255 }, { 127, 127, 255 }, 0.0f },
        { "mask 0", bri, 1.5f, -1, 0.0f, false, { 0, 100, 255 }, { 0, 100, 255 }, 0.0f },
        { "mask 0", bri, 1.5f, -1, 0.0f, true, { 0, 100, 255 }, { 0, 100, 255 }, 0.0f },
        // Rule B: strength 0.5 blends half the lift in.
        { "mask 0.5", bri, 1.5f, -1, 0.5f, false, { 0, 0, 0 }, { 63.75f, 63.75f, 63.75f }, 0.05f },
        { "mask 0.5", bri, 1.5f, -1, 0.5f, true, { 0, 100, 255 }, { 63, 113, 255 }, 0.0f },
    });
}
