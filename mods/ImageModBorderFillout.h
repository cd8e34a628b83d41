#pragma once
#include "mods/ImageModBorder.h"

// Bars of one colour that widen the picture to an aspect of the aspect-ratio list, never cutting
// it. A landscape ratio follows a portrait picture, as the aspect-ratio tile does.
class ImageModBorderFillout : public ImageModBorder {
public:
    ImageModBorderFillout();

    std::unique_ptr<ImageMod> newInstance() const override;
    // A change of "Aspect" shows "Custom Aspect" only for "Custom" and asks the panel to refresh.
    void variableChanged(int32_t index) override;
    bool consumeRefreshRequest() override;
    BorderBands bands(double width, double height) const override;
    void bandColor(float rgba[4]) const override;

    // Width over height asked for, turned to the picture's orientation; 0 for none.
    double targetAspect(double width, double height) const;

    static constexpr int32_t colorIndex = 0;
    static constexpr int32_t aspectIndex = 1;
    static constexpr int32_t customIndex = 2;

private:
    bool refreshRequested = false;
};
