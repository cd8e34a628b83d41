#pragma once
#include "core/FlexImage.h"
#include "core/ImageModApplyContext.h"
#include "core/ImageModSelector.h"
#include "core/ImageModVariableDataPixel.h"

#include <cmath>
#include <cstdint>

// Helpers shared by the neighbourhood and film mods: the soft ramp, where the buffer stands in
// the whole frame, and clamped stores for both depths.

// Soft ramp: 0 below 0, 1 above 1, an S of steepness p between. An infinite p is a hard step.
static inline float smoothRamp(float x, float p)
{
    if (x <= 0.0f)
        return 0.0f;
    if (x >= 1.0f)
        return 1.0f;
    if (x < 0.5f)
        return 0.5f * std::pow(2.0f * x, p);
    return 1.0f - 0.5f * std::pow(2.0f - 2.0f * x, p);
}

// Upper clamp first, then lower: a NaN stays NaN in float, which never arises from finite input.
static inline float clamp255(float v)
{
    v = v > 255.0f ? 255.0f : v;
    return v < 0.0f ? 0.0f : v;
}

template <typename Sample> static inline Sample storeClamped(float v);

template <> inline float storeClamped<float>(float v)
{
    return clamp255(v);
}

// Truncating store of the 8-bit depth.
template <> inline uint8_t storeClamped<uint8_t>(float v)
{
    return uint8_t(int32_t(clamp255(v)));
}

// Unclamped store for intermediate results; the 8-bit depth truncates.
template <typename Sample> static inline Sample storeRaw(float v)
{
    if constexpr (sizeof(Sample) == 1)
        return uint8_t(int32_t(clamp255(v)));
    else
        return v;
}

// Where the pixels of one apply stand: the frame's size and scale when the context has a frame,
// else the image's own, and the centre of the content in buffer pixels.
struct SpatialFrame {
    float scale = 1.0f;
    int32_t frameWidth = 0; // W: the whole working frame, or the image
    int32_t frameHeight = 0; // H
    float contentWidth = 0.0f; // fw: the frame less its margins
    float contentHeight = 0.0f; // fh
    float cx = 0.0f;
    float cy = 0.0f;
    // Frame position of buffer pixel (0, 0): patterns anchored to the frame stay put when a
    // zoomed view pans.
    int32_t bufferX = 0;
    int32_t bufferY = 0;

    // Full-size document coordinates to buffer coordinates.
    float toBufferX(float docX) const { return docX / scale - float(bufferX); }
    float toBufferY(float docY) const { return docY / scale - float(bufferY); }
    float halfDiagonal() const
    {
        return std::sqrt(
            contentHeight * 0.5f * (contentHeight * 0.5f) + contentWidth * 0.5f * (contentWidth * 0.5f));
    }
};

template <typename Sample>
SpatialFrame spatialFrameOf(const FlexImageT<Sample>& image, const ImageModApplyContext* context)
{
    SpatialFrame f;
    const ReferenceFrame* rf = context ? context->referenceFrame : nullptr;
    if (rf) {
        f.scale = rf->scale;
        f.frameWidth = rf->imageWidth;
        f.frameHeight = rf->imageHeight;
        f.contentWidth = float(rf->imageWidth - rf->sourceMarginLeft - rf->sourceMarginRight);
        f.contentHeight = float(rf->imageHeight - rf->sourceMarginTop - rf->sourceMarginBottom);
        f.cx = float(rf->sourceMarginLeft) + f.contentWidth * 0.5f - float(rf->originX);
        f.cy = float(rf->sourceMarginTop) + f.contentHeight * 0.5f - float(rf->originY);
        f.bufferX = rf->marginLeft + rf->originX;
        f.bufferY = rf->marginTop + rf->originY;
    } else {
        f.scale = image.scale;
        f.frameWidth = image.width;
        f.frameHeight = image.height;
        f.contentWidth = float(image.width);
        f.contentHeight = float(image.height);
        f.cx = float(image.width / 2);
        f.cy = float(image.height / 2);
    }
    if (!(f.scale > 0.0f) || !std::isfinite(f.scale))
        f.scale = 1.0f;
    return f;
}

// The frame of a buffer known only by its size, as when an overlay is placed before it is drawn.
inline SpatialFrame spatialFrameOfSize(int32_t width, int32_t height, const ImageModApplyContext* context)
{
    FlexImageFloat shape;
    shape.width = width;
    shape.height = height;
    return spatialFrameOf(shape, context);
}

// Buffer position of a point variable's first point, given in document pixels; false while it is
// unset ((-1, -1)) or missing.
static inline bool pointInBuffer(const SpatialFrame& f, const ImageModVariableDataPixel* point, float& x, float& y)
{
    if (!point || point->points.empty() || ImageModVariableDataPixel::isUnset(point->points[0]))
        return false;
    x = f.toBufferX(point->points[0].x);
    y = f.toBufferY(point->points[0].y);
    return true;
}

// A "Center" point replaces the content's centre; an unset one keeps it.
static inline void applyCenterPoint(SpatialFrame& f, const ImageModVariableDataPixel* center)
{
    pointInBuffer(f, center, f.cx, f.cy);
}

// Copies a row into `pad` with `reach` samples of edge repeat on both sides.
template <typename Sample>
static inline void padRow(const Sample* row, int32_t w, int32_t ch, int32_t reach, float* pad)
{
    for (int32_t j = 0; j < reach; ++j)
        for (int32_t c = 0; c < ch; ++c)
            pad[j * ch + c] = float(row[c]);
    for (int32_t k = 0; k < w * ch; ++k)
        pad[reach * ch + k] = float(row[k]);
    const Sample* last = row + (w - 1) * ch;
    for (int32_t j = 0; j < reach; ++j)
        for (int32_t c = 0; c < ch; ++c)
            pad[(reach + w + j) * ch + c] = float(last[c]);
}

template <typename Sample>
static inline float maskAt(const ImageModSelector* selector, const FlexImageT<Sample>* image, int32_t x,
    int32_t y, const ImageModApplyContext* context)
{
    return selector->maskValue(image, x, y, context ? context->referenceFrame : nullptr);
}
