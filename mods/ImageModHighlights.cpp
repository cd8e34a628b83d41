#include "mods/ImageModHighlights.h"

ImageModHighlights::ImageModHighlights(int32_t v, float amount)
    : ImageModToneRegion("Highlights",
                         "0.000000 0.000000 0.245000 0.245000 0.503043 0.503043 0.608696 0.802174 0.813044 "
                         "0.959239 1.000000 1.000000",
                         "0.000000 0.000000 0.245000 0.245000 0.472609 0.472609 0.630435 0.563044 0.834783 "
                         "0.650543 0.960870 0.810054 1.000000 1.000000",
                         "Adjust the brightness of only the lighter portions of an image.", v, amount)
{
}

std::vector<ToneCurvePoint> ImageModHighlights::amountCurvePoints(float a) const
{
    std::vector<ToneCurvePoint> points{{0.0f, 0.0f}, {0.5f, 0.5f}};
    if (a < 1.0f)
        points.push_back({1.0f - 0.25f * a, 0.75f});
    else
        points.push_back({0.75f, 0.25f * a + 0.5f});
    points.push_back({1.0f, 1.0f});
    return points;
}
