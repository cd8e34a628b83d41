#pragma once
#include "core/ImageModVariableData.h"

// Four numbers in the file's order.
class ImageModVariableDataBoundary : public ImageModVariableData {
public:
    ImageModVariableDataBoundary() = default;
    ImageModVariableDataBoundary(float l, float t, float r, float b) : left(l), top(t), right(r), bottom(b) {}

    int32_t kind() const override { return kVariableBoundary; }
    std::unique_ptr<ImageModVariableData> clone() const override
    {
        return std::unique_ptr<ImageModVariableData>(new ImageModVariableDataBoundary(*this));
    }
    bool isEqual(const ImageModVariableData& other) const override
    {
        if (other.kind() != kVariableBoundary)
            return false;
        const auto& o = static_cast<const ImageModVariableDataBoundary&>(other);
        return o.left == left && o.top == top && o.right == right && o.bottom == bottom;
    }

    float left = 0.0f;
    float top = 0.0f;
    float right = 0.0f;
    float bottom = 0.0f;
};
