#include "document/core/PreviewList.h"

#include <algorithm>

namespace {

constexpr int32_t kCropTag = 0;
constexpr int32_t kSizeTag = 1;

bool sharesTag(const ImageMod& a, const ImageMod& b)
{
    for (int32_t t : a.tags)
        if (std::find(b.tags.begin(), b.tags.end(), t) != b.tags.end())
            return true;
    return false;
}

} // namespace

bool isLeftOutOfPreview(const ImageMod& mod)
{
    for (int32_t t : mod.tags)
        if (t == kCropTag || t == kSizeTag)
            return true;
    return false;
}

std::vector<std::unique_ptr<ImageMod>> previewClones(const std::vector<ImageMod*>& list)
{
    std::vector<std::unique_ptr<ImageMod>> out;
    out.reserve(list.size());
    for (const ImageMod* m : list)
        if (m && !isLeftOutOfPreview(*m))
            out.push_back(cloneMod(*m));
    return out;
}

int placeHoveredMod(std::vector<std::unique_ptr<ImageMod>>& list, const ImageMod& mod, PreviewPlacement placement)
{
    std::erase_if(list, [&](const std::unique_ptr<ImageMod>& m) {
        if (!m)
            return true;
        switch (placement) {
        case PreviewPlacement::ReplaceAll:
            return !m->pinned;
        case PreviewPlacement::ReplaceSlot:
            return sharesTag(*m, mod);
        case PreviewPlacement::Append:
            return !m->pinned && sharesTag(*m, mod);
        }
        return false;
    });
    const int32_t group = mod.group();
    size_t at = list.size();
    while (at > 0 && list[at - 1]->group() > group)
        --at;
    list.insert(list.begin() + std::ptrdiff_t(at), cloneMod(mod));
    return int(at);
}

std::vector<ImageMod*> rawModList(const std::vector<std::unique_ptr<ImageMod>>& list)
{
    std::vector<ImageMod*> out;
    out.reserve(list.size());
    for (const auto& m : list)
        out.push_back(m.get());
    return out;
}
