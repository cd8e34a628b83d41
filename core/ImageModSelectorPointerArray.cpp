#include "core/ImageModSelectorPointerArray.h"

ImageModSelectorPointerArray::ImageModSelectorPointerArray()
    : ImageModSelector("Selector Pointer Array", "Selector Pointer Array")
{
}

ImageModSelectorPointerArray::ImageModSelectorPointerArray(std::vector<ImageModSelector*> members)
    : ImageModSelectorPointerArray()
{
    selectors = std::move(members);
}

std::unique_ptr<ImageMod> ImageModSelectorPointerArray::newInstance() const
{
    return std::make_unique<ImageModSelectorPointerArray>();
}

namespace {

// The product of the members' masks; an empty array passes everything.
template <typename Sample>
float productMask(const std::vector<ImageModSelector*>& selectors, const FlexImageT<Sample>* image, int32_t x,
                  int32_t y, const ReferenceFrame* frame)
{
    float m = 1.0f;
    for (const ImageModSelector* s : selectors) {
        if (s)
            m *= s->maskValue(image, x, y, frame);
    }
    return m;
}

} // namespace

float ImageModSelectorPointerArray::maskValue(const FlexImageFloat* image, int32_t x, int32_t y,
                                              const ReferenceFrame* frame) const
{
    return productMask(selectors, image, x, y, frame);
}

float ImageModSelectorPointerArray::maskValue(const FlexImage8* image, int32_t x, int32_t y,
                                              const ReferenceFrame* frame) const
{
    return productMask(selectors, image, x, y, frame);
}
