#pragma once
#include "mods/ImageModSize2.h"

#include <mutex>

// Fits the picture inside a maximum width, height or longest side, keeping its aspect. A limit above
// the picture's size enlarges it. 0 means no limit.
class ImageModConstrainSize : public ImageModSize2 {
public:
    ImageModConstrainSize();

    std::unique_ptr<ImageMod> newInstance() const override;
    // Version 1 had no "Longest Side".
    void setVersion(int32_t v) override;
    // "Longest Side" and the two maxima exclude each other: setting one clears the other.
    void variableChanged(int32_t index) override;

    float outputHeight(float width, float height) override;
    float outputWidth(float width, float height) override;
    bool locksCropAspect(float) const override { return false; }
    bool cropAspectFollowsOrientation() const override { return true; }

private:
    void computeSize(float width, float height);

    std::mutex sizeMutex;
    float computedWidth = 1200.0f;
    float computedHeight = 1200.0f;
};
