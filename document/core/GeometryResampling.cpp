#include "document/core/GeometryResampling.h"

#include "mods/CropRotateScale.h"
#include "mods/GeometryCalculation.h"
#include "mods/ImageModBorderGeometry.h"
#include "mods/ImageModCrop.h"
#include "mods/ImageModSize2.h"

#include <cmath>

bool geometryResample(const FlexImageFloat& source, FlexImageFloat& destination, const std::vector<ImageMod*>& mods,
                      int32_t targetWidth, int32_t targetHeight, bool exact, bool* changed)
{
    if (changed)
        *changed = false;
    if (source.isEmpty() || &source == &destination)
        return false;
    const bool fixedTarget = exact && targetWidth > 0 && targetHeight > 0;
    GeometryResult g = computeGeometry(source.width, source.height, mods, exact ? 0 : targetWidth,
                                       exact ? 0 : targetHeight);
    if (fixedTarget) {
        g.width = targetWidth;
        g.height = targetHeight;
    }
    if (g.width < 1 || g.height < 1)
        return false;
    const bool resized = destination.width != g.width || destination.height != g.height;

    CropFractions cropRect;
    const CropFractions* crop = nullptr;
    float straighten = 0.0f;
    if (auto* cropMod = dynamic_cast<ImageModCrop*>(findEnabledWithTag(mods, kTagCrop))) {
        cropRect = cropMod->cropRect(float(source.width), float(source.height));
        crop = &cropRect;
        straighten = cropMod->straighten();
    }

    bool drawn = false;
    if (auto* border = dynamic_cast<ImageModBorderGeometry*>(findEnabledWithTag(mods, kTagBorder)))
        drawn = border->drawSource(source, crop, destination, g.width, g.height, straighten);
    if (!drawn)
        drawn = resampleCropRotateScale(source, g.width, g.height, crop, nullptr, destination, false, straighten);
    if (!drawn)
        return false;

    const double factor = std::abs(double(source.width) - destination.width) < 1.0
        ? 1.0
        : double(source.width) / destination.width;
    destination.scale = float(factor) * source.scale;
    if (changed)
        *changed = g.changed || (fixedTarget && resized);
    return true;
}

bool geometryIsPlainCopy(const FlexImageFloat& source, const std::vector<ImageMod*>& mods, int32_t targetWidth,
                         int32_t targetHeight, bool exact)
{
    if (source.isEmpty() || findEnabledWithTag(mods, kTagBorder))
        return false;
    GeometryResult g = computeGeometry(source.width, source.height, mods, exact ? 0 : targetWidth,
                                       exact ? 0 : targetHeight);
    if (exact && targetWidth > 0 && targetHeight > 0) {
        g.width = targetWidth;
        g.height = targetHeight;
    }
    if (g.width != source.width || g.height != source.height)
        return false;
    CropFractions cropRect;
    const CropFractions* crop = nullptr;
    float straighten = 0.0f;
    if (auto* cropMod = dynamic_cast<ImageModCrop*>(findEnabledWithTag(mods, kTagCrop))) {
        cropRect = cropMod->cropRect(float(source.width), float(source.height));
        crop = &cropRect;
        straighten = cropMod->straighten();
    }
    CropRotateScaleMapping m;
    return planCropRotateScale(source.width, source.height, g.width, g.height, crop, nullptr, straighten, m)
        && m.plainCopy;
}
