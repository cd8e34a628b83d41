#include "core/ImageModVariableData.h"

ImageModVariableData::ImageModVariableData(float v, float min, float max)
    : value(v), hardMin(min), hardMax(max), displayMin(min), displayMax(max)
{
}

ImageModVariableData::ImageModVariableData(float v, float hMin, float hMax, float dMin, float dMax)
    : value(v), hardMin(hMin), hardMax(hMax), displayMin(dMin), displayMax(dMax)
{
}

std::unique_ptr<ImageModVariableData> ImageModVariableData::clone() const
{
    return std::unique_ptr<ImageModVariableData>(new ImageModVariableData(*this));
}

bool ImageModVariableData::isEqual(const ImageModVariableData& other) const
{
    return other.kind() == kVariableFloat && other.value == value;
}

void ImageModVariableData::setDisplayScale(float min, float max)
{
    scaleMin = min;
    scaleMax = max;
    hasDisplayScale = true;
}

void ImageModVariableData::setClamped(float v)
{
    if (hasHardMax && v > hardMax)
        v = hardMax;
    if (hasHardMin && v < hardMin)
        v = hardMin;
    value = v;
}
