#include "mods/ImageModExposureCurve.h"

#include "core/ImageModVariableData.h"
#include "mods/CurveSteps.h"

ImageModExposureCurve::ImageModExposureCurve() : ImageMod("Exposure Curve", "Exposure Curve")
{
    addFloat("Amount", 1.0f, 0.0f, 1.0f)->data->setDisplayScale(0.0f, 100.0f);
    ImageModVariable* curve = addCurve("Curve", "0 .5 1 .5");
    addCurveAnimator(curve, {"0 .5", ".12 .25 .12 .75 .12 .25", ".88 .75 .88 .25 .88 .75", "1 .5"}, 3.0f);
    setVersion(2);
}

void ImageModExposureCurve::setVersion(int32_t v)
{
    ImageMod::setVersion(v);
    if (v == 2) {
        displayName = "Gamma Curve";
        toolTip = "Adjust gamma using a horizontal curve editor.";
    } else {
        displayName = "Exposure Curve";
        toolTip = "Adjust exposure using a horizontal curve editor.";
    }
}

namespace {

// Local exposure e from the luminance reading; 1 leaves the pixel.
template <typename Sample>
static inline void exposureCurvePixel(Sample* p, int32_t channels, int32_t colorChannels, const float* table, float s,
                                      bool desaturate)
{
    const float y = curvePixelLuminance(p, channels);
    const float t = curveRead255(table, y);
    const float e = (1.0f - s) + 2.0f * t * s;
    if (e < 1.0f) {
        const float ex = 1.0f / e;
        for (int32_t c = 0; c < colorChannels; ++c)
            p[c] = curveStore<Sample>(gammaDarken(float(p[c]), ex));
        if (desaturate) {
            const float v = std::pow(1.0f - std::fabs(e - 1.0f), 0.4f);
            if constexpr (std::is_same_v<Sample, uint8_t>)
                legacySaturate8(p, channels, colorChannels, v);
            else
                legacySaturate(p, channels, colorChannels, v);
        }
    } else if (e > 1.0f) {
        const float ex = 1.0f / (2.0f - e);
        for (int32_t c = 0; c < colorChannels; ++c)
            p[c] = curveStore<Sample>(gammaBrighten(float(p[c]), ex));
    }
}

bool isExposureIdentity(const ToneCurve& curve)
{
    static constexpr ToneCurvePoint identity[2] = {{0.0f, 0.5f}, {1.0f, 0.5f}};
    return curvePointsEqual(curve, identity, 2);
}

template <typename Sample>
void applyExposureCurve(const ImageModExposureCurve& mod, FlexImageT<Sample>* image,
                        const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float amount = mod.floatValue(ImageModExposureCurve::varAmount);
    const ToneCurve* curve = mod.curveAt(ImageModExposureCurve::varCurve);
    if (amount == 0.0f || !curveUsable(curve) || isExposureIdentity(*curve))
        return;
    const float* table = curve->table();
    const bool desaturate = mod.version != 2;
    const int32_t channels = image->channels;
    const int32_t colorChannels = image->colorChannels;
    curveRowJobs(image, context, [=](Sample* p, float m) {
        exposureCurvePixel(p, channels, colorChannels, table, amount * m, desaturate);
    });
}

} // namespace

void ImageModExposureCurve::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyExposureCurve(*this, image, context);
}

void ImageModExposureCurve::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyExposureCurve(*this, image, context);
}
