#include "document/core/GeometryResampling.h"

#include "mods/CropRotateScale.h"
#include "mods/GeometryCalculation.h"
#include "mods/ImageModBorderGeometry.h"
#include "mods/ImageModCrop.h"
#include "mods/ImageModSize2.h"

#include <cmath>

namespace {

// The enabled crop tile's rectangle for a source of this size and its straightening; without a
// crop tile there is no rectangle and no straightening.
struct CropSetting {
    CropFractions rect;
    bool present = false;
    float straighten = 0.0f;

    const CropFractions* crop() const { return present ? &rect : nullptr; }
};

CropSetting cropSettingOf(const std::vector<ImageMod*>& mods, const FlexImageFloat& source)
{
    CropSetting c;
    if (auto* cropMod = dynamic_cast<ImageModCrop*>(findEnabledWithTag(mods, kTagCrop))) {
        c.rect = cropMod->cropRect(float(source.width), float(source.height));
        c.present = true;
        c.straighten = cropMod->straighten();
    }
    return c;
}

} // namespace

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

    const CropSetting cropSetting = cropSettingOf(mods, source);
    const CropFractions* crop = cropSetting.crop();
    const float straighten = cropSetting.straighten;

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
    const CropSetting cropSetting = cropSettingOf(mods, source);
    const CropFractions* crop = cropSetting.crop();
    const float straighten = cropSetting.straighten;
    CropRotateScaleMapping m;
    return planCropRotateScale(source.width, source.height, g.width, g.height, crop, nullptr, straighten, m)
        && m.plainCopy;
}
