#include "desktop_only/qtImageConverters.h"

#include "core/ParallelFor.h"
#include "media/ColorTransformSet.h"

#include <QtGui/QImage>

#include <algorithm>
#include <cstring>

namespace {

static inline uint32_t packPixel(uint32_t r, uint32_t g, uint32_t b, uint32_t a)
{
    return (a << 24) | (r << 16) | (g << 8) | b;
}

// Clamp and truncate; NaN lands on 0. Clamped in float first so the conversion is a plain signed
// one, which the compiler turns into one instruction for several samples.
static inline uint32_t toByte(float v)
{
    const float low = v > 0.0f ? v : 0.0f;
    return uint32_t(int32_t(low < 255.0f ? low : 255.0f));
}

typedef float FloatLanes __attribute__((vector_size(16)));
typedef int32_t IntLanes __attribute__((vector_size(16)));

// toByte on four samples at once, the same clamps lane by lane.
static inline IntLanes toBytes(FloatLanes v)
{
    const FloatLanes zero = {0.0f, 0.0f, 0.0f, 0.0f};
    const FloatLanes top = {255.0f, 255.0f, 255.0f, 255.0f};
    const FloatLanes low = v > zero ? v : zero;
    return __builtin_convertvector(low < top ? low : top, IntLanes);
}

// The common case, three float samples to one opaque pixel. Four pixels are twelve samples, three
// lanes of four: clamped together, then dealt out to the red, green and blue of the four pixels.
static inline void packRgbRow(const float* src, uint32_t* dst, int32_t span)
{
    const IntLanes opaque = {int32_t(0xff000000u), int32_t(0xff000000u), int32_t(0xff000000u), int32_t(0xff000000u)};
    int32_t x = 0;
    for (; x + 4 <= span; x += 4, src += 12) {
        FloatLanes a, b, c;
        std::memcpy(&a, src, sizeof a);     // r0 g0 b0 r1
        std::memcpy(&b, src + 4, sizeof b); // g1 b1 r2 g2
        std::memcpy(&c, src + 8, sizeof c); // b2 r3 g3 b3
        const IntLanes ia = toBytes(a), ib = toBytes(b), ic = toBytes(c);
        const IntLanes ab = __builtin_shuffle(ia, ib, IntLanes{0, 3, 6, 1});  // r0 r1 r2 g0
        const IntLanes bc = __builtin_shuffle(ib, ic, IntLanes{0, 3, 6, 1});  // g1 g2 g3 b1
        const IntLanes r = __builtin_shuffle(ab, ic, IntLanes{0, 1, 2, 5});   // r0 r1 r2 r3
        const IntLanes g = __builtin_shuffle(ab, bc, IntLanes{3, 4, 5, 6});   // g0 g1 g2 g3
        const IntLanes b01 = __builtin_shuffle(ia, ib, IntLanes{2, 5, 2, 5}); // b0 b1 b0 b1
        const IntLanes blue = __builtin_shuffle(b01, ic, IntLanes{0, 1, 4, 7}); // b0 b1 b2 b3
        const IntLanes pixels = opaque | (r << 16) | (g << 8) | blue;
        std::memcpy(dst + x, &pixels, sizeof pixels);
    }
    for (; x < span; ++x, src += 3)
        dst[x] = packPixel(toByte(src[0]), toByte(src[1]), toByte(src[2]), 255u);
}

} // namespace

bool copyContentsIntoQtImage(const FlexImageFloat& source, QImage& target, int32_t offsetX, int32_t offsetY,
                             const ColorTransformSet* transform)
{
    if (source.channels < 3)
        return false;
    if (target.format() != QImage::Format_ARGB32 && target.format() != QImage::Format_RGB32)
        return false;
    if (source.isEmpty() || target.isNull())
        return true;

    // Clip once: the span of source columns and rows that land inside the target.
    const int32_t x0 = std::max(0, -offsetX);
    const int32_t x1 = std::min(source.width, target.width() - offsetX);
    const int32_t y0 = std::max(0, -offsetY);
    const int32_t y1 = std::min(source.height, target.height() - offsetY);
    if (x0 >= x1 || y0 >= y1)
        return true;

    const bool convert = transform && transform->converts();
    const int32_t ch = source.channels;
    // An RGB32 target keeps its alpha byte at 255 whatever the source says.
    const bool hasAlpha = ch >= 4 && target.format() == QImage::Format_ARGB32;
    const int32_t span = x1 - x0;
    // Resolve the row pointers here: scanLine() may detach, which must not happen on a worker.
    uchar* base = target.bits();
    const qsizetype stride = target.bytesPerLine();

    parallelFor(y1 - y0, [&](int32_t i) {
        const int32_t y = y0 + i;
        const float* src = source.row(y) + int64_t(x0) * ch;
        uchar* rowBytes = base + stride * (y + offsetY);
        uint32_t* dst = reinterpret_cast<uint32_t*>(rowBytes) + (x0 + offsetX);
        if (!convert && ch == 3) {
            packRgbRow(src, dst, span);
            return;
        }
        if (!convert) {
            for (int32_t x = 0; x < span; ++x, src += ch)
                dst[x] = packPixel(toByte(src[0]), toByte(src[1]), toByte(src[2]), hasAlpha ? toByte(src[3]) : 255u);
            return;
        }
        // With a transform the row goes through 8-bit RGB triples, packed at the front of the
        // destination span itself (3 bytes a pixel fit in 4), then spread out from the end so no
        // triple is overwritten before it is read.
        uint8_t* rgb = reinterpret_cast<uint8_t*>(dst);
        for (int32_t x = 0; x < span; ++x, src += ch) {
            rgb[3 * x] = uint8_t(toByte(src[0]));
            rgb[3 * x + 1] = uint8_t(toByte(src[1]));
            rgb[3 * x + 2] = uint8_t(toByte(src[2]));
        }
        transformRgb8RowToDisplay(*transform, rgb, span);
        const float* alpha = source.row(y) + int64_t(x0) * ch + 3;
        for (int32_t x = span - 1; x >= 0; --x) {
            const uint32_t a = hasAlpha ? toByte(alpha[int64_t(x) * ch]) : 255u;
            dst[x] = packPixel(rgb[3 * x], rgb[3 * x + 1], rgb[3 * x + 2], a);
        }
    });
    return true;
}
