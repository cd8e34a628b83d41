#pragma once
#include "core/FlexImage.h"

#include <cstdint>

class CompactImage;

// Spot heal: soft round stamps, taken from a ring around the click, laid over the spot from near the
// centre outwards. Works on a 16-bit copy of a 6D x 6D rectangle so repeated overlays don't round.
struct SpotHealRect {
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;
    bool isEmpty() const { return width < 1 || height < 1; }
};

// The brush diameter in source pixels for a brush of brushPixels on a picture shown displayedWidth
// pixels wide; at least 1.
int32_t spotHealDiameter(int32_t sourceWidth, double brushPixels, double displayedWidth);

// The rectangle a heal at (x, y) with diameter d touches, clamped into the image.
SpotHealRect spotHealRect(int32_t imageWidth, int32_t imageHeight, int32_t x, int32_t y, int32_t d);

// D x D 16-bit RGBA: white, alpha a soft disc (opaque to half the radius, fading to 0 at the radius).
void buildSpotHealMask(CompactImage& mask, int32_t d);

// Heals the spot at source pixel (x, y). When `saved` is given it first receives a float copy of the
// rectangle's old pixels (the undo record), placed at `rect`. Returns false, changing nothing, for
// an empty image, a point outside it or a rectangle that comes out empty.
bool spotHeal(FlexImageFloat& image, int32_t x, int32_t y, int32_t d, FlexImageFloat* saved, SpotHealRect& rect);

// Exchanges the pixels of `saved` with the same-sized rectangle of `image` at (x, y): undo and redo
// of a heal are the same call. False, changing nothing, when the rectangle doesn't fit.
bool swapImageRect(FlexImageFloat& image, FlexImageFloat& saved, int32_t x, int32_t y);
