#pragma once
#include "core/ImageMod.h"
#include "mods/ImageModBorderGeometry.h"

#include <cstdint>

struct BorderPlacement;

// Band widths a border adds on each side, in pixels of the picture that reaches it.
struct BorderBands {
    double left = 0.0;
    double right = 0.0;
    double top = 0.0;
    double bottom = 0.0;
};

// Base of the border tiles. A border changes no pixels in apply: the driver's geometry step asks it
// for the enlarged size and lets it draw the photo and the bands in one pass. Everything is a
// fraction of the picture, so a small preview and the full-size save draw the same border.
class ImageModBorder : public ImageMod, public ImageModBorderGeometry {
public:
    ImageModBorder(std::string modName, std::string label);

    int32_t kind() const override { return 1; }
    int32_t group() const override { return 2; }
    ImageMod* borderMod() override { return this; }
    bool isPlainAdjustment() const override { return false; }

    // Adds the bands to width and height; the straighten angle passes on unchanged.
    void adjustGeometry(double& width, double& height, float& straighten) override;
    // Draws the photo, cut and turned, into its place inside width x height and fills the bands.
    bool drawSource(const FlexImageFloat& source, const CropFractions* crop, FlexImageFloat& destination,
                    int32_t width, int32_t height, float straighten) override;

    // The bands around a picture of width x height (any resolution); none by default.
    virtual BorderBands bands(double width, double height) const;
    // Corner radius of the photo as a fraction of its shorter side; 0 draws square corners.
    virtual float cornerRadius() const { return 0.0f; }
    // Band colour, 0..255 with alpha.
    virtual void bandColor(float rgba[4]) const;
    // Drawn last over the finished output (frame artwork); the picture's size before any
    // reduction and where the photo landed are given. Nothing by default.
    virtual void drawOver(FlexImageFloat& destination, double pictureWidth, double pictureHeight,
                          const BorderPlacement& placement);

protected:
    // The colour variable at `index` as a band colour; the default white when there is none.
    void colorVariableBand(int32_t index, float rgba[4]) const;
};

// Where the photo lands inside a border output of outputWidth x outputHeight, in output pixels.
// A reduced output places it at fractions of a pixel, so a preview lines up with the save.
struct BorderPlacement {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
    double radius = 0.0;
    // Whole pixels the photo is resampled to (its size rounded up where it ends inside a pixel).
    int32_t sampleWidth = 0;
    int32_t sampleHeight = 0;
};

// Places a picture of pictureWidth x pictureHeight with its bands inside the output. An output
// within a pixel of the natural size is taken as that size, so a full-size render keeps the photo
// one to one; with `wholePixels` (a picture at full resolution) it also starts on a whole pixel.
// False when no photo pixel is left.
bool placeBorderPhoto(double pictureWidth, double pictureHeight, const BorderBands& bands, int32_t outputWidth,
                      int32_t outputHeight, float radiusFraction, bool wholePixels, BorderPlacement& placement);

// Share of the pixel [px, px+1] x [py, py+1] inside the photo of `placement` with its rounded
// corners, exactly by area.
double roundedCoverage(const BorderPlacement& placement, int32_t px, int32_t py);
