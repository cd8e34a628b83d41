#include "mods/ImageModBorder.h"

#include "core/GrowingArray.h"
#include "core/ImageModVariableDataColor.h"
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

void ImageModBorder::colorVariableBand(int32_t index, float rgba[4]) const
{
    const ImageModVariableDataColor* c = colorAt(index);
    if (!c) {
        ImageModBorder::bandColor(rgba);
        return;
    }
    rgba[0] = c->red;
    rgba[1] = c->green;
    rgba[2] = c->blue;
    rgba[3] = c->alpha;
}

void ImageModBorder::drawOver(FlexImageFloat&, double, double, const BorderPlacement&) {}

void ImageModBorder::adjustGeometry(double& width, double& height, float&)
{
    if (!(width > 0.0) || !(height > 0.0))
        return;
    const BorderBands b = bands(width, height);
    width += b.left + b.right;
    height += b.top + b.bottom;
}

bool placeBorderPhoto(double pictureWidth, double pictureHeight, const BorderBands& bands, int32_t outputWidth,
                      int32_t outputHeight, float radiusFraction, bool wholePixels, BorderPlacement& placement)
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
    const double w = std::min(pictureWidth * sx, double(outputWidth));
    const double h = std::min(pictureHeight * sy, double(outputHeight));
    if (!(w >= 0.5) || !(h >= 0.5))
        return false;
    placement.width = w;
    placement.height = h;
    placement.x = std::clamp(bands.left * sx, 0.0, outputWidth - w);
    placement.y = std::clamp(bands.top * sy, 0.0, outputHeight - h);
    if (wholePixels && sx == 1.0 && sy == 1.0) {
        placement.x = std::clamp(std::round(placement.x), 0.0, std::floor(outputWidth - w));
        placement.y = std::clamp(std::round(placement.y), 0.0, std::floor(outputHeight - h));
    }
    const double shorter = std::min(w, h);
    placement.radius = std::clamp(double(radiusFraction) * shorter, 0.0, shorter * 0.5);
    placement.sampleWidth = std::max(1, int32_t(std::lround(w)));
    placement.sampleHeight = std::max(1, int32_t(std::lround(h)));
    return true;
}

double roundedCoverage(const BorderPlacement& p, int32_t px, int32_t py)
{
    // The pixel cut to the photo's rectangle, less what the four arcs leave outside.
    const double x0 = std::max(double(px), p.x);
    const double x1 = std::min(px + 1.0, p.x + p.width);
    const double y0 = std::max(double(py), p.y);
    const double y1 = std::min(py + 1.0, p.y + p.height);
    if (x1 <= x0 || y1 <= y0)
        return 0.0;
    double inside = (x1 - x0) * (y1 - y0);
    const double r = p.radius;
    if (r > 0.0) {
        const double leftC = p.x + r;
        const double rightC = p.x + p.width - r;
        const double topC = p.y + r;
        const double bottomC = p.y + p.height - r;
        inside -= cornerOutside(leftC - x1, leftC - x0, topC - y1, topC - y0, r);
        inside -= cornerOutside(x0 - rightC, x1 - rightC, topC - y1, topC - y0, r);
        inside -= cornerOutside(leftC - x1, leftC - x0, y0 - bottomC, y1 - bottomC, r);
        inside -= cornerOutside(x0 - rightC, x1 - rightC, y0 - bottomC, y1 - bottomC, r);
    }
    return std::clamp(inside, 0.0, 1.0);
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
    if (!placeBorderPhoto(pictureW, pictureH, bands(pictureW, pictureH), width, height, cornerRadius(),
                          source.scale <= 1.0f, place))
        return false;
    CropRotateScaleMapping m;
    if (!planCropRotateScale(source.width, source.height, place.sampleWidth, place.sampleHeight, crop, nullptr,
                             straighten, m))
        return false;
    destination.resize(width, height, -1);
    if (destination.isEmpty())
        return false;

    const int32_t dc = destination.channels;
    const int32_t sc = source.channels;
    const int32_t n = std::min(std::min(sc, dc), 4);
    if (dc > 16)
        return false;
    // Band pixel: the colour, its alpha in a fourth channel, nothing in any further one.
    float rgba[4];
    bandColor(rgba);
    float band[16] = {};
    for (int32_t c = 0; c < std::min(dc, 4); ++c)
        band[c] = rgba[c];

    // Photo pixel i maps to output i + offset. Whole offsets keep a one-to-one photo exact.
    const double offX = place.x;
    const double offY = place.y;
    const bool aligned = offX == std::floor(offX) && offY == std::floor(offY) && place.width == place.sampleWidth
        && place.height == place.sampleHeight;
    const bool pickNearest = aligned && m.footprint == 1.0 && straighten == 0.0f;
    const double footprint = !pickNearest && m.footprint == 1.0 ? 0.999 : m.footprint;
    const int32_t fx0 = int32_t(std::floor(offX));
    const int32_t fx1 = std::min(width, int32_t(std::ceil(offX + place.width)));
    const int32_t fy0 = int32_t(std::floor(offY));
    const int32_t fy1 = std::min(height, int32_t(std::ceil(offY + place.height)));
    // Pixels farther than this from every edge are wholly photo.
    const double edge = std::ceil(place.radius) + 1.0;
    const float* src = source.data;
    float* dst = destination.data;
    const int32_t sw = source.width;
    const int32_t sh = source.height;
    const CropRotateScaleMapping map = m;
    const BorderPlacement pl = place;
    parallelFor(height, [=, &band](int32_t y) {
        float* row = dst + int64_t(dc) * (int64_t(y) * width);
        if (y < fy0 || y >= fy1) {
            fillBand(row, band, dc, width);
            return;
        }
        fillBand(row, band, dc, fx0);
        fillBand(row + int64_t(dc) * fx1, band, dc, width - fx1);
        const bool rowNearEdge = y < offY + edge || y + 1 > offY + pl.height - edge;
        const double py = y - offY;
        double sx = map.originX + (fx0 - offX) * map.columnX + py * map.rowX;
        double sy = map.originY + (fx0 - offX) * map.columnY + py * map.rowY;
        float* d = row + int64_t(dc) * fx0;
        for (int32_t x = fx0; x < fx1; ++x, d += dc, sx += map.columnX, sy += map.columnY) {
            for (int32_t c = n; c < dc; ++c)
                d[c] = c == 3 ? 255.0f : 0.0f;
            if (pickNearest)
                sampleNearest(src, sw, sh, sc, sx, sy, n, d);
            else
                samplePixel(src, sw, sh, sc, sx, sy, footprint, n, d);
            if (rowNearEdge || x < offX + edge || x + 1 > offX + pl.width - edge) {
                const float cover = float(roundedCoverage(pl, x, y));
                if (cover < 1.0f)
                    blendPixel(d, band, dc, cover);
            }
        }
    });
    destination.marginLeft = destination.marginRight = destination.marginTop = destination.marginBottom = 0;
    destination.scale = float(map.factor) * source.scale;
    drawOver(destination, pictureW, pictureH, pl);
    return true;
}
