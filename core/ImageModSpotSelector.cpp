#include "core/ImageModSpotSelector.h"

#include "core/ColorMath.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataPixel.h"

#include <algorithm>
#include <cmath>

ImageModSpotSelector::ImageModSpotSelector() : ImageModSelector("Spot Mask", "Spot Mask")
{
    toolTip = "Place to the left of a tile (or nested group of tiles) to make that tile only affect the chosen spot "
              "(with radius and sharpness).";
    addFloat("Amount", 1.0f, 0.0f, 1.0f);
    addFloat("Sharpness", 0.5f, 0.0f, 0.99f);
    addFloat("Radius", 500.0f, 1.0f, 10000.0f, 1.0f, 3000.0f);
    addPixel("Center");
    addChoice("Method", {"Normal", "Inverted"}, 0);
}

std::unique_ptr<ImageMod> ImageModSpotSelector::newInstance() const
{
    return std::make_unique<ImageModSpotSelector>();
}

void ImageModSpotSelector::copyFrom(const ImageMod& other)
{
    ImageModSelector::copyFrom(other);
    cacheValid.store(false);
}

void ImageModSpotSelector::variableChanged(int32_t)
{
    cacheValid.store(false);
}

void ImageModSpotSelector::fillCache() const
{
    const ImageModVariable* amount = variableNamed("Amount");
    const ImageModVariable* radius = variableNamed("Radius");
    const ImageModVariable* sharpness = variableNamed("Sharpness");
    cachedAmount.store(amount ? amount->floatValue() : 0.0f, std::memory_order_relaxed);
    cachedRadius.store(radius ? radius->floatValue() : 0.0f, std::memory_order_relaxed);
    cachedSharpness.store(sharpness ? sharpness->floatValue() : 0.0f, std::memory_order_relaxed);
    cacheValid.store(true, std::memory_order_release);
}

float ImageModSpotSelector::spotMask(int32_t width, int32_t height, float imageScale, int32_t x, int32_t y,
                                     const ReferenceFrame* frame) const
{
    if (!cacheValid.load(std::memory_order_acquire))
        fillCache();
    const float amount = cachedAmount.load(std::memory_order_relaxed);
    const float radius = cachedRadius.load(std::memory_order_relaxed);
    const float sharpness = cachedSharpness.load(std::memory_order_relaxed);

    const float scale = frame ? frame->scale : imageScale;
    const ImageModVariableDataPixel* center = pixelAt(3);
    float cx, cy;
    if (center && !center->points.empty() && !ImageModVariableDataPixel::isUnset(center->points[0])) {
        const float inv = 1.0f / scale;
        cx = center->points[0].x * inv;
        cy = center->points[0].y * inv;
        if (frame) {
            cx -= float(frame->marginLeft + frame->originX);
            cy -= float(frame->marginTop + frame->originY);
        }
    } else if (frame) {
        cx = float(frame->sourceMarginLeft)
            + float(frame->imageWidth - frame->sourceMarginLeft - frame->sourceMarginRight) * 0.5f
            - float(frame->originX);
        cy = float(frame->sourceMarginTop)
            + float(frame->imageHeight - frame->sourceMarginTop - frame->sourceMarginBottom) * 0.5f
            - float(frame->originY);
    } else {
        cx = float(width / 2);
        cy = float(height / 2);
    }

    const float dx = float(x) - cx;
    const float dy = float(y) - cy;
    const float d = std::sqrt(dx * dx + dy * dy);
    // A zero radius leaves only the centre pixel inside.
    const float t = radius > 0.0f ? d * scale / radius : (d > 0.0f ? 1.0f : 0.0f);
    const float p = float(1.0 / std::pow(double(1.0f - sharpness), 1.68));
    const float step = std::min(shapedStep(t, p), 1.0f);
    float m = float((1.0 - double(step)) * double(amount));
    const ImageModVariable* method = variableAt(4);
    const ImageModVariableDataChoice* choice = method ? method->asChoice() : nullptr;
    if (choice && choice->index == 1)
        m = 1.0f - m;
    return m;
}

float ImageModSpotSelector::maskValue(const FlexImageFloat* image, int32_t x, int32_t y,
                                      const ReferenceFrame* frame) const
{
    if (!image)
        return 0.0f;
    return spotMask(image->width, image->height, image->scale, x, y, frame);
}

float ImageModSpotSelector::maskValue(const FlexImage8* image, int32_t x, int32_t y, const ReferenceFrame* frame) const
{
    if (!image)
        return 0.0f;
    return spotMask(image->width, image->height, image->scale, x, y, frame);
}
