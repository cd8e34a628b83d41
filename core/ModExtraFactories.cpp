#include "core/ModExtraFactories.h"

#include "media/ImageModColorProfile.h"
#include "mods/ImageModGrainLegacy.h"
#include "mods/ImageModLUT3D.h"

namespace {

std::vector<std::unique_ptr<ImageMod>> makeExtraFactories()
{
    std::vector<std::unique_ptr<ImageMod>> list;
    list.reserve(4);
    list.push_back(std::make_unique<ImageModLUT3D>());
    list.push_back(std::make_unique<ImageModGrainLegacy>());
    list.push_back(std::make_unique<ImageModColorProfile>());
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
