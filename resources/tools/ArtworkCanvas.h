#pragma once
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <cstdint>
#include <memory>

// A transparent image of a logical size at a given scale, with a painter set up in logical
// coordinates: every piece of art is drawn once and rendered at 1x and 2x.
class ArtworkCanvas
{
public:
    ArtworkCanvas(int logicalWidth, int logicalHeight, int scale);
    ~ArtworkCanvas();
    QPainter& painter() { return *p; }
    QImage finish(); // ends painting and returns the image

private:
    QImage image;
    std::unique_ptr<QPainter> p;
};

// Small deterministic generator (xorshift32): the same seed gives the same art on every machine.
class ArtworkRandom
{
public:
    explicit ArtworkRandom(uint32_t seed) : state(seed ? seed : 0x9e3779b9u) {}
    float unit() // [0, 1)
    {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return float(state & 0xFFFFFFu) / 16777216.0f;
    }
    float range(float lo, float hi) { return lo + (hi - lo) * unit(); }

private:
    uint32_t state;
};

// A rounded card or button shaded from `top` to `bottom`, with a one-pixel edge and a light line
// just inside its top edge that gives a flat face a little depth.
void drawShadedCard(QPainter& p, const QRectF& r, const QColor& top, const QColor& bottom, const QColor& edgeColour,
                    qreal radius, int highlightAlpha);

// The program's fonts, from the system's Vera package that the build also bundles.
bool loadArtworkFonts();
QFont artworkFont(qreal pixelSize, bool bold);
