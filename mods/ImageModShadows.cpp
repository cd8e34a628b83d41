#include "mods/ImageModShadows.h"

ImageModShadows::ImageModShadows(int32_t v, float amount)
    : ImageModToneRegion("Shadows",
                         "0.000000 0.000000 0.023913 0.054348 0.071739 0.271739 0.311956 0.455435 0.566522 "
                         "0.562174 0.750000 0.750000 1.000000 1.000000",
                         "0.000000 0.000000 0.149457 0.021739 0.342391 0.116304 0.454348 0.336956 0.575217 "
                         "0.575217 0.750000 0.750000 1.000000 1.000000",
                         "Adjust the brightness of only the darker portions of an image.", v, amount)
{
}

std::vector<ToneCurvePoint> ImageModShadows::amountCurvePoints(float a) const
{
    std::vector<ToneCurvePoint> points{{0.0f, 0.0f}};
    if (a < 1.0f)
        points.push_back({0.25f, 0.25f * a});
    else
        points.push_back({0.5f - 0.25f * a, 0.25f});
    points.push_back({0.5f, 0.5f});
    points.push_back({1.0f, 1.0f});
    return points;
}
