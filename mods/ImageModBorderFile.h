#pragma once
#include "mods/BorderFileStyles.h"
#include "mods/ImageModBorder.h"
#include "mods/OverlayImage.h"

#include <memory>
#include <string>

// One of the built-in image borders: bands in the backdrop colour around the photo, then the
// style's frame picture laid over the whole output. Everything is measured against the photo's
// shorter side, so a preview and the full-size save show the same frame. Without its picture
// (a build with no image decoder) the bands alone are drawn, so the layout never changes.
class ImageModBorderFile : public ImageModBorder {
public:
    explicit ImageModBorderFile(int32_t styleIndex = 0);

    std::unique_ptr<ImageMod> newInstance() const override;
    void copyFrom(const ImageMod& other) override;
    BorderBands bands(double width, double height) const override;
    void bandColor(float rgba[4]) const override;
    void drawOver(FlexImageFloat& destination, double pictureWidth, double pictureHeight,
                  const BorderPlacement& placement) override;

    const BorderFileStyle& style() const { return kBorderFileStyles[styleIndex]; }
    int32_t styleNumber() const { return styleIndex; }
    // The resource path of the style's picture.
    std::string artworkPath() const;

private:
    int32_t styleIndex;
};

// "Custom File Border": a picture of the user's, with transparency where the photo shows through,
// stretched over the photo. The canvas keeps its size. A missing or unreadable file leaves the
// image as it is, and the tile's tool tip tells why.
class ImageModBorderFileCustom : public ImageModBorder {
public:
    static constexpr int32_t fileIndex = 0;

    ImageModBorderFileCustom();

    std::unique_ptr<ImageMod> newInstance() const override;
    void copyFrom(const ImageMod& other) override;
    void variableChanged(int32_t index) override;
    bool drawSource(const FlexImageFloat& source, const CropFractions* crop, FlexImageFloat& destination,
                    int32_t width, int32_t height, float straighten) override;
    void drawOver(FlexImageFloat& destination, double pictureWidth, double pictureHeight,
                  const BorderPlacement& placement) override;

    // Why the picture couldn't be used; empty when it could (or no file is chosen yet).
    const std::string& loadMessage() const { return chosen.message; }
    const OverlayImage* picture() const { return chosen.art.get(); }

private:
    // Reads the chosen file when it isn't the one held; sets the message and the tool tip.
    void refresh();

    ChosenOverlayImage chosen;
};
