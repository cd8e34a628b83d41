#include "core/ImageModCompound.h"

#include "core/GrowingArray.h"
#include "core/ImageModBitmapSelector.h"
#include "core/ImageModSelectorWalk.h"

#include <algorithm>

ImageModCompound::ImageModCompound(std::string modName) : ImageMod(std::move(modName), "")
{
    addFloat("Amount", 1.0f, 0.0f, 1.0f);
}

ImageModCompound::~ImageModCompound() = default;

void ImageModCompound::copyFrom(const ImageMod& other)
{
    if (other.kind() != compoundKind || &other == this)
        return;
    const auto* o = dynamic_cast<const ImageModCompound*>(&other);
    if (!o)
        return;
    const size_t n = std::min(children.size(), o->children.size());
    for (size_t i = 0; i < n; ++i) {
        if (children[i] && o->children[i])
            children[i]->copyFrom(*o->children[i]);
    }
    ImageMod::copyFrom(other);
}

std::unique_ptr<ImageMod> ImageModCompound::newInstance() const
{
    auto group = std::make_unique<ImageModCompound>(name);
    group->children.reserve(children.size());
    for (const auto& child : children) {
        if (child)
            group->children.push_back(cloneMod(*child));
    }
    group->presetLinkPath = presetLinkPath;
    return group;
}

int32_t ImageModCompound::paddingNeeded(int32_t width, int32_t height, float scale) const
{
    int32_t padding = 0;
    for (const auto& child : children)
        padding = std::max(padding, child->paddingNeeded(width, height, scale));
    return padding;
}

bool ImageModCompound::passIsPure(int32_t) const
{
    for (const auto& child : children) {
        const int32_t passes = child->passCount();
        for (int32_t p = 0; p < passes; ++p) {
            if (!child->passIsPure(p))
                return false;
        }
    }
    return true;
}

bool ImageModCompound::needsAnalysis() const
{
    for (const auto& child : children) {
        if (child->needsAnalysis())
            return true;
    }
    return false;
}

std::vector<ImageModVariable*> ImageModCompound::variationVariables() const
{
    std::vector<ImageModVariable*> joined;
    for (const auto& child : children) {
        for (ImageModVariable* v : child->variationVariables())
            appendGrowing(joined, v);
    }
    return joined;
}

ImageMod* ImageModCompound::borderMod()
{
    for (auto it = children.rbegin(); it != children.rend(); ++it) {
        if ((*it)->kind() == 1)
            return it->get();
        if (ImageMod* border = (*it)->borderMod())
            return border;
    }
    return nullptr;
}

bool ImageModCompound::isEqual(const ImageMod& other) const
{
    if (!ImageMod::isEqual(other) || other.kind() != compoundKind)
        return false;
    const auto* o = dynamic_cast<const ImageModCompound*>(&other);
    if (!o || o->children.size() != children.size())
        return false;
    for (size_t i = 0; i < children.size(); ++i) {
        if (!children[i]->isEqual(*o->children[i]))
            return false;
    }
    return true;
}

void ImageModCompound::addChild(std::unique_ptr<ImageMod> child)
{
    if (child)
        appendGrowing(children, std::move(child));
}

template <typename Sample>
void ImageModCompound::applyGroup(FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    const ImageModVariable* amountVar = amountVariable();
    const ImageModVariableData* amountData = amountVar ? amountVar->asFloat() : nullptr;
    if (!image || !amountData)
        return;
    const float amount = amountData->value;
    if (amount == 0.0f)
        return;

    std::unique_ptr<FlexImageT<Sample>> before;
    if (amount < 1.0f) {
        before = std::make_unique<FlexImageT<Sample>>(0, 0, image->channels);
        before->copyFrom(*image, true);
    }

    // The group's own mask is frozen on the pixels as the group receives them, so tiles inside the
    // group don't move it.
    std::unique_ptr<ImageModBitmapSelector> frozen;
    if (context && context->selector) {
        frozen = std::make_unique<ImageModBitmapSelector>();
        frozen->fillFrom(context->selector, image, context->referenceFrame);
    }

    for (int32_t i = 0; i < int32_t(children.size()); ++i) {
        ImageMod* child = children[size_t(i)].get();
        if (!child->enabled)
            continue;
        std::vector<ImageModSelector*> masks = selectorsForTile(children, i);
        if (frozen)
            masks.insert(masks.begin(), frozen.get());
        ImageModSelectorPointerArray wrapper;
        ImageModApplyContext childContext;
        if (context)
            childContext = *context;
        childContext.selector = selectorForList(masks, wrapper);
        childContext.pass = -1;
        child->apply(image, &childContext);
    }
    frozen.reset();

    if (!before || !before->data || !image->data || before->width != image->width || before->height != image->height
        || before->channels != image->channels)
        return;
    // Not masked: the mask already acted through the children.
    const int64_t count = image->sampleCount();
    Sample* out = image->data;
    const Sample* in = before->data;
    for (int64_t k = 0; k < count; ++k) {
        const float b = float(in[k]);
        const float v = (float(out[k]) - b) * amount + b;
        if constexpr (sizeof(Sample) == 1)
            out[k] = Sample(int32_t(v));
        else
            out[k] = v;
    }
}

void ImageModCompound::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyGroup(image, context);
}

void ImageModCompound::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyGroup(image, context);
}
