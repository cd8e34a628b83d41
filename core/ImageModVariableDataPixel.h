#pragma once
#include "core/ImageModVariableData.h"

#include <vector>

struct ImageModPixelPoint {
    float x = -1.0f;
    float y = -1.0f;
    bool operator==(const ImageModPixelPoint&) const = default;
};

// Points in full-size document pixels; (-1, -1) means "not set", the mod picks its default.
class ImageModVariableDataPixel : public ImageModVariableData {
public:
    ImageModVariableDataPixel() = default;
    ImageModVariableDataPixel(float x, float y) : points{{x, y}} {}

    int32_t kind() const override { return kVariablePixel; }
    std::unique_ptr<ImageModVariableData> clone() const override
    {
        return std::unique_ptr<ImageModVariableData>(new ImageModVariableDataPixel(*this));
    }
    bool isEqual(const ImageModVariableData& other) const override
    {
        return other.kind() == kVariablePixel && static_cast<const ImageModVariableDataPixel&>(other).points == points;
    }

    static bool isUnset(const ImageModPixelPoint& p) { return p.x == -1.0f && p.y == -1.0f; }

    bool flagA = false;
    bool flagB = false;
    std::vector<ImageModPixelPoint> points;
};
