#include "document/core/QuarterTurn.h"

#include "core/ParallelFor.h"

#include <cstring>

bool turnQuarter(FlexImageFloat& image, bool clockwise)
{
    if (image.isEmpty())
        return false;
    FlexImageFloat old(image.width, image.height, image.channels);
    if (old.isEmpty())
        return false;
    std::memcpy(old.data, image.data, sizeof(float) * size_t(image.sampleCount()));
    const int32_t w = old.width, h = old.height, ch = old.channels;
    const int32_t colour = image.colorChannels;
    image.resize(h, w, ch);
    if (image.isEmpty() || image.width != h)
        return false;
    image.colorChannels = colour;
    // Output row y, column x: clockwise it comes from old (y, h - 1 - x); otherwise (w - 1 - y, x).
    parallelFor(image.height, [&](int32_t y) {
        float* out = image.row(y);
        for (int32_t x = 0; x < image.width; ++x, out += ch) {
            const int32_t sx = clockwise ? y : w - 1 - y;
            const int32_t sy = clockwise ? h - 1 - x : x;
            const float* in = old.row(sy) + int64_t(sx) * ch;
            for (int32_t c = 0; c < ch; ++c)
                out[c] = in[c];
        }
    });
    return true;
}
