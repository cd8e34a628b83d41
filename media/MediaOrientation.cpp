#include "media/MediaOrientation.h"

#include "core/ParallelFor.h"

#include <algorithm>

OrientationSteps orientationSteps(int32_t orientation)
{
    OrientationSteps s;
    if (orientation < 1 || orientation > 8)
        return s;
    s.turn = orientation >= 5;
    s.swapRows = orientation == 3 || orientation == 4 || orientation == 7 || orientation == 8;
    s.swapColumns = orientation == 2 || orientation == 3 || orientation == 5 || orientation == 8;
    return s;
}

OrientationMap orientationMap(int32_t orientation, int32_t sourceWidth, int32_t sourceHeight)
{
    OrientationMap m;
    m.steps = orientationSteps(orientation);
    m.uprightWidth = m.steps.turn ? sourceHeight : sourceWidth;
    m.uprightHeight = m.steps.turn ? sourceWidth : sourceHeight;
    return m;
}

namespace {

template <typename T>
void flipRows(FlexImageT<T>& image)
{
    if (image.isEmpty())
        return;
    const int64_t n = int64_t(image.width) * image.channels;
    FlexImageT<T>* img = &image;
    const int32_t h = image.height;
    parallelFor(h / 2, [=](int32_t y) { std::swap_ranges(img->row(y), img->row(y) + n, img->row(h - 1 - y)); });
}

template <typename T>
void flipColumns(FlexImageT<T>& image)
{
    if (image.isEmpty())
        return;
    const int32_t w = image.width, c = image.channels;
    FlexImageT<T>* img = &image;
    parallelFor(image.height, [=](int32_t y) {
        T* r = img->row(y);
        for (int32_t x = 0; x < w / 2; ++x)
            std::swap_ranges(r + int64_t(x) * c, r + int64_t(x + 1) * c, r + int64_t(w - 1 - x) * c);
    });
}

} // namespace

void FlipImageRows(FlexImageFloat& image) { flipRows(image); }
void FlipImageColumns(FlexImageFloat& image) { flipColumns(image); }
void FlipImageRows(FlexImage8& image) { flipRows(image); }
void FlipImageColumns(FlexImage8& image) { flipColumns(image); }
