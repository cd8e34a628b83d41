#pragma once
#include "core/ImageModVariableData.h"
#include "core/ToneCurve.h"

#include <string>
#include <vector>

class ImageModVariableDataCurve : public ImageModVariableData {
public:
    ImageModVariableDataCurve() = default;
    // Points as "x y x y ...".
    explicit ImageModVariableDataCurve(const std::string& points, bool closed = false);

    int32_t kind() const override { return kVariableCurve; }
    std::unique_ptr<ImageModVariableData> clone() const override;
    // Control points exactly, and the hue offset.
    bool isEqual(const ImageModVariableData& other) const override;

    ToneCurve curve;
    float defaultHueOffset = 180.0f;
    std::vector<uint64_t> markers;
};
