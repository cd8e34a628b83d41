#pragma once
#include "core/ImageMod.h"

// One curve applied to a chosen channel or pair of channels.
class ImageModComponentCurve : public ImageMod {
public:
    enum Components : int32_t { red = 0, green = 1, blue = 2, redGreen = 3, greenBlue = 4, blueRed = 5 };
    enum : int32_t { varAmount = 0, varCurve = 1, varComponents = 2 };

    ImageModComponentCurve();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModComponentCurve>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
