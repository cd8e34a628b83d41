#pragma once
#include <cstdint>
#include <memory>

// Kinds of value a variable can hold; the numbers are stored in filter files.
enum ImageModVariableKind : int32_t {
    kVariableFloat = 1,
    kVariableCurve = 2,
    kVariableColor = 3,
    kVariableButton = 4,
    kVariableChoice = 5,
    kVariableMultiChoice = 6,
    kVariableFile = 7,
    kVariablePixel = 8,
    kVariableBoundary = 10,
};

// The value of a variable. This class itself is the float value (kind 1); the other kinds derive
// from it and ignore the float fields.
class ImageModVariableData {
public:
    ImageModVariableData() = default;
    // Default value with the same hard and display range.
    ImageModVariableData(float value, float min, float max);
    ImageModVariableData(float value, float hardMin, float hardMax, float displayMin, float displayMax);
    virtual ~ImageModVariableData() = default;

    virtual int32_t kind() const { return kVariableFloat; }
    virtual std::unique_ptr<ImageModVariableData> clone() const;
    // Float values compare only `value`, and only with another float value.
    virtual bool isEqual(const ImageModVariableData& other) const;

    // The slider shows the stored range mapped onto [min, max] (0..2 shown as 0..100).
    void setDisplayScale(float min, float max);
    // Stores v clamped to the hard range.
    void setClamped(float v);

    float value = 0.0f;
    float hardMin = 0.0f;
    float hardMax = 1.0f;
    bool hasHardMin = true;
    bool hasHardMax = true;
    float displayMin = 0.0f;
    float displayMax = 1.0f;
    float scaleMin = 0.0f;
    float scaleMax = 1.0f;
    bool hasDisplayScale = false;
    int32_t steps = 10;

protected:
    ImageModVariableData(const ImageModVariableData&) = default;
    ImageModVariableData& operator=(const ImageModVariableData&) = default;
};

using ImageModVariableDataFloat = ImageModVariableData;
