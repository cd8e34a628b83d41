#pragma once
#include "mods/TonalSteps.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

// powerPair with its center and exponent fixed for one pass, read from a table of 4096 steps over
// 0..top and linear between them: a pow costs about 15 ns, a table read about 1 ns, and a slider
// drag over a screen of samples feels the difference. Every step is checked at its middle when
// built; a step whose straight line strays more than `tolerance` levels (the kink at the center, the
// steep ends of small or huge exponents) is marked, and samples falling in it, like samples out of
// scale or NaN, take powerPair itself. So the table never differs from powerPair by more than
// about a thousandth of a level, below a 16-bit step.
class PowerPairTable
{
public:
    static constexpr int32_t steps = 4096;
    static constexpr float tolerance = 1e-3f;

    void build(float pairCenter, float exponent, float pairTop = 255.0f)
    {
        center = pairCenter;
        e = exponent;
        top = pairTop;
        stepsPerUnit = top > 0.0f ? float(steps) / top : 0.0f;
        const float width = top / float(steps);
        float left = powerPair(0.0f, center, e, top);
        for (int32_t i = 0; i < steps; ++i) {
            const float right = powerPair(width * float(i + 1), center, e, top);
            float& slope = entry[2 * i + 1];
            entry[2 * i] = left;
            slope = right - left;
            const float middle = powerPair(width * (float(i) + 0.5f), center, e, top);
            const float line = left + 0.5f * slope;
            const bool straddles = width * float(i) <= center && center <= width * float(i + 1);
            if (straddles || !std::isfinite(left) || !std::isfinite(right) || !(std::abs(middle - line) <= tolerance * 0.5f))
                slope = NAN;
            left = right;
        }
    }

    float operator()(float x) const
    {
        const float u = x * stepsPerUnit;
        if (!(u >= 0.0f && u < float(steps)))
            return powerPair(x, center, e, top);
        const int32_t i = int32_t(u);
        const float r = entry[2 * i] + entry[2 * i + 1] * (u - float(i));
        return std::isnan(r) ? powerPair(x, center, e, top) : r;
    }

    // The table over `count` contiguous samples, four at a time: the index arithmetic and the
    // blend run in vector lanes, only the table read per sample is scalar. A group holding a
    // sample for powerPair itself (out of scale, NaN, a marked step) goes sample by sample.
    void apply(float* s, int64_t count) const { apply(s, s, count); }

    // The same from `in` to `out`, which may be the same run of samples but must not overlap
    // otherwise.
    void apply(const float* in, float* out, int64_t count) const
    {
        typedef float Lanes __attribute__((vector_size(16)));
        typedef int32_t Index __attribute__((vector_size(16)));
        typedef uint64_t Pairs __attribute__((vector_size(16)));
        const Lanes perUnit = {stepsPerUnit, stepsPerUnit, stepsPerUnit, stepsPerUnit};
        const Lanes limit = {float(steps), float(steps), float(steps), float(steps)};
        const Lanes zero = {0.0f, 0.0f, 0.0f, 0.0f};
        int64_t i = 0;
        for (; i + 4 <= count; i += 4) {
            Lanes x;
            std::memcpy(&x, in + i, sizeof x);
            const Lanes u = x * perUnit;
            if (!allTrue((u >= zero) & (u < limit))) {
                scalar(in + i, out + i, 4);
                continue;
            }
            const Index k = __builtin_convertvector(u, Index);
            const Lanes f = u - __builtin_convertvector(k, Lanes);
            // Each step's base and slope sit side by side: one 8-byte read per sample, then the
            // pairs are dealt out into the two lanes.
            uint64_t pair[4];
            for (int32_t j = 0; j < 4; ++j)
                std::memcpy(&pair[j], entry + 2 * k[j], sizeof(uint64_t));
            const Pairs frontPairs = {pair[0], pair[1]};
            const Pairs backPairs = {pair[2], pair[3]};
            const Lanes front = std::bit_cast<Lanes>(frontPairs);
            const Lanes back = std::bit_cast<Lanes>(backPairs);
            const Lanes b = __builtin_shuffle(front, back, Index{0, 2, 4, 6});
            const Lanes m = __builtin_shuffle(front, back, Index{1, 3, 5, 7});
            const Lanes r = b + m * f;
            if (!allTrue(r == r)) {
                scalar(in + i, out + i, 4);
                continue;
            }
            std::memcpy(out + i, &r, sizeof r);
        }
        scalar(in + i, out + i, count - i);
    }

private:
    template <typename Mask>
    static bool allTrue(Mask m)
    {
        uint64_t halves[2];
        std::memcpy(halves, &m, sizeof halves);
        return (halves[0] & halves[1]) == ~uint64_t(0);
    }

    void scalar(const float* in, float* out, int64_t count) const
    {
        for (int64_t j = 0; j < count; ++j)
            out[j] = (*this)(in[j]);
    }


    float center = 0.0f, e = 1.0f, top = 255.0f, stepsPerUnit = 0.0f;
    // Step i: its base at 2i, the slope to the next step at 2i + 1 (NaN for a marked step).
    float entry[2 * steps];
};
