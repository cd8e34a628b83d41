#pragma once
#include "core/ImageMod.h"
#include "core/ToneCurve.h"

// The colour-cast tiles: one colour (or three offsets) pushed over the whole image.
//   ImageModDye, ImageModTint, ImageModColorFilter, ImageModColorize, ImageModWhiteBalance,
//   ImageModColorBalance, ImageModColorCorrector

// Dye with a colour, keeping detail. Version 2 is the current dye; older versions the legacy one.
class ImageModDye : public ImageMod {
public:
    explicit ImageModDye(int32_t dyeVersion = 2);
    // A new tile keeps the version of the tile it is made from.
    std::unique_ptr<ImageMod> newInstance() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};

class ImageModTint : public ImageMod {
public:
    ImageModTint();
    std::unique_ptr<ImageMod> newInstance() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};

class ImageModColorFilter : public ImageMod {
public:
    ImageModColorFilter();
    std::unique_ptr<ImageMod> newInstance() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};

class ImageModColorize : public ImageMod {
public:
    ImageModColorize();
    std::unique_ptr<ImageMod> newInstance() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};

class ImageModWhiteBalance : public ImageMod {
public:
    ImageModWhiteBalance();
    std::unique_ptr<ImageMod> newInstance() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};

class ImageModColorBalance : public ImageMod {
public:
    ImageModColorBalance();
    std::unique_ptr<ImageMod> newInstance() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
};

// Colorize steps for shadows, midtones and highlights, each weighted by a fixed luminance curve.
class ImageModColorCorrector : public ImageMod {
public:
    ImageModColorCorrector();
    std::unique_ptr<ImageMod> newInstance() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

private:
    ToneCurve shadowWeights;
    ToneCurve midtoneWeights;
    ToneCurve highlightWeights;
};
