#pragma once
#include "core/ImageMod.h"

// The old exposure tile, file name "Gamma". Version 2 moves black or white too; version 1 is a
// plain power. The 8-bit path divides by 255 as an integer, which saved looks depend on: keep it.
class ImageModGammaLegacy : public ImageMod {
public:
    static constexpr int32_t newestVersion = 2;

    explicit ImageModGammaLegacy(float amount = 1.0f);
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModGammaLegacy>(); }
    ImageModVariable* amountVariable() const override { return firstVariable(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
