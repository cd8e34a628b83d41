#pragma once
#include "core/ImageMod.h"

// Tags the geometry code looks for among the enabled tiles.
inline constexpr int32_t kTagCrop = 0;
inline constexpr int32_t kTagSize = 1;
inline constexpr int32_t kTagBorder = 4;

// True when the mod carries the tag.
bool modHasTag(const ImageMod& mod, int32_t tag);

// A tile that asks for an output size. It changes no pixels: the driver resamples once, before the
// other tiles run, to what the size tile asks for.
class ImageModSize2 : public ImageMod {
public:
    explicit ImageModSize2(std::string modName = "Size", std::string label = {});

    int32_t group() const override { return 2; }
    bool isPlainAdjustment() const override { return false; }
    std::unique_ptr<ImageMod> newInstance() const override;

    // Size asked for, given the width and height reaching the mod. The base passes them through.
    virtual float outputHeight(float width, float height);
    virtual float outputWidth(float width, float height);
    // For the crop tool: whether the size's ratio fixes the crop's aspect, and whether that aspect
    // turns with the picture's orientation.
    virtual bool locksCropAspect(float ratio) const;
    virtual bool cropAspectFollowsOrientation() const { return false; }
};

// A size tile that works out both sides together; each side asked for is one half of the pair.
class ImageModSize2Pair : public ImageModSize2 {
public:
    using ImageModSize2::ImageModSize2;

    float outputHeight(float width, float height) final;
    float outputWidth(float width, float height) final;

protected:
    // Both sides for the width and height reaching the mod.
    virtual void computeSize(float width, float height, float& outWidth, float& outHeight) const = 0;
};
