#include "mods/styles/CameraStyles.h"
#include "mods/styles/StyleStages.h"

#include <algorithm>

// Colour looks. Every stage strength is a function of Amount a; the Variation v enters through
// cosines with the shared constants of StyleK, so neighbouring values give neighbouring looks.
// Noise and Discolor take their Offset from v too, so a new Variation also moves the grain.

using namespace StyleK;

namespace {

// A grain or cloud offset on 0..100 that walks with v.
float offsetOf(float v, double k, double p)
{
    return ImageModStyle::wave(v, k, p) * 49.0f + 50.0f;
}

// The four curves shared by Plastic and 1983: red, green, blue, then the common one.
constexpr const char* kPlasticRed = "0.000000 0.000000 0.200276 0.178177 0.665746 0.897790 1.000000 1.000000";
constexpr const char* kPlasticGreen = "0.000000 0.000000 0.825967 0.820442 1.000000 1.000000";
constexpr const char* kPlasticBlue = "0.000000 0.000000 0.616022 0.732044 1.000000 1.000000";
constexpr const char* kPlasticRgb =
    "0.000000 0.000000 0.241758 0.000000 0.394231 0.379121 0.766484 0.824176 1.000000 1.000000";

} // namespace

// --- Saloon -------------------------------------------------------------------------------------

namespace {
constexpr float kSaloonMaxLift = 0.25f;
} // namespace

ImageModSaloon::ImageModSaloon() : ImageModStyle("Saloon", "Saloon Camera")
{
    describe("Old-timey fun with a white vignette.", 1);
}

void ImageModSaloon::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    StyleStages s(image, context);
    const float d = wave(v, k6, 1.5789999961853027) * 0.32499998807907104f - 0.125f;
    // The lift is capped at 0.25: near the crest of the wave (Variation 640, 1234.5, ...) it reached
    // 0.495, an exponent near 2 that folds everything above the midtones into the top few levels,
    // and the white vignette and the lifting curve after it then washed a bright photo to white.
    // Below the cap the looks are unchanged.
    s.gamma(std::min(d + 0.29499996f, kSaloonMaxLift) * a + 1.0f);
    s.vignette(-0.8f * a, wave(v, k7, 1.2899999618530273) * 17.5f + 2.5f + 37.0f, 0.8420000076293945f);
    s.luminanceCurve(a, "0.000000 0.190850 0.205533 0.231665 0.308529 0.481292 0.785465 0.919104 1.000000 1.000000");
    s.dye(a, {255.0f, 212.925f, 178.5f}, 1);
    s.saturation(a * wave(v, k8, 1.340000033378601) * 0.20000000298023224f + 1.0f, 1);
}

// --- Plastic ------------------------------------------------------------------------------------

ImageModPlastic::ImageModPlastic() : ImageModStyle("Plastic", "Plastic Camera")
{
    describe("The cheapest color camera we could find.", 1);
}

void ImageModPlastic::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    StyleStages s(image, context);
    s.discolor(a * (0.45f + 0.15f * wave(v, k5, 0.7)), offsetOf(v, k1, 0.3), {201.0f, 180.0f, 103.0f}, 1.2f,
               0.8f + 0.3f * wave(v, k4, 1.1));
    s.gamma(a * (0.08f + 0.06f * wave(v, k6, 0.5)) + 1.0f);
    s.vignette(a * (0.35f + 0.1f * wave(v, k7, 1.2)), 35.0f, 0.95f);
    s.rgbCurves(a, kPlasticRed, kPlasticGreen, kPlasticBlue, kPlasticRgb);
    s.splitTone(a * 0.2f, {30.0f, 25.0f, 60.0f}, {255.0f, 240.0f, 190.0f});
    s.contrast(a * 0.15f + 1.0f);
    s.noise(a * 22.0f, 30.0f, offsetOf(v, k2, 0.8));
}

// --- Hipster ------------------------------------------------------------------------------------

ImageModHipster::ImageModHipster() : ImageModStyle("Hipster", "Hipster Camera")
{
    describe("From Brooklyn, with love.", 1);
}

void ImageModHipster::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    StyleStages s(image, context);
    s.gamma(a * (0.1f + 0.05f * wave(v, k6, 1.0)) + 1.0f);
    s.rgbCombinedCurve(a * 0.7f, "0.000000 0.000000 0.117391 0.000000 0.239130 0.291304 0.452174 0.539130 0.695652 "
                          "0.736956 1.000000 0.843478 1.000000 1.000000");
    s.vignette(a * (0.35f + 0.1f * wave(v, k7, 0.4)), 40.0f, 0.9f);
    s.rgbCurves(a * 0.6f, "0.000000 0.000000 0.188679 0.070755 0.686321 0.964623 1.000000 1.000000",
                "0.000000 0.000000 0.108491 0.165094 0.851415 1.000000 1.000000 1.000000",
                "0.000000 0.000000 0.259434 0.018868 0.877358 1.000000 1.000000 1.000000");
    s.saturation(a * (-0.15f + 0.1f * wave(v, k8, 2.0)) + 1.0f);
    s.noise(a * 18.0f, 25.0f, offsetOf(v, k2, 0.1));
    s.noise(a * 10.0f, 60.0f, offsetOf(v, k1, 2.2), 2);
    s.colorizeCurve(a, "0.000000 0.578261 0.302174 0.543478 0.517391 0.491304 1.000000 0.500000",
                    {101.4f, 223.8f, 76.56f});
}

// --- Wedding ------------------------------------------------------------------------------------

ImageModWedding::ImageModWedding() : ImageModStyle("Wedding", "Wedding Camera")
{
    describe("The perfect SLR look for the perfect day.", 1);
}

void ImageModWedding::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    StyleStages s(image, context);
    s.gamma(a * (0.1f + 0.06f * wave(v, 0.9549999833106995, 0.3)) + 1.0f);
    s.saturation(a * (-0.1f + 0.06f * wave(v, 0.7110000252723, 1.1)) + 1.0f);
    // The curve lifts the midtones hard; at half strength it brightens without losing the whites.
    s.rgbCombinedCurve(a * 0.5f,
                       "0.000000 0.000000 0.167392 0.063043 0.404348 0.752174 0.730435 1.000000 1.000000 1.000000");
    s.vignette(a * (0.3f + 0.1f * wave(v, 0.5370000004768372, 2.0)), 30.0f, 1.0f);
}

// --- Skater -------------------------------------------------------------------------------------

ImageModSkater::ImageModSkater() : ImageModStyle("Skater", "Skater Camera")
{
    describe("Skinned knees and noisy photos.", 3, 10.0f);
}

void ImageModSkater::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    static constexpr const char* red = "0.000000 0.086735 0.438775 0.132653 0.561224 0.923469 1.000000 1.000000";
    static constexpr const char* green = "0.000000 0.102041 0.377551 0.142857 0.556122 0.859694 1.000000 1.000000";
    static constexpr const char* blue = "0.000000 0.000000 0.382653 0.112245 0.594388 0.849490 1.000000 1.000000";
    StyleStages s(image, context);
    const float scale = wave(v, k2, 0.9) * 6.5f + 26.5f;
    // Version 3 softens the lens before the grain; older tiles keep the sharp look with a second,
    // coarser grain.
    if (version >= 3) {
        s.blur(a * 10.0f, 60.0f);
        s.gamma(a * (0.06f + 0.06f * wave(v, k6, 0.2)) + 1.0f);
        s.vignette(a * (0.4f + 0.1f * wave(v, k7, 1.0)), 45.0f, 0.9f);
        s.rgbCurves(a * 0.5f, red, green, blue);
        s.saturation(a * (0.15f + 0.08f * wave(v, k8, 0.6)) + 1.0f);
        s.noise(a * 24.0f, scale, offsetOf(v, k1, 0.5));
        return;
    }
    s.gamma(a * (0.06f + 0.06f * wave(v, k6, 0.2)) + 1.0f);
    s.vignette(a * (0.4f + 0.1f * wave(v, k7, 1.0)), 45.0f, 0.9f);
    s.rgbCurves(a * 0.5f, red, green, blue);
    s.saturation(a * (0.15f + 0.08f * wave(v, k8, 0.6)) + 1.0f);
    s.noise(a * 20.0f, scale, offsetOf(v, k1, 0.5));
    s.noise(a * 10.0f, scale * 2.0f, offsetOf(v, k3, 1.5), 2);
}

// --- Poolside -----------------------------------------------------------------------------------

ImageModPoolside::ImageModPoolside() : ImageModStyle("Poolside", "Poolside Camera")
{
    describe("Lazy days of summer made hazier, softer.", 2);
}

void ImageModPoolside::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a,
                                 float v) const
{
    StyleStages s(image, context);
    const float w = wave(v, k9, 1.2829999923706055);
    s.gamma(a * (0.12f + 0.06f * w) + 1.0f);
    s.saturation(a * (-0.2f + 0.08f * w) + 1.0f);
    // Version 1 also darkened the corners.
    if (version < 2)
        s.vignette(a * 0.35f, 30.0f, 1.0f);
    s.rgbCurves(a * 0.6f, "0.000000 0.000000 0.361751 0.467742 1.000000 1.000000", "0.000000 0.000000 1.000000 1.000000",
                "0.000000 0.169725 0.660550 0.555046 1.000000 1.000000",
                "0.000000 0.110091 0.444954 0.802752 1.000000 1.000000");
}

// --- Magazine -----------------------------------------------------------------------------------

ImageModMagazine::ImageModMagazine() : ImageModStyle("Magazine", "Magazine Camera")
{
    describe("Rich tones and contrast perfect for glossy pages.", 3);
}

void ImageModMagazine::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a,
                                 float v) const
{
    StyleStages s(image, context);
    const float center = wave(v, k4, 0.5) * 30.0f + 60.0f;
    // Version 1 set the contrast before the colouring, later ones after the curve; version 3
    // dropped the warm filter.
    if (version < 2)
        s.luminanceContrast(a * 0.6f + 1.0f, center);
    s.colorizeCurve(a * 0.6f,
                    "0.000000 0.500000 0.111511 0.660837 0.471223 0.708374 0.773381 0.488424 1.000000 0.500000",
                    {124.0f, 116.0f, 75.0f});
    if (version != 3)
        s.colorFilter(a * 0.2f, {242.0f, 185.0f, 71.0f});
    s.luminanceCurve(a, "0.000000 0.000000 0.146341 0.146341 0.439024 0.371951 0.695122 0.560976 0.878049 0.790650 "
                        "1.000000 1.000000");
    if (version >= 2)
        s.luminanceContrast(a * 0.6f + 1.0f, center);
    s.saturation(a * (0.2f + 0.08f * wave(v, k8, 1.0)) + 1.0f);
}

// --- Lolo ---------------------------------------------------------------------------------------

ImageModLolo::ImageModLolo() : ImageModStyle("Lolo", "Lolo Camera")
{
    describe("Colorful, vibrant photos shot from the hip.", 1);
}

void ImageModLolo::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    StyleStages s(image, context);
    s.luminanceContrast(a * 0.43956006f + 1.0f, wave(v, k3, 0.9) * 60.0f + 84.8159f);
    s.saturation(a * (0.35f + 0.1f * wave(v, k8, 0.2)) + 1.0f);
    s.colorizeCurve(a * 0.5f, "0.000000 0.500000 0.457143 0.702439 1.000000 0.500000",
                    {255.0f, 120.0f + 40.0f * wave(v, k2, 1.0), 60.0f});
    s.contrast(a * 0.1f + 1.0f);
}

// --- Italiano -----------------------------------------------------------------------------------

ImageModItaliano::ImageModItaliano() : ImageModStyle("Italiano", "Italiano Camera")
{
    describe("Shades of coffee for Tuscan landscapes.", 2);
}

void ImageModItaliano::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a,
                                 float v) const
{
    // Red lifted most, blue least, under a faded common curve: warm browns; then a little coffee
    // dye and calmer colour.
    StyleStages s(image, context);
    s.gamma(a * (0.05f + 0.05f * wave(v, k6, 0.7)) + 1.0f);
    s.rgbCurves(a, "0.000000 0.000000 0.124046 0.230916 0.599237 0.782443 1.000000 1.000000",
                "0.000000 0.000000 0.141504 0.192748 0.420908 0.528909 1.000000 1.000000",
                "0.000000 0.000000 0.219466 0.211832 0.500000 0.561069 1.000000 1.000000",
                "0.000000 0.111111 0.215678 0.141211 0.324685 0.524358 0.599631 0.760897 1.000000 0.967593");
    s.dye(a * (0.18f + 0.06f * wave(v, k3, 0.4)), {160.0f, 105.0f, 60.0f}, 2);
    s.saturation(1.0f - a * 0.12f);
    s.vignette(a * 0.3f, 35.0f, 0.95f);
}

// --- Instant ------------------------------------------------------------------------------------

ImageModInstant::ImageModInstant() : ImageModStyle("Instant", "Instant Camera")
{
    describe("No need to shake this instant-developing film.", 2, 8.0f);
}

void ImageModInstant::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a,
                                float v) const
{
    StyleStages s(image, context);
    s.gamma(a * (0.08f + 0.05f * wave(v, k6, 1.9)) + 1.0f);
    s.luminanceCurve(a * 0.7f, "0.000000 0.000000 0.313043 0.152174 0.404348 0.597826 1.000000 1.000000");
    s.vignette(a * 0.287888f, 40.0f + 15.0f * wave(v, k7, 0.3), 0.9f);
    s.colorFilter(a * 0.15f, {255.0f, 225.0f + 10.0f * wave(v, k3, 2.4), 170.0f});
    s.discolor(a * 0.18f, offsetOf(v, k1, 1.7), {255.0f, 190.0f, 130.0f}, 1.3f, 1.0f);
    s.luminanceCurve(a, "0.000000 0.141304 0.278261 0.157826 0.528261 0.652174 1.000000 1.000000");
    s.blur(a * 8.0f, 58.0f);
}

// --- 1983 ---------------------------------------------------------------------------------------

ImageMod1983::ImageMod1983() : ImageModStyle("1983", "1983 Camera")
{
    describe("Think underground breakdance competition.", 3);
}

void ImageMod1983::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    // The plastic camera's curves pushed harder: punchy contrast and colour, magenta shadows, a
    // dark frame and grain.
    StyleStages s(image, context);
    s.gamma(a * 0.1f + 1.0f);
    // The common curve crushes everything below a quarter; here it only deepens the shadows.
    s.rgbCurves(a * 0.7f, kPlasticRed, kPlasticGreen, kPlasticBlue);
    s.rgbCurves(a * 0.3f, nullptr, nullptr, nullptr, kPlasticRgb);
    s.contrast(a * 0.12f + 1.0f);
    s.saturation(a * (0.2f + 0.08f * wave(v, k8, 0.9)) + 1.0f);
    s.splitTone(a * 0.18f, {60.0f, 0.0f, 90.0f}, {255.0f, 235.0f, 150.0f + 30.0f * wave(v, k3, 0.2)});
    s.vignette(a * 0.25f, 35.0f, 0.9f);
    s.noise(a * 20.0f, 35.0f, offsetOf(v, k2, 1.3));
}
