#include "mods/NineSlice.h"

#include "core/ParallelFor.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// Where output position u (a pixel centre) reads along one axis of the picture.
struct AxisSample {
    double source = 0.0;    // in picture pixels, centres at integers
    double footprint = 1.0; // picture pixels per output pixel
    int8_t piece = -1;      // 0 first edge, 1 middle, 2 last edge, -1 outside the rectangle
};

struct AxisLayout {
    double start, end;   // output span
    double thickA, thickB; // output thickness of the two end pieces
    double size;         // picture size on this axis
    double insetA, insetB;
    bool tile;
};

static inline AxisSample mapAxis(const AxisLayout& a, double u)
{
    AxisSample s;
    if (u < a.start || u >= a.end)
        return s;
    const double midOut = a.end - a.start - a.thickA - a.thickB;
    const double midSrc = a.size - a.insetA - a.insetB;
    if (a.thickA > 0.0 && u < a.start + a.thickA) {
        s.footprint = a.insetA / a.thickA;
        s.source = (u - a.start) * s.footprint - 0.5;
        s.piece = 0;
    } else if (a.thickB > 0.0 && u >= a.end - a.thickB) {
        s.footprint = a.insetB / a.thickB;
        s.source = a.size - a.insetB + (u - (a.end - a.thickB)) * s.footprint - 0.5;
        s.piece = 2;
    } else if (midOut > 0.0 && midSrc > 0.0) {
        const double v = u - (a.start + a.thickA);
        if (a.tile) {
            // Repeats at the corners' scale, rounded to a whole count so the pattern meets them.
            const double cornerScale = a.thickA > 0.0 ? a.insetA / a.thickA : (a.thickB > 0.0 ? a.insetB / a.thickB : 1.0);
            const double period = midSrc / cornerScale;
            const double count = std::max(1.0, std::round(midOut / period));
            const double cell = midOut / count;
            const double t = v / cell - std::floor(v / cell);
            s.footprint = midSrc / cell;
            s.source = a.insetA + t * midSrc - 0.5;
        } else {
            s.footprint = midSrc / midOut;
            s.source = a.insetA + v * s.footprint - 0.5;
        }
        s.piece = 1;
    } else {
        s.piece = 1;
        s.source = a.insetA;
    }
    // Each piece reads only its own pixels: a neighbour piece's edge never bleeds across the joint.
    const double lo = s.piece == 0 ? 0.0 : s.piece == 1 ? a.insetA : a.size - a.insetB;
    const double hi = s.piece == 0 ? a.insetA - 1.0 : s.piece == 1 ? a.size - a.insetB - 1.0 : a.size - 1.0;
    s.source = std::clamp(s.source, lo, std::max(lo, hi));
    return s;
}

// One or two reads across an output pixel: a pixel that a joint between pieces cuts takes each side
// by its share, so the joint lands at the same place at every size.
struct AxisTaps {
    AxisSample tap[2];
    float weight[2] = { 1.0f, 0.0f };
    int8_t count = 1;
    int8_t piece = -1; // the piece of the pixel's centre
};

static inline AxisTaps tapsForPixel(const AxisLayout& a, int32_t x)
{
    AxisTaps t;
    const double joints[2] = { a.start + a.thickA, a.end - a.thickB };
    t.tap[0] = mapAxis(a, x + 0.5);
    t.piece = t.tap[0].piece;
    for (double j : joints) {
        if (j > x && j < x + 1.0 && j > a.start && j < a.end) {
            t.tap[0] = mapAxis(a, (x + j) * 0.5);
            t.tap[1] = mapAxis(a, (j + x + 1.0) * 0.5);
            t.weight[0] = float(j - x);
            t.weight[1] = float(x + 1.0 - j);
            t.count = 2;
            break;
        }
    }
    return t;
}

static inline void composite(float* d, const float art[4], float opacity)
{
    const float a = art[3] * opacity * (1.0f / 255.0f);
    if (a <= 0.0f)
        return;
    const float keep = 1.0f - a;
    for (int32_t c = 0; c < 3; ++c)
        d[c] = art[c] * opacity + d[c] * keep;
}

} // namespace

bool drawNineSlice(FlexImageFloat& image, const OverlayImage& art, const NineSliceLayout& layout)
{
    if (image.isEmpty() || image.channels < 3 || art.isEmpty() || !(layout.opacity > 0.0f))
        return false;
    if (!(layout.x1 > layout.x0) || !(layout.y1 > layout.y0))
        return false;
    for (int32_t i = 0; i < 4; ++i)
        if (!(layout.insets[i] >= 0.0) || !(layout.thickness[i] >= 0.0) || !std::isfinite(layout.thickness[i]))
            return false;
    const AxisLayout ax { layout.x0, layout.x1, layout.thickness[0], layout.thickness[2], double(art.width()),
                          layout.insets[0], layout.insets[2], layout.tileEdges };
    const AxisLayout ay { layout.y0, layout.y1, layout.thickness[1], layout.thickness[3], double(art.height()),
                          layout.insets[1], layout.insets[3], layout.tileEdges };
    const int32_t w = image.width;
    std::vector<AxisTaps> columns(static_cast<size_t>(w));
    for (int32_t x = 0; x < w; ++x)
        columns[size_t(x)] = tapsForPixel(ax, x);
    // Columns inside the middle piece, skipped on middle rows when the centre isn't drawn.
    int32_t midFirst = w, midEnd = w;
    for (int32_t x = 0; x < w; ++x) {
        if (columns[size_t(x)].piece == 1 && columns[size_t(x)].count == 1) {
            midFirst = std::min(midFirst, x);
            midEnd = x + 1;
        }
    }
    const AxisTaps* cols = columns.data();
    const int32_t ch = image.channels;
    const bool centre = layout.drawCentre;
    const float opacity = std::min(layout.opacity, 1.0f);
    const int32_t y0 = std::max(0, int32_t(std::floor(layout.y0)));
    const int32_t y1 = std::min(image.height, int32_t(std::ceil(layout.y1)));
    parallelFor(std::max(0, y1 - y0), [&, y0](int32_t i) {
        const int32_t y = y0 + i;
        const AxisTaps row = tapsForPixel(ay, y);
        if (row.piece < 0)
            return;
        float* p = image.row(y);
        const bool middleRow = row.piece == 1 && row.count == 1 && !centre;
        for (int32_t x = 0; x < w; ++x) {
            if (middleRow && x == midFirst) {
                x = midEnd - 1;
                continue;
            }
            const AxisTaps& col = cols[x];
            if (col.piece < 0)
                continue;
            float s[4] = { 0.0f, 0.0f, 0.0f, 0.0f };
            for (int8_t i = 0; i < row.count; ++i) {
                for (int8_t k = 0; k < col.count; ++k) {
                    const AxisSample& r = row.tap[i];
                    const AxisSample& c = col.tap[k];
                    if (r.piece < 0 || c.piece < 0 || (!centre && r.piece == 1 && c.piece == 1))
                        continue;
                    float one[4];
                    sampleOverlay(art, c.source, r.source, std::max(c.footprint, r.footprint), one);
                    const float wgt = row.weight[i] * col.weight[k];
                    for (int32_t n = 0; n < 4; ++n)
                        s[n] += one[n] * wgt;
                }
            }
            composite(p + int64_t(ch) * x, s, opacity);
        }
    });
    return true;
}
