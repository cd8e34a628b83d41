#pragma once
#include "core/FlexImage.h"
#include "mods/OverlayImage.h"

// How a frame picture cut in nine pieces is laid over a rectangle: the corners keep their shape,
// the edges are stretched or repeated along their length, the centre is left out (the photo shows)
// unless asked for. A picture without insets is simply stretched over the rectangle.
struct NineSliceLayout {
    // The rectangle in output pixels.
    double x0 = 0.0;
    double y0 = 0.0;
    double x1 = 0.0;
    double y1 = 0.0;
    // Piece sizes in the picture's pixels: left, top, right, bottom.
    double insets[4] = { 0.0, 0.0, 0.0, 0.0 };
    // The same pieces in output pixels.
    double thickness[4] = { 0.0, 0.0, 0.0, 0.0 };
    // Repeat the edges a whole number of times instead of stretching them (patterns, perforations).
    bool tileEdges = false;
    bool drawCentre = false;
    // Multiplies the picture's coverage.
    float opacity = 1.0f;
};

// Lays `art` over `image` (3 or more channels, colour in the first three) as `layout` says, by
// "over" compositing. False when there is nothing to draw.
bool drawNineSlice(FlexImageFloat& image, const OverlayImage& art, const NineSliceLayout& layout);
