#include "core/ModCatalogue.h"

#include "core/ImageModCompound.h"
#include "core/ImageModHSVSelector.h"
#include "core/ImageModHueSelector.h"
#include "core/ImageModLuminanceSelector.h"
#include "core/ImageModSpotSelector.h"
#include "core/ModExtraFactories.h"
#include "mods/ChannelMixerMods.h"
#include "mods/ColorCastMods.h"
#include "mods/ColorizeCurveMods.h"
#include "mods/ImageModAdvancedContrast.h"
#include "mods/ImageModAspectRatio.h"
#include "mods/ImageModAutoEnhance.h"
#include "mods/ImageModBlur.h"
#include "mods/ImageModBorderFile.h"
#include "mods/ImageModBorderFillout.h"
#include "mods/ImageModBorderPlain.h"
#include "mods/ImageModBrightness.h"
#include "mods/ImageModColorizeCurve.h"
#include "mods/ImageModComponentCurve.h"
#include "mods/ImageModConstrainSize.h"
#include "mods/ImageModContrast.h"
#include "mods/ImageModContrastAndSaturation.h"
#include "mods/ImageModCrop.h"
#include "mods/ImageModDiscolor.h"
#include "mods/ImageModDynamics.h"
#include "mods/ImageModExactSize.h"
#include "mods/ImageModExposure.h"
#include "mods/ImageModExposureCurve.h"
#include "mods/ImageModGammaLegacy.h"
#include "mods/ImageModGrainFast.h"
#include "mods/ImageModHighlights.h"
#include "mods/ImageModHueBrightness.h"
#include "mods/ImageModHueShift.h"
#include "mods/ImageModImageOverlay.h"
#include "mods/ImageModLabCurves.h"
#include "mods/ImageModLensFlare.h"
#include "mods/ImageModLightleak.h"
#include "mods/ImageModLuminanceContrast.h"
#include "mods/ImageModLuminanceCurve.h"
#include "mods/ImageModMultiTool.h"
#include "mods/ImageModNoise.h"
#include "mods/ImageModRGBCombinedCurve.h"
#include "mods/ImageModRGBCurves.h"
#include "mods/ImageModRadialBlur.h"
#include "mods/ImageModSaturation.h"
#include "mods/ImageModSaturationCurve.h"
#include "mods/ImageModSelectiveColor.h"
#include "mods/ImageModShadows.h"
#include "mods/ImageModShadowsMidsHighs.h"
#include "mods/ImageModSharpen.h"
#include "mods/ImageModSplitTone.h"
#include "mods/ImageModStuckPixel.h"
#include "mods/ImageModTextOverlay.h"
#include "mods/ImageModToneCurve.h"
#include "mods/ImageModVignette.h"
#include "mods/ImageModWhitePoint.h"
#include "mods/styles/CameraStyles.h"

#include <iterator>

namespace {

template <class T>
std::unique_ptr<ImageMod> make()
{
    return std::make_unique<T>();
}

// One factory per built-in image border: a row holds a plain function.
template <int32_t Style>
std::unique_ptr<ImageMod> makeBorderFile()
{
    static_assert(Style >= 0 && Style < kBorderFileStyleCount);
    return std::make_unique<ImageModBorderFile>(Style);
}

#define VANTREL_BORDER_ROW(i) { kBorderFileStyles[i].name, kBorderFileStyles[i].name, 1, kBuiltInBorderTip, makeBorderFile<i> }

const ModCatalogueRow kBasics[] = {
    { "Auto Exposure", "Auto Exposure", 1,
        "Automatically detect and fix exposure issues. The Amount slider increases or decreases the strength of the "
        "effect.",
        make<ImageModAutoEnhance> },
    { "Exposure", "Exposure", 1, "Adjust exposure, which affects the brightness of an image.", make<ImageModExposure> },
    { "Contrast", "Contrast", 2, "Adjust contrast between the light and dark regions of your image.", make<ImageModContrast> },
    { "Saturation", "Saturation", 2, "Adjust color intensity.", make<ImageModSaturation> },
    { "White Point", "White Balance", 1,
        "Correct the white balance of an image by choosing a color from the image that should be a neutral white or grey.",
        make<ImageModWhitePoint> },
    { "Colorize Temperature", "Temperature", 4, "Adjust tones to be warmer or cooler.", make<ImageModColorTemperature> },
    { "Multi Tool", "Multi Tool", 3, "Adjust exposure, contrast, and saturation simultaneously.", make<ImageModMultiTool> },
};

const ModCatalogueRow kAdvancedLight[] = {
    { "Tone Curve", "Tone Curve", 1, "Adjust brightness values using a traditional curve editor.", make<ImageModToneCurve> },
    { "Exposure Curve", "Exposure Curve", 2, "Adjust gamma using a horizontal curve editor.", make<ImageModExposureCurve> },
    { "Advanced Contrast", "Advanced Contrast", 1,
        "Adjust contrast based on different brightness algorithms. The Contrast Origin slider determines the brightness "
        "value from which the contrast emanates.",
        make<ImageModAdvancedContrast> },
    { "Shadows/Highlights", "Shadows/Highlights", 1,
        "Separately adjust the brightness of dark, midtone, and light areas of an image.", make<ImageModShadowsMidsHighs> },
    { "Dynamics", "Dynamics", 1,
        "Adjust the dynamic range of shadows and highlights relative to pixels within a given radius.",
        make<ImageModDynamics> },
    { "Brightness", "Brightness", 1, "Adjust overall image brightness.", make<ImageModBrightness> },
};

const ModCatalogueRow kAdvancedColor[] = {
    { "Colorize Basic", "Coloring", 1, "Adjust the overall color.", make<ImageModColorizeNoCurve> },
    { "Colorize Curve", "Coloring Curve", 2, "Adjust the color of a specified luminance region.", make<ImageModColorizeCurve> },
    { "RGB Curves", "R,G,B Curves", 1, "Adjust separate curves for red, green, and blue components.", make<ImageModRGBCurves> },
    { "Color Wheels", "Color Wheels", 1,
        "Use color wheels to adjust the coloring of shadows, midtones, and highlights.", make<ImageModColorWheels> },
    { "Component Curve", "Component Curve", 1,
        "Adjust a single curve for individual or combined red, green, and blue components.", make<ImageModComponentCurve> },
    { "Hue Shift", "Hue Shift", 2, "Shift selected hues using a curve editor.", make<ImageModHueShift> },
    { "Hue Brightness", "Hue Brightness", 3, "Adjust the brightness of selected hues using a curve editor.",
        make<ImageModHueBrightness> },
    { "Saturation Curve", "Hue Saturation", 3, "Adjust the saturation of selected hues using a curve editor.",
        make<ImageModSaturationCurve> },
    { "Split Tone", "Split Tone", 1, "Create a two-toned image by selecting the lightest and darkest colors.",
        make<ImageModSplitTone> },
    { "Color Balance", "Color Balance", 1,
        "Balance overall color by dragging individual Red, Green, and Blue sliders.", make<ImageModColorBalance> },
    { "Color Mixer", "Color Mixer", 1,
        "Determine how to calculate the output values of the red, green, and blue channels.", make<ImageModChannelMixer> },
    { "Filtered B+W", "Filtered B+W", 1, "Create a greyscale image while filtering for selected hues.",
        make<ImageModFilteredBW> },
};

const ModCatalogueRow kPhotographic[] = {
    { "Vignette", "Vignette", 1,
        "Simulate vignetting around the corners of the image. Falloff and Radius affect the intensity and size of the "
        "effect.",
        make<ImageModVignette> },
    { "Grain", "Grain", 3, "Apply film grain to the image.", make<ImageModGrainFast> },
    { "Sharpen", "Sharpen", 2, "Sharpen the image using the specified amount.", make<ImageModSharpen> },
    { "Blur", "Blur", 1, "Blur the image using the selected blurring method.", make<ImageModBlur> },
    { "Radial Blur", "Circular Blur", 1,
        "Blur in a circle around the edges of an image. Falloff affects how quickly the blur intensity grows as it "
        "gets further from the center of the image.",
        make<ImageModRadialBlur> },
    { "Lightleak", "Light Leak", 1,
        "Discolors your film in oranges and purples where a poorly-made camera accidentally lets light in.",
        make<ImageModLightleak> },
    { "Lens Flare", "Lens Flare", 1,
        "Draw an adjustable lens flare on the image, as appears when a camera is pointed at a bright point of light.",
        make<ImageModLensFlare> },
};

const ModCatalogueRow kMasks[] = {
    { "Spot Mask", "Spot Mask", 1,
        "Place to the left of a tile (or nested group of tiles) to make that tile only affect the chosen spot (with "
        "radius and sharpness).",
        make<ImageModSpotSelector> },
    { "Hue Mask", "Hue Mask", 1,
        "Place to the left of a tile (or nested group of tiles) to make that tile only affect selected hues.",
        make<ImageModHueSelector> },
    { "HSV Mask", "HSV Mask", 1,
        "Place to the left of a tile (or nested group of tiles) to make that tile only affect specified hue, "
        "saturation, and value ranges.",
        make<ImageModHSVSelector> },
    { "Luminance Mask", "Luminance Mask", 1,
        "Place to the left of a tile (or nested group of tiles) to make that tile only affect specific luminance "
        "(brightness) ranges. Use the presets dropdown for common tone ranges.",
        make<ImageModLuminanceSelector> },
};

constexpr const char* kBuiltInBorderTip = "A ready-made border, drawn to fit the image at any size.";
constexpr const char* kBasicBorderTip = "A basic border of any color, with adjustable width dependent on the size "
                                        "of the image and optional rounding.";

const ModCatalogueRow kBorders[] = {
    { "Custom Rounded", "Basic Border", 1, kBasicBorderTip,
        [] { return std::unique_ptr<ImageMod>(std::make_unique<ImageModBorderPlain>(true)); } },
    { "Custom Straight", "Basic Border", 1, kBasicBorderTip,
        [] { return std::unique_ptr<ImageMod>(std::make_unique<ImageModBorderPlain>(false)); } },
    { "Fill Out", "Fill Border", 1, "A border of any color that adds bars to the image to make it the desired aspect ratio.",
        make<ImageModBorderFillout> },
    { "Custom File Border", "Image Border", 1,
        "A border based on an input file that includes transparency where you want the image to show through.",
        make<ImageModBorderFileCustom> },
    VANTREL_BORDER_ROW(0), VANTREL_BORDER_ROW(1), VANTREL_BORDER_ROW(2), VANTREL_BORDER_ROW(3),
    VANTREL_BORDER_ROW(4), VANTREL_BORDER_ROW(5), VANTREL_BORDER_ROW(6), VANTREL_BORDER_ROW(7),
    VANTREL_BORDER_ROW(8), VANTREL_BORDER_ROW(9), VANTREL_BORDER_ROW(10), VANTREL_BORDER_ROW(11),
    VANTREL_BORDER_ROW(12), VANTREL_BORDER_ROW(13),
};
static_assert(kBorderFileStyleCount == 14, "every built-in border has a row");

#undef VANTREL_BORDER_ROW

const ModCatalogueRow kUtility[] = {
    { "Text Overlay", "Text Overlay", 1, "Draw text over your image.", make<ImageModTextOverlay> },
    { "Watermark", "Watermark", 1, "Add a watermark or other overlay to your image.", make<ImageModImageOverlay> },
    { "Dead Pixel", "Dead Pixel", 2,
        "Fix a pixel that is stuck or dead on your camera by blending it with surrounding pixels.",
        make<ImageModStuckPixel> },
    { "Aspect Ratio", "Aspect Ratio", 1, "Specify the desired final aspect ratio for the output image.",
        make<ImageModAspectRatio> },
    { "Output Size Exact", "Exact Size", 1, "Specify exact width and height for the output image.",
        make<ImageModExactSize> },
    { "Output Size", "Maximum Size", 2, "Specify width and height constraints for the output image.",
        make<ImageModConstrainSize> },
};

const ModCatalogueRow kUnlisted[] = {
    { "Luminance Contrast", "Luminance Contrast", 1,
        "Adjust contrast based on luminance, which preserves saturation. The Contrast Origin slider determines the "
        "brightness value from which the contrast emanates.",
        make<ImageModLuminanceContrast> },
    { "Shadows", "Shadows", 1, "Adjust the brightness of only the darker portions of an image.", make<ImageModShadows> },
    { "Highlights", "Highlights", 1, "Adjust the brightness of only the lighter portions of an image.",
        make<ImageModHighlights> },
    { "Crop", "Crop", 1,
        "Crop the image by dragging the edges and corners of the crop indicator. Apply minor rotation/straightening "
        "using the rotation slider. Cropping will always be applied before any image adjustments or styles.",
        make<ImageModCrop> },
    { "RGB Curve", "RGB Curve", 1, "Adjust RGB values together using a curve editor.", make<ImageModRGBCombinedCurve> },
    { "Curves", "Luminance Curve", 1, "Adjust luminance using a curve editor.", make<ImageModLuminanceCurve> },
    { "Noise", "Grain", 1, "Apply film grain.", make<ImageModNoise> },
    { "Selective Saturation", "Selective Saturation", 1, "Adjust the saturation of a specific hue only.",
        make<ImageModSelectiveColor> },
    { "Color Correction", "Color Correction", 1, "Separately adjust the color of highlights, midtones, and shadows.",
        make<ImageModColorCorrector> },
    { "White Balance", "White Balance", 1,
        "Correct the overall color of an image, particularly if surfaces which should be white appear tinted. Use the "
        "color picker to select a hue which should represent white.",
        make<ImageModWhiteBalance> },
    { "Gamma", "Exposure", 2, "Adjust exposure, which affects the brightness of an image.", make<ImageModGammaLegacy> },
    { "Tint", "Tint", 1,
        "Tint the image by overlaying the selected color. Compare this result with Color Filter and Dye.",
        make<ImageModTint> },
    { "Colorize", "Colorize", 1,
        "Adjust the color of the image by adding or subtracting RGB values. Compare this result with Color Filter, "
        "Dye, and Tint.",
        make<ImageModColorize> },
    { "Color Filter", "Color Filter", 1,
        "Filter the image with the selected color. Compare this result with Tint and Dye.", make<ImageModColorFilter> },
    { "Dye", "Dye", 2,
        "Dye the image with the selected color, preserving detail. Compare this result with Color Filter and Tint.",
        make<ImageModDye> },
    { "RGB Swap", "RGB Swap", 1, "Separately replace red, green, and blue with the selected colors.",
        make<ImageModRGBSwap> },
    { "Discolor", "Discolor", 1, "Apply uneven discoloration to the image.", make<ImageModDiscolor> },
    { "Contrast Saturation", "Contrast", 1,
        "Adjust contrast. The Center slider determines the brightness value from which the contrast emanates.",
        make<ImageModContrastAndSaturation> },
    { "Greyscale Channel Mixer", "Greyscale Mixer", 1,
        "Create a greyscale image based on the weighted input of the red, green, and blue image components.",
        make<ImageModChannelMixerGreyscale> },
    // Not in any panel table, but a class of the program: files that hold it must load.
    { "Lab Curves", "L,a,b Curves", 1, "Adjust separate curves for lightness and the a and b color components.",
        make<ImageModLabCurves> },
};

// A fresh mod takes the version of its row or catalogue entry, and the label and tool tip where
// the class leaves them open. The version goes first since some classes rename themselves by
// version; the panel always offers the newest.
void takeOpenFields(ImageMod& mod, int32_t version, const std::string& label, const std::string& toolTip)
{
    if (mod.version != version)
        mod.setVersion(version);
    if (mod.displayName.empty() || mod.displayName == mod.name)
        mod.displayName = label;
    if (mod.toolTip.empty())
        mod.toolTip = toolTip;
}

std::unique_ptr<ImageMod> makeFromRow(const ModCatalogueRow& row)
{
    std::unique_ptr<ImageMod> mod = row.make();
    if (mod)
        takeOpenFields(*mod, row.version, row.label, row.toolTip);
    return mod;
}

template <size_t N>
ModCatalogue buildRows(const ModCatalogueRow (&rows)[N])
{
    ModCatalogue list;
    list.reserve(N);
    for (const ModCatalogueRow& row : rows) {
        if (!row.make)
            continue;
        if (auto mod = makeFromRow(row))
            list.push_back(std::move(mod));
    }
    return list;
}

template <size_t N>
void appendRows(std::vector<ModCatalogueRow>& out, const ModCatalogueRow (&rows)[N])
{
    for (const ModCatalogueRow& row : rows) {
        if (row.make)
            out.push_back(row);
    }
}

ModCatalogueContents::Range appendPart(ModCatalogue& all, ModCatalogue part, const char* title, const char* icon)
{
    ModCatalogueContents::Range range { title, icon, all.size(), part.size() };
    for (auto& mod : part)
        all.push_back(std::move(mod));
    return range;
}

} // namespace

ModCatalogue buildBasicsSection() { return buildRows(kBasics); }
ModCatalogue buildAdvancedLightSection() { return buildRows(kAdvancedLight); }
ModCatalogue buildAdvancedColorSection() { return buildRows(kAdvancedColor); }
ModCatalogue buildPhotographicSection() { return buildRows(kPhotographic); }
ModCatalogue buildMasksSection() { return buildRows(kMasks); }
ModCatalogue buildBordersSection() { return buildRows(kBorders); }
ModCatalogue buildUtilitySection() { return buildRows(kUtility); }
ModCatalogue buildUnlistedMods() { return buildRows(kUnlisted); }
// The styles carry their names, tool tips and versions themselves, in panel order.
ModCatalogue buildCameraStyles() { return buildStyleSection(); }

const std::vector<ModCatalogueSectionInfo>& modCatalogueSections()
{
    static const std::vector<ModCatalogueSectionInfo> sections = {
        { "Basics", ":/img/tools_icon_basics.png", buildBasicsSection },
        { "Advanced Light", ":/img/tools_icon_light.png", buildAdvancedLightSection },
        { "Advanced Color", ":/img/tools_icon_color.png", buildAdvancedColorSection },
        { "Photographic", ":/img/tools_icon_photographic.png", buildPhotographicSection },
        { "Masks", ":/img/tools_icon_selectors.png", buildMasksSection },
        { "Borders", ":/img/tools_icon_borders.png", buildBordersSection },
        { "Utility", ":/img/tools_icon_utility.png", buildUtilitySection },
    };
    return sections;
}

const std::vector<ModCatalogueRow>& modCatalogueRows()
{
    static const std::vector<ModCatalogueRow> rows = [] {
        std::vector<ModCatalogueRow> out;
        appendRows(out, kBasics);
        appendRows(out, kAdvancedLight);
        appendRows(out, kAdvancedColor);
        appendRows(out, kPhotographic);
        appendRows(out, kMasks);
        appendRows(out, kBorders);
        appendRows(out, kUtility);
        appendRows(out, kUnlisted);
        return out;
    }();
    return rows;
}

std::vector<const ImageMod*> ModCatalogueContents::modsIn(const Range& range) const
{
    std::vector<const ImageMod*> out;
    for (size_t i = range.first; i < range.first + range.count && i < mods.size(); ++i)
        out.push_back(mods[i].get());
    return out;
}

ModCatalogueContents buildModCatalogue()
{
    ModCatalogueContents contents;
    for (const ModCatalogueSectionInfo& section : modCatalogueSections())
        contents.sections.push_back(appendPart(contents.mods, section.build(), section.title, section.icon));
    contents.unlisted = appendPart(contents.mods, buildUnlistedMods(), "", "");
    contents.styles = appendPart(contents.mods, buildCameraStyles(), "", "");
    return contents;
}

const ImageMod* findInCatalogue(const ModCatalogue& catalogue, const std::string& modName)
{
    const ImageMod* match = nullptr;
    for (const auto& mod : catalogue) {
        if (mod && mod->name == modName)
            match = mod.get();
    }
    return match ? match : findExtraModFactory(modName);
}

std::unique_ptr<ImageMod> createMod(const ModCatalogue& catalogue, const std::string& modName)
{
    const ImageMod* factory = findInCatalogue(catalogue, modName);
    if (!factory)
        return nullptr;
    std::unique_ptr<ImageMod> mod = factory->newInstance();
    if (!mod)
        return nullptr;
    takeOpenFields(*mod, factory->version, factory->displayName, factory->toolTip);
    return mod;
}

std::unique_ptr<ImageMod> createModForFile(const std::vector<const ImageMod*>& defined,
    const ModCatalogue& catalogue, const std::string& modName)
{
    const ImageMod* group = nullptr;
    for (const ImageMod* d : defined) {
        if (d && d->name == modName)
            group = d;
    }
    if (group)
        return group->newInstance();
    return createMod(catalogue, modName);
}
