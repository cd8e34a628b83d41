#include "mods/ImageModStuckPixel.h"

#include "core/ImageModSelector.h"
#include "core/ImageModVariableDataPixel.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr int32_t kPixelX = 0;
constexpr int32_t kPixelY = 1;
constexpr int32_t kPixel = 2;
constexpr float kNoSpot = -1.0f;
} // namespace

ImageModStuckPixel::ImageModStuckPixel() : ImageMod("Dead Pixel", "Dead Pixel")
{
    toolTip = "Fix a pixel that is stuck or dead on your camera by blending it with surrounding pixels.";
    version = 2;
    addFloat("Pixel X", kNoSpot, -1.0f, 100000.0f, -1.0f, 8000.0f);
    addFloat("Pixel Y", kNoSpot, -1.0f, 100000.0f, -1.0f, 8000.0f);
    addPixel("Pixel");
}

std::unique_ptr<ImageMod> ImageModStuckPixel::newInstance() const
{
    return std::make_unique<ImageModStuckPixel>();
}

void ImageModStuckPixel::variableChanged(int32_t index)
{
    ImageModVariable* pixelVar = variableAt(kPixel);
    ImageModVariableDataPixel* point = pixelVar ? pixelVar->asPixel() : nullptr;
    if (index == kPixel) {
        if (!point || point->points.empty() || ImageModVariableDataPixel::isUnset(point->points[0]))
            return;
        if (ImageModVariable* v = variableAt(kPixelX); v && v->asFloat())
            v->asFloat()->value = point->points[0].x;
        if (ImageModVariable* v = variableAt(kPixelY); v && v->asFloat())
            v->asFloat()->value = point->points[0].y;
    } else if ((index == kPixelX || index == kPixelY) && point) {
        const float x = floatValue(kPixelX);
        const float y = floatValue(kPixelY);
        if (x < 0.0f || y < 0.0f)
            return;
        if (point->points.empty())
            point->points.push_back({x, y});
        else
            point->points[0] = {x, y};
    }
}

bool ImageModStuckPixel::documentSpot(float& x, float& y) const
{
    if (version >= 2) {
        const ImageModVariableDataPixel* point = pixelAt(kPixel);
        if (point && !point->points.empty() && !ImageModVariableDataPixel::isUnset(point->points[0])) {
            x = point->points[0].x;
            y = point->points[0].y;
            return x >= 0.0f && y >= 0.0f;
        }
    }
    x = floatValue(kPixelX);
    y = floatValue(kPixelY);
    return x >= 0.0f && y >= 0.0f;
}

bool ImageModStuckPixel::workingBlock(float docX, float docY, float scale, const ReferenceFrame* frame, int32_t width,
                                      int32_t height, int32_t& x0, int32_t& y0, int32_t& x1, int32_t& y1)
{
    if (!(scale > 0.0f) || !std::isfinite(docX) || !std::isfinite(docY))
        return false;
    const double inv = 1.0 / double(scale);
    double offX = 0.0, offY = 0.0;
    if (frame) {
        offX = double(frame->marginLeft + frame->originX);
        offY = double(frame->marginTop + frame->originY);
    }
    // Document pixel [docX, docX + 1) covers working [docX / scale, (docX + 1) / scale).
    const double fx0 = std::floor(double(docX)) * inv - offX;
    const double fy0 = std::floor(double(docY)) * inv - offY;
    const double fx1 = (std::floor(double(docX)) + 1.0) * inv - offX;
    const double fy1 = (std::floor(double(docY)) + 1.0) * inv - offY;
    const double bx0 = std::floor(fx0);
    const double by0 = std::floor(fy0);
    const double bx1 = std::max(bx0, std::ceil(fx1) - 1.0);
    const double by1 = std::max(by0, std::ceil(fy1) - 1.0);
    if (bx1 < 0.0 || by1 < 0.0 || bx0 >= width || by0 >= height)
        return false;
    x0 = int32_t(std::max(bx0, 0.0));
    y0 = int32_t(std::max(by0, 0.0));
    x1 = int32_t(std::min(bx1, double(width - 1)));
    y1 = int32_t(std::min(by1, double(height - 1)));
    return true;
}

namespace {

template <typename Sample>
static inline float readMask(const ImageModSelector* selector, const FlexImageT<Sample>* image, int32_t x, int32_t y,
                             const ReferenceFrame* frame)
{
    return selector ? selector->maskValue(image, x, y, frame) : 1.0f;
}

template <typename Sample>
static inline void storeMixed(Sample& dst, double before, double mean, double m)
{
    const double v = before + (mean - before) * m;
    if constexpr (sizeof(Sample) == 1)
        dst = Sample(int32_t(std::max(std::min(v, 255.0), 0.0)));
    else
        dst = Sample(v);
}

} // namespace

template <typename Sample>
void ImageModStuckPixel::applyDepth(FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    float docX, docY;
    if (!documentSpot(docX, docY))
        return;
    const ReferenceFrame* frame = context ? context->referenceFrame : nullptr;
    const ImageModSelector* selector = context ? context->selector : nullptr;
    const float scale = frame ? frame->scale : image->scale;
    int32_t x0, y0, x1, y1;
    if (!workingBlock(docX, docY, scale, frame, image->width, image->height, x0, y0, x1, y1))
        return;

    // Mean of the ring around the block, inside the picture. A handful of pixels: no row loop.
    const int32_t w = image->width;
    const int32_t h = image->height;
    const int32_t ch = image->colorChannels;
    double sum[4] = {0.0, 0.0, 0.0, 0.0};
    int32_t count = 0;
    for (int32_t y = y0 - 1; y <= y1 + 1; ++y) {
        if (y < 0 || y >= h)
            continue;
        for (int32_t x = x0 - 1; x <= x1 + 1; ++x) {
            if (x < 0 || x >= w || (x >= x0 && x <= x1 && y >= y0 && y <= y1))
                continue;
            const Sample* p = image->row(y) + int64_t(x) * image->channels;
            for (int32_t c = 0; c < ch && c < 4; ++c)
                sum[c] += double(p[c]);
            ++count;
        }
    }
    if (count == 0)
        return;
    for (int32_t y = y0; y <= y1; ++y) {
        for (int32_t x = x0; x <= x1; ++x) {
            const double m = readMask(selector, image, x, y, frame);
            Sample* p = image->row(y) + int64_t(x) * image->channels;
            for (int32_t c = 0; c < ch && c < 4; ++c)
                storeMixed(p[c], double(p[c]), sum[c] / count, m);
        }
    }
}

void ImageModStuckPixel::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyDepth(image, context);
}

void ImageModStuckPixel::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyDepth(image, context);
}
