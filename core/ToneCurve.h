#pragma once
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

struct ToneCurvePoint {
    float x = 0.0f;
    float y = 0.0f;
};

// Control points turned into a 2048-entry table by corner-cutting subdivision.
class ToneCurve {
public:
    static constexpr int32_t tableSize = 2048;

    // The straight identity through intermediatePoints evenly spaced inner points.
    explicit ToneCurve(int32_t intermediatePoints = 0);
    explicit ToneCurve(const std::vector<ToneCurvePoint>& pts);
    // "x y x y ..." as in filter files.
    explicit ToneCurve(const std::string& text);

    void setFromString(const std::string& text);
    // "%f" pairs separated by single blanks.
    std::string toString() const;
    // Edits rebuild the table; an index out of range returns false and changes nothing.
    bool setPoint(int32_t i, float x, float y);
    // Appends after the last point, unsorted: callers keep x rising.
    void addPoint(float x, float y);
    // Removing an inner point also moves the point after it to the midpoint of the removed
    // point's neighbours. The last remaining point can't be removed.
    bool removePoint(int32_t i);
    void rebuild();

    const float* table() const { return entries.data(); }
    // Table read with linear interpolation, for x in 0..1; outside that the end entries.
    float lookup(float x) const
    {
        const float* t = entries.data();
        if (x >= 1.0f)
            return t[tableSize - 1];
        if (!(x > 0.0f))
            return t[0];
        const float u = x * float(tableSize - 1);
        const float i = std::floor(u);
        const float j = std::ceil(u);
        const int32_t ii = int32_t(i);
        if (i == j)
            return t[ii];
        return t[ii + 1] * (u - i) + t[ii] * (j - u);
    }
    bool isIdentity() const;

    int32_t pointCount() const { return int32_t(points.size()); }

    std::vector<float> entries;
    std::vector<ToneCurvePoint> points;
    float hueOffset = 180.0f;
    bool closed = false;

private:
    // The fewer-than-two-points rules shared by the constructors and the parser.
    void normalizePoints();
};
