#include "mods/ImageModLUT3DTable.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <utility>

namespace {

constexpr size_t kMaxLineLength = 4096;

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v';
}

std::string_view trimmed(std::string_view s)
{
    while (!s.empty() && isBlank(s.front()))
        s.remove_prefix(1);
    while (!s.empty() && isBlank(s.back()))
        s.remove_suffix(1);
    return s;
}

// Splits off the next blank-separated token.
std::string_view nextToken(std::string_view& s)
{
    while (!s.empty() && isBlank(s.front()))
        s.remove_prefix(1);
    size_t n = 0;
    while (n < s.size() && !isBlank(s[n]))
        ++n;
    std::string_view token = s.substr(0, n);
    s.remove_prefix(n);
    return token;
}

// A whole token as a finite number. from_chars ignores the process locale, which a desktop
// program may well have set to one with decimal commas.
bool parseFloat(std::string_view token, float& value)
{
    if (!token.empty() && token.front() == '+')
        token.remove_prefix(1);
    if (token.empty())
        return false;
    const char* end = token.data() + token.size();
    const auto result = std::from_chars(token.data(), end, value, std::chars_format::general);
    return result.ec == std::errc() && result.ptr == end && std::isfinite(value);
}

bool parseInt(std::string_view token, int64_t& value)
{
    if (token.empty())
        return false;
    const char* end = token.data() + token.size();
    const auto result = std::from_chars(token.data(), end, value);
    return result.ec == std::errc() && result.ptr == end;
}

bool isKeywordToken(std::string_view token)
{
    if (token.empty() || !(token.front() >= 'A' && token.front() <= 'Z'))
        return false;
    for (char c : token) {
        if (!((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_'))
            return false;
    }
    return true;
}

// Reads the file line by line into a table under construction, which replaces the caller's only
// once the whole file has been read and checked.
class CubeParser {
public:
    bool line(std::string_view text);
    bool finish(ImageModLUT3DTable& out);
    const std::string& message() const { return error; }
    void fail(const std::string& text)
    {
        if (error.empty())
            error = text;
    }

private:
    bool failLine(const std::string& text)
    {
        fail("Line " + std::to_string(lineNumber) + ": " + text);
        return false;
    }
    bool keyword(std::string_view key, std::string_view rest);
    bool readSize(std::string_view key, std::string_view rest, int64_t maxSize, int64_t& size);
    bool readTriple(std::string_view rest, float v[3]);
    bool dataRow(std::string_view text);

    ImageModLUT3DTable table;
    int64_t size3D = 0;
    int64_t size1D = 0;
    int64_t rowsExpected = 0;
    int64_t rowsRead = 0;
    int64_t lineNumber = 0;
    std::string error;
};

bool CubeParser::line(std::string_view text)
{
    ++lineNumber;
    if (text.size() > kMaxLineLength)
        return failLine("the line is too long for a .cube file.");
    text = trimmed(text);
    if (text.empty() || text.front() == '#')
        return true;
    const char c = text.front();
    if ((c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.')
        return dataRow(text);
    std::string_view rest = text;
    const std::string_view key = nextToken(rest);
    if (!isKeywordToken(key))
        return failLine("this is not part of a .cube table.");
    if (rowsRead > 0)
        return failLine(std::string(key).append(" follows the table data."));
    return keyword(key, rest);
}

bool CubeParser::readSize(std::string_view key, std::string_view rest, int64_t maxSize, int64_t& size)
{
    if (size3D != 0 || size1D != 0)
        return failLine("the file gives a table size twice; only one 3-D or one 1-D table is supported.");
    int64_t n = 0;
    const std::string_view token = nextToken(rest);
    if (!parseInt(token, n) || !trimmed(rest).empty())
        return failLine(std::string(key) + " needs one whole number.");
    if (n < 2 || n > maxSize)
        return failLine(std::string(key) + " must lie between 2 and " + std::to_string(maxSize) + ".");
    size = n;
    return true;
}

bool CubeParser::readTriple(std::string_view rest, float v[3])
{
    for (int i = 0; i < 3; ++i) {
        if (!parseFloat(nextToken(rest), v[i]))
            return false;
    }
    const std::string_view tail = trimmed(rest);
    return tail.empty() || tail.front() == '#';
}

bool CubeParser::keyword(std::string_view key, std::string_view rest)
{
    if (key == "TITLE") {
        std::string_view t = trimmed(rest);
        if (t.size() >= 2 && t.front() == '"' && t.back() == '"')
            t = t.substr(1, t.size() - 2);
        else if (!t.empty() && t.front() == '"')
            t.remove_prefix(1);
        table.title = std::string(t);
        return true;
    }
    if (key == "LUT_3D_SIZE") {
        if (!readSize(key, rest, ImageModLUT3DTable::maxSize3D, size3D))
            return false;
        rowsExpected = size3D * size3D * size3D;
        return true;
    }
    if (key == "LUT_1D_SIZE") {
        if (!readSize(key, rest, ImageModLUT3DTable::maxSize1D, size1D))
            return false;
        rowsExpected = size1D;
        return true;
    }
    if (key == "DOMAIN_MIN" || key == "DOMAIN_MAX") {
        float v[3];
        if (!readTriple(rest, v))
            return failLine(std::string(key) + " needs three numbers.");
        float* target = key == "DOMAIN_MIN" ? table.domainMin : table.domainMax;
        for (int i = 0; i < 3; ++i)
            target[i] = v[i];
        return true;
    }
    if (key == "LUT_3D_INPUT_RANGE" || key == "LUT_1D_INPUT_RANGE") {
        float lo = 0.0f;
        float hi = 0.0f;
        if (!parseFloat(nextToken(rest), lo) || !parseFloat(nextToken(rest), hi) || !trimmed(rest).empty())
            return failLine(std::string(key) + " needs two numbers.");
        for (int i = 0; i < 3; ++i) {
            table.domainMin[i] = lo;
            table.domainMax[i] = hi;
        }
        return true;
    }
    // "LUT_3D" and "LUT_1D" on their own mark where a table begins; the size line already says
    // which. Other upper-case keywords (video range flags and the like) don't change the colours.
    return true;
}

bool CubeParser::dataRow(std::string_view text)
{
    if (rowsExpected == 0)
        return failLine("table data comes before LUT_3D_SIZE or LUT_1D_SIZE.");
    if (rowsRead >= rowsExpected)
        return failLine("the table has more rows than its size allows.");
    float v[3];
    if (!readTriple(text, v))
        return failLine("a table row needs three numbers.");
    if (size1D != 0) {
        if (table.curve.empty())
            table.curve.reserve(size_t(size1D) * 3);
        for (int i = 0; i < 3; ++i)
            table.curve.push_back(v[i] * 255.0f);
    } else {
        // Red varies fastest, then green, then blue. A slice is allocated only when its first row
        // arrives, so a short file claiming a large size never costs the whole table.
        const int64_t n = size3D;
        const int64_t r = rowsRead % n;
        const int64_t g = (rowsRead / n) % n;
        const int64_t b = rowsRead / (n * n);
        if (size_t(b) == table.slices.size()) {
            if (table.slices.empty())
                table.slices.reserve(size_t(n));
            table.slices.push_back(std::make_unique<FlexImageFloat>(int32_t(n), int32_t(n), 3));
        }
        float* p = table.slices[size_t(b)]->data + (g * n + r) * 3;
        for (int i = 0; i < 3; ++i)
            p[i] = v[i] * 255.0f;
    }
    ++rowsRead;
    return true;
}

bool CubeParser::finish(ImageModLUT3DTable& out)
{
    if (!error.empty())
        return false;
    if (rowsExpected == 0) {
        fail("The file has no LUT_3D_SIZE or LUT_1D_SIZE line.");
        return false;
    }
    if (rowsRead < rowsExpected) {
        fail("The file ends after " + std::to_string(rowsRead) + " of " + std::to_string(rowsExpected)
             + " table rows.");
        return false;
    }
    for (int i = 0; i < 3; ++i) {
        if (!(table.domainMin[i] < table.domainMax[i])) {
            fail("DOMAIN_MIN must lie below DOMAIN_MAX in every channel.");
            return false;
        }
    }
    table.oneDimensional = size1D != 0;
    table.size = int32_t(table.oneDimensional ? size1D : size3D);
    out = std::move(table);
    return true;
}

} // namespace

bool parseCubeText(std::string_view text, ImageModLUT3DTable& table, std::string& message)
{
    CubeParser parser;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        if (!parser.line(text.substr(0, end)))
            break;
        if (end == std::string_view::npos)
            break;
        text.remove_prefix(end + 1);
    }
    if (parser.finish(table))
        return true;
    message = parser.message();
    return false;
}

bool readCubeFile(const std::string& path, ImageModLUT3DTable& table, std::string& message)
{
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) {
        message = "The file could not be opened.";
        return false;
    }
    CubeParser parser;
    std::string pending;
    char buffer[1 << 16];
    bool ok = true;
    for (;;) {
        const size_t got = std::fread(buffer, 1, sizeof(buffer), file);
        if (got == 0)
            break;
        std::string_view chunk(buffer, got);
        while (ok) {
            const size_t end = chunk.find('\n');
            if (end == std::string_view::npos) {
                pending.append(chunk);
                break;
            }
            if (pending.empty()) {
                ok = parser.line(chunk.substr(0, end));
            } else {
                pending.append(chunk.substr(0, end));
                ok = parser.line(pending);
                pending.clear();
            }
            chunk.remove_prefix(end + 1);
        }
        if (ok && pending.size() > kMaxLineLength) {
            parser.fail("A line is too long for a .cube file.");
            ok = false;
        }
        if (!ok)
            break;
    }
    if (ok && std::ferror(file)) {
        parser.fail("The file could not be read.");
        ok = false;
    }
    std::fclose(file);
    if (ok && !pending.empty())
        ok = parser.line(pending);
    if (parser.finish(table))
        return true;
    message = parser.message();
    return false;
}
