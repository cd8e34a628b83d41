#pragma once
#include "core/ImageMod.h"
#include "core/ToneCurve.h"

#include <vector>

// What ImageModShadows and ImageModHighlights share. Amount 1 leaves the image alone; version 2
// bends HSV value through one of two fixed curves; other versions run a luminance curve that the
// subclass builds from Amount.
class ImageModToneRegion : public ImageMod {
public:
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // The version 2 curves; the point values are part of the look.
    const ToneCurve brightenCurve;
    const ToneCurve darkenCurve;

protected:
    ImageModToneRegion(const char* name, const char* brighten, const char* darken, const char* tip,
                       int32_t v, float amount);
    // The curve of versions other than 2, for an Amount that is finite and not 1.
    virtual std::vector<ToneCurvePoint> amountCurvePoints(float amount) const = 0;

private:
    template <typename Sample>
    void applyPass(FlexImageT<Sample>* image, const ImageModApplyContext* context) const;
};
