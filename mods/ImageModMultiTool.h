#pragma once
#include "core/ImageMod.h"

// Exposure, contrast and saturation in one tile, run as three stages. Sliders are 0..100 with 50
// neutral. Version 1 tiles use the old gamma exposure stage.
class ImageModMultiTool : public ImageMod {
public:
    static constexpr int32_t newestVersion = 3;

    ImageModMultiTool();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModMultiTool>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};
