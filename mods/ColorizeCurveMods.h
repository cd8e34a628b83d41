#pragma once
#include "core/ImageMod.h"
#include "mods/ImageModColorizeCurve.h"

#include <array>

// Tiles that drive one or more embedded colorize curves with fixed curves:
//   ImageModColorizeNoCurve, ImageModColorTemperature, ImageModColorWheels

// One colour at one strength over every luminance ("Coloring").
class ImageModColorizeNoCurve : public ImageMod {
public:
    ImageModColorizeNoCurve();
    std::unique_ptr<ImageMod> newInstance() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

private:
    void update();
    ImageModColorizeCurve inner;
};

// Warm above 0, cool below, through a colorize curve built per apply.
class ImageModColorTemperature : public ImageMod {
public:
    ImageModColorTemperature();
    std::unique_ptr<ImageMod> newInstance() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // Fills `curve` for temperature t at this tile's version; false when t is 0 (nothing to do).
    bool configure(float t, ImageModColorizeCurve& curve) const;
};

// Four wheels (all, shadows, midtones, highlights): a wheel's colour is its hue, its alpha the
// strength.
class ImageModColorWheels : public ImageMod {
public:
    ImageModColorWheels();
    std::unique_ptr<ImageMod> newInstance() const override;
    void copyFrom(const ImageMod& other) override;
    void variableChanged(int32_t index) override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // Copies the wheels and the method into the embedded mods.
    void update();
    const ImageModColorizeCurve& wheel(int32_t i) const { return wheels[size_t(i)]; }

private:
    std::array<ImageModColorizeCurve, 4> wheels;
};
