#include "mods/ImageModSplitTone.h"

#include "core/ImageModVariableDataColor.h"
#include "mods/ColorSteps.h"

namespace {

template <typename Sample>
void applySplitTone(const ImageMod& mod, FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float amount = mod.floatValue(0);
    if (amount == 0.0f)
        return;
    // Per channel of the pixel, the colours' R, G, B, A; channels past the fourth get 0.
    float dark[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    float light[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    if (const ImageModVariableDataColor* d = mod.colorAt(1)) {
        dark[0] = d->red, dark[1] = d->green, dark[2] = d->blue, dark[3] = d->alpha;
    }
    if (const ImageModVariableDataColor* l = mod.colorAt(2)) {
        light[0] = l->red, light[1] = l->green, light[2] = l->blue, light[3] = l->alpha;
    }
    const int32_t channels = image->channels;
    colorRowLoop(image, context, true, [&](Sample* p, float m) {
        const float a = amount * m;
        const float y = channels < 3 ? sampleValue(p[0])
                                     : luminance(sampleValue(p[0]), sampleValue(p[1]), sampleValue(p[2]));
        const float yn = div255(y);
        for (int32_t c = 0; c < channels; ++c) {
            const float l = c < 4 ? light[c] : 0.0f;
            const float d = c < 4 ? dark[c] : 0.0f;
            const float v = sampleValue(p[c]);
            storeSample(p + c, ((div255(l * y) - v) + d * (1.0f - yn)) * a + v);
        }
    });
}

} // namespace

ImageModSplitTone::ImageModSplitTone() : ImageMod("Split Tone", "")
{
    toolTip = "Create a two-toned image by selecting the lightest and darkest colors.";
    addFloat("Amount", 1.0f, 0.0f, 1.0f)->data->setDisplayScale(0.0f, 100.0f);
    ImageModVariable* dark = addColor("Dark Color", 0.0f, 24.41f, 101.21f, 255.0f);
    ImageModVariable* light = addColor("Light Color", 255.0f, 220.67f, 107.37f, 255.0f);
    addColorAnimator(dark, "0 1 .25 1 360 1 .25 1", 3.0f);
    addColorAnimator(light, "360 .2 1 1 0 .2 1 1", 3.0f);
}

std::unique_ptr<ImageMod> ImageModSplitTone::newInstance() const
{
    return std::make_unique<ImageModSplitTone>();
}

void ImageModSplitTone::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applySplitTone(*this, image, context);
}

void ImageModSplitTone::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applySplitTone(*this, image, context);
}
