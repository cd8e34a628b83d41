#pragma once
#include "mods/ImageModSize2.h"

#include <mutex>

// Asks for an exact output size; the picture is cut to that aspect, centred, never distorted.
class ImageModExactSize : public ImageModSize2 {
public:
    ImageModExactSize();

    std::unique_ptr<ImageMod> newInstance() const override;
    // A size is a count of pixels: a typed value is rounded to whole pixels.
    void variableChanged(int32_t index) override;

    float outputHeight(float width, float height) override;
    float outputWidth(float width, float height) override;
    bool locksCropAspect(float) const override { return true; }
    bool cropAspectFollowsOrientation() const override { return false; }

private:
    std::mutex sizeMutex;
};
