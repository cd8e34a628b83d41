#pragma once
#include "core/FlexImage.h"
#include "mods/BorderFileStyles.h"

#include <cmath>
#include <cstring>
#include <string>
#include <utility>

// Test pictures for the overlay tiles, handed out by a stand-in decoder instead of files:
//  - a built-in border's path gets a frame of its own size: opaque red outside the photo's window,
//    transparent inside;
//  - "test:half-blue" is 40 x 20 of blue at half coverage;
//  - "test:opaque-green" is 30 x 10 of opaque green;
//  - anything else fails with a message naming the path.
inline bool overlayTestDecoder(const std::string& path, FlexImage8& rgba, std::string& message)
{
    auto fill = [&rgba](int32_t w, int32_t h, uint8_t r, uint8_t g, uint8_t b, uint8_t a) {
        rgba.resize(w, h, 4);
        for (int32_t y = 0; y < h; ++y)
            for (int32_t x = 0; x < w; ++x) {
                uint8_t* p = rgba.row(y) + 4 * x;
                p[0] = r;
                p[1] = g;
                p[2] = b;
                p[3] = a;
            }
    };
    if (path == "test:half-blue") {
        fill(40, 20, 0, 0, 255, 128);
        return true;
    }
    if (path == "test:opaque-green") {
        fill(30, 10, 0, 255, 0, 255);
        return true;
    }
    for (const BorderFileStyle& s : kBorderFileStyles) {
        if (path != std::string(":/img/borders/") + s.file + ".png")
            continue;
        const int32_t w = s.insets[0] + s.middle + s.insets[2];
        const int32_t h = s.insets[1] + s.middle + s.insets[3];
        fill(w, h, 0, 0, 0, 0);
        for (int32_t y = 0; y < h; ++y)
            for (int32_t x = 0; x < w; ++x) {
                const bool band = x < s.bands[0] || y < s.bands[1] || x >= w - s.bands[2] || y >= h - s.bands[3];
                if (band) {
                    uint8_t* p = rgba.row(y) + 4 * x;
                    p[0] = 255;
                    p[3] = 255;
                }
            }
        return true;
    }
    message = "The file " + path + " was not found.";
    return false;
}

// Width and height as one value, so a size compares in one line.
template <typename Sized>
std::pair<int32_t, int32_t> wh(const Sized& s)
{
    return { s.width, s.height };
}
inline std::pair<int32_t, int32_t> wh(int32_t w, int32_t h)
{
    return { w, h };
}

// Smooth picture with some edges, the kind a preview comparison is fair on.
inline void fillSmoothPicture(FlexImageFloat& img, int32_t w, int32_t h)
{
    img.resize(w, h, 3);
    for (int32_t y = 0; y < h; ++y) {
        float* p = img.row(y);
        for (int32_t x = 0; x < w; ++x) {
            p[3 * x] = 255.0f * float(x) / float(w);
            p[3 * x + 1] = 127.5f + 100.0f * std::sin(float(x + y) * 0.03f);
            p[3 * x + 2] = ((x / 40 + y / 40) % 2) ? 200.0f : 40.0f;
        }
    }
}

inline void boxDownBy(const FlexImageFloat& src, int32_t k, FlexImageFloat& dst)
{
    dst.resize(src.width / k, src.height / k, src.channels);
    for (int32_t y = 0; y < dst.height; ++y)
        for (int32_t x = 0; x < dst.width; ++x)
            for (int32_t c = 0; c < src.channels; ++c) {
                double sum = 0.0;
                for (int32_t j = 0; j < k; ++j)
                    for (int32_t i = 0; i < k; ++i)
                        sum += src.row(y * k + j)[(x * k + i) * src.channels + c];
                dst.row(y)[x * dst.channels + c] = float(sum / (k * k));
            }
    dst.scale = src.scale * float(k);
}

inline double psnrOf(const FlexImageFloat& a, const FlexImageFloat& b)
{
    double se = 0.0;
    const int64_t n = a.sampleCount();
    for (int64_t i = 0; i < n; ++i) {
        const double d = double(a.data[i]) - b.data[i];
        se += d * d;
    }
    const double mse = se / double(n);
    return mse == 0.0 ? 200.0 : 10.0 * std::log10(255.0 * 255.0 / mse);
}
