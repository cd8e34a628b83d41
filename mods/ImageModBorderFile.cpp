#include "mods/ImageModBorderFile.h"

#include "core/ImageModVariableDataFile.h"
#include "mods/NineSlice.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr const char* kCustomTip
    = "A border based on an input file that includes transparency where you want the image to show through.";

int32_t validStyle(int32_t index)
{
    return index >= 0 && index < kBorderFileStyleCount ? index : 0;
}

} // namespace

ImageModBorderFile::ImageModBorderFile(int32_t index)
    : ImageModBorder(kBorderFileStyles[validStyle(index)].name, kBorderFileStyles[validStyle(index)].name)
    , styleIndex(validStyle(index))
{
    toolTip = "A ready-made border, drawn to fit the image at any size.";
}

std::unique_ptr<ImageMod> ImageModBorderFile::newInstance() const
{
    return std::make_unique<ImageModBorderFile>(styleIndex);
}

void ImageModBorderFile::copyFrom(const ImageMod& other)
{
    ImageModBorder::copyFrom(other);
    if (const auto* o = dynamic_cast<const ImageModBorderFile*>(&other))
        styleIndex = o->styleIndex;
}

std::string ImageModBorderFile::artworkPath() const
{
    return std::string(":/img/borders/") + style().file + ".png";
}

BorderBands ImageModBorderFile::bands(double width, double height) const
{
    if (!(width > 0.0) || !(height > 0.0))
        return {};
    const BorderFileStyle& s = style();
    const double k = std::min(width, height) / kBorderArtReference * s.scale;
    return { s.bands[0] * k, s.bands[2] * k, s.bands[1] * k, s.bands[3] * k };
}

void ImageModBorderFile::bandColor(float rgba[4]) const
{
    for (int32_t c = 0; c < 3; ++c)
        rgba[c] = float(style().backdrop[c]);
    rgba[3] = 255.0f;
}

void ImageModBorderFile::drawOver(FlexImageFloat& destination, double pictureWidth, double pictureHeight,
                                  const BorderPlacement& placement)
{
    std::string why;
    const std::shared_ptr<const OverlayImage> art = loadOverlayImage(artworkPath(), why);
    if (!art || !(pictureWidth > 0.0) || !(pictureHeight > 0.0))
        return;
    const BorderFileStyle& s = style();
    // Picture pixels to output pixels, from how large the photo came out.
    const double k = std::min(pictureWidth, pictureHeight) / kBorderArtReference * s.scale;
    const double kx = placement.width / pictureWidth * k;
    const double ky = placement.height / pictureHeight * k;
    NineSliceLayout layout;
    // The frame's outer edge is the output's edge; the pieces reach in from there.
    layout.x0 = placement.x - s.bands[0] * kx;
    layout.y0 = placement.y - s.bands[1] * ky;
    layout.x1 = placement.x + placement.width + s.bands[2] * kx;
    layout.y1 = placement.y + placement.height + s.bands[3] * ky;
    for (int32_t i = 0; i < 4; ++i) {
        layout.insets[i] = s.insets[i];
        layout.thickness[i] = s.insets[i] * (i % 2 == 0 ? kx : ky);
    }
    layout.tileEdges = s.tileEdges;
    drawNineSlice(destination, *art, layout);
}

ImageModBorderFileCustom::ImageModBorderFileCustom() : ImageModBorder("Custom File Border", "Image Border")
{
    toolTip = kCustomTip;
    addFile("File", "", "PNG images (*.png)");
}

std::unique_ptr<ImageMod> ImageModBorderFileCustom::newInstance() const
{
    return std::make_unique<ImageModBorderFileCustom>();
}

void ImageModBorderFileCustom::copyFrom(const ImageMod& other)
{
    ImageModBorder::copyFrom(other);
    // Clones share the decoded picture instead of reading the file again.
    if (const auto* o = dynamic_cast<const ImageModBorderFileCustom*>(&other)) {
        chosen = o->chosen;
    }
}

void ImageModBorderFileCustom::refresh()
{
    if (chosen.update(fileAt(fileIndex)))
        toolTip = chosen.toolTip(kCustomTip, "border");
}

void ImageModBorderFileCustom::variableChanged(int32_t index)
{
    if (index == fileIndex)
        refresh();
}

bool ImageModBorderFileCustom::drawSource(const FlexImageFloat& source, const CropFractions* crop,
                                          FlexImageFloat& destination, int32_t width, int32_t height, float straighten)
{
    // A filter read from a file names the picture without a change notice.
    refresh();
    if (!chosen.art)
        return false;
    return ImageModBorder::drawSource(source, crop, destination, width, height, straighten);
}

void ImageModBorderFileCustom::drawOver(FlexImageFloat& destination, double, double, const BorderPlacement& placement)
{
    if (!chosen.art)
        return;
    NineSliceLayout layout;
    layout.x0 = placement.x;
    layout.y0 = placement.y;
    layout.x1 = placement.x + placement.width;
    layout.y1 = placement.y + placement.height;
    layout.drawCentre = true;
    drawNineSlice(destination, *chosen.art, layout);
}
