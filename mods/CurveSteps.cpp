#include "mods/CurveSteps.h"

#include "core/ImageMod.h"
#include "core/ImageModVarAnimatorCurve.h"

#include <memory>

void addCurveAnimator(ImageMod* mod, ImageModVariable* variable, const std::vector<std::string>& pointKeys,
                      float seconds)
{
    if (!mod || !variable || pointKeys.empty())
        return;
    const float ft = mod->frameTime();
    const int32_t period = ft > 0.0f ? int32_t(seconds / ft) : 0;
    std::vector<std::vector<ImageModVarAnimatorCurve::PointKey>> keys;
    std::vector<int32_t> periods;
    keys.reserve(pointKeys.size());
    for (const std::string& text : pointKeys) {
        const std::vector<float> values = ImageModVarAnimator::parseKeys(text);
        std::vector<ImageModVarAnimatorCurve::PointKey> path;
        for (size_t i = 0; i + 1 < values.size(); i += 2)
            path.push_back({values[i], values[i + 1]});
        keys.push_back(std::move(path));
        periods.push_back(period);
    }
    mod->addAnimator(std::make_unique<ImageModVarAnimatorCurve>(variable, std::move(keys), std::move(periods)));
}
