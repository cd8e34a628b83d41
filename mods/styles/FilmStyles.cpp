#include "mods/styles/CameraStyles.h"
#include "mods/styles/StyleStages.h"

#include "core/GrowingArray.h"

#include <algorithm>
#include <cstdio>

// Black-and-white, toned and faded-film looks. Most run ImageModColorcross before they drain the
// colour, so Variation changes how each hue turns into grey, like a different lens filter.

using namespace StyleK;

namespace {

float offsetOf(float v, double k, double p)
{
    return ImageModStyle::wave(v, k, p) * 49.0f + 50.0f;
}

// Saturation that reaches grey at a of 1 and never turns negative past it.
float drained(float a, float share)
{
    return std::max(1.0f - a * share, 0.0f);
}

} // namespace

// --- Silver -------------------------------------------------------------------------------------

ImageModSilver::ImageModSilver() : ImageModStyle("Silver", "Silver Camera")
{
    describe("Not color, but not quite monochromatic either.", 2);
}

void ImageModSilver::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    StyleStages s(image, context);
    s.contrast(a * 0.34800005f + 1.0f, 40.0f, 2);
    char curve[64];
    std::snprintf(curve, sizeof curve, "0 0 .5 %f 1 1", double(wave(v, k3, 0.6) * 0.30000001192092896f + 0.5000000149011612f));
    s.colorizeCurve(a * 0.35f, curve, {170.0f, 160.0f, 140.0f});
    s.brightness(a * 0.04f + 1.0f);
    s.gamma(a * 0.05f + 1.0f);
    s.saturation(drained(a, 0.8f));
    s.colorcross(a * 0.5f, v);
}

// --- Mono ---------------------------------------------------------------------------------------

ImageModMono::ImageModMono() : ImageModStyle("Mono", "Mono Camera")
{
    describe("Smoothly filtered black and white, for those times when less is more.", 2);
}

void ImageModMono::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    // Version 2 walks the filter four times more slowly, so a remix step is a gentler change.
    const float input = version >= 2 ? v * 0.25f + 970.699f : v + 970.699f;
    StyleStages s(image, context);
    s.colorcross(a, input);
    s.saturation(drained(a, 1.0f));
    s.luminanceContrast(a * (0.2f + 0.08f * wave(v, k4, 0.5)) + 1.0f, 110.0f);
}

// --- Matte --------------------------------------------------------------------------------------

ImageModMatte::ImageModMatte() : ImageModStyle("Matte", "Matte Camera")
{
    describe("Not so glossy.", 4);
}

void ImageModMatte::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    // Versions before 4 lifted the blacks less and ran at the phase 2 v + 600.
    const bool older = version < 4;
    const float phase = older ? 2.0f * v + 600.0f : v;
    StyleStages s(image, context);
    s.luminanceCurve(a * 0.6f, "0.000000 0.000000 0.241304 0.000000 0.491304 0.439130 1.000000 1.000000");
    s.rgbCombinedCurve(a * (0.75f + 0.15f * wave(phase, k1, 0.2)),
                       older ? "0.000000 0.186957 0.247826 0.204348 1.000000 1.000000"
                             : "0.000000 0.286956 0.600000 0.597826 1.000000 1.000000");
    s.noise(a * 10.0f, 5.0f, offsetOf(phase, k2, 0.4));
    s.luminanceContrast(1.0f - a * (0.12f + 0.05f * wave(phase, k4, 1.0)), 128.0f);
}

// --- Helga --------------------------------------------------------------------------------------

ImageModHelga::ImageModHelga() : ImageModStyle("Helga", "Helga Camera")
{
    describe("A toy camera feel with washed-out highlights and old-school vignetting.", 2, 6.0f);
}

void ImageModHelga::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    // A cheap lens: crossed colours, lifted blacks, highlights pushed up until they wash out,
    // heavy dark corners and a soft image.
    StyleStages s(image, context);
    s.colorcross(a * 0.6f, v);
    s.rgbCombinedCurve(a * 0.8f, "0.000000 0.125628 0.163317 0.145729 0.332915 0.560301 0.563442 0.853015 1.000000 "
                                 "1.000000");
    s.luminanceCurve(a * 0.6f, "0.000000 0.091216 0.179054 0.162162 0.324324 0.358108 0.733108 0.574324 1.000000 "
                               "1.000000");
    s.saturation(a * 0.1f + 1.0f);
    s.vignette(a * (0.45f + 0.1f * wave(v, k7, 0.8)), 25.0f, 0.9f);
    s.blur(a * 6.0f, 50.0f);
}

// --- Autochrome ---------------------------------------------------------------------------------

ImageModAutochrome::ImageModAutochrome() : ImageModStyle("Autochrome", "Autochrome Camera")
{
    describe("One of the first color photo processes from the early 1900s.", 3, 10.0f);
}

void ImageModAutochrome::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a,
                                   float v) const
{
    // Soft, pastel and grainy: a slow plate behind a screen of dyed starch grains, so colours are
    // muted and uneven, shadows go violet, highlights straw, and the frame falls off.
    StyleStages s(image, context);
    s.blur(a * 10.0f, 70.0f);
    s.colorcross(a * 0.25f, v);
    s.saturation(drained(a, 0.35f));
    s.colorizeCurve(a * 0.6f, "0 .4 .5 .5 1 .62", {200.0f, 170.0f, 110.0f});
    s.rgbCombinedCurve(a * 0.8f, "0 .08 .5 .52 1 .92");
    s.discolor(a * 0.22f, offsetOf(v, k5, 0.9), {180.0f, 200.0f, 120.0f}, 0.8f, 1.0f);
    s.noise(a * 22.0f, 12.0f, offsetOf(v, k2, 0.3), 2);
    s.vignette(a * 0.35f, 20.0f, 1.0f);
}

// --- 1974 ---------------------------------------------------------------------------------------

ImageMod1974::ImageMod1974() : ImageModStyle("1974", "1974 Camera")
{
    describe("Dad's old camera. Faded, tinted, and hip.", 3, 5.0f);
}

void ImageMod1974::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    StyleStages s(image, context);
    s.blur(a * 5.0f, 50.0f);
    s.luminanceCurve(a * 0.7f, "0.000000 0.000000 0.269565 0.101087 0.369565 0.297826 0.478261 0.578261 0.691304 "
                               "0.806522 1.000000 1.000000");
    s.colorizeCurve(a * 0.5f,
                    "0.000000 0.627907 0.119198 0.734012 0.546413 0.648256 0.798523 0.518895 1.000000 0.500000",
                    {200.0f, 130.0f, 80.0f});
    s.rgbCombinedCurve(a * 0.8f, "0.000000 0.165217 1.000000 0.921739");
    s.colorcross(a * 0.3f, v);
    s.noise(a * 14.0f, 25.0f, offsetOf(v, k1, 0.4));
    s.noise(a * 8.0f, 55.0f, offsetOf(v, k2, 1.4), 2);
    s.luminanceContrast(a * 0.15f + 1.0f, 100.0f);
    s.colorCorrector(a * 0.5f, {110.0f, 128.0f, 150.0f}, {140.0f, 128.0f, 112.0f}, {150.0f, 136.0f, 100.0f});
    s.rgbCurves(a * 0.8f, nullptr, nullptr, "0.000000 0.152174 0.373913 0.271740 1.000000 1.000000");
    s.gamma(a * 0.05f * wave(v, k6, 0.9) + 1.0f);
    s.saturation(drained(a, 0.2f));
    s.luminanceContrast(1.0f - a * 0.08f, 128.0f);
    s.rgbCombinedCurve(a * 0.4f, "0.000000 0.122449 0.176020 0.209184 0.438775 0.448980 0.709184 0.755102 1.000000 "
                                 "1.000000");
    s.colorizeCurve(a * 0.25f, "0.000000 1.000000 0.666000 0.475824 1.000000 0.390110", {90.0f, 110.0f, 140.0f});
    s.noise(a * 6.0f, 10.0f, offsetOf(v, k3, 2.1));
}

// --- 1962 ---------------------------------------------------------------------------------------

ImageMod1962::ImageMod1962() : ImageModStyle("1962", "1962 Camera")
{
    describe("Dynamic, high-contrast black and whites from the photojournalism of a bygone era.", 4, 5.0f);
}

void ImageMod1962::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    StyleStages s(image, context);
    if (version >= 3) {
        // A filtered grey, softened a little, grain in two sizes and contrast in two steps.
        s.colorcross(a, v);
        s.saturation(drained(a, 1.0f));
        s.blur(a * 5.0f, 50.0f);
        s.noise(a * 15.0f, 20.0f, offsetOf(v, k1, 0.7));
        s.contrast(a * 0.3f + 1.0f);
        s.contrast(a * 0.05f * (wave(v, k4, 0.3) + 1.0f) + 1.0f);
        s.rgbCombinedCurve(a, "0.000000 0.082609 0.278261 0.156522 0.500000 0.493478 1.000000 1.000000");
        s.noise(a * 8.0f, 50.0f, offsetOf(v, k2, 1.9), 2);
        return;
    }
    // Versions 1 and 2: a plain grey with the contrast first and lifted blacks.
    s.contrast(a * (0.45f + 0.1f * wave(v, k4, 0.3)) + 1.0f);
    s.saturation(drained(a, 1.0f));
    s.luminanceCurve(a, "0.000000 0.081633 1.000000 1.000000");
    s.noise(a * 18.0f, 20.0f, offsetOf(v, k1, 0.7));
}

// --- 1958 ---------------------------------------------------------------------------------------

ImageMod1958::ImageMod1958() : ImageModStyle("1958", "1958 Camera")
{
    describe("Those nostalgic maroon hues from Christmases decked with cowboy hats and BB guns.", 2, 6.0f);
}

void ImageMod1958::runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const
{
    StyleStages s(image, context);
    s.luminanceCurve(a, "0.000000 0.152174 0.143478 0.241304 0.208696 0.465217 1.000000 0.756522 1.000000 1.000000");
    s.colorizeCurve(a * 0.6f, "0.000000 0.556522 0.360870 0.621739 0.680435 0.389130 1.000000 0.347826",
                    {128.0f, 40.0f + 10.0f * wave(v, k3, 1.2), 50.0f});
    s.luminanceContrast(a * 0.2f + 1.0f, wave(v, k4, 0.8) * 20.0f + 100.0f);
    s.saturation(drained(a, 0.25f));
    s.blur(a * 6.0f, 60.0f);
}

// --- the section --------------------------------------------------------------------------------

std::vector<std::unique_ptr<ImageMod>> buildStyleSection()
{
    std::vector<std::unique_ptr<ImageMod>> list;
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageMod1958>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageMod1962>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageMod1974>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageMod1983>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModAutochrome>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModColorcross>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModHelga>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModInstant>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModItaliano>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModLolo>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModMagazine>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModMatte>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModMono>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModPoolside>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModSilver>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModSkater>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModWedding>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModHipster>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModPlastic>()));
    appendGrowing(list, std::unique_ptr<ImageMod>(std::make_unique<ImageModSaloon>()));
    return list;
}
