#include "document/core/SpotHeal.h"

#include "core/ParallelFor.h"
#include "media/CompactImage.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

constexpr float kFrom16 = 1.5259022e-05f;
constexpr double kTo16 = 0.00392156862745098;            // 1 / 255, after the factor 65535
constexpr double kFrom16To255 = 0.0038910505836575876;   // 1 / 257

static inline uint16_t toSixteen(float sample)
{
    const double s = std::clamp(double(sample), 0.0, 255.0);
    return uint16_t((s * 65535.0) * kTo16);
}

static inline float maskOpacity(float s, float d, float r)
{
    const float inner = 0.5f * r;
    if (s <= inner * inner)
        return 1.0f;
    if (s > r * r)
        return 0.0f;
    return std::max(0.0f, (inner - d) / (r - inner) + 1.0f);
}

// One stamp pixel over one work pixel, both 16-bit RGBA.
static inline void overlayPixel(const uint16_t* stamp, uint16_t* work)
{
    const uint16_t sa = stamp[3];
    if (sa == 0)
        return;
    if (sa == 65535) {
        work[0] = stamp[0];
        work[1] = stamp[1];
        work[2] = stamp[2];
        work[3] = stamp[3];
        return;
    }
    const float a = float(sa) * kFrom16;
    const float b = float(work[3]) * kFrom16 * (1.0f - a);
    const float inv = 1.0f / (a + b);
    for (int32_t c = 0; c < 3; ++c)
        work[c] = uint16_t((float(work[c]) * b + float(stamp[c]) * a) * inv);
    work[3] = uint16_t((a + b) * 65535.0f);
}

struct StampPair {
    float sx, sy, tx, ty;
};

void copyIntoStamp(const CompactImage& work, CompactImage& stamp, int32_t cx, int32_t cy, int32_t d)
{
    const int32_t cols = std::min(work.width - cx, d);
    const int32_t rows = std::min(work.height - cy, d);
    if (cols < 1 || rows < 1)
        return; // the stamp keeps what it had
    for (int32_t j = 0; j < d; ++j) {
        uint16_t* out = stamp.row16(j);
        const int32_t wy = cy + j;
        const bool rowInside = j < rows && wy >= 0;
        for (int32_t i = 0; i < d; ++i, out += 4) {
            const int32_t wx = cx + i;
            if (rowInside && i < cols && wx >= 0) {
                const uint16_t* in = work.row16(wy) + int64_t(wx) * 4;
                out[0] = in[0];
                out[1] = in[1];
                out[2] = in[2];
                out[3] = in[3];
            } else {
                // Cut: what lies outside the work rectangle isn't laid down.
                out[0] = out[1] = out[2] = out[3] = 0;
            }
        }
    }
}

void maskStamp(CompactImage& stamp, const CompactImage& mask, int32_t d)
{
    for (int32_t j = 0; j < d; ++j) {
        uint16_t* s = stamp.row16(j);
        const uint16_t* m = mask.row16(j);
        for (int32_t i = 0; i < d; ++i)
            s[i * 4 + 3] = uint16_t(float(m[i * 4 + 3]) * kFrom16 * float(s[i * 4 + 3]));
    }
}

void layStamp(const CompactImage& stamp, CompactImage& work, int32_t tx, int32_t ty, int32_t d)
{
    parallelFor(d, [&](int32_t j) {
        const int32_t wy = ty + j;
        if (wy < 0 || wy >= work.height)
            return;
        const uint16_t* s = stamp.row16(j);
        uint16_t* w = work.row16(wy);
        for (int32_t i = 0; i < d; ++i) {
            const int32_t wx = tx + i;
            if (wx < 0 || wx >= work.width)
                continue;
            overlayPixel(s + i * 4, w + int64_t(wx) * 4);
        }
    });
}

} // namespace

int32_t spotHealDiameter(int32_t sourceWidth, double brushPixels, double displayedWidth)
{
    if (!(displayedWidth > 0.0) || sourceWidth < 1 || !std::isfinite(brushPixels))
        return 1;
    const double d = std::trunc(double(sourceWidth) * brushPixels / displayedWidth);
    if (!(d > 1.0))
        return 1;
    return int32_t(std::min(d, 16384.0));
}

SpotHealRect spotHealRect(int32_t W, int32_t H, int32_t x, int32_t y, int32_t d)
{
    SpotHealRect r;
    const int64_t reach = 3 * int64_t(d);
    const int64_t left = std::clamp<int64_t>(x - reach, 0, W);
    const int64_t right = std::clamp<int64_t>(x + reach, 0, W);
    const int64_t top = std::clamp<int64_t>(y - reach, 0, H);
    const int64_t bottom = std::clamp<int64_t>(y + reach, 0, H);
    r.x = int32_t(left);
    r.y = int32_t(top);
    r.width = int32_t(right - left);
    r.height = int32_t(bottom - top);
    return r;
}

void buildSpotHealMask(CompactImage& mask, int32_t d)
{
    if (!mask.allocate(d, d, CompactImage::RGBA, true))
        return;
    parallelFor(d, [&](int32_t j) { std::memset(mask.row16(j), 0, mask.rowBytes()); });
    const float r = float(d) * 0.5f;
    parallelFor(d, [&](int32_t j) {
        uint16_t* out = mask.row16(j);
        const float dy = float(j) + 0.5f - r;
        for (int32_t i = 0; i < d; ++i, out += 4) {
            const float dx = float(i) + 0.5f - r;
            const float s = dx * dx + dy * dy;
            const float opacity = maskOpacity(s, std::sqrt(s), r);
            out[0] = out[1] = out[2] = 65535;
            // Over a zero alpha the result is the opacity itself.
            out[3] = uint16_t(opacity * 65535.0f);
        }
    });
}

bool spotHeal(FlexImageFloat& image, int32_t x, int32_t y, int32_t d, FlexImageFloat* saved, SpotHealRect& rect)
{
    rect = {};
    if (image.isEmpty() || d < 1 || x < 0 || y < 0 || x >= image.width || y >= image.height)
        return false;
    const SpotHealRect r = spotHealRect(image.width, image.height, x, y, d);
    if (r.isEmpty())
        return false;
    const int32_t ch = image.channels;
    const int32_t copied = std::min(ch, 4);

    CompactImage work, mask, stamp;
    if (!work.allocate(r.width, r.height, CompactImage::RGBA, true) || !stamp.allocate(d, d, CompactImage::RGBA, true))
        return false;
    buildSpotHealMask(mask, d);
    if (mask.isEmpty())
        return false;
    std::memset(stamp.data, 0, stamp.byteCount());
    parallelFor(r.height, [&](int32_t j) {
        const float* in = image.row(r.y + j) + int64_t(r.x) * ch;
        uint16_t* out = work.row16(j);
        for (int32_t i = 0; i < r.width; ++i, in += ch, out += 4) {
            // An image without alpha is opaque: a zero alpha would make every stamp invisible.
            out[3] = 65535;
            for (int32_t c = 0; c < copied; ++c)
                out[c] = toSixteen(in[c]);
            for (int32_t c = copied; c < 3; ++c)
                out[c] = out[0];
        }
    });

    // Centres are measured from pixel corners, so the clicked pixel sits at its own middle.
    const float cx = float(x - r.x) + 0.5f, cy = float(y - r.y) + 0.5f;
    const float D = float(d), q = 0.707107f * D;
    const StampPair stamps[16] = {
        {cx - D, cy, cx - 0.125f * D, cy},          {cx + D, cy, cx + 0.125f * D, cy},
        {cx, cy - D, cx, cy - 0.125f * D},          {cx, cy + D, cx, cy + 0.125f * D},
        {cx - q, cy - q, cx - 0.125f * q, cy - 0.125f * q}, {cx + q, cy - q, cx + 0.125f * q, cy - 0.125f * q},
        {cx - q, cy + q, cx - 0.125f * q, cy + 0.125f * q}, {cx + q, cy + q, cx + 0.125f * q, cy + 0.125f * q},
        {cx - D, cy, cx - 0.5f * D, cy},            {cx + D, cy, cx + 0.5f * D, cy},
        {cx, cy - D, cx, cy - 0.5f * D},            {cx, cy + D, cx, cy + 0.5f * D},
        {cx - q, cy - q, cx - 0.5f * q, cy - 0.5f * q},     {cx + q, cy - q, cx + 0.5f * q, cy - 0.5f * q},
        {cx - q, cy + q, cx - 0.5f * q, cy + 0.5f * q},     {cx + q, cy + q, cx + 0.5f * q, cy + 0.5f * q},
    };
    const float radius = D * 0.5f;
    for (const StampPair& s : stamps) {
        copyIntoStamp(work, stamp, int32_t(s.sx - radius), int32_t(s.sy - radius), d);
        maskStamp(stamp, mask, d);
        layStamp(stamp, work, int32_t(s.tx - radius), int32_t(s.ty - radius), d);
    }

    if (saved) {
        saved->resize(r.width, r.height, ch);
        if (saved->isEmpty())
            return false;
        saved->colorChannels = image.colorChannels;
        parallelFor(r.height, [&](int32_t j) {
            std::memcpy(saved->row(j), image.row(r.y + j) + int64_t(r.x) * ch, sizeof(float) * size_t(r.width) * size_t(ch));
        });
    }
    parallelFor(r.height, [&](int32_t j) {
        const uint16_t* in = work.row16(j);
        float* out = image.row(r.y + j) + int64_t(r.x) * ch;
        for (int32_t i = 0; i < r.width; ++i, in += 4, out += ch)
            for (int32_t c = 0; c < copied; ++c)
                out[c] = float(double(in[c]) * kFrom16To255);
    });
    rect = r;
    return true;
}

bool swapImageRect(FlexImageFloat& image, FlexImageFloat& saved, int32_t x, int32_t y)
{
    if (image.isEmpty() || saved.isEmpty() || saved.channels != image.channels || x < 0 || y < 0 ||
        int64_t(x) + saved.width > image.width || int64_t(y) + saved.height > image.height)
        return false;
    const int32_t ch = image.channels;
    parallelFor(saved.height, [&](int32_t j) {
        float* a = image.row(y + j) + int64_t(x) * ch;
        float* b = saved.row(j);
        std::swap_ranges(a, a + int64_t(saved.width) * ch, b);
    });
    return true;
}
