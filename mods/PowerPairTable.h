#pragma once
#include "mods/TonalSteps.h"

#include <cmath>
#include <cstdint>

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
            base[i] = left;
            slope[i] = right - left;
            const float middle = powerPair(width * (float(i) + 0.5f), center, e, top);
            const float line = left + 0.5f * slope[i];
            const bool straddles = width * float(i) <= center && center <= width * float(i + 1);
            if (straddles || !std::isfinite(left) || !std::isfinite(right) || !(std::abs(middle - line) <= tolerance * 0.5f))
                slope[i] = NAN;
            left = right;
        }
    }

    float operator()(float x) const
    {
        const float u = x * stepsPerUnit;
        if (!(u >= 0.0f && u < float(steps)))
            return powerPair(x, center, e, top);
        const int32_t i = int32_t(u);
        const float r = base[i] + slope[i] * (u - float(i));
        return std::isnan(r) ? powerPair(x, center, e, top) : r;
    }

private:
    float center = 0.0f, e = 1.0f, top = 255.0f, stepsPerUnit = 0.0f;
    float base[steps];
    float slope[steps];
};
