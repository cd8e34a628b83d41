#include "mods/ImageModSize2.h"

#include "core/GrowingArray.h"

#include <algorithm>

bool modHasTag(const ImageMod& mod, int32_t tag)
{
    return std::find(mod.tags.begin(), mod.tags.end(), tag) != mod.tags.end();
}

ImageModSize2::ImageModSize2(std::string modName, std::string label)
    : ImageMod(std::move(modName), std::move(label))
{
    appendGrowing(tags, kTagSize);
}

std::unique_ptr<ImageMod> ImageModSize2::newInstance() const
{
    return std::make_unique<ImageModSize2>();
}

float ImageModSize2::outputHeight(float, float height)
{
    return height;
}

float ImageModSize2::outputWidth(float width, float)
{
    return width;
}

bool ImageModSize2::locksCropAspect(float) const
{
    return false;
}

float ImageModSize2Pair::outputHeight(float width, float height)
{
    float w, h;
    computeSize(width, height, w, h);
    return h;
}

float ImageModSize2Pair::outputWidth(float width, float height)
{
    float w, h;
    computeSize(width, height, w, h);
    return w;
}
