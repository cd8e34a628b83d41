#pragma once
#include "core/ImageMod.h"
#include "mods/ImageModToneCurve.h"

// Three sliders that shape a five-point curve; the pixels go through an embedded tone curve tile
// (method RGB, Amount 1), so masks follow that tile's rule. The curve is also refreshed at the start
// of each apply, so values written without variableChanged still take effect.
class ImageModShadowsMidsHighs : public ImageMod {
public:
    enum : int32_t { varShadows = 0, varMidtones = 1, varHighlights = 2 };

    ImageModShadowsMidsHighs();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModShadowsMidsHighs>(); }
    void copyFrom(const ImageMod& other) override;
    void variableChanged(int32_t index) override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // Rewrites the curve from the three sliders and hands it to the embedded tile.
    void updateCurve();
    bool isNeutral() const;
    const ToneCurve* curve() const { return toneCurve.curveAt(ImageModToneCurve::varCurve); }

private:
    ImageModToneCurve toneCurve;
};
