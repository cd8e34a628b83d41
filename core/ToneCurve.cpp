#include "core/ToneCurve.h"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <string_view>
#include <system_error>

namespace {

constexpr int32_t kSubdivisionRounds = 11;
// The float nearest 1 / 2047: table input x for entry i is i times this.
constexpr float kTableStep = 0.0004885198f;

// Locale-independent "C" float parsing: the application sets the user's locale, and a decimal
// comma there must not change how filter files read. Unparsable text reads as 0, like strtof.
float parseNumber(std::string_view token)
{
    if (!token.empty() && token.front() == '+')
        token.remove_prefix(1);
    float value = 0.0f;
    const auto res = std::from_chars(token.data(), token.data() + token.size(), value);
    if (res.ec == std::errc::result_out_of_range) {
        // Beyond float range: overflow reads as infinity and underflow as 0, as the C parser does.
        double wide = 0.0;
        const auto wideRes = std::from_chars(token.data(), token.data() + token.size(), wide);
        if (wideRes.ec != std::errc() || !(std::fabs(wide) > double(FLT_MAX)))
            return 0.0f;
        return wide < 0.0 ? -HUGE_VALF : HUGE_VALF;
    }
    if (res.ec != std::errc())
        return 0.0f;
    return value;
}

// "%f" without the locale: six decimals.
void appendFixed(std::string& out, float v)
{
    char buf[64];
    const auto res = std::to_chars(buf, buf + sizeof(buf), double(v), std::chars_format::fixed, 6);
    if (res.ec == std::errc())
        out.append(buf, res.ptr);
    else
        out += "0.000000";
}

ToneCurvePoint midpoint(const ToneCurvePoint& a, const ToneCurvePoint& b)
{
    return { (a.x + b.x) * 0.5f, (a.y + b.y) * 0.5f };
}

// One round of corner cutting: every pair gains its midpoint, then each old inner point moves to
// half itself plus a quarter of each midpoint beside it. The end points stay.
void subdivide(const std::vector<ToneCurvePoint>& in, std::vector<ToneCurvePoint>& out)
{
    const size_t n = in.size();
    out.resize(2 * n - 1);
    for (size_t j = 0; j + 1 < n; ++j) {
        out[2 * j] = in[j];
        out[2 * j + 1] = midpoint(in[j], in[j + 1]);
    }
    out[2 * n - 2] = in[n - 1];
    for (size_t j = 1; j + 1 < n; ++j) {
        const ToneCurvePoint& left = out[2 * j - 1];
        const ToneCurvePoint& right = out[2 * j + 1];
        out[2 * j] = { in[j].x * 0.5f + left.x * 0.25f + right.x * 0.25f,
                       in[j].y * 0.5f + left.y * 0.25f + right.y * 0.25f };
    }
}

} // namespace

ToneCurve::ToneCurve(int32_t intermediatePoints)
{
    const int32_t n = intermediatePoints > 0 ? intermediatePoints : 0;
    points.reserve(size_t(n) + 2);
    points.push_back({ 0.0f, 0.0f });
    for (int32_t i = 1; i <= n; ++i) {
        const float v = float(i) / float(n + 1);
        points.push_back({ v, v });
    }
    points.push_back({ 1.0f, 1.0f });
    rebuild();
}

ToneCurve::ToneCurve(const std::vector<ToneCurvePoint>& pts)
    : points(pts)
{
    normalizePoints();
    rebuild();
}

ToneCurve::ToneCurve(const std::string& text)
{
    setFromString(text);
}

void ToneCurve::normalizePoints()
{
    if (points.empty()) {
        points = { { 0.0f, 0.0f }, { 1.0f, 1.0f } };
    } else if (points.size() == 1) {
        points = { { 0.0f, 0.0f } };
    } else if (points.size() == 2) {
        points[0].x = 0.0f;
        points[1].x = 1.0f;
    }
}

void ToneCurve::setFromString(const std::string& text)
{
    // Read as a C string: a NUL ends the text.
    const std::string_view all(text.c_str());
    std::vector<ToneCurvePoint> parsed;
    float pendingX = 0.0f;
    bool havePendingX = false;
    size_t pos = 0;
    while (pos <= all.size()) {
        size_t end = all.find_first_of(" \t\r\n", pos);
        if (end == std::string_view::npos)
            end = all.size();
        const std::string_view token = all.substr(pos, end - pos);
        // Blanks separate numbers one to one; an empty token (doubled blank, trailing blank) ends it.
        if (token.empty())
            break;
        const float value = parseNumber(token);
        if (havePendingX) {
            parsed.push_back({ pendingX, value });
            havePendingX = false;
        } else {
            pendingX = value;
            havePendingX = true;
        }
        pos = end + 1;
    }
    points = std::move(parsed);
    normalizePoints();
    rebuild();
}

std::string ToneCurve::toString() const
{
    std::string out;
    out.reserve(points.size() * 20);
    for (size_t i = 0; i < points.size(); ++i) {
        if (i > 0)
            out += ' ';
        appendFixed(out, points[i].x);
        out += ' ';
        appendFixed(out, points[i].y);
    }
    return out;
}

bool ToneCurve::setPoint(int32_t i, float x, float y)
{
    if (i < 0 || i >= pointCount())
        return false;
    points[size_t(i)] = { x, y };
    rebuild();
    return true;
}

void ToneCurve::addPoint(float x, float y)
{
    points.push_back({ x, y });
    rebuild();
}

bool ToneCurve::removePoint(int32_t i)
{
    const int32_t n = pointCount();
    if (i < 0 || i >= n || n <= 1)
        return false;
    const size_t k = size_t(i);
    if (i > 0 && i < n - 1) {
        const ToneCurvePoint mid = midpoint(points[k - 1], points[k + 1]);
        points.erase(points.begin() + i);
        points[k] = mid;
    } else {
        points.erase(points.begin() + i);
    }
    rebuild();
    return true;
}

void ToneCurve::rebuild()
{
    entries.resize(size_t(tableSize));
    if (points.empty()) {
        for (int32_t i = 0; i < tableSize; ++i)
            entries[size_t(i)] = float(i) * kTableStep;
        return;
    }

    std::vector<ToneCurvePoint> work = points;
    const size_t n = points.size();
    if (n > 1) {
        if (closed) {
            const float meanY = (work.front().y + work.back().y) * 0.5f;
            work.front().y = meanY;
            work.back().y = meanY;
            if (n >= 3) {
                // Two wrapped points on each side, so the ring's ends see their real neighbours.
                const float period = work.back().x - work.front().x;
                const ToneCurvePoint a = work[n - 3], b = work[n - 2];
                const ToneCurvePoint c = work[1], d = work[2];
                std::vector<ToneCurvePoint> ring;
                ring.reserve(n + 4);
                ring.push_back({ a.x - period, a.y });
                ring.push_back({ b.x - period, b.y });
                ring.insert(ring.end(), work.begin(), work.end());
                ring.push_back({ c.x + period, c.y });
                ring.push_back({ d.x + period, d.y });
                work = std::move(ring);
            }
        }
        if (work.size() >= 3) {
            std::vector<ToneCurvePoint> next;
            for (int32_t round = 0; round < kSubdivisionRounds; ++round) {
                subdivide(work, next);
                work.swap(next);
            }
        }
    }

    // Read the dense polyline at the table's x values; x only grows, so the segment only advances.
    const size_t count = work.size();
    const ToneCurvePoint first = work.front();
    const ToneCurvePoint last = work.back();
    size_t seg = 0;
    for (int32_t i = 0; i < tableSize; ++i) {
        const float x = float(i) * kTableStep;
        float y;
        if (!(x > first.x)) {
            y = first.y;
        } else if (x >= last.x) {
            y = last.y;
        } else {
            while (seg + 2 < count && x > work[seg + 1].x)
                ++seg;
            const ToneCurvePoint& p0 = work[seg];
            const ToneCurvePoint& p1 = work[seg + 1];
            const float t = (p0.x != p1.x) ? (x - p0.x) / (p1.x - p0.x) : 0.0f;
            y = p0.y + t * (p1.y - p0.y);
        }
        entries[size_t(i)] = y;
    }
}

bool ToneCurve::isIdentity() const
{
    return !closed && points.size() == 2 && points[0].x == 0.0f && points[0].y == 0.0f
        && points[1].x == 1.0f && points[1].y == 1.0f;
}
