#include "media/FreeTypeTextRenderer.h"

#include "mods/TextRendering.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>

namespace {

constexpr const char* kSystemVera = "/usr/share/fonts/truetype/ttf-bitstream-vera/Vera.ttf";

// FreeType faces are not safe to share between threads; every use holds this lock.
std::mutex gLock;

struct Engine {
    FT_Library library = nullptr;
    std::vector<uint8_t> fallbackBytes;
    FT_Face fallback = nullptr;
    std::map<std::string, FT_Face> faces; // by file
    std::map<uint32_t, std::string> coverFiles; // code point -> a file that has it ("" for none)
};

Engine& engine()
{
    static Engine e;
    return e;
}

bool sameFamily(const std::string& a, const char* b)
{
    if (a.size() != std::strlen(b))
        return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

FT_Face faceForFile(Engine& e, const std::string& file)
{
    auto it = e.faces.find(file);
    if (it != e.faces.end())
        return it->second;
    FT_Face face = nullptr;
    if (FT_New_Face(e.library, file.c_str(), 0, &face) != 0 || !FT_IS_SCALABLE(face)) {
        if (face)
            FT_Done_Face(face);
        face = nullptr;
    }
    e.faces[file] = face;
    return face;
}

FT_Face fallbackFace(Engine& e)
{
    if (e.fallback)
        return e.fallback;
    if (e.fallbackBytes.empty()) {
        std::ifstream in(kSystemVera, std::ios::binary);
        e.fallbackBytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    if (e.fallbackBytes.empty())
        return nullptr;
    if (FT_New_Memory_Face(e.library, e.fallbackBytes.data(), FT_Long(e.fallbackBytes.size()), 0, &e.fallback) != 0)
        e.fallback = nullptr;
    return e.fallback;
}

// A face that has the code point, for characters the chosen font lacks (CJK in a Latin font).
FT_Face faceCovering(Engine& e, uint32_t cp)
{
    auto it = e.coverFiles.find(cp);
    if (it == e.coverFiles.end()) {
        std::string file;
        FcPattern* pattern = FcPatternCreate();
        FcCharSet* set = FcCharSetCreate();
        FcCharSetAddChar(set, cp);
        FcPatternAddCharSet(pattern, FC_CHARSET, set);
        FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
        FcDefaultSubstitute(pattern);
        FcResult result;
        if (FcPattern* match = FcFontMatch(nullptr, pattern, &result)) {
            FcCharSet* has = nullptr;
            FcChar8* path = nullptr;
            if (FcPatternGetCharSet(match, FC_CHARSET, 0, &has) == FcResultMatch && FcCharSetHasChar(has, cp)
                && FcPatternGetString(match, FC_FILE, 0, &path) == FcResultMatch)
                file = reinterpret_cast<const char*>(path);
            FcPatternDestroy(match);
        }
        FcCharSetDestroy(set);
        FcPatternDestroy(pattern);
        if (e.coverFiles.size() > 4096)
            e.coverFiles.clear();
        it = e.coverFiles.emplace(cp, file).first;
    }
    return it->second.empty() ? nullptr : faceForFile(e, it->second);
}

// UTF-8 to code points; a malformed byte becomes U+FFFD and decoding goes on.
std::vector<uint32_t> decodeUtf8(const std::string& s)
{
    std::vector<uint32_t> out;
    out.reserve(s.size());
    size_t i = 0;
    while (i < s.size()) {
        const unsigned char c = static_cast<unsigned char>(s[i]);
        int32_t extra = c < 0x80 ? 0 : (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : -1;
        uint32_t cp = extra == 0 ? c : extra == 1 ? (c & 0x1f) : extra == 2 ? (c & 0x0f) : (c & 0x07);
        bool ok = extra >= 0;
        for (int32_t k = 1; ok && k <= extra; ++k) {
            if (i + size_t(k) >= s.size()) {
                ok = false;
                break;
            }
            const unsigned char d = static_cast<unsigned char>(s[i + size_t(k)]);
            if ((d & 0xc0) != 0x80)
                ok = false;
            cp = (cp << 6) | (d & 0x3f);
        }
        if (!ok || cp > 0x10ffff) {
            out.push_back(0xfffd);
            ++i;
            continue;
        }
        out.push_back(cp);
        i += size_t(extra) + 1;
    }
    return out;
}

struct PlacedGlyph {
    std::vector<uint8_t> pixels;
    int32_t width = 0;
    int32_t height = 0;
    int32_t x = 0; // left, in layout pixels
    int32_t y = 0; // top
};

struct LineRun {
    std::vector<PlacedGlyph> glyphs;
    double width = 0.0;
};

void setSize(FT_Face face, float pixelSize)
{
    FT_Set_Char_Size(face, 0, FT_F26Dot6(std::lround(pixelSize * 64.0f)), 72, 72);
}

// Sets one line at pen origin 0 on the baseline y; glyph boxes relative to the layout origin.
LineRun setLine(Engine& e, FT_Face primary, const std::vector<uint32_t>& cps, float pixelSize, double baseline,
                double penStart)
{
    LineRun run;
    double pen = penStart;
    const double baseWhole = std::floor(baseline);
    FT_Face prevFace = nullptr;
    FT_UInt prevIndex = 0;
    for (uint32_t cp : cps) {
        FT_Face face = primary;
        FT_UInt index = FT_Get_Char_Index(face, cp);
        if (index == 0 && cp > 0x20) {
            if (FT_Face other = faceCovering(e, cp)) {
                const FT_UInt i = FT_Get_Char_Index(other, cp);
                if (i != 0) {
                    face = other;
                    index = i;
                }
            }
        }
        if (face != primary)
            setSize(face, pixelSize);
        if (face == prevFace && prevIndex != 0 && index != 0 && FT_HAS_KERNING(face)) {
            FT_Vector delta;
            if (FT_Get_Kerning(face, prevIndex, index, FT_KERNING_UNFITTED, &delta) == 0)
                pen += delta.x / 64.0;
        }
        if (FT_Load_Glyph(face, index, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP) != 0) {
            prevFace = nullptr;
            continue;
        }
        FT_GlyphSlot slot = face->glyph;
        const double whole = std::floor(pen);
        if (slot->format == FT_GLYPH_FORMAT_OUTLINE) {
            // The fraction of the pen position moves the outline, so spacing stays even.
            FT_Outline_Translate(&slot->outline, FT_Pos(std::lround((pen - whole) * 64.0)),
                                 -FT_Pos(std::lround((baseline - baseWhole) * 64.0)));
            if (FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL) == 0 && slot->bitmap.width > 0 && slot->bitmap.rows > 0) {
                PlacedGlyph g;
                g.width = int32_t(slot->bitmap.width);
                g.height = int32_t(slot->bitmap.rows);
                g.x = int32_t(whole) + slot->bitmap_left;
                g.y = int32_t(baseWhole) - slot->bitmap_top;
                g.pixels.resize(size_t(g.width) * size_t(g.height));
                const int32_t pitch = slot->bitmap.pitch;
                for (int32_t r = 0; r < g.height; ++r) {
                    const unsigned char* src = pitch >= 0 ? slot->bitmap.buffer + r * pitch
                                                          : slot->bitmap.buffer + (g.height - 1 - r) * -pitch;
                    std::memcpy(g.pixels.data() + size_t(r) * size_t(g.width), src, size_t(g.width));
                }
                run.glyphs.push_back(std::move(g));
            }
        }
        pen += slot->advance.x / 64.0;
        if (face != primary)
            setSize(primary, pixelSize);
        prevFace = face;
        prevIndex = index;
    }
    run.width = pen - penStart;
    return run;
}

bool renderWithFreeType(const TextRenderRequest& request, TextRaster& raster)
{
    std::lock_guard<std::mutex> lock(gLock);
    Engine& e = engine();
    if (!e.library && FT_Init_FreeType(&e.library) != 0)
        return false;
    raster.fellBack = false;
    raster.fontFile.clear();
    FT_Face face = nullptr;
    const std::string file = findFontFile(request.family);
    if (!file.empty())
        face = faceForFile(e, file);
    if (face) {
        raster.fontFile = file;
    } else {
        face = fallbackFace(e);
        raster.fellBack = true;
    }
    if (!face)
        return false;
    const float size = request.pixelSize;
    setSize(face, size);
    const double ascent = face->size->metrics.ascender / 64.0;
    const double descent = -face->size->metrics.descender / 64.0;
    const double lineHeight = std::max(face->size->metrics.height / 64.0, ascent + descent);

    // Lines split at "\n"; a "\r" left over from another system is dropped.
    std::vector<std::vector<uint32_t>> lines(1);
    for (uint32_t cp : decodeUtf8(request.text)) {
        if (cp == '\n')
            lines.emplace_back();
        else if (cp != '\r')
            lines.back().push_back(cp == '\t' ? uint32_t(' ') : cp);
    }
    std::vector<LineRun> runs;
    double blockWidth = 0.0;
    for (size_t i = 0; i < lines.size(); ++i) {
        runs.push_back(setLine(e, face, lines[i], size, request.shiftY + ascent + double(i) * lineHeight,
                               request.shiftX));
        blockWidth = std::max(blockWidth, runs.back().width);
    }
    const double blockHeight = ascent + descent + double(lines.size() - 1) * lineHeight;
    const int32_t layoutW = std::max(1, int32_t(std::ceil(blockWidth)));
    const int32_t layoutH = std::max(1, int32_t(std::ceil(blockHeight)));
    // Each line's shift for the alignment, and the ink's reach beyond the layout box.
    int32_t minX = 0, minY = 0, maxX = layoutW, maxY = layoutH;
    std::vector<int32_t> shifts;
    for (const LineRun& run : runs) {
        const double spare = blockWidth - run.width;
        const int32_t shift = request.alignment == 0 ? 0 : int32_t(std::lround(request.alignment == 2 ? spare : spare * 0.5));
        shifts.push_back(shift);
        for (const PlacedGlyph& g : run.glyphs) {
            minX = std::min(minX, g.x + shift);
            minY = std::min(minY, g.y);
            maxX = std::max(maxX, g.x + shift + g.width);
            maxY = std::max(maxY, g.y + g.height);
        }
    }
    raster.coverage.resize(maxX - minX, maxY - minY, 1);
    if (raster.coverage.isEmpty())
        return false;
    std::memset(raster.coverage.data, 0, size_t(raster.coverage.sampleCount()));
    raster.layoutX = -minX;
    raster.layoutY = -minY;
    raster.layoutWidth = layoutW;
    raster.layoutHeight = layoutH;
    for (size_t i = 0; i < runs.size(); ++i) {
        for (const PlacedGlyph& g : runs[i].glyphs) {
            const int32_t ox = g.x + shifts[i] - minX;
            const int32_t oy = g.y - minY;
            for (int32_t r = 0; r < g.height; ++r) {
                uint8_t* d = raster.coverage.row(oy + r) + ox;
                const uint8_t* s = g.pixels.data() + size_t(r) * size_t(g.width);
                // Overlapping glyphs add up to full coverage, never beyond.
                for (int32_t c = 0; c < g.width; ++c)
                    d[c] = uint8_t(std::min(255, int32_t(d[c]) + int32_t(s[c])));
            }
        }
    }
    return true;
}

} // namespace

std::string findFontFile(const std::string& family)
{
    if (family.empty())
        return {};
    static std::once_flag init;
    std::call_once(init, [] { FcInit(); });
    std::string file;
    FcPattern* pattern = FcPatternCreate();
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family.c_str()));
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result;
    if (FcPattern* match = FcFontMatch(nullptr, pattern, &result)) {
        // fontconfig always offers something; only a face of the family asked for counts.
        bool named = false;
        FcChar8* value = nullptr;
        for (int32_t i = 0; !named && FcPatternGetString(match, FC_FAMILY, i, &value) == FcResultMatch; ++i)
            named = sameFamily(family, reinterpret_cast<const char*>(value));
        FcChar8* path = nullptr;
        if (named && FcPatternGetString(match, FC_FILE, 0, &path) == FcResultMatch)
            file = reinterpret_cast<const char*>(path);
        FcPatternDestroy(match);
    }
    FcPatternDestroy(pattern);
    return file;
}

void installFreeTypeTextRenderer(std::vector<uint8_t> fallbackFont)
{
    {
        std::lock_guard<std::mutex> lock(gLock);
        Engine& e = engine();
        if (!fallbackFont.empty() && !e.fallback)
            e.fallbackBytes = std::move(fallbackFont);
    }
    setTextRenderer(&renderWithFreeType);
}
