#include "core/ModExtraFactories.h"

#include "mods/ImageModLUT3D.h"

namespace {

std::vector<std::unique_ptr<ImageMod>> makeExtraFactories()
{
    std::vector<std::unique_ptr<ImageMod>> list;
    list.reserve(2);
    list.push_back(std::make_unique<ImageModLUT3D>());
    return list;
}

} // namespace

const std::vector<std::unique_ptr<ImageMod>>& extraModFactories()
{
    static const std::vector<std::unique_ptr<ImageMod>> factories = makeExtraFactories();
    return factories;
}

const ImageMod* findExtraModFactory(const std::string& modName)
{
    for (const auto& mod : extraModFactories()) {
        if (mod->name == modName)
            return mod.get();
    }
    return nullptr;
}
