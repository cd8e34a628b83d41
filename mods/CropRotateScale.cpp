#include "mods/CropRotateScale.h"

#include "core/ParallelFor.h"
#include "mods/GeometrySampler.h"

#include <algorithm>
#include <cmath>
#include <numbers>

bool planCropRotateScale(int32_t W, int32_t H, int32_t targetW, int32_t targetH, const CropFractions* crop,
                         const ResampleMargins* margins, float angle, CropRotateScaleMapping& m)
{
    if (W < 1 || H < 1)
        return false;
    const CropFractions f = crop ? *crop : CropFractions{};
    ResampleMargins mg = margins ? *margins : ResampleMargins{};
    bool scaling = true;

    if (targetW < 1 || targetH < 1) {
        // The crop's own size, widened by the margins and kept inside the picture.
        const int32_t cx0 = int32_t(f.left * float(W));
        const int32_t cx1 = int32_t(float(W - 1) - float(W) * f.right);
        const int32_t cy0 = int32_t(f.top * float(H));
        const int32_t cy1 = int32_t(float(H - 1) - float(H) * f.bottom);
        const int32_t x0 = std::clamp(cx0 - mg.left, 0, W - 1);
        const int32_t x1 = std::clamp(cx1 + mg.right, 0, W - 1);
        const int32_t y0 = std::clamp(cy0 - mg.top, 0, H - 1);
        const int32_t y1 = std::clamp(cy1 + mg.bottom, 0, H - 1);
        mg.left = std::max(0, cx0 - x0);
        mg.right = std::max(0, x1 - cx1);
        mg.top = std::max(0, cy0 - y0);
        mg.bottom = std::max(0, y1 - cy1);
        targetW = x1 - x0;
        targetH = y1 - y0;
        scaling = false;
    }
    if (targetW < 1 || targetH < 1)
        return false;
    const int32_t innerW = targetW - (mg.left + mg.right);
    const int32_t innerH = targetH - (mg.top + mg.bottom);
    const double cropW = double(W) - (double(f.left) + double(f.right)) * W;
    const double cropH = double(H) - (double(f.top) + double(f.bottom)) * H;
    if (innerW < 1 || innerH < 1 || !(cropW > 0.0) || !(cropH > 0.0))
        return false;

    m = CropRotateScaleMapping{};
    m.width = targetW;
    m.height = targetH;
    m.margins = mg;
    const bool noCrop = crop == nullptr || crop->isNone();
    m.plainCopy = targetW == W && targetH == H && angle == 0.0f && noCrop && mg.isNone();

    // Fill the target's aspect with a centred cut of the crop.
    double offX = double(f.left) * W;
    double offY = double(f.top) * H;
    const double t = double(innerW) / double(innerH);
    double sampledW;
    if (t >= cropW / cropH) {
        offY += (cropH - cropW / t) * 0.5;
        sampledW = cropW;
    } else {
        offX += (cropW - cropH * t) * 0.5;
        sampledW = cropH * t;
    }
    m.factor = scaling && std::abs(sampledW - innerW) >= 1.0 ? sampledW / innerW : 1.0;

    // Enlarge about the centre so the turned picture covers the frame.
    double z = 1.0;
    if (angle != 0.0f) {
        double a = std::fmod(std::abs(double(angle)), 180.0);
        if (a > 90.0)
            a = 180.0 - a;
        a *= std::numbers::pi / 180.0;
        const double halfMin = std::min(W, H) * 0.5;
        const double halfMax = std::max(W, H) * 0.5;
        const double theta = std::atan(halfMin / halfMax);
        z = std::sin(a - theta + std::numbers::pi) / std::sin(theta);
        // At the diagonal's own angle nothing is left to show; keep the map finite.
        if (std::abs(z) < 1.0e-3)
            z = z < 0.0 ? -1.0e-3 : 1.0e-3;
    }
    m.zoom = z;

    // destination -> (minus margins) * factor + crop origin - centre -> turn -> * z -> + centre
    const double rad = double(angle) * std::numbers::pi / 180.0;
    const double c = std::cos(rad) * z;
    const double s = std::sin(rad) * z;
    const double k = m.factor;
    const double cx = W * 0.5;
    const double cy = H * 0.5;
    const double px = offX - mg.left * k - cx;
    const double py = offY - mg.top * k - cy;
    m.originX = c * px - s * py + cx;
    m.originY = s * px + c * py + cy;
    m.columnX = c * k;
    m.columnY = s * k;
    m.rowX = -s * k;
    m.rowY = c * k;

    // The footprint errs wide when turned, which softens the stair-steps of a turn.
    m.footprint = (1.0 / std::abs(z)) * m.factor;
    if (m.footprint > 2.0)
        m.footprint *= 1.18;
    return true;
}

namespace {

template <typename Sample>
static inline void clearPixel(Sample* p, int32_t channels)
{
    for (int32_t c = 0; c < channels; ++c)
        p[c] = Sample(0);
    if (channels >= 4)
        p[3] = Sample(255);
}

} // namespace

template <typename Sample>
bool resampleCropRotateScale(const FlexImageT<Sample>& source, int32_t targetWidth, int32_t targetHeight,
                             const CropFractions* crop, const ResampleMargins* margins, FlexImageT<Sample>& destination,
                             bool nearest, float angle)
{
    if (source.isEmpty() || &source == &destination)
        return false;
    CropRotateScaleMapping m;
    if (!planCropRotateScale(source.width, source.height, targetWidth, targetHeight, crop, margins, angle, m))
        return false;
    destination.resize(m.width, m.height, -1);
    if (destination.isEmpty())
        return false;
    if (m.plainCopy) {
        destination.copyFrom(source, false);
        return true;
    }

    const int32_t sw = source.width;
    const int32_t sh = source.height;
    const int32_t sc = source.channels;
    const int32_t dc = destination.channels;
    const int32_t dw = destination.width;
    const int32_t n = std::min(std::min(sc, dc), 4);
    const bool clear = dc >= 3;
    const bool pickNearest = nearest || (m.footprint == 1.0 && angle == 0.0f);
    const Sample* src = source.data;
    Sample* dst = destination.data;
    const CropRotateScaleMapping map = m;
    parallelFor(destination.height, [=](int32_t y) {
        Sample* d = dst + int64_t(dc) * (int64_t(y) * dw);
        double sx, sy;
        map.position(0, y, sx, sy);
        for (int32_t x = 0; x < dw; ++x, d += dc, sx += map.columnX, sy += map.columnY) {
            if (clear)
                clearPixel(d, dc);
            if (pickNearest)
                sampleNearest(src, sw, sh, sc, sx, sy, n, d);
            else
                samplePixel(src, sw, sh, sc, sx, sy, map.footprint, n, d);
        }
    });
    destination.marginLeft = m.margins.left;
    destination.marginRight = m.margins.right;
    destination.marginTop = m.margins.top;
    destination.marginBottom = m.margins.bottom;
    destination.scale = float(m.factor) * source.scale;
    return true;
}

template bool resampleCropRotateScale<float>(const FlexImageFloat&, int32_t, int32_t, const CropFractions*,
                                             const ResampleMargins*, FlexImageFloat&, bool, float);
template bool resampleCropRotateScale<uint8_t>(const FlexImage8&, int32_t, int32_t, const CropFractions*,
                                               const ResampleMargins*, FlexImage8&, bool, float);
