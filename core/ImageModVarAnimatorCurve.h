#pragma once
#include "core/ImageModVarAnimator.h"

class ImageModVariable;

// One key path per control point; the curve gets exactly that many points, unsorted.
class ImageModVarAnimatorCurve : public ImageModVarAnimator {
public:
    struct PointKey {
        float x = 0.0f;
        float y = 0.0f;
    };

    ImageModVarAnimatorCurve(ImageModVariable* target, std::vector<std::vector<PointKey>> keysPerPoint,
                             std::vector<int32_t> periodPerPoint);
    void apply(int32_t frame) override;

    std::vector<std::vector<PointKey>> pointKeys;
    std::vector<int32_t> periodFrames;
    ImageModVariable* variable = nullptr;
};
