#pragma once
#include "core/ImageMod.h"

// Tiles that rebuild each channel as a weighted mix of the input channels:
//   ImageModChannelMixer, ImageModChannelMixerGreyscale, ImageModFilteredBW, ImageModRGBSwap

// Three output rows of three input weights, in percent. The panel shows one row at a time: the
// "Red", "Green", "Blue" sliders edit the row that "Output Channel" chooses, and the nine hidden
// variables hold all rows ("RedR", "GreenR", "BlueR" are the weights of input R, G, B in the output
// red, and so on). variableChanged keeps both sides in step.
class ImageModChannelMixer : public ImageMod {
public:
    enum VariableIndex : int32_t { kSliderRed = 0, kSliderGreen = 1, kSliderBlue = 2, kOutputChannel = 3, kRows = 4 };

    ImageModChannelMixer();
    std::unique_ptr<ImageMod> newInstance() const override;
    void variableChanged(int32_t index) override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // Index of the hidden variable with the weight of input `in` in output `out` (0 R, 1 G, 2 B).
    static int32_t rowVariable(int32_t out, int32_t in) { return kRows + out * 3 + in; }
};

// One row of weights; the result goes to all three channels.
class ImageModChannelMixerGreyscale : public ImageMod {
public:
    ImageModChannelMixerGreyscale();
    std::unique_ptr<ImageMod> newInstance() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
    void setWeights(float r, float g, float b);
};

// Black and white through a coloured filter: the hue picks the mixer weights, Amount how much
// colour is left for the filter to see.
class ImageModFilteredBW : public ImageMod {
public:
    ImageModFilteredBW();
    std::unique_ptr<ImageMod> newInstance() const override;
    std::string labelForTile() const override { return "Filtered\n B+W"; }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // Greyscale weights in percent for a filter hue: the pure hue's R, G, B, normalised to 100.
    static void hueWeights(float hue, float& r, float& g, float& b);
};

// Each input channel replaced by a colour: out = R * C1 + G * C2 + B * C3, normalised so that the
// brightest output channel of white reaches 255.
class ImageModRGBSwap : public ImageMod {
public:
    ImageModRGBSwap();
    std::unique_ptr<ImageMod> newInstance() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // min over R, G, B of 255 / (sum of that component over the three colours).
    float norm() const;
};
