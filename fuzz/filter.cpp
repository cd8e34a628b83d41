// The filter reader over the program's real catalogue, then the writer over what it made.
#include "FuzzTempFile.h"
#include "core/ImageMod.h"
#include "core/ModCatalogue.h"
#include "filters/FilterFile.h"

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static FuzzTempFile file("input.vnf");
    static const ModCatalogueContents catalogue = buildModCatalogue();
    if (!file.write(data, size))
        return 0;
    int32_t status = -1;
    ModList mods = readFilter(file.path, catalogue.mods, status);
    if (status != kFilterReadOk && status != kFilterReadNewer && status != kFilterReadDamaged)
        __builtin_trap();
    std::vector<const ImageMod*> list;
    for (const auto& m : mods) {
        if (!m)
            __builtin_trap();
        list.push_back(m.get());
    }
    (void)filterToXml(list).toText();
    return 0;
}
