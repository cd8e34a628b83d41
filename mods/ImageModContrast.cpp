#include "mods/ImageModContrast.h"

#include "mods/PowerPairTable.h"
#include "mods/TonalPixelLoop.h"
#include "mods/TonalSteps.h"

#include <cmath>

namespace {

template <typename Sample>
static inline void contrastPixel(Sample* p, int32_t colorChannels, float center, float e)
{
    for (int32_t c = 0; c < colorChannels; ++c)
        p[c] = storeSample<Sample>(powerPair(float(p[c]), center, e));
}

static inline void contrastPixelTable(float* p, int32_t count, const PowerPairTable& table)
{
    for (int32_t c = 0; c < count; ++c)
        p[c] = table(p[c]);
}

static inline void contrastPixelTableFrom(const float* in, float* out, int32_t colour, int32_t channels,
                                          const PowerPairTable& table)
{
    for (int32_t c = 0; c < colour; ++c)
        out[c] = table(in[c]);
    for (int32_t c = colour; c < channels; ++c)
        out[c] = in[c];
}

template <typename Sample>
void contrastPass(FlexImageT<Sample>* image, const ImageModApplyContext* context, float amount, float center)
{
    if (!image || image->isEmpty() || amount == 1.0f || !std::isfinite(amount) || !std::isfinite(center))
        return;
    const int32_t colour = image->colorChannels;
    const float e = powerPairExponent(amount);
    if constexpr (sizeof(Sample) == 4) {
        // Unmasked float rows read the pair from a table built once for the pass (a slider drag
        // would otherwise spend nearly all its time in pow).
        if (!context || !context->selector) {
            const int32_t channels = image->channels;
            const int32_t width = image->width;
            PowerPairTable table;
            table.build(center, e);
            parallelFor(image->height, [&](int32_t y) {
                float* p = image->row(y);
                if (channels == colour) {
                    table.apply(p, int64_t(width) * channels); // the row as one run of samples
                    return;
                }
                for (int32_t x = 0; x < width; ++x, p += channels)
                    contrastPixelTable(p, colour, table);
            });
            return;
        }
    }
    forEachPixel(
        image, context, [=](Sample* p) { contrastPixel(p, colour, center, e); },
        [=](Sample* p, float m) {
            const float a = maskRuleA(amount, m);
            if (a != 1.0f)
                contrastPixel(p, colour, center, powerPairExponent(a));
        });
}

// The unmasked float pass from source into dest, for the runner's restore-and-apply sweep.
bool contrastPassFrom(const FlexImageFloat& source, FlexImageFloat* dest, const ImageModApplyContext* context,
                      float amount, float center)
{
    if (!dest || dest == &source || source.isEmpty() || (context && context->selector))
        return false;
    if (amount == 1.0f || !std::isfinite(amount) || !std::isfinite(center)) {
        dest->copyFrom(source, true); // the pass leaves the pixels as they are
        return true;
    }
    dest->resize(source.width, source.height, source.channels);
    if (dest->isEmpty())
        return false;
    const int32_t colour = source.colorChannels;
    const int32_t channels = source.channels;
    const int32_t width = source.width;
    PowerPairTable table;
    table.build(center, powerPairExponent(amount));
    parallelFor(source.height, [&](int32_t y) {
        const float* in = source.row(y);
        float* out = dest->row(y);
        if (channels == colour) {
            table.apply(in, out, int64_t(width) * channels);
            return;
        }
        for (int32_t x = 0; x < width; ++x, in += channels, out += channels)
            contrastPixelTableFrom(in, out, colour, channels, table);
    });
    dest->marginLeft = source.marginLeft;
    dest->marginRight = source.marginRight;
    dest->marginTop = source.marginTop;
    dest->marginBottom = source.marginBottom;
    dest->scale = source.scale;
    return true;
}

} // namespace

ImageModContrast::ImageModContrast(int32_t v, float amount, float center) : ImageMod("Contrast", "Contrast")
{
    addAnimator(addAmountVariable(this, amount), "1.7 .5 1.7", 3.0f);
    addAnimator(addFloat("Center", center, 0.0f, 255.0f, "Contrast Origin"), "90 165 90", 4.513f);
    setVersion(v);
}

void ImageModContrast::setVersion(int32_t v)
{
    version = v;
    ImageModVariable* centerVariable = variableAt(1);
    if (centerVariable)
        centerVariable->visible = v != 2;
    toolTip = v == 2 ? "Adjust contrast between the light and dark regions of your image."
                     : "Adjust contrast. The Contrast Origin slider determines the brightness value from which the "
                       "contrast emanates.";
}

void ImageModContrast::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    contrastPass(image, context, floatValue(0), version <= 1 ? floatValue(1) : 90.0f);
}

void ImageModContrast::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    contrastPass(image, context, floatValue(0), version <= 1 ? floatValue(1) : 90.0f);
}

bool ImageModContrast::applyFrom(const FlexImageFloat& source, FlexImageFloat* dest, const ImageModApplyContext* context)
{
    return contrastPassFrom(source, dest, context, floatValue(0), version <= 1 ? floatValue(1) : 90.0f);
}
