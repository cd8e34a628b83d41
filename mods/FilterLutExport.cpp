#include "mods/FilterLutExport.h"

#include "core/ImageModSelectorWalk.h"

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace {

bool exportsColourOnly(const ImageMod* mod)
{
    return mod && mod->enabled && mod->group() == 1 && mod->kind() != 1;
}

// "%f" of the C locale, whatever locale the process runs in.
char* formatFixed(char* out, char* end, float v)
{
    const auto result = std::to_chars(out, end, v, std::chars_format::fixed, 6);
    return result.ptr;
}

// One blue slice of the lattice through the sequence, appended as text rows.
bool sampleSlice(const std::vector<ImageMod*>& mods, int32_t k, std::string& text)
{
    const int32_t n = kFilterLutSize;
    FlexImageFloat image(n, n, 3);
    if (image.isEmpty())
        return false;
    for (int32_t j = 0; j < n; ++j) {
        float* p = image.row(j);
        for (int32_t i = 0; i < n; ++i, p += 3) {
            p[0] = float(i) * kFilterLutStep;
            p[1] = float(j) * kFilterLutStep;
            p[2] = float(k) * kFilterLutStep;
        }
    }
    for (int32_t index = 0; index < int32_t(mods.size()); ++index) {
        ImageMod* mod = mods[size_t(index)];
        if (!exportsColourOnly(mod) || mod->kind() == ImageModSelector::selectorKind)
            continue;
        ImageModSelectorPointerArray wrapper;
        ImageModApplyContext context;
        context.selector = selectorForList(selectorsForTile(mods, index), wrapper);
        context.pass = -1;
        mod->apply(&image, &context);
        if (image.isEmpty() || image.width != n || image.height != n || image.channels < 3)
            return false;
    }
    char line[128];
    char* const lineEnd = line + sizeof(line);
    for (int32_t j = 0; j < n; ++j) {
        const float* p = image.row(j);
        for (int32_t i = 0; i < n; ++i, p += image.channels) {
            char* w = line;
            for (int c = 0; c < 3; ++c) {
                w = formatFixed(w, lineEnd - 2, p[c] * 0.003921569f);
                *w++ = c < 2 ? ' ' : '\n';
            }
            text.append(line, size_t(w - line));
        }
    }
    return true;
}

} // namespace

std::string filterLutTitle(const std::string& path)
{
    std::string title = std::filesystem::path(path).stem().string();
    for (char& c : title) {
        if (c == '"' || c == '\n' || c == '\r')
            c = '\'';
    }
    return title;
}

bool exportFilterLut(const std::vector<ImageMod*>& mods, const std::string& path)
{
    if (path.empty())
        return false;
    std::string text = "TITLE \"" + filterLutTitle(path) + "\"\n\n";
    text += "# Created with Vantrel Pro\n\n";
    text += "LUT_3D_SIZE " + std::to_string(kFilterLutSize) + "\n\n";
    text.reserve(text.size() + size_t(kFilterLutSize) * kFilterLutSize * kFilterLutSize * 28);
    for (int32_t k = 0; k < kFilterLutSize; ++k) {
        if (!sampleSlice(mods, k, text))
            return false;
    }

    const std::string temporary = path + ".part" + std::to_string(long(getpid()));
    std::FILE* file = std::fopen(temporary.c_str(), "w");
    if (!file)
        return false;
    const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    const bool closed = std::fclose(file) == 0;
    std::error_code ec;
    if (written && closed) {
        std::filesystem::rename(temporary, path, ec);
        if (!ec)
            return true;
    }
    std::filesystem::remove(temporary, ec);
    return false;
}
