#pragma once
#include "core/ImageModVariableData.h"

// A colour on the 0..255 scale.
class ImageModVariableDataColor : public ImageModVariableData {
public:
    ImageModVariableDataColor() = default;
    ImageModVariableDataColor(float r, float g, float b, float a = 255.0f) : red(r), green(g), blue(b), alpha(a) {}

    int32_t kind() const override { return kVariableColor; }
    std::unique_ptr<ImageModVariableData> clone() const override
    {
        return std::unique_ptr<ImageModVariableData>(new ImageModVariableDataColor(*this));
    }
    bool isEqual(const ImageModVariableData& other) const override
    {
        if (other.kind() != kVariableColor)
            return false;
        const auto& o = static_cast<const ImageModVariableDataColor&>(other);
        return o.red == red && o.green == green && o.blue == blue && o.alpha == alpha;
    }

    float red = 0.0f;
    float green = 0.0f;
    float blue = 0.0f;
    float alpha = 255.0f;
};
