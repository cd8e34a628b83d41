#pragma once
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

    explicit ToneCurve(int32_t intermediatePoints = 0);
    explicit ToneCurve(const std::vector<ToneCurvePoint>& pts);
    explicit ToneCurve(const std::string& text);

    void setFromString(const std::string& text);
    std::string toString() const;
    void setPoint(int32_t i, float x, float y);
    void addPoint(float x, float y);
    void removePoint(int32_t i);
    void rebuild();

    const float* table() const { return entries.data(); }
    float lookup(float x) const;
    bool isIdentity() const;

    int32_t pointCount() const { return int32_t(points.size()); }

    std::vector<float> entries;
    std::vector<ToneCurvePoint> points;
    float hueOffset = 180.0f;
    bool closed = false;
};
