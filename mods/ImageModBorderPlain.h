#pragma once
#include "mods/ImageModBorder.h"

// A band of one colour around the photo, its width a fraction of the picture's shorter side. The
// rounded kind ("Custom Rounded") also rounds the photo's corners into the band; the straight kind
// ("Custom Straight") has no radius variable.
class ImageModBorderPlain : public ImageModBorder {
public:
    explicit ImageModBorderPlain(bool rounded = true);

    std::unique_ptr<ImageMod> newInstance() const override;
    BorderBands bands(double width, double height) const override;
    float cornerRadius() const override;
    void bandColor(float rgba[4]) const override;

    bool isRounded() const { return rounded; }

    static constexpr int32_t colorIndex = 0;
    static constexpr int32_t widthIndex = 1;
    static constexpr int32_t radiusIndex = 2;

private:
    bool rounded;
};
