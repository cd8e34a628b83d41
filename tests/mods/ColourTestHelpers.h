#pragma once
#include "core/ImageMod.h"
#include "core/ImageModVariableDataColor.h"
#include "tests/mods/CurveTestHelpers.h"

#include <gtest/gtest.h>

// Helpers for the colour tile tests; masks, images and comparisons come from the curve helpers.

inline void setColour(ImageMod& mod, int32_t index, float r, float g, float b, float a = 255.0f)
{
    ImageModVariable* v = mod.variableAt(index);
    ASSERT_NE(v, nullptr);
    ImageModVariableDataColor* c = v->asColor();
    ASSERT_NE(c, nullptr);
    c->red = r;
    c->green = g;
    c->blue = b;
    c->alpha = a;
}

inline void setValue(ImageMod& mod, int32_t index, float value)
{
    ImageModVariable* v = mod.variableAt(index);
    ASSERT_NE(v, nullptr);
    ASSERT_NE(v->asFloat(), nullptr);
    v->asFloat()->value = value;
}

// One pixel through a mod at float depth; returns the pixel (3 or 4 samples).
inline std::vector<float> colourApplyFloat(ImageMod& mod, std::vector<float> px, const ImageModApplyContext* ctx = nullptr)
{
    const int32_t ch = int32_t(px.size());
    FlexImageFloat img(1, 1, ch);
    for (int32_t c = 0; c < ch; ++c)
        img.data[c] = px[size_t(c)];
    mod.apply(&img, ctx);
    for (int32_t c = 0; c < ch; ++c)
        px[size_t(c)] = img.data[c];
    return px;
}

inline std::vector<int> colourApply8(ImageMod& mod, const std::vector<int>& px, const ImageModApplyContext* ctx = nullptr)
{
    const int32_t ch = int32_t(px.size());
    FlexImage8 img(1, 1, ch);
    for (int32_t c = 0; c < ch; ++c)
        img.data[c] = uint8_t(px[size_t(c)]);
    mod.apply(&img, ctx);
    std::vector<int> out(px.size());
    for (int32_t c = 0; c < ch; ++c)
        out[size_t(c)] = img.data[c];
    return out;
}
