#include "mods/ImageModExactSize.h"

#include <algorithm>

ImageModExactSize::ImageModExactSize() : ImageModSize2("Output Size Exact", "Exact Size")
{
    toolTip = "Specify exact width and height for the output image.";
    addFloat("Width", 1920.0f, 0.0f, 100000.0f, 1.0f, 8000.0f);
    addFloat("Height", 1080.0f, 0.0f, 100000.0f, 1.0f, 8000.0f);
}

std::unique_ptr<ImageMod> ImageModExactSize::newInstance() const
{
    return std::make_unique<ImageModExactSize>();
}

void ImageModExactSize::variableChanged(int32_t index)
{
    if (index != 0 && index != 1)
        return;
    ImageModVariable* v = variableAt(index);
    ImageModVariableData* value = v ? v->asFloat() : nullptr;
    if (!value || !(value->value >= 0.0f) || value->value > 100000.0f)
        return;
    std::lock_guard<std::mutex> lock(sizeMutex);
    value->value = float(int32_t(value->value + 0.5f));
}

float ImageModExactSize::outputHeight(float, float)
{
    std::lock_guard<std::mutex> lock(sizeMutex);
    return std::max(1.0f, floatValue(1));
}

float ImageModExactSize::outputWidth(float, float)
{
    std::lock_guard<std::mutex> lock(sizeMutex);
    return std::max(1.0f, floatValue(0));
}
