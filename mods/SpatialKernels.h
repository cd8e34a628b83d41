#pragma once
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

// Kernel shapes of the blur family.

// Integer reach of a blur of radius r: the kernel has 2 R + 1 taps.
static inline int32_t blurReach(float r)
{
    const float reach = std::ceil(r - 1.0f);
    return reach > 0.0f ? int32_t(reach) : 0;
}

// Tap i of 0..2R of the "Gaussian" shape (a soft cone, cheaper than a true Gaussian) for radius r.
static inline float gaussianTap(int32_t i, int32_t reach, float r)
{
    const float d = float(std::abs(i - reach)) / r;
    if (d > 1.0f)
        return 0.0f;
    // smoothRamp(1 - d, 2) without the power call.
    const float x = 1.0f - d;
    return x < 0.5f ? 2.0f * x * x : 1.0f - 2.0f * d * d;
}

// Tap i of the "Box" shape: flat with a fractional last tap.
static inline float boxTap(int32_t i, int32_t reach, float r)
{
    const float d = float(std::abs(i - reach));
    if (d < r - 1.0f)
        return 1.0f;
    if (d < r)
        return r - d;
    return 0.0f;
}

// Fills taps (2 R + 1 of them, normalised to sum 1) for method 0 (Gaussian) or 1 (Box).
// Returns the sum before normalising, 0 when nothing is left.
static inline float fillBlurTaps(float* taps, int32_t reach, float r, int32_t method)
{
    float sum = 0.0f;
    for (int32_t i = 0; i <= 2 * reach; ++i) {
        taps[i] = method == 0 ? gaussianTap(i, reach, r) : boxTap(i, reach, r);
        sum += taps[i];
    }
    if (sum > 0.0f) {
        const float inv = 1.0f / sum;
        for (int32_t i = 0; i <= 2 * reach; ++i)
            taps[i] *= inv;
    }
    return sum;
}

// A flat disc with a soft rim: weight 1 where the distance d from the centre is below `inner`,
// (inner + 1) - d on the one-pixel rim, cut to the square |dx|, |dy| <= reach. Kept as rows so
// that the flat part of a row can be summed as one span.
struct DiscRow {
    int32_t dy = 0; // >= 0; the row is used at +dy and -dy
    int32_t span = -1; // |dx| <= span has weight 1; -1: no flat part
    int32_t rimBegin = 0; // index into DiscKernel::rim
    int32_t rimCount = 0;
};

struct DiscRim {
    int32_t dx = 0; // >= 0; used at +dx and -dx
    float weight = 0.0f;
};

struct DiscKernel {
    int32_t reach = 0;
    float total = 0.0f; // sum of all weights over the whole square
    std::vector<DiscRow> rows;
    std::vector<DiscRim> rim;

    // Reserves for any disc of reach up to maxReach, so building it later does not allocate.
    void reserve(int32_t maxReach)
    {
        rows.reserve(size_t(maxReach) + 1);
        rim.reserve(size_t(maxReach + 1) * size_t(maxReach + 1));
    }

    // O(reach) work: the flat span of each row comes from a square root, corrected by the same
    // float test as the rim, so the result equals a tap-by-tap scan of the square.
    void build(float inner, int32_t reachLimit)
    {
        reach = reachLimit;
        rows.clear();
        rim.clear();
        total = 0.0f;
        const float inner2 = inner * inner;
        for (int32_t dy = 0; dy <= reach; ++dy) {
            DiscRow row;
            row.dy = dy;
            row.rimBegin = int32_t(rim.size());
            const float dy2 = float(dy * dy);
            int32_t span = -1;
            if (inner2 > dy2) {
                span = std::min(reach, int32_t(std::sqrt(inner2 - dy2)));
                while (span >= 0 && std::sqrt(float(span * span) + dy2) >= inner)
                    --span;
                while (span < reach && std::sqrt(float((span + 1) * (span + 1)) + dy2) < inner)
                    ++span;
            }
            row.span = span;
            float rowWeight = span >= 0 ? float(2 * span + 1) : 0.0f;
            for (int32_t dx = span + 1; dx <= reach; ++dx) {
                const float d = std::sqrt(float(dx * dx) + dy2);
                if (d >= inner + 1.0f)
                    break;
                rim.push_back({ dx, (inner + 1.0f) - d });
                rowWeight += (dx == 0 ? 1.0f : 2.0f) * rim.back().weight;
            }
            row.rimCount = int32_t(rim.size()) - row.rimBegin;
            if (span < 0 && row.rimCount == 0)
                break; // rows further out are empty too
            total += (dy == 0 ? 1.0f : 2.0f) * rowWeight;
            rows.push_back(row);
        }
    }
};
