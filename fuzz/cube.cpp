// The .cube reader: a failed read leaves the table untouched; a good one is fully populated.
#include "mods/ImageModLUT3DTable.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ImageModLUT3DTable table;
    std::string message;
    const bool ok = parseCubeText(std::string_view(reinterpret_cast<const char*>(data), size), table, message);
    if (!ok) {
        if (table.size != 0 || !table.slices.empty() || !table.curve.empty() || message.empty())
            __builtin_trap();
        return 0;
    }
    if (table.isOneDimensional()) {
        if (table.size < 2 || table.size > ImageModLUT3DTable::maxSize1D
            || table.curve.size() != size_t(table.size) * 3)
            __builtin_trap();
    } else {
        if (table.size < 2 || table.size > ImageModLUT3DTable::maxSize3D
            || table.slices.size() != size_t(table.size))
            __builtin_trap();
        for (const auto& s : table.slices) {
            if (!s || s->width != table.size || s->height != table.size)
                __builtin_trap();
        }
    }
    return 0;
}
