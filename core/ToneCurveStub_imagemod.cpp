// TEMPORARY stand-in so the imagemod branch links before the real curve code is merged.
// Delete this file on merge. Rebuild is a plain polyline (no subdivision).
#include "core/ToneCurve.h"

#include <cstdlib>

ToneCurve::ToneCurve(int32_t n)
{
    points.push_back({0.0f, 0.0f});
    for (int32_t i = 1; i <= n; ++i)
        points.push_back({float(i) / float(n + 1), float(i) / float(n + 1)});
    points.push_back({1.0f, 1.0f});
    rebuild();
}

ToneCurve::ToneCurve(const std::vector<ToneCurvePoint>& pts) : points(pts) { rebuild(); }

ToneCurve::ToneCurve(const std::string& text) { setFromString(text); }

void ToneCurve::setFromString(const std::string& text)
{
    points.clear();
    const char* p = text.c_str();
    char* end = nullptr;
    float pending = 0.0f;
    bool havePending = false;
    for (;;) {
        float v = std::strtof(p, &end);
        if (end == p)
            break;
        p = end;
        if (havePending) {
            points.push_back({pending, v});
            havePending = false;
        } else {
            pending = v;
            havePending = true;
        }
    }
    rebuild();
}

std::string ToneCurve::toString() const
{
    std::string s;
    for (const auto& pt : points)
        s += std::to_string(pt.x) + " " + std::to_string(pt.y) + " ";
    return s;
}

void ToneCurve::setPoint(int32_t i, float x, float y)
{
    if (i >= 0 && size_t(i) < points.size())
        points[size_t(i)] = {x, y};
    rebuild();
}

void ToneCurve::addPoint(float x, float y)
{
    points.push_back({x, y});
    rebuild();
}

void ToneCurve::removePoint(int32_t i)
{
    if (i >= 0 && size_t(i) < points.size())
        points.erase(points.begin() + i);
    rebuild();
}

void ToneCurve::rebuild()
{
    if (points.size() < 2)
        points = {{0.0f, 0.0f}, {1.0f, 1.0f}};
    entries.assign(tableSize, 0.0f);
    size_t seg = 0;
    for (int32_t i = 0; i < tableSize; ++i) {
        const float x = float(i) * 0.0004885198f;
        if (x <= points.front().x) {
            entries[size_t(i)] = points.front().y;
            continue;
        }
        if (x >= points.back().x) {
            entries[size_t(i)] = points.back().y;
            continue;
        }
        while (seg + 1 < points.size() && points[seg + 1].x < x)
            ++seg;
        const auto& a = points[seg];
        const auto& b = points[seg + 1];
        const float t = b.x != a.x ? (x - a.x) / (b.x - a.x) : 0.0f;
        entries[size_t(i)] = a.y + t * (b.y - a.y);
    }
}

float ToneCurve::lookup(float x) const
{
    if (entries.empty())
        return 0.0f;
    if (x >= 1.0f)
        return entries.back();
    if (!(x > 0.0f))
        return entries.front();
    const float u = x * 2047.0f;
    const int32_t i = int32_t(u);
    const int32_t j = i + 1 < tableSize ? i + 1 : i;
    if (float(i) == u)
        return entries[size_t(i)];
    return entries[size_t(j)] * (u - float(i)) + entries[size_t(i)] * (float(j) - u);
}

bool ToneCurve::isIdentity() const
{
    return points.size() == 2 && points[0].x == 0.0f && points[0].y == 0.0f && points[1].x == 1.0f
        && points[1].y == 1.0f;
}
