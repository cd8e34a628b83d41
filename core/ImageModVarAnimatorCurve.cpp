#include "core/ImageModVarAnimatorCurve.h"

#include "core/ImageModVariable.h"
#include "core/ImageModVariableDataCurve.h"

#include <algorithm>
#include <cmath>

ImageModVarAnimatorCurve::ImageModVarAnimatorCurve(ImageModVariable* target,
                                                   std::vector<std::vector<PointKey>> keysPerPoint,
                                                   std::vector<int32_t> periodPerPoint)
    : pointKeys(std::move(keysPerPoint)), periodFrames(std::move(periodPerPoint)), variable(target)
{
}

void ImageModVarAnimatorCurve::apply(int32_t frame)
{
    if (!variable)
        return;
    ImageModVariableDataCurve* c = variable->asCurve();
    if (!c)
        return;
    ToneCurve& curve = c->curve;
    curve.points.resize(pointKeys.size());
    for (size_t p = 0; p < pointKeys.size(); ++p) {
        const std::vector<PointKey>& keys = pointKeys[p];
        if (keys.empty())
            continue;
        const int32_t period = p < periodFrames.size() ? periodFrames[p] : 0;
        const float x = keyPosition(int32_t(keys.size()), period, frame);
        const float fi = std::floor(x);
        const float fj = std::ceil(x);
        const size_t last = keys.size() - 1;
        const size_t i = std::min(size_t(fi), last);
        const size_t j = std::min(size_t(fj), last);
        if (i == j) {
            curve.points[p].x = keys[i].x;
            curve.points[p].y = keys[i].y;
        } else {
            curve.points[p].x = keys[j].x * (x - fi) + keys[i].x * (fj - x);
            curve.points[p].y = keys[j].y * (x - fi) + keys[i].y * (fj - x);
        }
    }
    curve.rebuild();
}
