#pragma once
#include "mods/ImageModSize2.h"

// Fits the picture inside a maximum width, height or longest side, keeping its aspect. A limit above
// the picture's size enlarges it. 0 means no limit.
class ImageModConstrainSize : public ImageModSize2Pair {
public:
    ImageModConstrainSize();

    std::unique_ptr<ImageMod> newInstance() const override;
    // Version 1 had no "Longest Side".
    void setVersion(int32_t v) override;
    // "Longest Side" and the two maxima exclude each other: setting one clears the other.
    void variableChanged(int32_t index) override;

    bool locksCropAspect(float) const override { return false; }
    bool cropAspectFollowsOrientation() const override { return true; }

protected:
    void computeSize(float width, float height, float& outWidth, float& outHeight) const override;
};
