#pragma once
#include "core/ImageModSelector.h"

#include <atomic>

// Round mask around a point. Variables: 0 "Amount", 1 "Sharpness", 2 "Radius", 3 "Center" (document
// pixels, (-1, -1) for the picture's centre), 4 "Method" ("Normal", "Inverted").
class ImageModSpotSelector : public ImageModSelector {
public:
    ImageModSpotSelector();
    std::unique_ptr<ImageMod> newInstance() const override;
    void copyFrom(const ImageMod& other) override;
    void variableChanged(int32_t index) override;
    float maskValue(const FlexImageFloat* image, int32_t x, int32_t y, const ReferenceFrame* frame) const override;
    float maskValue(const FlexImage8* image, int32_t x, int32_t y, const ReferenceFrame* frame) const override;

    // Amount, Radius and Sharpness, read at the first query after a change. Row threads that race
    // here store equal values.
    mutable std::atomic<float> cachedAmount{0.0f};
    mutable std::atomic<float> cachedRadius{0.0f};
    mutable std::atomic<float> cachedSharpness{0.0f};
    mutable std::atomic<bool> cacheValid{false};

private:
    float spotMask(int32_t width, int32_t height, float imageScale, int32_t x, int32_t y,
                   const ReferenceFrame* frame) const;
    void fillCache() const;
};
