#pragma once
#include "core/ImageModCompound.h"
#include "core/ImageModSelectorWalk.h"

#include <vector>

// Whether the driver may open up tiles[index] and run its children in its place: it is an enabled
// compound, its Amount is exactly 1 and no mask acts on it. Otherwise it runs as one stage.
template <typename Sequence>
bool compoundFlattensAt(const Sequence& tiles, int32_t index)
{
    if (index < 0 || index >= int32_t(std::size(tiles)))
        return false;
    const ImageMod* tile = selectorWalkTile(tiles[size_t(index)]);
    if (!tile || tile->kind() != ImageModCompound::compoundKind || !tile->enabled)
        return false;
    const ImageModVariable* amount = tile->amountVariable();
    const ImageModVariableData* value = amount ? amount->asFloat() : nullptr;
    if (!value || value->value != 1.0f)
        return false;
    return selectorsForTile(tiles, index).empty();
}

// Appends the tiles to out with every compound that may be opened up replaced by its children,
// recursively. Masks at the end of a group act on nothing inside it and are dropped, so they can't
// reach the tile after the group. Disabled tiles stay: a disabled plain tile still ends a run of masks.
template <typename Sequence>
void flattenTiles(const Sequence& tiles, std::vector<ImageMod*>& out)
{
    const int32_t count = int32_t(std::size(tiles));
    for (int32_t i = 0; i < count; ++i) {
        ImageMod* tile = selectorWalkTile(tiles[size_t(i)]);
        if (!tile)
            continue;
        if (!compoundFlattensAt(tiles, i)) {
            out.push_back(tile);
            continue;
        }
        auto* group = dynamic_cast<ImageModCompound*>(tile);
        if (!group) {
            out.push_back(tile);
            continue;
        }
        const auto& children = group->children;
        size_t end = children.size();
        while (end > 0 && children[end - 1] && children[end - 1]->kind() == ImageModSelector::selectorKind)
            --end;
        std::vector<ImageMod*> kept;
        kept.reserve(end);
        for (size_t k = 0; k < end; ++k)
            kept.push_back(children[k].get());
        flattenTiles(kept, out);
    }
}
