#pragma once
#include <cmath>
#include <cstdint>

// Deterministic noise for the film effects: the same inputs give the same pattern on every run,
// thread and machine, which the C library's rand() (shared state, racy across row jobs) cannot.

// The integer hash of the lens flare: 31-bit result.
static inline uint32_t flareHash(uint32_t n)
{
    const uint32_t x = (n << 13) ^ n;
    return ((x * x * 60493u + 19990303u) * x + 1376312589u) & 0x7FFFFFFFu;
}

// A well-mixing 32-bit hash for lattice and cell randomness.
static inline uint32_t mixHash(uint32_t x)
{
    x ^= x >> 16;
    x *= 0x7feb352du;
    x ^= x >> 15;
    x *= 0x846ca68bu;
    x ^= x >> 16;
    return x;
}

static inline uint32_t mixHash(uint32_t a, uint32_t b, uint32_t c = 0u)
{
    return mixHash(a * 0x9E3779B1u ^ mixHash(b * 0x85EBCA77u ^ mixHash(c + 0x27d4eb2fu)));
}

// 0 up to 1.
static inline float unitFloat(uint32_t h)
{
    return float(h >> 8) * (1.0f / 16777216.0f);
}

// Value noise on the integer lattice, -1..1, with a smooth (C1) blend between lattice values.
static inline float valueNoise(float x, float y, uint32_t seed)
{
    const float fx = std::floor(x), fy = std::floor(y);
    const int32_t ix = int32_t(fx), iy = int32_t(fy);
    float tx = x - fx, ty = y - fy;
    tx = tx * tx * (3.0f - 2.0f * tx);
    ty = ty * ty * (3.0f - 2.0f * ty);
    auto at = [seed](int32_t i, int32_t j) {
        return unitFloat(mixHash(uint32_t(i), uint32_t(j), seed)) * 2.0f - 1.0f;
    };
    const float a = at(ix, iy), b = at(ix + 1, iy), c = at(ix, iy + 1), d = at(ix + 1, iy + 1);
    const float top = a + (b - a) * tx;
    const float bottom = c + (d - c) * tx;
    return top + (bottom - top) * ty;
}

// Sum of `octaves` value noises, each `lacunarity` times finer and `persistence` times weaker,
// normalised back to -1..1.
static inline float fractalNoise(
    float x, float y, int32_t octaves, float persistence, float lacunarity, uint32_t seed)
{
    float sum = 0.0f, norm = 0.0f, amp = 1.0f;
    for (int32_t o = 0; o < octaves; ++o) {
        sum += amp * valueNoise(x, y, seed + uint32_t(o) * 1013u);
        norm += amp;
        amp *= persistence;
        x *= lacunarity;
        y *= lacunarity;
    }
    return norm > 0.0f ? sum / norm : 0.0f;
}
