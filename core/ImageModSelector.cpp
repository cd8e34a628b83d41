#include "core/ImageModSelector.h"

ImageModSelector::ImageModSelector(std::string modName, std::string label)
    : ImageMod(std::move(modName), std::move(label))
{
}

std::unique_ptr<ImageMod> ImageModSelector::newInstance() const
{
    return std::make_unique<ImageModSelector>();
}

float ImageModSelector::maskValue(const FlexImageFloat*, int32_t, int32_t, const ReferenceFrame*) const
{
    return 1.0f;
}

float ImageModSelector::maskValue(const FlexImage8*, int32_t, int32_t, const ReferenceFrame*) const
{
    return 1.0f;
}
