#include "mods/GeometryCalculation.h"

#include "mods/ImageModBorderGeometry.h"
#include "mods/ImageModCrop.h"
#include "mods/ImageModSize2.h"

namespace {

// Truncates toward zero; a value no int holds (or NaN, from a broken tile) stays in range.
int32_t truncateSize(double v)
{
    if (!(v > -1.0e9))
        return v < 0.0 ? -1000000000 : 0;
    if (v > 1.0e9)
        return 1000000000;
    return int32_t(v);
}

} // namespace

ImageMod* findEnabledWithTag(const std::vector<ImageMod*>& mods, int32_t tag)
{
    for (ImageMod* mod : mods) {
        if (mod && mod->enabled && modHasTag(*mod, tag))
            return mod;
    }
    return nullptr;
}

GeometryResult computeGeometry(int32_t sourceWidth, int32_t sourceHeight, const std::vector<ImageMod*>& mods,
                               int32_t maxWidth, int32_t maxHeight)
{
    double w = sourceWidth;
    double h = sourceHeight;
    float straighten = 0.0f;

    if (auto* crop = dynamic_cast<ImageModCrop*>(findEnabledWithTag(mods, kTagCrop))) {
        const CropFractions f = crop->cropRect(float(sourceWidth), float(sourceHeight));
        straighten = crop->straighten();
        w = (1.0 - (double(f.left) + double(f.right))) * double(sourceWidth);
        h = (1.0 - (double(f.top) + double(f.bottom))) * double(sourceHeight);
    }

    if (auto* border = dynamic_cast<ImageModBorderGeometry*>(findEnabledWithTag(mods, kTagBorder)))
        border->adjustGeometry(w, h, straighten);
    GeometryResult result;
    result.changed = straighten != 0.0f;

    if (auto* size = dynamic_cast<ImageModSize2*>(findEnabledWithTag(mods, kTagSize))) {
        const double newW = size->outputWidth(float(w), float(h));
        const double newH = size->outputHeight(float(w), float(h));
        if (newW != w || newH != h || straighten != 0.0f)
            result.changed = true;
        w = newW;
        h = newH;
    }

    if ((maxWidth > 0 || maxHeight > 0) && h != 0.0) {
        const double a = w / h;
        double s = 1.0;
        if (maxWidth > 0 && w > maxWidth) {
            s = w / maxWidth;
            w = maxWidth;
            h = maxWidth / a;
            result.changed = true;
        }
        if (maxHeight > 0 && h > maxHeight) {
            s = h * s / maxHeight;
            h = maxHeight;
            w = a * maxHeight;
            result.changed = true;
        }
        result.scale = float(s);
    }
    result.width = truncateSize(w);
    result.height = truncateSize(h);
    return result;
}
