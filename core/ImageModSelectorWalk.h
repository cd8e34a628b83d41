#pragma once
#include "core/ImageModSelectorPointerArray.h"

#include <iterator>
#include <memory>
#include <vector>

// Which masks act on a tile of a sequence. The compound and the processing driver both use this.

inline ImageMod* selectorWalkTile(ImageMod* tile)
{
    return tile;
}

template <typename T>
ImageMod* selectorWalkTile(const std::unique_ptr<T>& tile)
{
    return tile.get();
}

// The enabled masks acting on tiles[index], in left-to-right order: the unbroken run of kind-4
// tiles directly left of it. A disabled mask keeps the run going but is left out. Works on any
// indexable sequence of ImageMod* or std::unique_ptr<ImageMod>.
template <typename Sequence>
std::vector<ImageModSelector*> selectorsForTile(const Sequence& tiles, int32_t index)
{
    std::vector<ImageModSelector*> found;
    const int32_t count = int32_t(std::size(tiles));
    if (index <= 0 || index > count)
        return found;
    int32_t first = index;
    while (first > 0) {
        const ImageMod* t = selectorWalkTile(tiles[size_t(first - 1)]);
        if (!t || t->kind() != ImageModSelector::selectorKind)
            break;
        --first;
    }
    for (int32_t i = first; i < index; ++i) {
        ImageMod* t = selectorWalkTile(tiles[size_t(i)]);
        if (t->enabled) {
            if (auto* s = dynamic_cast<ImageModSelector*>(t))
                found.push_back(s);
        }
    }
    return found;
}

// What a tile's context carries for a list of masks: null for none, the mask itself for one, and
// `wrapper` (filled with the list) for several.
inline ImageModSelector* selectorForList(const std::vector<ImageModSelector*>& list,
                                         ImageModSelectorPointerArray& wrapper)
{
    if (list.empty())
        return nullptr;
    if (list.size() == 1)
        return list[0];
    wrapper.selectors = list;
    return &wrapper;
}
