#include "filters/TextNumbers.h"

#include <charconv>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <locale.h>

namespace {

locale_t cLocale()
{
    static const locale_t loc = newlocale(LC_ALL_MASK, "C", locale_t(0));
    return loc;
}

} // namespace

std::string formatFloat(double value)
{
    // "%f" of a huge value has more than 300 digits; to_chars matches printf in the C locale.
    char buf[400];
    const auto res = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed, 6);
    if (res.ec != std::errc())
        return "0.000000";
    return std::string(buf, res.ptr);
}

std::string formatInt(long long value)
{
    char buf[32];
    const auto res = std::to_chars(buf, buf + sizeof buf, value);
    return std::string(buf, res.ptr);
}

double parseFloat(std::string_view text)
{
    // strtod needs a terminated string; a bounded copy keeps huge garbage cheap.
    std::string s(text.substr(0, 512));
    if (cLocale() == locale_t(0))
        return std::strtod(s.c_str(), nullptr);
    return strtod_l(s.c_str(), nullptr, cLocale());
}

int parseTruncatedInt(std::string_view text)
{
    const double v = parseFloat(text);
    if (std::isnan(v))
        return 0;
    if (v >= double(INT_MAX))
        return INT_MAX;
    if (v <= double(INT_MIN))
        return INT_MIN;
    return int(v);
}

std::vector<double> parseFloatList(std::string_view text, size_t maxCount)
{
    std::vector<double> out;
    const std::string s(text);
    const char* at = s.c_str();
    while (out.size() < maxCount) {
        char* end = nullptr;
        const double v = cLocale() == locale_t(0) ? std::strtod(at, &end) : strtod_l(at, &end, cLocale());
        if (end == at)
            break;
        out.push_back(v);
        at = end;
    }
    return out;
}
