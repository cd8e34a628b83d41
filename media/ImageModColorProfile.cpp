#include "media/ImageModColorProfile.h"

#include "core/ImageModCompound.h"
#include "core/ImageModVariableDataChoice.h"

ImageModColorProfile::ImageModColorProfile()
    : ImageMod("Color Space", "")
    , offeredKinds(colorSpaceOfferList(true))
{
    std::vector<std::string> rows;
    for (ColorSpaceKind k : offeredKinds)
        rows.push_back(colorSpaceKindName(k));
    addChoice("Profile", rows, 0);
    toolTip = "Choose the color space for the image (applied after all other modifications), which will be "
              "embedded in the image metadata as a color profile on file save. May have no effect if your "
              "monitor isn't calibrated.";
}

std::unique_ptr<ImageMod> ImageModColorProfile::newInstance() const
{
    return std::make_unique<ImageModColorProfile>();
}

void ImageModColorProfile::copyFrom(const ImageMod& other)
{
    ImageMod::copyFrom(other);
    if (const auto* o = dynamic_cast<const ImageModColorProfile*>(&other))
        transformSet = o->transformSet;
}

ColorSpaceKind ImageModColorProfile::chosenKind() const
{
    const int32_t row = choiceIndex(0);
    if (row < 0 || size_t(row) >= offeredKinds.size())
        return ColorSpaceKind::None;
    return offeredKinds[size_t(row)];
}

bool ImageModColorProfile::chooseKind(ColorSpaceKind kind)
{
    ImageModVariable* v = variableAt(0);
    ImageModVariableDataChoice* choice = v ? v->asChoice() : nullptr;
    if (!choice)
        return false;
    for (size_t i = 0; i < offeredKinds.size(); ++i)
        if (offeredKinds[i] == kind) {
            choice->index = int32_t(i);
            variableChanged(0);
            return true;
        }
    return false;
}

void ImageModColorProfile::variableChanged(int32_t)
{
    const ColorSpaceKind kind = chosenKind();
    if (kind == ColorSpaceKind::None) {
        transformSet.reset();
        return;
    }
    auto set = std::make_shared<ColorTransformSet>();
    setKind(*set, kind);
    transformSet = std::move(set);
}

namespace {

ImageModColorProfile* findIn(const std::vector<ImageMod*>& mods)
{
    for (ImageMod* m : mods) {
        if (!m)
            continue;
        if (auto* p = dynamic_cast<ImageModColorProfile*>(m))
            return p;
        if (auto* group = dynamic_cast<ImageModCompound*>(m)) {
            std::vector<ImageMod*> children;
            for (const auto& c : group->children)
                children.push_back(c.get());
            if (ImageModColorProfile* p = findIn(children))
                return p;
        }
    }
    return nullptr;
}

} // namespace

ImageModColorProfile* findColorProfileMod(const std::vector<ImageMod*>& mods)
{
    return findIn(mods);
}

bool colorProfileForSave(const std::vector<ImageMod*>& mods, std::vector<uint8_t>& icc, ColorSpaceKind& kind)
{
    const ImageModColorProfile* p = findColorProfileMod(mods);
    if (!p || !p->enabled || !p->transformSet || !p->transformSet->converts())
        return false;
    icc = p->transformSet->profile;
    kind = p->transformSet->kind;
    return true;
}
