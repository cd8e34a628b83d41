#include "mods/OverlayImage.h"

#include "core/ImageModVariableDataFile.h"
#include "core/ParallelFor.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <map>
#include <mutex>

namespace {

std::atomic<OverlayImageDecoder> gDecoder { nullptr };

// Average of a 2 x 2 block of premultiplied samples, rounded.
static inline uint8_t average4(uint32_t a, uint32_t b, uint32_t c, uint32_t d)
{
    return uint8_t((a + b + c + d + 2u) >> 2);
}

static inline void premultiply(const uint8_t* s, uint8_t* d)
{
    const uint32_t a = s[3];
    for (int32_t c = 0; c < 3; ++c)
        d[c] = uint8_t((uint32_t(s[c]) * a + 127u) / 255u);
    d[3] = uint8_t(a);
}

static inline void bilinear(const FlexImage8& img, double x, double y, float out[4])
{
    const int32_t w = img.width;
    const int32_t h = img.height;
    x = std::clamp(x, 0.0, double(w - 1));
    y = std::clamp(y, 0.0, double(h - 1));
    const int32_t x0 = std::min(int32_t(x), std::max(w - 2, 0));
    const int32_t y0 = std::min(int32_t(y), std::max(h - 2, 0));
    const int32_t x1 = std::min(x0 + 1, w - 1);
    const int32_t y1 = std::min(y0 + 1, h - 1);
    const float fx = float(x - x0);
    const float fy = float(y - y0);
    const uint8_t* p00 = img.row(y0) + 4 * x0;
    const uint8_t* p01 = img.row(y0) + 4 * x1;
    const uint8_t* p10 = img.row(y1) + 4 * x0;
    const uint8_t* p11 = img.row(y1) + 4 * x1;
    for (int32_t c = 0; c < 4; ++c) {
        const float top = float(p00[c]) + (float(p01[c]) - float(p00[c])) * fx;
        const float bottom = float(p10[c]) + (float(p11[c]) - float(p10[c])) * fx;
        out[c] = top + (bottom - top) * fy;
    }
}

} // namespace

std::shared_ptr<const OverlayImage> OverlayImage::fromRgba(const FlexImage8& rgba)
{
    if (rgba.isEmpty() || rgba.channels != 4)
        return nullptr;
    auto image = std::make_shared<OverlayImage>();
    auto base = std::make_unique<FlexImage8>(rgba.width, rgba.height, 4);
    if (base->isEmpty())
        return nullptr;
    const int32_t w = rgba.width;
    FlexImage8* b = base.get();
    parallelFor(rgba.height, [&rgba, b, w](int32_t y) {
        const uint8_t* s = rgba.row(y);
        uint8_t* d = b->row(y);
        for (int32_t x = 0; x < w; ++x)
            premultiply(s + 4 * x, d + 4 * x);
    });
    image->levels.push_back(std::move(base));
    while (image->levels.back()->width > 1 || image->levels.back()->height > 1) {
        const FlexImage8& prev = *image->levels.back();
        const int32_t nw = std::max(1, prev.width / 2);
        const int32_t nh = std::max(1, prev.height / 2);
        auto next = std::make_unique<FlexImage8>(nw, nh, 4);
        if (next->isEmpty())
            break;
        FlexImage8* n = next.get();
        parallelFor(nh, [&prev, n, nw](int32_t y) {
            const int32_t y0 = std::min(2 * y, prev.height - 1);
            const int32_t y1 = std::min(2 * y + 1, prev.height - 1);
            uint8_t* d = n->row(y);
            for (int32_t x = 0; x < nw; ++x) {
                const int32_t x0 = std::min(2 * x, prev.width - 1);
                const int32_t x1 = std::min(2 * x + 1, prev.width - 1);
                for (int32_t c = 0; c < 4; ++c)
                    d[4 * x + c] = average4(prev.row(y0)[4 * x0 + c], prev.row(y0)[4 * x1 + c],
                                            prev.row(y1)[4 * x0 + c], prev.row(y1)[4 * x1 + c]);
            }
        });
        image->levels.push_back(std::move(next));
    }
    return image;
}

void sampleOverlay(const OverlayImage& image, double x, double y, double footprint, float out[4])
{
    if (image.levels.empty()) {
        out[0] = out[1] = out[2] = out[3] = 0.0f;
        return;
    }
    // The level whose pixels are about as large as an output pixel, and the next finer one, mixed.
    const double lod = footprint > 1.0 ? std::log2(footprint) : 0.0;
    const int32_t last = int32_t(image.levels.size()) - 1;
    const int32_t l0 = std::min(int32_t(lod), last);
    const float t = l0 < last ? float(lod - l0) : 0.0f;
    const double f0 = 1.0 / double(1 << l0);
    // Pixel centres of a halved level sit between those of the level above.
    bilinear(*image.levels[l0], (x + 0.5) * f0 - 0.5, (y + 0.5) * f0 - 0.5, out);
    if (t > 0.0f) {
        float fine[4];
        const double f1 = f0 * 0.5;
        bilinear(*image.levels[l0 + 1], (x + 0.5) * f1 - 0.5, (y + 0.5) * f1 - 0.5, fine);
        for (int32_t c = 0; c < 4; ++c)
            out[c] += (fine[c] - out[c]) * t;
    }
}

void setOverlayImageDecoder(OverlayImageDecoder decoder)
{
    gDecoder.store(decoder);
}

std::shared_ptr<const OverlayImage> loadOverlayImage(const std::string& path, std::string& message)
{
    static std::mutex cacheMutex;
    static std::map<std::string, std::shared_ptr<const OverlayImage>> cache;
    message.clear();
    if (path.empty() || (path.size() == 1 && path[0] == '\0')) {
        message = "No file is chosen.";
        return nullptr;
    }
    {
        std::lock_guard<std::mutex> lock(cacheMutex);
        auto it = cache.find(path);
        if (it != cache.end())
            return it->second;
    }
    const OverlayImageDecoder decoder = gDecoder.load();
    if (!decoder) {
        message = "This build cannot read image files.";
        return nullptr;
    }
    FlexImage8 rgba;
    if (!decoder(path, rgba, message)) {
        if (message.empty())
            message = "The file " + path + " could not be read.";
        return nullptr;
    }
    std::shared_ptr<const OverlayImage> image = OverlayImage::fromRgba(rgba);
    if (!image) {
        message = "The file " + path + " holds no picture.";
        return nullptr;
    }
    std::lock_guard<std::mutex> lock(cacheMutex);
    // A handful of pictures at most are in use; a long session of changing files starts afresh.
    if (cache.size() >= 32)
        cache.clear();
    cache[path] = image;
    return image;
}

bool ChosenOverlayImage::update(const ImageModVariableDataFile* file)
{
    std::string chosen = file ? file->path : std::string();
    // A lone NUL is how a filter file writes "no file".
    if (chosen.size() == 1 && chosen[0] == '\0')
        chosen.clear();
    if (chosen == path && (art || !message.empty() || chosen.empty()))
        return false;
    path = chosen;
    art.reset();
    message.clear();
    if (!chosen.empty()) {
        art = loadOverlayImage(chosen, message);
        if (art)
            message.clear();
    }
    return true;
}

std::string ChosenOverlayImage::toolTip(const char* baseTip, const char* what) const
{
    std::string tip = baseTip;
    if (!message.empty())
        tip += std::string("\n\nThe ") + what + " is not drawn: " + message;
    return tip;
}
