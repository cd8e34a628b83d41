#pragma once
#include "core/ImageMod.h"

#include <string>
#include <vector>

// Colours each luminance by a curve: above 0.5 towards the colour, below towards its complement,
// with one of eight colour methods. Also the engine inside the coloring tile, the temperature tile
// and the colour wheels, which drive it through the setters below.
class ImageModColorizeCurve : public ImageMod {
public:
    enum VariableIndex : int32_t { kCurve = 0, kColor = 1, kAmount = 2, kMethod = 3 };

    ImageModColorizeCurve();
    std::unique_ptr<ImageMod> newInstance() const override;
    // Amount is the third variable here.
    ImageModVariable* amountVariable() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // The labels of "Color Method", shared with the mods that embed this one.
    static std::vector<std::string> methodLabels();

    void setCurve(const std::string& points);
    void setColor(float r, float g, float b, float a = 255.0f);
    void setAmount(float amount);
    void setMethod(int32_t index);
};
