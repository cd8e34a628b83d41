#pragma once
// The look the batch benchmarks give every photo: five tiles from the catalogue, Blur included.
#include "core/ImageMod.h"
#include "core/ImageModVariable.h"
#include "core/ModCatalogue.h"

#include <memory>
#include <vector>

// Empty when the catalogue lacks one of the tiles.
inline std::vector<std::unique_ptr<ImageMod>> fiveTileBatchLook(const ModCatalogue& catalogue)
{
    const struct {
        const char* name;
        float value;
    } tiles[] = {{"Exposure", 0.4f}, {"Contrast", 0.3f}, {"Dynamics", 0.5f}, {"Tint", 20.0f}, {"Blur", 8.0f}};
    std::vector<std::unique_ptr<ImageMod>> mods;
    for (const auto& t : tiles) {
        std::unique_ptr<ImageMod> m = createMod(catalogue, t.name);
        if (!m)
            return {};
        if (m->variableCount() > 0)
            m->variableAt(0)->setFloatValue(t.value);
        mods.push_back(std::move(m));
    }
    return mods;
}
