#include "mods/ImageModConstrainSize.h"

#include <algorithm>

namespace {
constexpr int32_t kMaxWidth = 0;
constexpr int32_t kMaxHeight = 1;
constexpr int32_t kLongestSide = 2;
} // namespace

ImageModConstrainSize::ImageModConstrainSize() : ImageModSize2Pair("Output Size", "Maximum Size")
{
    toolTip = "Specify width and height constraints for the output image.";
    version = 2;
    addFloat("Max Width", 0.0f, 0.0f, 100000.0f, 0.0f, 8000.0f);
    addFloat("Max Height", 0.0f, 0.0f, 100000.0f, 0.0f, 8000.0f);
    addFloat("Longest Side", 0.0f, 0.0f, 100000.0f, 0.0f, 8000.0f);
}

std::unique_ptr<ImageMod> ImageModConstrainSize::newInstance() const
{
    return std::make_unique<ImageModConstrainSize>();
}

void ImageModConstrainSize::setVersion(int32_t v)
{
    ImageModSize2::setVersion(v);
    if (ImageModVariable* longest = variableAt(kLongestSide))
        longest->visible = v != 1;
}

void ImageModConstrainSize::variableChanged(int32_t index)
{
    auto clear = [this](int32_t i) {
        ImageModVariable* v = variableAt(i);
        if (v && v->asFloat())
            v->asFloat()->value = 0.0f;
    };
    if (index == kLongestSide && floatValue(kLongestSide) > 0.0f) {
        clear(kMaxWidth);
        clear(kMaxHeight);
    } else if ((index == kMaxWidth || index == kMaxHeight) && floatValue(index) > 0.0f) {
        clear(kLongestSide);
    }
}

void ImageModConstrainSize::computeSize(float w, float h, float& computedWidth, float& computedHeight) const
{
    const float maxWidth = floatValue(kMaxWidth);
    const float maxHeight = floatValue(kMaxHeight);
    const float longest = floatValue(kLongestSide);
    float limitW = maxWidth > 0.0f ? maxWidth : w;
    float limitH = maxHeight > 0.0f ? maxHeight : h;
    if (longest > 0.0f) {
        limitW = std::min(limitW, longest);
        limitH = std::min(limitH, longest);
    }
    if (!(w > 0.0f) || !(h > 0.0f) || !(limitH > 0.0f)) {
        computedWidth = std::max(1.0f, limitW);
        computedHeight = std::max(1.0f, limitH);
        return;
    }
    const float a = w / h;
    if (a > limitW / limitH) {
        computedWidth = limitW;
        computedHeight = float(int32_t(limitW / a + 0.5f));
    } else {
        computedHeight = limitH;
        computedWidth = float(int32_t(a * limitH + 0.5f));
    }
    computedWidth = std::max(1.0f, computedWidth);
    computedHeight = std::max(1.0f, computedHeight);
}
