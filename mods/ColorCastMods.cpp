#include "mods/ColorCastMods.h"

#include "core/ImageModVariableDataColor.h"
#include "mods/ColorSteps.h"

namespace {

// R, G, B of a colour variable; a missing colour reads as black.
void readColor(const ImageMod& mod, int32_t index, float& r, float& g, float& b)
{
    r = g = b = 0.0f;
    if (const ImageModVariableDataColor* c = mod.colorAt(index)) {
        r = c->red;
        g = c->green;
        b = c->blue;
    }
}

ColorStepColor stepColorOf(const ImageMod& mod, int32_t index)
{
    float r, g, b;
    readColor(mod, index, r, g, b);
    return makeStepColor(r, g, b);
}

int32_t colorChannelsOf(int32_t channels)
{
    return channels < 3 ? channels : 3;
}

// Amount 0..1 shown 0..100, the colour tiles' common first variable.
ImageModVariable* addAmount(ImageMod& mod, float value)
{
    ImageModVariable* v = mod.addFloat("Amount", value, 0.0f, 1.0f);
    v->data->setDisplayScale(0.0f, 100.0f);
    return v;
}

// Runs a per-channel step over the colour channels of every pixel; the mask is not read.
template <typename Sample, typename Step>
void perChannel(FlexImageT<Sample>* image, const Step& step)
{
    const int32_t cc = colorChannelsOf(image->channels);
    colorRowLoop(image, nullptr, false, [&](Sample* p, float) {
        for (int32_t c = 0; c < cc; ++c)
            storeSample(p + c, step(sampleValue(p[c]), c));
    });
}

// --- Dye ---

template <typename Sample>
void applyDye(const ImageMod& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    const float amount = mod.floatValue(0);
    if (amount == 0.0f || !image || image->channels < 3)
        return;
    const ColorStepColor col = stepColorOf(mod, 1);
    const bool current = mod.version == 2;
    colorRowLoop(image, context, true, [&](Sample* p, float m) {
        const float w = amount * m;
        float r = sampleValue(p[0]), g = sampleValue(p[1]), b = sampleValue(p[2]);
        if (current)
            dyeStep(r, g, b, col, w);
        else
            dyeLegacyStep(r, g, b, col, w);
        storeSample(p, r);
        storeSample(p + 1, g);
        storeSample(p + 2, b);
    });
}

// --- Tint, Color Filter, Colorize ---

template <typename Sample>
void applyTint(const ImageMod& mod, FlexImageT<Sample>* image)
{
    const float w = mod.floatValue(0);
    if (w == 0.0f || !image)
        return;
    const ColorStepColor col = stepColorOf(mod, 1);
    const float keep = 1.0f - w;
    const float kw[3] = {col.k[0] * w, col.k[1] * w, col.k[2] * w};
    perChannel(image, [&](float c, int32_t i) { return tintStepHoisted(c, kw[i], keep); });
}

template <typename Sample>
void applyColorFilter(const ImageMod& mod, FlexImageT<Sample>* image)
{
    const float w = mod.floatValue(0);
    if (w == 0.0f || !image)
        return;
    const ColorStepColor col = stepColorOf(mod, 1);
    perChannel(image, [&](float c, int32_t i) { return filterStep(c, col.k[i], w); });
}

template <typename Sample>
void applyColorize(const ImageMod& mod, FlexImageT<Sample>* image)
{
    const float w = mod.floatValue(0);
    if (w == 0.0f || !image)
        return;
    const ColorStepColor col = stepColorOf(mod, 1);
    perChannel(image, [&](float c, int32_t i) { return colorizeStep(c, col.k[i], col.mean, w); });
}

// --- White Balance ---

template <typename Sample>
void applyWhiteBalance(const ImageMod& mod, FlexImageT<Sample>* image)
{
    if (!image)
        return;
    const float a = mod.floatValue(0);
    float r, g, b;
    readColor(mod, 1, r, g, b);
    const float m = (r + g + b) / 3.0f;
    const float offset[3] = {(m - r) * a, (m - g) * a, (m - b) * a};
    // A grey pick (or Amount 0) moves nothing.
    if (offset[0] == 0.0f && offset[1] == 0.0f && offset[2] == 0.0f)
        return;
    perChannel(image, [&](float c, int32_t i) { return clamp0To255(c - offset[i]); });
}

// --- Color Balance ---

template <typename Sample>
void applyColorBalance(const ImageMod& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    const float amount = mod.floatValue(0);
    if (amount == 0.0f || !image)
        return;
    const float offset[3] = {mod.floatValue(1) * amount, mod.floatValue(2) * amount, mod.floatValue(3) * amount};
    if (offset[0] == 0.0f && offset[1] == 0.0f && offset[2] == 0.0f)
        return;
    const int32_t cc = colorChannelsOf(image->channels);
    colorRowLoop(image, context, true, [&](Sample* p, float q) {
        for (int32_t c = 0; c < cc; ++c)
            storeSample(p + c, clamp0To255(sampleValue(p[c]) + offset[c] * q));
    });
}

// --- Color Correction ---

struct CorrectorParams {
    const float* tables[3];
    ColorStepColor colors[3];
    float amount;
};

template <int32_t CC, typename Sample>
void applyColorCorrectorChannels(const CorrectorParams& prm, FlexImageT<Sample>* image)
{
    colorRowLoop(image, nullptr, false, [&](Sample* p, float) {
        float px[3] = {0.0f, 0.0f, 0.0f};
        for (int32_t c = 0; c < CC; ++c)
            px[c] = sampleValue(p[c]);
        const float y = CC < 3 ? px[0] : luminance(px[0], px[1], px[2]);
        float w[3];
        for (int32_t r = 0; r < 3; ++r)
            w[r] = float(double(curveRead255(prm.tables[r], y) * prm.amount) * 0.3);
        // The three-region pass runs once per colour channel; old looks are built on the
        // stronger result, so the repetition stays.
        for (int32_t rep = 0; rep < CC; ++rep) {
            for (int32_t r = 0; r < 3; ++r) {
                const ColorStepColor& col = prm.colors[r];
                for (int32_t c = 0; c < CC; ++c)
                    px[c] = colorizeStep(px[c], col.k[c], col.mean, w[r]);
            }
        }
        for (int32_t c = 0; c < CC; ++c)
            storeSample(p + c, px[c]);
    });
}

template <typename Sample>
void applyColorCorrector(const CorrectorParams& prm, FlexImageT<Sample>* image)
{
    if (image->channels >= 3)
        applyColorCorrectorChannels<3>(prm, image);
    else if (image->channels == 2)
        applyColorCorrectorChannels<2>(prm, image);
    else
        applyColorCorrectorChannels<1>(prm, image);
}

} // namespace

// ---------------------------------------------------------------------------------------------------

ImageModDye::ImageModDye(int32_t dyeVersion) : ImageMod("Dye", "")
{
    toolTip = "Dye the image with the selected color, preserving detail. Compare this result with Color Filter and Tint.";
    version = dyeVersion;
    addAmount(*this, 0.0f);
    addColor("Color", 255.0f, 0.0f, 0.0f, 255.0f);
}

std::unique_ptr<ImageMod> ImageModDye::newInstance() const
{
    return std::make_unique<ImageModDye>(version);
}

void ImageModDye::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyDye(*this, image, context);
}

void ImageModDye::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyDye(*this, image, context);
}

ImageModTint::ImageModTint() : ImageMod("Tint", "")
{
    toolTip = "Tint the image by overlaying the selected color. Compare this result with Color Filter and Dye.";
    addAmount(*this, 0.0f);
    addColor("Color", 255.0f, 0.0f, 0.0f, 255.0f);
}

std::unique_ptr<ImageMod> ImageModTint::newInstance() const
{
    return std::make_unique<ImageModTint>();
}

void ImageModTint::apply(FlexImage8* image, const ImageModApplyContext*)
{
    applyTint(*this, image);
}

void ImageModTint::apply(FlexImageFloat* image, const ImageModApplyContext*)
{
    applyTint(*this, image);
}

ImageModColorFilter::ImageModColorFilter() : ImageMod("Color Filter", "")
{
    toolTip = "Filter the image with the selected color. Compare this result with Tint and Dye.";
    addAmount(*this, 0.0f);
    addColor("Color", 255.0f, 127.0f, 127.0f, 255.0f);
}

std::unique_ptr<ImageMod> ImageModColorFilter::newInstance() const
{
    return std::make_unique<ImageModColorFilter>();
}

void ImageModColorFilter::apply(FlexImage8* image, const ImageModApplyContext*)
{
    applyColorFilter(*this, image);
}

void ImageModColorFilter::apply(FlexImageFloat* image, const ImageModApplyContext*)
{
    applyColorFilter(*this, image);
}

ImageModColorize::ImageModColorize() : ImageMod("Colorize", "")
{
    toolTip = "Adjust the color of the image by adding or subtracting RGB values. Compare this result with Color "
              "Filter, Dye, and Tint.";
    addAmount(*this, 0.0f);
    addColor("Color", 255.0f, 0.0f, 0.0f, 255.0f);
}

std::unique_ptr<ImageMod> ImageModColorize::newInstance() const
{
    return std::make_unique<ImageModColorize>();
}

void ImageModColorize::apply(FlexImage8* image, const ImageModApplyContext*)
{
    applyColorize(*this, image);
}

void ImageModColorize::apply(FlexImageFloat* image, const ImageModApplyContext*)
{
    applyColorize(*this, image);
}

ImageModWhiteBalance::ImageModWhiteBalance() : ImageMod("White Balance", "")
{
    toolTip = "Correct the overall color of an image, particularly if surfaces which should be white appear tinted. "
              "Use the color picker to select a hue which should represent white.";
    addAmount(*this, 0.1f);
    // Black until the user picks: a grey pick gives zero offsets, so a new tile changes nothing
    // although its Amount is not 0.
    addColor("Color", 0.0f, 0.0f, 0.0f, 255.0f);
}

std::unique_ptr<ImageMod> ImageModWhiteBalance::newInstance() const
{
    return std::make_unique<ImageModWhiteBalance>();
}

void ImageModWhiteBalance::apply(FlexImage8* image, const ImageModApplyContext*)
{
    applyWhiteBalance(*this, image);
}

void ImageModWhiteBalance::apply(FlexImageFloat* image, const ImageModApplyContext*)
{
    applyWhiteBalance(*this, image);
}

ImageModColorBalance::ImageModColorBalance() : ImageMod("Color Balance", "")
{
    toolTip = "Balance overall color by dragging individual Red, Green, and Blue sliders.";
    ImageModVariable* amount = addAmount(*this, 1.0f);
    ImageModVariable* red = addFloat("Red", 0.0f, -255.0f, 255.0f);
    ImageModVariable* green = addFloat("Green", 0.0f, -255.0f, 255.0f);
    ImageModVariable* blue = addFloat("Blue", 0.0f, -255.0f, 255.0f);
    addAnimator(amount, ".5 1 .5", 2.554f);
    addAnimator(red, "-50 50 -50", 2.376f);
    addAnimator(green, "50 -50 50", 2.786f);
    addAnimator(blue, "-50 50 -50", 3.05f);
}

std::unique_ptr<ImageMod> ImageModColorBalance::newInstance() const
{
    return std::make_unique<ImageModColorBalance>();
}

void ImageModColorBalance::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyColorBalance(*this, image, context);
}

void ImageModColorBalance::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyColorBalance(*this, image, context);
}

ImageModColorCorrector::ImageModColorCorrector()
    : ImageMod("Color Correction", ""),
      shadowWeights("0 1 0.25 1 0.5 0 0.75 0 1 0"),
      midtoneWeights("0 0 0.25 0 0.5 1 0.75 0 1 0"),
      highlightWeights("0 0 0.25 0 0.5 0 0.75 1 1 1")
{
    toolTip = "Separately adjust the color of highlights, midtones, and shadows.";
    addAmount(*this, 1.0f);
    // Mid grey in all three: the colorize step moves nothing for a grey colour, so the new tile is
    // neutral until a colour is chosen.
    addColor("Shadows", 128.0f, 128.0f, 128.0f, 255.0f);
    addColor("Midtones", 128.0f, 128.0f, 128.0f, 255.0f);
    addColor("Highlights", 128.0f, 128.0f, 128.0f, 255.0f);
}

std::unique_ptr<ImageMod> ImageModColorCorrector::newInstance() const
{
    return std::make_unique<ImageModColorCorrector>();
}

namespace {

template <typename Sample>
void correctorEntry(const ImageMod& mod, const ToneCurve& s, const ToneCurve& m, const ToneCurve& h,
                    FlexImageT<Sample>* image)
{
    if (!image || image->isEmpty())
        return;
    CorrectorParams prm;
    prm.amount = mod.floatValue(0);
    if (prm.amount == 0.0f)
        return;
    prm.tables[0] = s.table();
    prm.tables[1] = m.table();
    prm.tables[2] = h.table();
    bool anyColour = false;
    for (int32_t r = 0; r < 3; ++r) {
        prm.colors[r] = stepColorOf(mod, 1 + r);
        for (int32_t c = 0; c < 3; ++c)
            anyColour = anyColour || prm.colors[r].k[c] != prm.colors[r].mean;
    }
    // Three grey colours move nothing.
    if (!anyColour)
        return;
    applyColorCorrector(prm, image);
}

} // namespace

void ImageModColorCorrector::apply(FlexImage8* image, const ImageModApplyContext*)
{
    correctorEntry(*this, shadowWeights, midtoneWeights, highlightWeights, image);
}

void ImageModColorCorrector::apply(FlexImageFloat* image, const ImageModApplyContext*)
{
    correctorEntry(*this, shadowWeights, midtoneWeights, highlightWeights, image);
}
