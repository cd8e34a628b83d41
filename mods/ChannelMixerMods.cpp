#include "mods/ChannelMixerMods.h"

#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "mods/ColorSteps.h"
#include "mods/ImageModSaturation.h"

namespace {

// Mixer rows in the order of the hidden variables.
const char* const kRowNames[9] = {"RedR", "GreenR", "BlueR", "RedG", "GreenG", "BlueG", "RedB", "GreenB", "BlueB"};

// The mask blends the mixed value with the pixel as it was.
static inline float mixMasked(float value, float c, float m)
{
    return (value - c) * m + c;
}

template <typename Sample>
void applyMixer(const ImageMod& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty() || image->channels < 3)
        return;
    float raw[3][3];
    bool identity = true;
    for (int32_t o = 0; o < 3; ++o) {
        for (int32_t i = 0; i < 3; ++i) {
            raw[o][i] = mod.floatValue(ImageModChannelMixer::rowVariable(o, i));
            identity = identity && raw[o][i] == (o == i ? 100.0f : 0.0f);
        }
    }
    if (identity)
        return;
    float k[3][3];
    for (int32_t o = 0; o < 3; ++o)
        for (int32_t i = 0; i < 3; ++i)
            k[o][i] = raw[o][i] * 0.01f;
    // The pixel is copied before any output is written, so each row reads the input.
    auto mix = [k](const Sample* p, float out[3]) {
        const float r = sampleValue(p[0]), g = sampleValue(p[1]), b = sampleValue(p[2]);
        for (int32_t o = 0; o < 3; ++o)
            out[o] = clamp0To255(r * k[o][0] + g * k[o][1] + b * k[o][2]);
    };
    forEachPixel(
        image, context,
        [&](Sample* p) {
            float out[3];
            mix(p, out);
            for (int32_t c = 0; c < 3; ++c)
                storeSample(p + c, out[c]);
        },
        [&](Sample* p, float m) {
            float out[3];
            mix(p, out);
            for (int32_t c = 0; c < 3; ++c)
                storeSample(p + c, mixMasked(out[c], sampleValue(p[c]), m));
        });
}

template <typename Sample>
void applyGreyMixer(const ImageMod& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty() || image->channels < 3)
        return;
    const float kr = mod.floatValue(0) * 0.01f;
    const float kg = mod.floatValue(1) * 0.01f;
    const float kb = mod.floatValue(2) * 0.01f;
    auto grey = [=](const Sample* p) {
        return clamp0To255(sampleValue(p[0]) * kr + sampleValue(p[1]) * kg + sampleValue(p[2]) * kb);
    };
    forEachPixel(
        image, context,
        [&](Sample* p) {
            const float v = grey(p);
            for (int32_t c = 0; c < 3; ++c)
                storeSample(p + c, v);
        },
        [&](Sample* p, float m) {
            const float v = grey(p);
            for (int32_t c = 0; c < 3; ++c)
                storeSample(p + c, mixMasked(v, sampleValue(p[c]), m));
        });
}

template <typename Sample>
void applyFilteredBW(const ImageMod& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    ImageModSaturation saturation(2, mod.floatValue(0) * 0.01f);
    saturation.apply(image, context);
    float r, g, b;
    ImageModFilteredBW::hueWeights(mod.floatValue(1), r, g, b);
    ImageModChannelMixerGreyscale mixer;
    mixer.setWeights(r, g, b);
    mixer.apply(image, context);
}

struct SwapColors {
    float c[3][3]; // c[colour][component]
};

bool readSwapColors(const ImageMod& mod, SwapColors& out, bool& pure)
{
    pure = true;
    for (int32_t i = 0; i < 3; ++i) {
        const ImageModVariableDataColor* col = mod.colorAt(i);
        if (!col)
            return false;
        out.c[i][0] = col->red;
        out.c[i][1] = col->green;
        out.c[i][2] = col->blue;
        for (int32_t k = 0; k < 3; ++k)
            pure = pure && out.c[i][k] == (i == k ? 255.0f : 0.0f);
        pure = pure && col->alpha == 255.0f;
    }
    return true;
}

float swapNorm(const SwapColors& sc)
{
    float n = 0.0f;
    for (int32_t k = 0; k < 3; ++k) {
        const float v = 255.0f / (sc.c[0][k] + sc.c[1][k] + sc.c[2][k]);
        n = k == 0 ? v : (v < n ? v : n);
    }
    // Three black colours give no finite norm; their output is black anyway.
    if (!(n < 3.0e38f))
        n = 0.0f;
    return n;
}

template <typename Sample>
void applyRGBSwap(const ImageMod& mod, FlexImageT<Sample>* image)
{
    if (!image || image->isEmpty() || image->channels < 3)
        return;
    SwapColors sc;
    bool pure = false;
    if (!readSwapColors(mod, sc, pure) || pure)
        return;
    const float n = swapNorm(sc);
    const int32_t channels = image->channels;
    colorRowLoop(image, nullptr, false, [&](Sample* p, float) {
        const float p0 = div255(sampleValue(p[0]));
        const float p1 = div255(sampleValue(p[1]));
        const float p2 = div255(sampleValue(p[2]));
        for (int32_t k = 0; k < 3; ++k)
            storeSample(p + k, clamp0To255((p0 * sc.c[0][k] + p1 * sc.c[1][k] + p2 * sc.c[2][k]) * n));
        // The old scratch pixel carried nothing beyond RGB, and saved looks expect the zeros.
        for (int32_t c = 3; c < channels; ++c)
            storeSample(p + c, 0.0f);
    });
}

} // namespace

// --- Color Mixer ---

ImageModChannelMixer::ImageModChannelMixer() : ImageMod("Color Mixer", "")
{
    toolTip = "Determine how to calculate the output values of the red, green, and blue channels.";
    ImageModVariable* red = addFloat("Red", 100.0f, -200.0f, 200.0f);
    ImageModVariable* green = addFloat("Green", 0.0f, -200.0f, 200.0f);
    ImageModVariable* blue = addFloat("Blue", 0.0f, -200.0f, 200.0f);
    addChoice("Output Channel", {"Red", "Green", "Blue"}, 0);
    for (int32_t i = 0; i < 9; ++i)
        addFloat(kRowNames[i], (i % 4 == 0) ? 100.0f : 0.0f, -200.0f, 200.0f)->visible = false;
    addAnimator(red, "80 120 80", 2.376f);
    addAnimator(green, "0 30 0", 2.786f);
    addAnimator(blue, "30 0 30", 3.05f);
}

std::unique_ptr<ImageMod> ImageModChannelMixer::newInstance() const
{
    return std::make_unique<ImageModChannelMixer>();
}

void ImageModChannelMixer::variableChanged(int32_t index)
{
    int32_t out = choiceIndex(kOutputChannel);
    if (out < 0 || out > 2)
        out = 0;
    if (index >= kSliderRed && index <= kSliderBlue) {
        // A slider edits the shown row.
        if (ImageModVariable* row = variableAt(rowVariable(out, index)))
            row->setFloatValue(floatValue(index));
    } else if (index == kOutputChannel) {
        // Another row chosen: the sliders show it.
        for (int32_t i = 0; i < 3; ++i) {
            if (ImageModVariable* slider = variableAt(i))
                slider->setFloatValue(floatValue(rowVariable(out, i)));
        }
    } else if (index >= kRows && index < kRows + 9 && (index - kRows) / 3 == out) {
        // A hidden weight of the shown row changed (a file, an undo): the slider follows.
        if (ImageModVariable* slider = variableAt((index - kRows) % 3))
            slider->setFloatValue(floatValue(index));
    }
}

void ImageModChannelMixer::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyMixer(*this, image, context);
}

void ImageModChannelMixer::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyMixer(*this, image, context);
}

// --- Greyscale Mixer ---

ImageModChannelMixerGreyscale::ImageModChannelMixerGreyscale()
    : ImageMod("Greyscale Channel Mixer", "Greyscale Mixer")
{
    toolTip = "Create a greyscale image based on the weighted input of the red, green, and blue image components.";
    addFloat("Red", 30.0f, -200.0f, 200.0f);
    addFloat("Green", 59.0f, -200.0f, 200.0f);
    addFloat("Blue", 11.0f, -200.0f, 200.0f);
}

std::unique_ptr<ImageMod> ImageModChannelMixerGreyscale::newInstance() const
{
    return std::make_unique<ImageModChannelMixerGreyscale>();
}

void ImageModChannelMixerGreyscale::setWeights(float r, float g, float b)
{
    const float w[3] = {r, g, b};
    for (int32_t i = 0; i < 3; ++i) {
        if (ImageModVariable* v = variableAt(i))
            v->setFloatValue(w[i]);
    }
}

void ImageModChannelMixerGreyscale::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyGreyMixer(*this, image, context);
}

void ImageModChannelMixerGreyscale::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyGreyMixer(*this, image, context);
}

// --- Filtered B+W ---

ImageModFilteredBW::ImageModFilteredBW() : ImageMod("Filtered B+W", "")
{
    toolTip = "Create a greyscale image while filtering for selected hues.";
    addFloat("Amount", 100.0f, 0.0f, 100.0f);
    ImageModVariable* hue = addFloat("Hue", 180.0f, 0.0f, 360.0f, "Filter Hue");
    addAnimator(hue, "0 360", 3.0f);
}

std::unique_ptr<ImageMod> ImageModFilteredBW::newInstance() const
{
    return std::make_unique<ImageModFilteredBW>();
}

void ImageModFilteredBW::hueWeights(float hue, float& r, float& g, float& b)
{
    float hr, hg, hb;
    hsvToRgb(hue, 1.0f, 1.0f, hr, hg, hb);
    const float u = 1.0f / (hr + hg + hb);
    r = hr * 100.0f * u;
    g = hg * 100.0f * u;
    b = hb * 100.0f * u;
}

void ImageModFilteredBW::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyFilteredBW(*this, image, context);
}

void ImageModFilteredBW::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyFilteredBW(*this, image, context);
}

// --- RGB Swap ---

ImageModRGBSwap::ImageModRGBSwap() : ImageMod("RGB Swap", "")
{
    toolTip = "Separately replace red, green, and blue with the selected colors.";
    addColor("Red", 255.0f, 0.0f, 0.0f, 255.0f);
    addColor("Green", 0.0f, 255.0f, 0.0f, 255.0f);
    addColor("Blue", 0.0f, 0.0f, 255.0f, 255.0f);
}

std::unique_ptr<ImageMod> ImageModRGBSwap::newInstance() const
{
    return std::make_unique<ImageModRGBSwap>();
}

float ImageModRGBSwap::norm() const
{
    SwapColors sc;
    bool pure = false;
    return readSwapColors(*this, sc, pure) ? swapNorm(sc) : 0.0f;
}

void ImageModRGBSwap::apply(FlexImage8* image, const ImageModApplyContext*)
{
    applyRGBSwap(*this, image);
}

void ImageModRGBSwap::apply(FlexImageFloat* image, const ImageModApplyContext*)
{
    applyRGBSwap(*this, image);
}
