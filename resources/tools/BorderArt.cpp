// Frame pictures of the built-in image borders. Each picture is cut in nine pieces at run time:
// whatever lies along an edge's middle is either the same all along it (stretched edges) or
// repeats with the middle's length as period (repeated edges), so the pieces join seamlessly.
#include "BorderArt.h"
#include "ArtworkCanvas.h"

#include <QtGui/QPainterPath>
#include <cmath>
#include <cstring>
#include <functional>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;

// A sum of sines whose cycles fit the period a whole number of times.
class PeriodicNoise
{
public:
    PeriodicNoise(uint32_t seed, double period, int lowest, int highest, double falloff) : period(period)
    {
        ArtworkRandom r(seed);
        for (int k = lowest; k <= highest; ++k) {
            terms.push_back({k, r.range(0.0f, 6.2831853f), std::pow(double(k), -falloff) * r.range(0.4f, 1.0f)});
            norm += terms.back().amp;
        }
    }
    // About -1..1.
    double at(double t) const
    {
        double v = 0.0;
        for (const Term& term : terms)
            v += term.amp * std::sin(2.0 * kPi * term.k * t / period + term.phase);
        return v / norm * 1.8;
    }

private:
    struct Term
    {
        int k;
        double phase;
        double amp;
    };
    std::vector<Term> terms;
    double period;
    double norm = 0.0;
};

struct Frame
{
    int w, h;
    QRectF window; // where the photo stands
};

Frame frameOf(const BorderFileStyle& s)
{
    Frame f;
    f.w = s.insets[0] + s.middle + s.insets[2];
    f.h = s.insets[1] + s.middle + s.insets[3];
    f.window = QRectF(s.bands[0], s.bands[1], f.w - s.bands[0] - s.bands[2], f.h - s.bands[1] - s.bands[3]);
    return f;
}

QColor rgb(const uint8_t c[3])
{
    return QColor(c[0], c[1], c[2]);
}

// The outside of `window` filled.
void fillAround(QPainter& p, const Frame& f, const QPainterPath& window, const QBrush& brush)
{
    QPainterPath all;
    all.addRect(0, 0, f.w, f.h);
    p.fillPath(all.subtracted(window), brush);
}

// A soft shadow along the inside of a rectangle: dark at its edge, gone `depth` pixels in.
void innerShadow(QPainter& p, const QRectF& r, double depth, int alpha)
{
    for (int i = 0; i < int(depth); ++i) {
        const double t = 1.0 - double(i) / depth;
        p.setPen(QPen(QColor(0, 0, 0, int(alpha * t * t)), 1.0));
        p.setBrush(Qt::NoBrush);
        p.drawRect(r.adjusted(i + 0.5, i + 0.5, -i - 0.5, -i - 0.5));
    }
}

// A soft shadow cast outwards from a rectangle onto what lies around it.
void outerShadow(QPainter& p, const QRectF& r, double depth, int alpha, double dx, double dy)
{
    for (int i = int(depth); i >= 1; --i) {
        const double t = 1.0 - double(i) / depth;
        p.setPen(QPen(QColor(0, 0, 0, int(alpha * t * t)), 1.0));
        p.setBrush(Qt::NoBrush);
        p.drawRect(r.adjusted(-i + dx, -i + dy, i + dx, i + dy));
    }
}

// A window whose four sides are moved inwards by `inset(side, t)`, t running along the side.
QPainterPath raggedWindow(const QRectF& w, const std::function<double(int side, double t)>& inset, double step)
{
    QPolygonF poly;
    for (double x = w.left(); x <= w.right(); x += step)
        poly << QPointF(x, w.top() + inset(1, x));
    for (double y = w.top(); y <= w.bottom(); y += step)
        poly << QPointF(w.right() - inset(2, y), y);
    for (double x = w.right(); x >= w.left(); x -= step)
        poly << QPointF(x, w.bottom() - inset(3, x));
    for (double y = w.bottom(); y >= w.top(); y -= step)
        poly << QPointF(w.left() + inset(0, y), y);
    QPainterPath path;
    path.addPolygon(poly);
    path.closeSubpath();
    return path;
}

QPainterPath rectPath(const QRectF& r, double radius = 0.0)
{
    QPainterPath path;
    if (radius > 0.0)
        path.addRoundedRect(r, radius, radius);
    else
        path.addRect(r);
    return path;
}

void drawPaper(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    fillAround(p, f, rectPath(f.window), rgb(s.backdrop));
    // The print lies on the paper: a faint shadow towards the lower right.
    outerShadow(p, f.window, 18, 40, 3, 5);
    // The paper's own edge, a little darker where it was cut.
    p.setPen(QPen(QColor(120, 110, 90, 40), 3.0));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRectF(1.5, 1.5, f.w - 3, f.h - 3));
}

void drawInstantFilm(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    fillAround(p, f, rectPath(f.window), rgb(s.backdrop));
    p.setPen(QPen(QColor(140, 132, 118, 50), 2.0));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRectF(1, 1, f.w - 2, f.h - 2));
    // The picture sits a little below the frame's surface.
    const QRectF inner = f.window.adjusted(-0.5, -0.5, 0.5, 0.5);
    p.setPen(QPen(QColor(200, 195, 184), 3.0));
    p.drawRect(inner);
    innerShadow(p, f.window, 12, 70);
}

void drawFilmStrip(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    fillAround(p, f, rectPath(f.window), rgb(s.backdrop));
    const double holeW = 150, holeH = 104, pitch = s.middle;
    const QColor light(236, 232, 222);
    p.setPen(Qt::NoPen);
    for (double cx = s.insets[0] + pitch * 0.5 - pitch * 2; cx < f.w + pitch; cx += pitch) {
        for (double cy : {s.bands[1] * 0.5, f.h - s.bands[3] * 0.5}) {
            const QRectF hole(cx - holeW / 2, cy - holeH / 2, holeW, holeH);
            p.setBrush(light);
            p.drawRoundedRect(hole, 20, 20);
            // The base's thickness shows as a darker rim at the hole's top.
            p.setBrush(QColor(170, 160, 140, 120));
            p.drawRoundedRect(QRectF(hole.left(), hole.top(), holeW, 10), 6, 6);
        }
    }
    // Frame lines of the exposure.
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(45, 40, 34), 4.0));
    p.drawRect(f.window.adjusted(-2, -2, 2, 2));
}

void drawSlideMount(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    const double overlap = s.insets[0] - s.bands[0];
    const QRectF opening = f.window.adjusted(overlap * 0.3, overlap * 0.3, -overlap * 0.3, -overlap * 0.3);
    fillAround(p, f, rectPath(opening, 46), rgb(s.backdrop));
    // Pressed card: a bevel round the opening, light above and left, dark below and right.
    for (int i = 0; i < 10; ++i) {
        const double t = 1.0 - i / 10.0;
        const QRectF r = opening.adjusted(-i - 0.5, -i - 0.5, i + 0.5, i + 0.5);
        p.setBrush(Qt::NoBrush);
        p.setPen(QPen(QColor(255, 255, 250, int(90 * t)), 1.0));
        p.drawArc(r, 45 * 16, 180 * 16);
        p.setPen(QPen(QColor(80, 70, 50, int(70 * t)), 1.0));
        p.drawArc(r, 225 * 16, 180 * 16);
    }
    p.setPen(QPen(QColor(90, 84, 70, 60), 3.0));
    p.drawRect(QRectF(1.5, 1.5, f.w - 3, f.h - 3));
}

void drawThinLine(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    fillAround(p, f, rectPath(f.window), rgb(s.backdrop));
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(40, 40, 40), 5.0, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    p.drawRect(f.window.adjusted(-34, -34, 34, 34));
}

void drawRoundedBlack(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    fillAround(p, f, rectPath(f.window, 110), rgb(s.backdrop));
}

void drawTornEdge(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    const double P = s.middle;
    const PeriodicNoise coarse[4] = {{11, P, 1, 6, 0.8}, {12, P, 1, 6, 0.8}, {13, P, 1, 6, 0.8}, {14, P, 1, 6, 0.8}};
    const PeriodicNoise fine[4] = {{21, P, 12, 60, 0.4}, {22, P, 12, 60, 0.4}, {23, P, 12, 60, 0.4}, {24, P, 12, 60, 0.4}};
    auto inset = [&](int side, double t) { return 42.0 + 22.0 * coarse[side].at(t) + 7.0 * fine[side].at(t); };
    const QPainterPath torn = raggedWindow(f.window, inset, 1.0);
    // The tear throws a small shadow onto the photo.
    p.save();
    p.translate(3, 5);
    fillAround(p, f, torn, QColor(0, 0, 0, 60));
    p.restore();
    // Torn paper shows its white fibres along the edge, the surface a little behind.
    fillAround(p, f, torn, QColor(255, 255, 255));
    auto surface = [&](int side, double t) { return inset(side, t) - 7.0 - 4.0 * fine[(side + 1) % 4].at(t); };
    fillAround(p, f, raggedWindow(f.window, surface, 1.0), rgb(s.backdrop));
}

void drawDeckledEdge(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    const double P = s.middle;
    const PeriodicNoise wobble[4] = {{31, P, 1, 4, 0.5}, {32, P, 1, 4, 0.5}, {33, P, 1, 4, 0.5}, {34, P, 1, 4, 0.5}};
    const PeriodicNoise grit[4] = {{41, P, 20, 48, 0.2}, {42, P, 20, 48, 0.2}, {43, P, 20, 48, 0.2}, {44, P, 20, 48, 0.2}};
    // The sheet's outer edge, scalloped six times per period.
    auto edge = [&](int side, double t) {
        const double scallop = std::abs(std::sin(kPi * t * 6.0 / P));
        return 70.0 - 16.0 * scallop + 8.0 * wobble[side].at(t) + 3.0 * grit[side].at(t);
    };
    const QRectF outer(0, 0, f.w, f.h);
    const QPainterPath sheet = raggedWindow(outer, edge, 1.0);
    // Shadow of the sheet on the table.
    p.save();
    p.translate(6, 9);
    for (int i = 0; i < 6; ++i) {
        QPainterPath grown = raggedWindow(outer, [&](int side, double t) { return edge(side, t) - 2.0 * i; }, 2.0);
        p.fillPath(grown.subtracted(rectPath(f.window)), QColor(0, 0, 0, 18));
    }
    p.restore();
    p.fillPath(sheet.subtracted(rectPath(f.window)), QColor(240, 235, 222));
    // The print on the sheet, a hair recessed.
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(190, 180, 160, 120), 2.0));
    p.drawRect(f.window.adjusted(-1, -1, 1, 1));
    innerShadow(p, f.window, 10, 40);
}

void drawStamp(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    // Big, widely spaced holes: the art is drawn for a 3000-pixel photo and a phone-sized one
    // shrinks it by three, where small holes blur into a grey seam.
    const double edge = 30.0, pitch = 60.0, radius = 19.0; // (600 - 2 * 30) holds whole pitches
    QPainterPath sheet = rectPath(QRectF(edge, edge, f.w - 2 * edge, f.h - 2 * edge));
    QPainterPath holes;
    for (double x = edge; x <= f.w - edge + 0.5; x += pitch) {
        holes.addEllipse(QPointF(x, edge), radius, radius);
        holes.addEllipse(QPointF(x, f.h - edge), radius, radius);
    }
    for (double y = edge; y <= f.h - edge + 0.5; y += pitch) {
        holes.addEllipse(QPointF(edge, y), radius, radius);
        holes.addEllipse(QPointF(f.w - edge, y), radius, radius);
    }
    sheet = sheet.subtracted(holes).subtracted(rectPath(f.window));
    p.save();
    p.translate(4, 6);
    p.fillPath(sheet, QColor(0, 0, 0, 70));
    p.restore();
    p.fillPath(sheet, QColor(250, 248, 242));
    // The printed frame of the stamp.
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(158, 48, 42), 6.0, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    p.drawRect(f.window.adjusted(-26, -26, 26, 26));
    p.setPen(QPen(QColor(158, 48, 42), 2.0));
    p.drawRect(f.window.adjusted(-38, -38, 38, 38));
    QFont font = artworkFont(64, true);
    p.setFont(font);
    p.setPen(QColor(158, 48, 42));
    p.drawText(QRectF(f.w - s.insets[2] + 20, f.h - s.bands[3] + 44, s.insets[2] - 80, 110), Qt::AlignRight | Qt::AlignTop,
               QStringLiteral("42"));
}

void drawGalleryMat(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    fillAround(p, f, rectPath(f.window), rgb(s.backdrop));
    // The moulding: black with a lit outer lip.
    const double frame = 64.0;
    QPainterPath ring = rectPath(QRectF(0, 0, f.w, f.h)).subtracted(rectPath(QRectF(frame, frame, f.w - 2 * frame, f.h - 2 * frame)));
    p.fillPath(ring, QColor(22, 21, 20));
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(80, 78, 74), 4.0));
    p.drawRect(QRectF(2, 2, f.w - 4, f.h - 4));
    // The glass shadow the moulding casts onto the mat.
    innerShadow(p, QRectF(frame, frame, f.w - 2 * frame, f.h - 2 * frame), 26, 70);
    // The mat's bevel cut: a light strip round the opening.
    const double bevel = 14.0;
    const QRectF o = f.window.adjusted(-bevel, -bevel, bevel, bevel);
    QPainterPath bevelRing = rectPath(o).subtracted(rectPath(f.window));
    p.fillPath(bevelRing, QColor(250, 248, 243));
    p.setPen(QPen(QColor(190, 184, 172), 1.5));
    p.drawRect(o);
    innerShadow(p, f.window, 10, 50);
}

void drawBlackFrame(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    fillAround(p, f, rectPath(f.window), rgb(s.backdrop));
    // Rounded profile of the moulding: lighter along its crest, a thin lit lip inside.
    const double band = s.bands[0];
    for (int i = 0; i < int(band); i += 2) {
        const double t = double(i) / band;
        const double crest = std::exp(-std::pow((t - 0.35) / 0.18, 2.0));
        const int v = int(14 + 44 * crest);
        p.setPen(QPen(QColor(v, v, v + 2), 2.0));
        p.setBrush(Qt::NoBrush);
        p.drawRect(QRectF(i + 1, i + 1, f.w - 2 * i - 2, f.h - 2 * i - 2));
    }
    p.setPen(QPen(QColor(96, 94, 90), 3.0));
    p.drawRect(f.window.adjusted(-4, -4, 4, 4));
    innerShadow(p, f.window, s.insets[0] - s.bands[0], 120);
}

// Per-pixel art: colour and alpha from a function of the position.
void paintPixels(QPainter& p, const Frame& f, const std::function<QColor(int x, int y)>& colour)
{
    QImage img(f.w, f.h, QImage::Format_ARGB32);
    for (int y = 0; y < f.h; ++y) {
        QRgb* row = reinterpret_cast<QRgb*>(img.scanLine(y));
        for (int x = 0; x < f.w; ++x)
            row[x] = colour(x, y).rgba();
    }
    p.drawImage(0, 0, img);
}

void drawBurnedEdges(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    const double P = s.middle, reach = s.insets[0];
    const PeriodicNoise blot[4] = {{51, P, 1, 5, 0.7}, {52, P, 1, 5, 0.7}, {53, P, 1, 5, 0.7}, {54, P, 1, 5, 0.7}};
    const PeriodicNoise ash[4] = {{61, P, 8, 30, 0.6}, {62, P, 8, 30, 0.6}, {63, P, 8, 30, 0.6}, {64, P, 8, 30, 0.6}};
    paintPixels(p, f, [&](int x, int y) {
        const double d[4] = {double(x), double(y), double(f.w - 1 - x), double(f.h - 1 - y)};
        const double along[4] = {double(y), double(x), double(y), double(x)};
        double clear = 1.0;
        for (int side = 0; side < 4; ++side) {
            const double depth = reach * (0.75 + 0.22 * blot[side].at(along[side]) + 0.06 * ash[side].at(along[side]));
            const double u = std::clamp(1.0 - d[side] / depth, 0.0, 1.0);
            clear *= 1.0 - u * u * (3.0 - 2.0 * u);
        }
        const double a = 1.0 - clear;
        // One scorched colour, only its coverage varies: alpha in steps of two keeps the picture small; the tile smooths it when it scales.
        // A low power: the scorch holds its strength well into the picture before it fades.
        const int alpha = int(std::lround(127.0 * std::pow(a, 0.6))) * 2;
        return QColor(26, 12, 4, std::min(alpha, 255));
    });
}

void drawFiledCarrier(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    const double P = s.middle;
    const PeriodicNoise rough[4] = {{71, P, 2, 10, 0.6}, {72, P, 2, 10, 0.6}, {73, P, 2, 10, 0.6}, {74, P, 2, 10, 0.6}};
    const PeriodicNoise tooth[4] = {{81, P, 30, 90, 0.1}, {82, P, 30, 90, 0.1}, {83, P, 30, 90, 0.1}, {84, P, 30, 90, 0.1}};
    auto inset = [&](int side, double t) {
        const double spike = std::max(0.0, tooth[side].at(t) - 0.6) * 40.0;
        return 30.0 + 16.0 * rough[side].at(t) + spike;
    };
    fillAround(p, f, raggedWindow(f.window, inset, 1.0), rgb(s.backdrop));
}

void drawCinema(QPainter& p, const BorderFileStyle& s, const Frame& f)
{
    fillAround(p, f, rectPath(f.window), rgb(s.backdrop));
}

} // namespace

QImage drawBorderArt(const BorderFileStyle& s)
{
    const Frame f = frameOf(s);
    ArtworkCanvas canvas(f.w, f.h, 1);
    QPainter& p = canvas.painter();
    p.setRenderHint(QPainter::Antialiasing, true);
    const std::string file = s.file;
    if (file == "paper")
        drawPaper(p, s, f);
    else if (file == "instant_film")
        drawInstantFilm(p, s, f);
    else if (file == "film_strip")
        drawFilmStrip(p, s, f);
    else if (file == "slide_mount")
        drawSlideMount(p, s, f);
    else if (file == "thin_line")
        drawThinLine(p, s, f);
    else if (file == "rounded_black")
        drawRoundedBlack(p, s, f);
    else if (file == "torn_edge")
        drawTornEdge(p, s, f);
    else if (file == "deckled_edge")
        drawDeckledEdge(p, s, f);
    else if (file == "stamp")
        drawStamp(p, s, f);
    else if (file == "gallery_mat")
        drawGalleryMat(p, s, f);
    else if (file == "black_frame")
        drawBlackFrame(p, s, f);
    else if (file == "burned_edges")
        drawBurnedEdges(p, s, f);
    else if (file == "filed_carrier")
        drawFiledCarrier(p, s, f);
    else
        drawCinema(p, s, f);
    return canvas.finish();
}
