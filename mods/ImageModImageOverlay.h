#pragma once
#include "core/ImageMod.h"
#include "mods/OverlayImage.h"

#include <memory>
#include <string>

// "Watermark": a picture with transparency (a logo, a signature) laid over the image. Its centre
// stands at "Position" in document pixels (unset: the lower right corner), its width is "Size"
// times the image's width, its coverage times "Opacity".
class ImageModImageOverlay : public ImageMod {
public:
    static constexpr int32_t fileIndex = 0;
    static constexpr int32_t positionIndex = 1;
    static constexpr int32_t sizeIndex = 2;
    static constexpr int32_t opacityIndex = 3;

    ImageModImageOverlay();

    std::unique_ptr<ImageMod> newInstance() const override;
    void copyFrom(const ImageMod& other) override;
    int32_t group() const override { return 2; }
    bool passIsPure(int32_t) const override { return false; }
    bool isPlainAdjustment() const override { return false; }
    void variableChanged(int32_t index) override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // Where the picture lands in a buffer whose frame is `frame`'s (see SpatialSupport.h): left,
    // top, width and height in buffer pixels. False when there is nothing to draw.
    struct Placement {
        double x = 0.0;
        double y = 0.0;
        double width = 0.0;
        double height = 0.0;
    };
    bool placement(int32_t imageWidth, int32_t imageHeight, const ImageModApplyContext* context,
                   Placement& out) const;

    const std::string& loadMessage() const { return chosen.message; }

private:
    void refresh();
    template <typename Sample>
    void applyT(FlexImageT<Sample>* image, const ImageModApplyContext* context);

    ChosenOverlayImage chosen;
};
