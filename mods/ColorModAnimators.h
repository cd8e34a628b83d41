#pragma once
#include "core/ImageMod.h"
#include "core/ImageModVarAnimatorColorHSVA.h"

#include <memory>
#include <string>
#include <vector>

// Hover-preview animators with four floats per key, declared like the float ones: a
// key text and a cycle length in seconds.

// Keys "h s v a h s v a ...": hue in degrees, the rest 0..1. A trailing incomplete group is dropped.
inline void addColorAnimator(ImageMod& mod, ImageModVariable* variable, const std::string& keysText, float seconds)
{
    if (!variable)
        return;
    const std::vector<float> keys = ImageModVarAnimator::parseKeys(keysText);
    std::vector<float> h, s, v, a;
    for (size_t i = 0; i + 3 < keys.size(); i += 4) {
        h.push_back(keys[i]);
        s.push_back(keys[i + 1]);
        v.push_back(keys[i + 2]);
        a.push_back(keys[i + 3]);
    }
    if (h.empty())
        return;
    const float ft = mod.frameTime();
    const int32_t period = ft > 0.0f ? int32_t(seconds / ft) : 0;
    mod.addAnimator(std::make_unique<ImageModVarAnimatorColorHSVA>(variable, std::move(h), std::move(s), std::move(v),
                                                                   std::move(a), period));
}
