#pragma once
#include "core/ImageMod.h"
#include "core/ImageModSourcedApply.h"

// Per-channel contrast around a center. From version 2 the center is fixed at 90 and its slider
// is hidden; version 1 tiles keep their own "Center".
class ImageModContrast : public ImageMod, public ImageModSourcedApply {
public:
    static constexpr int32_t newestVersion = 2;

    explicit ImageModContrast(int32_t v = newestVersion, float amount = 1.0f, float center = 90.0f);
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModContrast>(); }
    void setVersion(int32_t v) override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
    // Unmasked only: a mask's weights come from the image being worked on.
    bool applyFrom(const FlexImageFloat& source, FlexImageFloat* dest, const ImageModApplyContext* context) override;
};
