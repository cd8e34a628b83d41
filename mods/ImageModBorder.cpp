#include "mods/ImageModBorder.h"

#include "core/GrowingArray.h"
#include "core/ParallelFor.h"
#include "mods/CropRotateScale.h"
#include "mods/GeometrySampler.h"
#include "mods/ImageModSize2.h"

#include <algorithm>
#include <cmath>

namespace {

// Integral of sqrt(r^2 - u^2) from 0 to u.
static inline double arcIntegral(double u, double r)
{
    const double s = std::clamp(u / r, -1.0, 1.0);
    const double root = std::sqrt(std::max(r * r - u * u, 0.0));
    return 0.5 * (u * root + r * r * std::asin(s));
}

// Area of [u0, u1] x [v0, v1] (all >= 0) inside the disk of radius r about the origin.
static inline double diskRectArea(double u0, double u1, double v0, double v1, double r)
{
    const double ua = v1 < r ? std::sqrt(r * r - v1 * v1) : 0.0; // below ua the arc is above v1
    const double ub = v0 < r ? std::sqrt(r * r - v0 * v0) : 0.0; // beyond ub the arc is below v0
    double area = (v1 - v0) * std::max(0.0, std::min(u1, ua) - u0);
    const double a = std::max(u0, ua);
    const double b = std::min(u1, ub);
    if (b > a)
        area += arcIntegral(b, r) - arcIntegral(a, r) - v0 * (b - a);
    return area;
}

// Part of [u0, u1] x [v0, v1] beyond the arc of one corner, in coordinates pointing out of the
// photo from the arc's centre. Only the quadrant u > 0, v > 0 can be outside.
static inline double cornerOutside(double u0, double u1, double v0, double v1, double r)
{
    u0 = std::max(u0, 0.0);
    v0 = std::max(v0, 0.0);
    if (u1 <= u0 || v1 <= v0)
        return 0.0;
    return (u1 - u0) * (v1 - v0) - diskRectArea(u0, u1, v0, v1, r);
}

// Colour where the photo covers `cover` of the pixel, the band the rest.
static inline void blendPixel(float* d, const float* band, int32_t channels, float cover)
{
    for (int32_t c = 0; c < channels; ++c)
        d[c] = d[c] * cover + band[c] * (1.0f - cover);
}

static inline void fillBand(float* d, const float* band, int32_t channels, int32_t count)
{
    for (int32_t i = 0; i < count; ++i, d += channels)
        for (int32_t c = 0; c < channels; ++c)
            d[c] = band[c];
}

} // namespace

ImageModBorder::ImageModBorder(std::string modName, std::string label)
    : ImageMod(std::move(modName), std::move(label))
{
    appendGrowing(tags, kTagBorder);
}

BorderBands ImageModBorder::bands(double, double) const
{
    return {};
}

void ImageModBorder::bandColor(float rgba[4]) const
{
    rgba[0] = rgba[1] = rgba[2] = rgba[3] = 255.0f;
}

void ImageModBorder::adjustGeometry(double& width, double& height, float&)
{
    if (!(width > 0.0) || !(height > 0.0))
        return;
    const BorderBands b = bands(width, height);
    width += b.left + b.right;
    height += b.top + b.bottom;
}

bool placeBorderPhoto(double pictureWidth, double pictureHeight, const BorderBands& bands, int32_t outputWidth,
                      int32_t outputHeight, float radiusFraction, BorderPlacement& placement)
{
    if (!(pictureWidth > 0.0) || !(pictureHeight > 0.0) || outputWidth < 1 || outputHeight < 1)
        return false;
    const double naturalW = pictureWidth + bands.left + bands.right;
    const double naturalH = pictureHeight + bands.top + bands.bottom;
    // Within a pixel of the natural size counts as it: the save keeps the photo one to one.
    const double sx = std::abs(outputWidth - naturalW) < 1.0 ? 1.0 : outputWidth / naturalW;
    const double sy = std::abs(outputHeight - naturalH) < 1.0 ? 1.0 : outputHeight / naturalH;
    if (!std::isfinite(sx) || !std::isfinite(sy))
        return false;
    const int32_t w = std::min(int32_t(std::lround(pictureWidth * sx)), outputWidth);
    const int32_t h = std::min(int32_t(std::lround(pictureHeight * sy)), outputHeight);
    if (w < 1 || h < 1)
        return false;
    placement.width = w;
    placement.height = h;
    placement.x = std::clamp(int32_t(std::lround(bands.left * sx)), 0, outputWidth - w);
    placement.y = std::clamp(int32_t(std::lround(bands.top * sy)), 0, outputHeight - h);
    const double shorter = std::min(w, h);
    placement.radius = std::clamp(double(radiusFraction) * shorter, 0.0, shorter * 0.5);
    return true;
}

double roundedCoverage(const BorderPlacement& p, int32_t px, int32_t py)
{
    const double r = p.radius;
    if (!(r > 0.0))
        return 1.0;
    const double x0 = px;
    const double x1 = px + 1.0;
    const double y0 = py;
    const double y1 = py + 1.0;
    const double leftC = p.x + r;
    const double rightC = p.x + p.width - r;
    const double topC = p.y + r;
    const double bottomC = p.y + p.height - r;
    double outside = 0.0;
    outside += cornerOutside(leftC - x1, leftC - x0, topC - y1, topC - y0, r);
    outside += cornerOutside(x0 - rightC, x1 - rightC, topC - y1, topC - y0, r);
    outside += cornerOutside(leftC - x1, leftC - x0, y0 - bottomC, y1 - bottomC, r);
    outside += cornerOutside(x0 - rightC, x1 - rightC, y0 - bottomC, y1 - bottomC, r);
    return std::clamp(1.0 - outside, 0.0, 1.0);
}

bool ImageModBorder::drawSource(const FlexImageFloat& source, const CropFractions* crop, FlexImageFloat& destination,
                                int32_t width, int32_t height, float straighten)
{
    if (source.isEmpty() || &source == &destination || width < 1 || height < 1)
        return false;
    const CropFractions f = crop ? *crop : CropFractions{};
    const double pictureW = (1.0 - (double(f.left) + double(f.right))) * source.width;
    const double pictureH = (1.0 - (double(f.top) + double(f.bottom))) * source.height;
    BorderPlacement place;
    if (!placeBorderPhoto(pictureW, pictureH, bands(pictureW, pictureH), width, height, cornerRadius(), place))
        return false;
    CropRotateScaleMapping m;
    if (!planCropRotateScale(source.width, source.height, place.width, place.height, crop, nullptr, straighten, m))
        return false;
    destination.resize(width, height, -1);
    if (destination.isEmpty())
        return false;

    const int32_t dc = destination.channels;
    const int32_t sc = source.channels;
    const int32_t n = std::min(std::min(sc, dc), 4);
    // Band pixel: the colour, its alpha in a fourth channel, nothing in any further one.
    float rgba[4];
    bandColor(rgba);
    float band[16] = {};
    const int32_t bandChannels = std::min(dc, 16);
    for (int32_t c = 0; c < std::min(dc, 4); ++c)
        band[c] = rgba[c];
    if (dc > 16)
        return false;

    const bool pickNearest = m.footprint == 1.0 && straighten == 0.0f;
    const int32_t reach = int32_t(std::ceil(place.radius)) + 1;
    const float* src = source.data;
    float* dst = destination.data;
    const int32_t sw = source.width;
    const int32_t sh = source.height;
    const CropRotateScaleMapping map = m;
    const BorderPlacement pl = place;
    parallelFor(height, [=, &band](int32_t y) {
        float* row = dst + int64_t(dc) * (int64_t(y) * width);
        if (y < pl.y || y >= pl.y + pl.height) {
            fillBand(row, band, bandChannels, width);
            return;
        }
        fillBand(row, band, bandChannels, pl.x);
        const int32_t right = pl.x + pl.width;
        fillBand(row + int64_t(dc) * right, band, bandChannels, width - right);
        const int32_t py = y - pl.y;
        double sx, sy;
        map.position(0, py, sx, sy);
        float* d = row + int64_t(dc) * pl.x;
        for (int32_t x = 0; x < pl.width; ++x, d += dc, sx += map.columnX, sy += map.columnY) {
            for (int32_t c = n; c < dc; ++c)
                d[c] = c == 3 ? 255.0f : 0.0f;
            if (pickNearest)
                sampleNearest(src, sw, sh, sc, sx, sy, n, d);
            else
                samplePixel(src, sw, sh, sc, sx, sy, map.footprint, n, d);
        }
        // Rounded corners: only rows and columns within the radius of a corner blend.
        if (reach > 1 && (py < reach || py >= pl.height - reach)) {
            const int32_t span = std::min(reach, pl.width);
            for (int32_t x = 0; x < pl.width; ++x) {
                if (x == span && pl.width - reach > x)
                    x = pl.width - reach;
                const float cover = float(roundedCoverage(pl, pl.x + x, y));
                if (cover < 1.0f)
                    blendPixel(row + int64_t(dc) * (pl.x + x), band, bandChannels, cover);
            }
        }
    });
    destination.marginLeft = destination.marginRight = destination.marginTop = destination.marginBottom = 0;
    destination.scale = float(map.factor) * source.scale;
    return true;
}
