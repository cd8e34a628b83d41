#include "mods/ImageModWhitePoint.h"

#include "core/ImageModVariableDataButton.h"
#include "core/ImageModVariableDataColor.h"
#include "mods/ColorSteps.h"

namespace {

template <typename Sample>
void applyWhitePoint(const ImageMod& mod, FlexImageT<Sample>* image)
{
    if (!image || image->isEmpty())
        return;
    const ImageModVariableDataColor* pick = mod.colorAt(ImageModWhitePoint::kNeutralColor);
    const ToneCurve* curve = mod.curveAt(ImageModWhitePoint::kCurve);
    if (!pick || !curveUsable(curve))
        return;
    const float* table = curve->table();
    const float y0 = luminance(pick->red, pick->green, pick->blue);
    const float q = ImageModWhitePoint::pickScale(table, y0);
    const float offset[3] = {(pick->red - y0) * q, (pick->green - y0) * q, (pick->blue - y0) * q};
    // A grey pick (white after Reset) has no cast to take away.
    if (offset[0] == 0.0f && offset[1] == 0.0f && offset[2] == 0.0f)
        return;
    const int32_t channels = image->channels;
    const int32_t cc = channels < 3 ? channels : 3;
    colorRowLoop(image, nullptr, false, [&](Sample* p, float) {
        float px[3] = {0.0f, 0.0f, 0.0f};
        for (int32_t c = 0; c < cc; ++c)
            px[c] = sampleValue(p[c]);
        const float y = cc < 3 ? px[0] : luminance(px[0], px[1], px[2]);
        const float t = curveReadUnit(table, div255(y));
        for (int32_t c = 0; c < cc; ++c)
            storeSample(p + c, px[c] - t * offset[c]);
        // Every sample is capped at 255 afterwards; float values may stay below 0.
        for (int32_t c = 0; c < channels; ++c) {
            if (sampleValue(p[c]) > 255.0f)
                storeSample(p + c, 255.0f);
        }
    });
}

} // namespace

ImageModWhitePoint::ImageModWhitePoint() : ImageMod("White Point", "White Balance")
{
    toolTip = "Correct the white balance of an image by choosing a color from the image that should be a neutral "
              "white or grey.";
    addColor("Neutral Color", 255.0f, 255.0f, 255.0f, 255.0f);
    addButton("Reset");
    addCurve("Curve", "0 0 1 1 1 0");
}

std::unique_ptr<ImageMod> ImageModWhitePoint::newInstance() const
{
    return std::make_unique<ImageModWhitePoint>();
}

void ImageModWhitePoint::variableChanged(int32_t index)
{
    // Only a real press resets: a loaded file or a new frame notifies the button too, and must
    // keep the picked colour.
    ImageModVariable* button = index == kReset ? variableAt(kReset) : nullptr;
    ImageModVariableDataButton* data = button ? button->asButton() : nullptr;
    if (!data || !data->pressed)
        return;
    ImageModVariable* v = variableAt(kNeutralColor);
    if (ImageModVariableDataColor* c = v ? v->asColor() : nullptr) {
        c->red = 255.0f;
        c->green = 255.0f;
        c->blue = 255.0f;
    }
}

float ImageModWhitePoint::pickScale(const float* table, float y0)
{
    if (y0 == 0.0f || y0 >= 255.0f)
        return 1.0f;
    const float t = curveReadUnit(table, div255(y0));
    // A curve edited down to 0 at the pick has no finite scale; leave the offsets unscaled.
    return t > 0.0f ? 1.0f / t : 1.0f;
}

void ImageModWhitePoint::apply(FlexImage8* image, const ImageModApplyContext*)
{
    applyWhitePoint(*this, image);
}

void ImageModWhitePoint::apply(FlexImageFloat* image, const ImageModApplyContext*)
{
    applyWhitePoint(*this, image);
}
