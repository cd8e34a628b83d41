#include "core/ImageModVarAnimatorColorHSVA.h"

#include "core/ColorMath.h"
#include "core/ImageModVariable.h"
#include "core/ImageModVariableDataColor.h"

ImageModVarAnimatorColorHSVA::ImageModVarAnimatorColorHSVA(ImageModVariable* target, std::vector<float> hueKeys,
                                                           std::vector<float> saturationKeys,
                                                           std::vector<float> valueKeys, std::vector<float> alphaKeys,
                                                           int32_t period)
    : hue(std::move(hueKeys)),
      saturation(std::move(saturationKeys)),
      value(std::move(valueKeys)),
      alpha(std::move(alphaKeys)),
      variable(target),
      periodFrames(period)
{
}

void ImageModVarAnimatorColorHSVA::apply(int32_t frame)
{
    if (!variable)
        return;
    if (!variable->data)
        variable->data = std::make_unique<ImageModVariableDataColor>();
    ImageModVariableDataColor* color = variable->asColor();
    if (!color)
        return;
    const float h = keyValueAt(hue, periodFrames, frame);
    const float s = keyValueAt(saturation, periodFrames, frame);
    const float v = keyValueAt(value, periodFrames, frame);
    const float a = keyValueAt(alpha, periodFrames, frame);
    hsvToRgb(h, s, v, color->red, color->green, color->blue);
    color->alpha = a * 255.0f;
}
