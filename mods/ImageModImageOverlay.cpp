#include "mods/ImageModImageOverlay.h"

#include "core/ImageModVariableDataFile.h"
#include "core/ParallelFor.h"
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr const char* kTip = "Add a watermark or other overlay to your image.";

template <typename Sample>
static inline void blendOver(Sample* p, const float art[4], float opacity)
{
    const float a = art[3] * opacity * (1.0f / 255.0f);
    if (a <= 0.0f)
        return;
    for (int32_t c = 0; c < 3; ++c)
        p[c] = storeClamped<Sample>(art[c] * opacity + float(p[c]) * (1.0f - a));
}

} // namespace

ImageModImageOverlay::ImageModImageOverlay() : ImageMod("Watermark", "Watermark")
{
    toolTip = kTip;
    addFile("File", "", "PNG images (*.png)");
    addPixel("Position");
    addFloat("Size", 0.25f, 0.01f, 1.0f);
    addFloat("Opacity", 0.8f, 0.0f, 1.0f);
}

std::unique_ptr<ImageMod> ImageModImageOverlay::newInstance() const
{
    return std::make_unique<ImageModImageOverlay>();
}

void ImageModImageOverlay::copyFrom(const ImageMod& other)
{
    ImageMod::copyFrom(other);
    if (const auto* o = dynamic_cast<const ImageModImageOverlay*>(&other)) {
        chosen = o->chosen;
    }
}

void ImageModImageOverlay::refresh()
{
    if (chosen.update(fileAt(fileIndex)))
        toolTip = chosen.toolTip(kTip, "watermark");
}

void ImageModImageOverlay::variableChanged(int32_t index)
{
    if (index == fileIndex)
        refresh();
}

bool ImageModImageOverlay::placement(int32_t imageWidth, int32_t imageHeight, const ImageModApplyContext* context,
                                     Placement& out) const
{
    if (!chosen.art || imageWidth < 1 || imageHeight < 1)
        return false;
    const SpatialFrame frame = spatialFrameOfSize(imageWidth, imageHeight, context);
    const float size = floatValue(sizeIndex);
    if (!(size > 0.0f) || !std::isfinite(size))
        return false;
    out.width = double(std::min(size, 4.0f)) * frame.contentWidth;
    out.height = out.width * chosen.art->height() / std::max(chosen.art->width(), 1);
    if (!(out.width >= 0.5) || !(out.height >= 0.5))
        return false;
    double cx, cy;
    float px, py;
    if (pointInBuffer(frame, pixelAt(positionIndex), px, py)) {
        cx = px;
        cy = py;
    } else {
        // Lower right, kept clear of the edges by a small share of the width.
        const double margin = 0.03 * frame.contentWidth;
        cx = frame.cx + frame.contentWidth * 0.5 - margin - out.width * 0.5;
        cy = frame.cy + frame.contentHeight * 0.5 - margin - out.height * 0.5;
    }
    if (!std::isfinite(cx) || !std::isfinite(cy))
        return false;
    out.x = cx - out.width * 0.5;
    out.y = cy - out.height * 0.5;
    return true;
}

template <typename Sample>
void ImageModImageOverlay::applyT(FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty() || image->channels < 3)
        return;
    refresh();
    const float opacity = std::min(floatValue(opacityIndex), 1.0f);
    if (!(opacity > 0.0f))
        return;
    Placement p;
    if (!placement(image->width, image->height, context, p))
        return;
    const int32_t x0 = std::max(0, int32_t(std::floor(p.x)));
    const int32_t x1 = std::min(image->width, int32_t(std::ceil(p.x + p.width)));
    const int32_t y0 = std::max(0, int32_t(std::floor(p.y)));
    const int32_t y1 = std::min(image->height, int32_t(std::ceil(p.y + p.height)));
    if (x1 <= x0 || y1 <= y0)
        return;
    const OverlayImage& pic = *chosen.art;
    const double perPixel = pic.width() / p.width; // picture pixels per image pixel
    const int32_t ch = image->channels;
    parallelFor(y1 - y0, [&, y0](int32_t i) {
        const int32_t y = y0 + i;
        const double v = (y + 0.5 - p.y) * perPixel - 0.5;
        Sample* row = image->row(y);
        for (int32_t x = x0; x < x1; ++x) {
            const double u = (x + 0.5 - p.x) * perPixel - 0.5;
            // Coverage falls off over the half pixel beyond the picture's edge.
            if (u < -1.0 || v < -1.0 || u > pic.width() || v > pic.height())
                continue;
            float s[4];
            sampleOverlay(pic, u, v, perPixel, s);
            const float edge = float(std::clamp(std::min({ u + 1.0, v + 1.0, pic.width() - u, pic.height() - v }), 0.0, 1.0));
            blendOver(row + int64_t(ch) * x, s, opacity * edge);
        }
    });
}

void ImageModImageOverlay::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyT(image, context);
}

void ImageModImageOverlay::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyT(image, context);
}
