#pragma once
#include "core/FlexImage.h"

#include <cstdint>

class CompactImage;

// The EXIF orientation (1..8) as three steps: a quarter turn clockwise, then rows swapped top for
// bottom, then columns swapped left for right. Values outside 1..8 act as 1.
struct OrientationSteps {
    bool turn = false;
    bool swapRows = false;
    bool swapColumns = false;
};
OrientationSteps orientationSteps(int32_t orientation);

// Where source pixel (x, y) of a w by h stored image lands in the upright image.
struct OrientationMap {
    int32_t uprightWidth = 0;
    int32_t uprightHeight = 0;
    OrientationSteps steps;
    void at(int32_t x, int32_t y, int32_t sourceHeight, int32_t& ux, int32_t& uy) const
    {
        int32_t dx = x, dy = y;
        if (steps.turn) {
            dx = sourceHeight - 1 - y;
            dy = x;
        }
        ux = steps.swapColumns ? uprightWidth - 1 - dx : dx;
        uy = steps.swapRows ? uprightHeight - 1 - dy : dy;
    }
};
OrientationMap orientationMap(int32_t orientation, int32_t sourceWidth, int32_t sourceHeight);

// Swap rows top for bottom / columns left for right, in place.
void FlipImageRows(FlexImageFloat& image);
void FlipImageColumns(FlexImageFloat& image);
void FlipImageRows(FlexImage8& image);
void FlipImageColumns(FlexImage8& image);
