#include "SampleScene.h"
#include "ArtworkCanvas.h"
#include "core/ParallelFor.h"
#include <QtGui/QLinearGradient>
#include <QtGui/QPainterPath>
#include <QtGui/QRadialGradient>
#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// Ridge heights by midpoint displacement: `count` samples, a fixed seed, rough but natural.
std::vector<float> ridge(int count, uint32_t seed, float roughness)
{
    int n = 1;
    while (n + 1 < count)
        n *= 2;
    std::vector<float> h(size_t(n) + 1, 0.0f);
    ArtworkRandom rnd(seed);
    h[0] = rnd.range(-0.5f, 0.5f);
    h[size_t(n)] = rnd.range(-0.5f, 0.5f);
    float spread = 1.0f;
    for (int step = n; step > 1; step /= 2) {
        for (int i = step / 2; i < n; i += step)
            h[size_t(i)] = (h[size_t(i - step / 2)] + h[size_t(i + step / 2)]) / 2 + rnd.range(-0.5f, 0.5f) * spread;
        spread *= roughness;
    }
    h.resize(size_t(count));
    // Normalise to 0 (highest peak) .. 1 (lowest dip) so each range can be placed exactly.
    const auto [lo, hi] = std::minmax_element(h.begin(), h.end());
    const float low = *lo, span = std::max(1e-3f, *hi - low);
    for (float& v : h)
        v = (v - low) / span;
    return h;
}

// A range whose peaks reach `topY` and whose dips reach `lowY`, sampled every `dx` pixels.
struct Range
{
    std::vector<float> line;
    float topY, lowY, dx;
    float yAt(size_t i) const { return topY + line[i] * (lowY - topY); }
};

// A closed shape under a range's ridge line, down to `bottom`.
QPainterPath ridgePath(const Range& r, float bottom)
{
    QPainterPath path(QPointF(0, bottom));
    for (size_t i = 0; i < r.line.size(); ++i)
        path.lineTo(QPointF(float(i) * r.dx, r.yAt(i)));
    path.lineTo(QPointF(float(r.line.size() - 1) * r.dx, bottom));
    path.closeSubpath();
    return path;
}

float ridgeAt(const Range& r, float x)
{
    const float f = std::clamp(x / r.dx, 0.0f, float(r.line.size() - 1));
    const size_t i = std::min(size_t(f), r.line.size() - 2);
    const float t = f - float(i);
    return r.yAt(i) * (1 - t) + r.yAt(i + 1) * t;
}

// Relief: the face of each peak turned away from the sun (on the right) falls into shade, bounded
// by a spur running down from the summit; the lit faces keep the range's own colour.
void shadeRange(QPainter& p, const Range& r, const QPainterPath& shape, float reach, int strength)
{
    const int n = int(r.line.size());
    auto isPeak = [&](int i) {
        for (int k = std::max(0, i - 3); k <= std::min(n - 1, i + 3); ++k)
            if (r.line[size_t(k)] < r.line[size_t(i)])
                return false;
        return true;
    };
    p.save();
    p.setClipPath(shape);
    int valley = 0;
    for (int i = 1; i < n - 1; ++i) {
        if (!isPeak(i))
            continue;
        // The lowest point since the previous peak is where this peak's shaded face begins.
        const float peakY = r.yAt(size_t(i)), valleyY = r.yAt(size_t(valley));
        const float height = valleyY - peakY;
        if (height > 8.0f) {
            QPainterPath face(QPointF(float(valley) * r.dx, valleyY));
            for (int k = valley + 1; k <= i; ++k)
                face.lineTo(float(k) * r.dx, r.yAt(size_t(k)));
            const float footX = float(i) * r.dx - float(i - valley) * r.dx * 0.25f;
            face.quadTo(QPointF(float(i) * r.dx - 2, peakY + height * 0.5f),
                        QPointF(footX, valleyY + height * 0.9f + reach));
            // The shaded face meets the previous peak's lit face along a valley line that slants down.
            const float valleyX = float(valley) * r.dx;
            face.lineTo(valleyX + (footX - valleyX) * 0.45f, valleyY + height * 0.5f + reach);
            face.closeSubpath();
            QLinearGradient g(0, peakY, 0, valleyY + height + reach);
            g.setColorAt(0, QColor(24, 32, 52, strength));
            g.setColorAt(1, QColor(24, 32, 52, 0));
            p.setBrush(g);
            p.drawPath(face);
        }
        int lowest = i;
        for (int k = i + 1; k < n && !isPeak(k); ++k)
            if (r.line[size_t(k)] > r.line[size_t(lowest)])
                lowest = k;
        valley = lowest;
    }
    p.restore();
}

void drawCloud(QPainter& p, ArtworkRandom& rnd, QPointF at, float width, float height, const QPointF& sun)
{
    const int puffs = 14 + int(rnd.unit() * 14);
    for (int i = 0; i < puffs; ++i) {
        const float u = rnd.range(-0.5f, 0.5f);
        const float rx = rnd.range(0.12f, 0.3f) * width * (1.0f - std::fabs(u));
        const float ry = rx * rnd.range(0.35f, 0.6f) * height / 40.0f;
        const QPointF c(at.x() + u * width, at.y() + rnd.range(-0.3f, 0.3f) * height);
        // Puffs nearer the sun take its warmth.
        const float near = std::max(0.0f, 1.0f - float(std::hypot(c.x() - sun.x(), c.y() - sun.y())) / 900.0f);
        QRadialGradient g(QPointF(0, 0), std::max(rx, 1.0f));
        QColor core(255, int(246 - 20 * near), int(238 - 50 * near), int(rnd.range(60, 110)));
        g.setColorAt(0, core);
        g.setColorAt(0.6, QColor(core.red(), core.green(), core.blue(), core.alpha() / 3));
        g.setColorAt(1, QColor(core.red(), core.green(), core.blue(), 0));
        p.setBrush(g);
        p.save();
        p.translate(c);
        p.scale(1.0, ry / std::max(rx, 1.0f));
        p.drawEllipse(QPointF(0, 0), rx, rx);
        p.restore();
    }
}

void drawPine(QPainter& p, ArtworkRandom& rnd, float x, float ground, float height, float shade)
{
    const QColor dark(int(28 * shade), int(52 * shade), int(34 * shade));
    const QColor lit(int(52 * shade), int(84 * shade), int(44 * shade));
    const float w = height * rnd.range(0.28f, 0.36f);
    p.setBrush(QColor(int(50 * shade), int(38 * shade), int(28 * shade)));
    p.drawRect(QRectF(x - w * 0.05, ground - height * 0.15, w * 0.1, height * 0.17));
    const int tiers = 4;
    for (int t = 0; t < tiers; ++t) {
        const float top = ground - height + float(t) * height * 0.18f;
        const float bottom = ground - height * 0.12f - float(tiers - 1 - t) * height * 0.12f;
        const float half = w * (0.45f + 0.55f * float(t + 1) / float(tiers)) / 2;
        QPainterPath left, right;
        left.moveTo(x, top);
        left.lineTo(x - half, bottom);
        left.lineTo(x, bottom - height * 0.03f);
        left.closeSubpath();
        right.moveTo(x, top);
        right.lineTo(x + half, bottom);
        right.lineTo(x, bottom - height * 0.03f);
        right.closeSubpath();
        p.setBrush(dark);
        p.drawPath(left);
        p.setBrush(lit); // the sun is to the right
        p.drawPath(right);
    }
}

void drawBroadleaf(QPainter& p, ArtworkRandom& rnd, float x, float ground, float height, const QColor& leaf)
{
    p.setBrush(QColor(70, 52, 36));
    p.drawRect(QRectF(x - height * 0.03, ground - height * 0.45, height * 0.06, height * 0.46));
    for (int i = 0; i < 9; ++i) {
        const float cx = x + rnd.range(-0.28f, 0.28f) * height;
        const float cy = ground - height * rnd.range(0.55f, 0.85f);
        const float r = height * rnd.range(0.16f, 0.26f);
        QRadialGradient g(QPointF(cx + r * 0.35, cy - r * 0.35), r * 1.3);
        g.setColorAt(0, leaf.lighter(135));
        g.setColorAt(1, leaf.darker(150));
        p.setBrush(g);
        p.drawEllipse(QPointF(cx, cy), r, r * 0.9);
    }
}

void drawCabin(QPainter& p, float x, float ground)
{
    const float w = 58, h = 30;
    p.setBrush(QColor(0x8e, 0x2a, 0x22));
    p.drawRect(QRectF(x, ground - h, w, h));
    p.setBrush(QColor(0xa8, 0x3a, 0x2c)); // sunlit gable end
    QPainterPath gable;
    gable.moveTo(x + w, ground - h);
    gable.lineTo(x + w + 26, ground - h);
    gable.lineTo(x + w + 26, ground);
    gable.lineTo(x + w, ground);
    gable.closeSubpath();
    p.drawPath(gable);
    p.setBrush(QColor(0x2e, 0x2a, 0x2a));
    QPainterPath roof;
    roof.moveTo(x - 6, ground - h);
    roof.lineTo(x + w * 0.45, ground - h - 24);
    roof.lineTo(x + w + 30, ground - h - 24);
    roof.lineTo(x + w + 30, ground - h + 2);
    roof.closeSubpath();
    p.drawPath(roof);
    p.setBrush(QColor(0xf0, 0xe2, 0xb0));
    p.drawRect(QRectF(x + 10, ground - h + 9, 9, 9));
    p.drawRect(QRectF(x + 34, ground - h + 9, 9, 9));
    p.setBrush(QColor(0x3a, 0x22, 0x1a));
    p.drawRect(QRectF(x + w + 9, ground - 18, 9, 18));
}

// Film grain and a gentle vignette, per pixel, seeded by row so the result never depends on
// which thread ran which row.
static inline uint32_t grainHash(uint32_t x, uint32_t y)
{
    uint32_t h = x * 0x9e3779b1u ^ (y * 0x85ebca77u + 0x27d4eb2fu);
    h ^= h >> 15;
    h *= 0x2c1b3c6du;
    h ^= h >> 12;
    return h;
}

static inline void finishPixel(uint8_t* px, int x, int y, float cx, float cy, float invR2)
{
    const float dx = float(x) - cx, dy = float(y) - cy;
    const float v = 1.0f - 0.28f * std::min(1.0f, (dx * dx + dy * dy) * invR2);
    const float grain = float(int(grainHash(uint32_t(x), uint32_t(y)) & 15u) - 8) * 0.55f;
    for (int c = 0; c < 3; ++c)
        px[c] = uint8_t(std::clamp(float(px[c]) * v + grain, 0.0f, 255.0f));
}

} // namespace

QImage renderSampleScene(int width, int height)
{
    const float W = 1600, H = 1067; // the scene is laid out on this frame and scaled to the target
    ArtworkCanvas canvas(int(W), int(H), 1);
    QPainter& p = canvas.painter();
    p.setPen(Qt::NoPen);
    const float horizon = 640;
    const QPointF sun(1180, 236);

    QLinearGradient sky(0, 0, 0, horizon);
    sky.setColorAt(0.00, QColor(0x27, 0x55, 0x96));
    sky.setColorAt(0.45, QColor(0x62, 0x93, 0xc6));
    sky.setColorAt(0.80, QColor(0xb6, 0xcb, 0xdb));
    sky.setColorAt(1.00, QColor(0xf0, 0xd3, 0xa8));
    p.fillRect(QRectF(0, 0, W, horizon + 2), sky);

    QRadialGradient glow(sun, 520);
    glow.setColorAt(0.00, QColor(255, 240, 205, 230));
    glow.setColorAt(0.12, QColor(255, 222, 170, 130));
    glow.setColorAt(0.45, QColor(255, 205, 150, 40));
    glow.setColorAt(1.00, QColor(255, 200, 150, 0));
    p.setBrush(glow);
    p.drawRect(QRectF(0, 0, W, horizon + 2));
    p.setBrush(QColor(255, 250, 232));
    p.drawEllipse(sun, 26, 26);

    ArtworkRandom cloudRnd(4242);
    const QPointF clouds[] = {{220, 150}, {560, 90}, {900, 190}, {1320, 120}, {380, 300}, {760, 340},
                              {1480, 280}, {120, 420}, {1010, 400}, {620, 470}, {1400, 450}};
    for (const QPointF& c : clouds)
        drawCloud(p, cloudRnd, c, cloudRnd.range(260, 520), cloudRnd.range(34, 70), sun);

    // Three ranges, each nearer one darker, greener and less hazy.
    const float dx = 8;
    const int samples = int(W / dx) + 2;
    const Range far{ridge(samples, 11, 0.58f), 318, 492, dx};
    const Range mid{ridge(samples, 23, 0.55f), 520, 602, dx};
    const Range near{ridge(samples, 37, 0.5f), 598, 634, dx};

    QLinearGradient farFill(0, 318, 0, horizon);
    farFill.setColorAt(0, QColor(0x6f, 0x82, 0x9c));
    farFill.setColorAt(1, QColor(0x9c, 0xaa, 0xb8));
    p.setBrush(farFill);
    const QPainterPath farShape = ridgePath(far, horizon + 2);
    p.drawPath(farShape);
    shadeRange(p, far, farShape, 40, 110);
    // Snow on the peaks that climb high enough.
    p.save();
    p.setClipPath(farShape);
    QLinearGradient snow(0, 318, 0, 392);
    snow.setColorAt(0, QColor(0xf6, 0xf4, 0xf0, 240));
    snow.setColorAt(0.6, QColor(0xee, 0xf0, 0xf2, 160));
    snow.setColorAt(1, QColor(0xe6, 0xea, 0xef, 0));
    p.setBrush(snow);
    p.drawRect(QRectF(0, 300, W, 100));
    p.restore();

    QLinearGradient haze(0, 470, 0, horizon);
    haze.setColorAt(0, QColor(0xe8, 0xd8, 0xc0, 0));
    haze.setColorAt(1, QColor(0xe8, 0xd8, 0xc0, 110));
    p.setBrush(haze);
    p.drawRect(QRectF(0, 470, W, horizon - 470 + 2));

    QLinearGradient midFill(0, 520, 0, horizon);
    midFill.setColorAt(0, QColor(0x4f, 0x68, 0x72));
    midFill.setColorAt(1, QColor(0x6c, 0x80, 0x80));
    p.setBrush(midFill);
    const QPainterPath midShape = ridgePath(mid, horizon + 2);
    p.drawPath(midShape);
    shadeRange(p, mid, midShape, 20, 80);

    QLinearGradient nearFill(0, 598, 0, horizon);
    nearFill.setColorAt(0, QColor(0x4a, 0x6a, 0x3c));
    nearFill.setColorAt(1, QColor(0x3a, 0x55, 0x30));
    p.setBrush(nearFill);
    const QPainterPath nearShape = ridgePath(near, horizon + 2);
    p.drawPath(nearShape);

    // Forest along the near ridge, smaller and bluer than the trees on the shore.
    ArtworkRandom treeRnd(77);
    for (float x = 4; x < W; x += treeRnd.range(7, 16)) {
        const float ground = std::min(horizon + 1, ridgeAt(near, x) + treeRnd.range(4, 26));
        drawPine(p, treeRnd, x, ground, treeRnd.range(16, 34), 0.8f);
    }

    // The lake mirrors the sky and the shore, broken by ripples.
    const float shore = 808;
    QLinearGradient lake(0, horizon, 0, shore);
    lake.setColorAt(0, QColor(0xd2, 0xc8, 0xb0));
    lake.setColorAt(0.25, QColor(0x8e, 0xa8, 0xbe));
    lake.setColorAt(1, QColor(0x3a, 0x5f, 0x80));
    p.setBrush(lake);
    p.drawRect(QRectF(0, horizon, W, shore - horizon + 40));
    p.save();
    p.setClipRect(QRectF(0, horizon, W, shore - horizon + 40));
    p.translate(0, 2 * horizon);
    p.scale(1, -1);
    p.setOpacity(0.45);
    p.setBrush(QColor(0x2e, 0x44, 0x2a));
    p.drawPath(nearShape);
    p.restore();

    ArtworkRandom waterRnd(91);
    for (int i = 0; i < 900; ++i) {
        const float y = waterRnd.range(horizon + 2, shore + 20);
        const float depth = (y - horizon) / (shore - horizon);
        const float len = waterRnd.range(20, 120) * (0.4f + depth);
        const float x = waterRnd.range(-60, W);
        const bool bright = waterRnd.unit() < 0.5f;
        p.setBrush(bright ? QColor(235, 240, 245, int(waterRnd.range(14, 40))) : QColor(20, 40, 60, int(waterRnd.range(14, 40))));
        p.drawRect(QRectF(x, y, len, 0.8f + depth * 1.6f));
    }
    // The sun's path on the water.
    for (int i = 0; i < 160; ++i) {
        const float y = waterRnd.range(horizon + 1, shore + 10);
        const float spread = 12 + (y - horizon) * 0.35f;
        const float x = float(sun.x()) + waterRnd.range(-1, 1) * spread;
        const float len = waterRnd.range(8, 40) * (1.0f - std::fabs(x - float(sun.x())) / (spread + 1));
        p.setBrush(QColor(255, 236, 196, int(waterRnd.range(60, 160))));
        p.drawRect(QRectF(x - len / 2, y, len, 1.2f + (y - horizon) * 0.01f));
    }

    // Meadow in the foreground, curving down to the water.
    QPainterPath meadow(QPointF(0, H));
    meadow.lineTo(0, shore - 10);
    meadow.cubicTo(QPointF(380, shore + 40), QPointF(820, shore - 40), QPointF(1150, shore + 6));
    meadow.cubicTo(QPointF(1350, shore + 30), QPointF(1500, shore - 6), QPointF(W, shore + 14));
    meadow.lineTo(W, H);
    meadow.closeSubpath();
    QLinearGradient grass(0, shore - 40, 0, H);
    grass.setColorAt(0, QColor(0x8a, 0xa4, 0x48));
    grass.setColorAt(0.4, QColor(0x5a, 0x86, 0x2e));
    grass.setColorAt(1, QColor(0x2c, 0x4e, 0x1c));
    p.setBrush(grass);
    p.drawPath(meadow);

    // Soft light and dark patches keep the meadow from looking like a flat fill.
    p.save();
    p.setClipPath(meadow);
    ArtworkRandom patchRnd(808);
    for (int i = 0; i < 60; ++i) {
        const QPointF c(patchRnd.range(0, W), patchRnd.range(shore, H));
        const float rx = patchRnd.range(60, 220), ry = rx * patchRnd.range(0.15f, 0.3f);
        const bool lightPatch = patchRnd.unit() < 0.5f;
        QRadialGradient g(QPointF(0, 0), rx);
        const QColor tint = lightPatch ? QColor(200, 210, 90, 50) : QColor(20, 50, 10, 60);
        g.setColorAt(0, tint);
        g.setColorAt(1, QColor(tint.red(), tint.green(), tint.blue(), 0));
        p.setBrush(g);
        p.save();
        p.translate(c);
        p.scale(1.0, ry / rx);
        p.drawEllipse(QPointF(0, 0), rx, rx);
        p.restore();
    }
    p.restore();

    drawCabin(p, 360, shore + 26);
    ArtworkRandom shoreRnd(5);
    const float shoreTrees[][2] = {{90, 180}, {170, 140}, {250, 120}, {1240, 150}, {1320, 200}, {1420, 170}, {1530, 230}};
    for (const auto& t : shoreTrees)
        drawPine(p, shoreRnd, t[0], shore + 24, t[1], 1.0f);
    drawBroadleaf(p, shoreRnd, 520, shore + 30, 120, QColor(0xc2, 0x7a, 0x2a));
    drawBroadleaf(p, shoreRnd, 600, shore + 26, 96, QColor(0x8c, 0x9a, 0x34));
    drawBroadleaf(p, shoreRnd, 1140, shore + 26, 110, QColor(0xb0, 0x48, 0x2a));

    // Grass blades grow larger towards the camera; flowers add points of colour.
    ArtworkRandom grassRnd(1234);
    for (int i = 0; i < 14000; ++i) {
        const float t = std::sqrt(grassRnd.unit());
        const float y = shore + 10 + t * (H - shore);
        const float x = grassRnd.range(-10, W + 10);
        const float len = 4 + t * t * 34 * grassRnd.range(0.5f, 1.2f);
        const float lean = grassRnd.range(-0.4f, 0.5f) * len;
        const float g = grassRnd.range(0.7f, 1.25f);
        const QColor c(std::min(255, int((70 + 40 * grassRnd.unit()) * g)), std::min(255, int((110 + 50 * t) * g * (1.1f - 0.35f * t))),
                       std::min(255, int(40 * g)), 200);
        p.setPen(QPen(c, 0.6f + t * 1.6f, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(QPointF(x, y), QPointF(x + lean, y - len));
    }
    p.setPen(Qt::NoPen);
    const QColor blooms[] = {QColor(0xd8, 0x3a, 0x34), QColor(0xf2, 0xc8, 0x2e), QColor(0x8e, 0x52, 0xc8),
                             QColor(0xf4, 0xf0, 0xe8), QColor(0xe8, 0x7a, 0x2e)};
    for (int i = 0; i < 900; ++i) {
        const float t = std::sqrt(grassRnd.unit());
        const float y = shore + 20 + t * (H - shore - 20);
        const float x = grassRnd.range(0, W);
        const float r = 0.8f + t * t * 5.0f;
        const QColor c = blooms[int(grassRnd.unit() * 5) % 5];
        p.setBrush(c.darker(125));
        p.drawEllipse(QPointF(x + r * 0.2, y + r * 0.2), r, r * 0.8);
        p.setBrush(c);
        p.drawEllipse(QPointF(x, y), r, r * 0.8);
    }

    QImage img = canvas.finish().convertToFormat(QImage::Format_RGB888);
    const float cx = W / 2, cy = H / 2, invR2 = 1.0f / (cx * cx + cy * cy);
    parallelFor(img.height(), [&](int32_t y) {
        uint8_t* row = img.scanLine(y);
        for (int x = 0; x < img.width(); ++x)
            finishPixel(row + 3 * x, x, y, cx, cy, invR2);
    });
    if (img.width() != width || img.height() != height)
        img = img.scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return img;
}
