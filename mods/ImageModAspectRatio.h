#pragma once
#include "mods/ImageModSize2.h"

// Cuts the picture to the largest centred rectangle of a chosen aspect. A landscape ratio follows a
// portrait picture, so "16:9" on a portrait gives 9:16.
class ImageModAspectRatio : public ImageModSize2Pair {
public:
    ImageModAspectRatio();

    std::unique_ptr<ImageMod> newInstance() const override;
    bool passIsPure(int32_t pass) const override;
    // A change of "Aspect" shows "Custom Aspect" only for "Custom" and asks the panel to refresh.
    void variableChanged(int32_t index) override;
    bool consumeRefreshRequest() override;

    bool locksCropAspect(float) const override { return true; }
    bool cropAspectFollowsOrientation() const override { return true; }

    // Width over height for the current choice; 0 means no constraint.
    float aspectValue() const;
    // The value of a choice text; `custom` is used for "Custom" when above 0.
    static float aspectForLabel(const std::string& label, float custom);

    static constexpr int32_t customIndex = 13;

protected:
    void computeSize(float width, float height, float& outWidth, float& outHeight) const override;

private:
    bool refreshRequested = false;
};
