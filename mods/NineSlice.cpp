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
    return s;
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
    std::vector<AxisSample> columns(static_cast<size_t>(w));
    for (int32_t x = 0; x < w; ++x)
        columns[size_t(x)] = mapAxis(ax, x + 0.5);
    // Columns inside the middle piece, skipped on middle rows when the centre isn't drawn.
    int32_t midFirst = w, midEnd = w;
    for (int32_t x = 0; x < w; ++x) {
        if (columns[size_t(x)].piece == 1) {
            midFirst = std::min(midFirst, x);
            midEnd = x + 1;
        }
    }
    const AxisSample* cols = columns.data();
    const int32_t ch = image.channels;
    const bool centre = layout.drawCentre;
    const float opacity = std::min(layout.opacity, 1.0f);
    const int32_t y0 = std::max(0, int32_t(std::floor(layout.y0)));
    const int32_t y1 = std::min(image.height, int32_t(std::ceil(layout.y1)));
    parallelFor(std::max(0, y1 - y0), [&, y0](int32_t i) {
        const int32_t y = y0 + i;
        const AxisSample row = mapAxis(ay, y + 0.5);
        if (row.piece < 0)
            return;
        float* p = image.row(y);
        const bool middleRow = row.piece == 1 && !centre;
        for (int32_t x = 0; x < w; ++x) {
            if (middleRow && x == midFirst) {
                x = midEnd - 1;
                continue;
            }
            const AxisSample& col = cols[x];
            if (col.piece < 0)
                continue;
            float s[4];
            sampleOverlay(art, col.source, row.source, std::max(col.footprint, row.footprint), s);
            composite(p + int64_t(ch) * x, s, opacity);
        }
    });
    return true;
}
