#pragma once
#include "core/FlexImage.h"

#include <cstdint>

class QImage;
struct ColorTransformSet;

// Writes source into target with its top-left at (offsetX, offsetY): samples clamped to 0..255 and
// truncated, run through transform (when it converts) as 8-bit RGB, alpha 255 for three channels or
// the fourth sample truncated. Pixels falling outside the target are skipped. The bytes are those
// QImage::setPixelColor would store; the rows are written directly and in parallel.
// target must be Format_ARGB32 or Format_RGB32. False (target untouched) for fewer than three
// channels or another target format.
bool copyContentsIntoQtImage(const FlexImageFloat& source, QImage& target, int32_t offsetX, int32_t offsetY,
                             const ColorTransformSet* transform);
