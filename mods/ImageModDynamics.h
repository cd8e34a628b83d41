#pragma once
#include "core/ImageMod.h"
#include "mods/ImageModBlur.h"

// "Dynamics": moves each pixel against the average of its neighbourhood, which compresses (Overlay)
// or stretches (Luminance) local contrast. "Radius" sizes the neighbourhood: it is the Amount of
// an inner Gaussian blur, so the neighbourhood follows the frame as a Blur would.
class ImageModDynamics : public ImageMod
{
public:
    enum Method : int32_t { Overlay = 0, Luminance = 1 };
    // Mid-grey of the Overlay blend: at this constant an Amount of 0 is exactly neutral.
    static constexpr float overlayCenter = 127.5f;

    ImageModDynamics();

    void copyFrom(const ImageMod& other) override;
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModDynamics>(); }
    int32_t paddingNeeded(int32_t width, int32_t height, float scale) const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
    void variableChanged(int32_t index) override;

    const ImageModBlur& innerBlur() const { return blur; }

private:
    void syncBlur();
    template <typename Sample>
    void applyDepth(FlexImageT<Sample>* image, const ImageModApplyContext* context);

    ImageModBlur blur;
};
