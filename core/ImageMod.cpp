#include "core/ImageMod.h"

#include "core/GrowingArray.h"
#include "core/ImageModVarAnimatorColorHSVA.h"
#include "core/ImageModVarAnimatorCurve.h"
#include "core/ImageModVarAnimatorFloat.h"
#include "core/ImageModVariableDataBoundary.h"
#include "core/ImageModVariableDataButton.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ImageModVariableDataFile.h"
#include "core/ImageModVariableDataMultiChoice.h"
#include "core/ImageModVariableDataPixel.h"

#include <algorithm>
#include <cstdlib>

ImageMod::ImageMod(std::string modName, std::string label)
    : name(std::move(modName)), displayName(std::move(label))
{
    if (displayName.empty())
        displayName = name;
    frameTimeValue = defaultFrameTime;
}

ImageMod::~ImageMod()
{
    // Animators point into the variables.
    animators.clear();
}

void ImageMod::copyFrom(const ImageMod& other)
{
    if (&other == this)
        return;
    name = other.name;
    displayName = other.displayName;
    toolTip = other.toolTip;
    const size_t n = std::min(variables.size(), other.variables.size());
    for (size_t i = 0; i < n; ++i) {
        if (variables[i] && other.variables[i])
            *variables[i] = *other.variables[i];
    }
    enabled = other.enabled;
    pinned = other.pinned;
    version = other.version;
    attrNames = other.attrNames;
    attrValues = other.attrValues;
}

ImageModVariable* ImageMod::amountVariable() const
{
    for (const auto& v : variables) {
        if (v && v->name == "Amount")
            return v.get();
    }
    return nullptr;
}

int32_t ImageMod::paddingNeeded(int32_t, int32_t, float) const
{
    return 0;
}

bool ImageMod::passIsPure(int32_t) const
{
    return true;
}

void ImageMod::apply(FlexImage8*, const ImageModApplyContext*) {}

void ImageMod::apply(FlexImageFloat*, const ImageModApplyContext*) {}

ImageModVariable* ImageMod::firstVariable() const
{
    return variables.empty() ? nullptr : variables[0].get();
}

void ImageMod::randomizeVariation()
{
    for (ImageModVariable* v : variationVariables()) {
        const int r = std::rand();
        const float value = float(double(r % 1000000) * -0.01 + 5000.0);
        v->setFloatValue(value);
    }
}

void ImageMod::variableChanged(int32_t) {}

std::vector<ImageModVariable*> ImageMod::variationVariables() const
{
    std::vector<ImageModVariable*> list;
    for (const auto& v : variables) {
        if (v && v->name == kVariationVariableName) {
            appendGrowing(list, v.get());
            break;
        }
    }
    return list;
}

bool ImageMod::isEqual(const ImageMod& other) const
{
    if (name != other.name || variables.size() != other.variables.size() || enabled != other.enabled
        || pinned != other.pinned || version != other.version)
        return false;
    for (size_t i = 0; i < variables.size(); ++i) {
        const ImageModVariable* a = variables[i].get();
        const ImageModVariable* b = other.variables[i].get();
        if (!a || !b) {
            if (a != b)
                return false;
            continue;
        }
        if (!a->isEqual(*b))
            return false;
    }
    return true;
}

void ImageMod::setFrame(int32_t frame)
{
    for (const auto& a : animators)
        a->apply(frame);
    for (size_t i = 0; i < variables.size(); ++i)
        variableChanged(int32_t(i));
}

void ImageMod::pressButton(int32_t index)
{
    ImageModVariable* v = variableAt(index);
    ImageModVariableDataButton* button = v ? v->asButton() : nullptr;
    if (!button)
        return;
    button->pressed = true;
    variableChanged(index);
    // variableChanged may have replaced the data; look again before clearing.
    if (ImageModVariableDataButton* after = v->asButton())
        after->pressed = false;
}

ImageModVariable* ImageMod::addVariable(const ImageModVariable& variable)
{
    appendGrowing(variables, std::make_unique<ImageModVariable>(variable));
    return variables.back().get();
}

namespace {

ImageModVariable* labelled(ImageMod* mod, ImageModVariable* v, const std::string& label)
{
    if (!label.empty())
        mod->setLabel(v, label);
    return v;
}

} // namespace

ImageModVariable* ImageMod::addFloat(const std::string& n, float value, float min, float max, const std::string& label)
{
    return labelled(this, addVariable(ImageModVariable::makeFloat(n, value, min, max)), label);
}

ImageModVariable* ImageMod::addFloat(const std::string& n, float value, float hardMin, float hardMax, float displayMin,
                                     float displayMax, const std::string& label)
{
    return labelled(this, addVariable(ImageModVariable::makeFloat(n, value, hardMin, hardMax, displayMin, displayMax)),
                    label);
}

ImageModVariable* ImageMod::addCurve(const std::string& n, const std::string& points, const std::string& label)
{
    return labelled(this, addVariable(ImageModVariable::makeCurve(n, points)), label);
}

ImageModVariable* ImageMod::addHueCurve(const std::string& n, const std::string& points, const std::string& label)
{
    return labelled(this, addVariable(ImageModVariable::makeHueCurve(n, points)), label);
}

ImageModVariable* ImageMod::addColor(const std::string& n, float r, float g, float b, float a, const std::string& label)
{
    return labelled(this, addVariable(ImageModVariable::makeColor(n, r, g, b, a)), label);
}

ImageModVariable* ImageMod::addButton(const std::string& n, int32_t id, const std::string& label)
{
    return labelled(this, addVariable(ImageModVariable::makeButton(n, id)), label);
}

ImageModVariable* ImageMod::addChoice(const std::string& n, std::vector<std::string> labels, int32_t index,
                                      const std::string& label)
{
    return labelled(this, addVariable(ImageModVariable::makeChoice(n, std::move(labels), index)), label);
}

ImageModVariable* ImageMod::addMultiChoice(const std::string& n, std::vector<std::string> labels,
                                           std::vector<int32_t> selected, const std::string& label)
{
    return labelled(this, addVariable(ImageModVariable::makeMultiChoice(n, std::move(labels), std::move(selected))),
                    label);
}

ImageModVariable* ImageMod::addFile(const std::string& n, const std::string& path, const std::string& filter,
                                    const std::string& label)
{
    return labelled(this, addVariable(ImageModVariable::makeFile(n, path, filter)), label);
}

ImageModVariable* ImageMod::addPixel(const std::string& n, float x, float y, const std::string& label)
{
    return labelled(this, addVariable(ImageModVariable::makePixel(n, x, y)), label);
}

ImageModVariable* ImageMod::addBoundary(const std::string& n, float l, float t, float r, float b,
                                        const std::string& label)
{
    return labelled(this, addVariable(ImageModVariable::makeBoundary(n, l, t, r, b)), label);
}

void ImageMod::setLabel(ImageModVariable* variable, const std::string& text)
{
    if (!variable)
        return;
    if (variable->labelOverride)
        *variable->labelOverride = text;
    else
        variable->labelOverride = std::make_unique<std::string>(text);
}

void ImageMod::addAnimator(ImageModVariable* variable, const std::string& keysText, float seconds)
{
    if (!variable)
        return;
    std::vector<float> keys = ImageModVarAnimator::parseKeys(keysText);
    if (keys.empty())
        return;
    if (variable->asChoice())
        keys.push_back(keys.back());
    const float ft = frameTime();
    const int32_t period = ft > 0.0f ? int32_t(seconds / ft) : 0;
    addAnimator(std::make_unique<ImageModVarAnimatorFloat>(variable, std::move(keys), period));
}

void ImageMod::addColorAnimator(ImageModVariable* variable, const std::string& hsvaText, float seconds)
{
    if (!variable)
        return;
    const std::vector<float> all = ImageModVarAnimator::parseKeys(hsvaText);
    std::vector<float> h, s, v, a;
    for (size_t i = 0; i + 3 < all.size(); i += 4) {
        h.push_back(all[i]);
        s.push_back(all[i + 1]);
        v.push_back(all[i + 2]);
        a.push_back(all[i + 3]);
    }
    if (h.empty())
        return;
    const float ft = frameTime();
    const int32_t period = ft > 0.0f ? int32_t(seconds / ft) : 0;
    addAnimator(std::make_unique<ImageModVarAnimatorColorHSVA>(variable, std::move(h), std::move(s), std::move(v),
                                                               std::move(a), period));
}

void ImageMod::addCurveAnimator(ImageModVariable* variable, const std::vector<std::string>& pointTexts, float seconds)
{
    if (!variable || pointTexts.empty())
        return;
    const float ft = frameTime();
    const int32_t period = ft > 0.0f ? int32_t(seconds / ft) : 0;
    std::vector<std::vector<ImageModVarAnimatorCurve::PointKey>> keys;
    for (const std::string& text : pointTexts) {
        const std::vector<float> xy = ImageModVarAnimator::parseKeys(text);
        std::vector<ImageModVarAnimatorCurve::PointKey> path;
        for (size_t i = 0; i + 1 < xy.size(); i += 2)
            path.push_back({xy[i], xy[i + 1]});
        keys.push_back(std::move(path));
    }
    std::vector<int32_t> periods(keys.size(), period);
    addAnimator(std::make_unique<ImageModVarAnimatorCurve>(variable, std::move(keys), std::move(periods)));
}

void ImageMod::addAnimator(std::unique_ptr<ImageModVarAnimator> animator)
{
    if (animator)
        appendGrowing(animators, std::move(animator));
}

ImageModVariable* ImageMod::variableAt(int32_t index) const
{
    if (index < 0 || size_t(index) >= variables.size())
        return nullptr;
    return variables[size_t(index)].get();
}

ImageModVariable* ImageMod::variableNamed(const std::string& varName) const
{
    for (const auto& v : variables) {
        if (v && v->name == varName)
            return v.get();
    }
    return nullptr;
}

float ImageMod::floatValue(int32_t index) const
{
    const ImageModVariable* v = variableAt(index);
    return v ? v->floatValue() : 0.0f;
}

int32_t ImageMod::choiceIndex(int32_t index) const
{
    const ImageModVariable* v = variableAt(index);
    const ImageModVariableDataChoice* c = v ? v->asChoice() : nullptr;
    return c ? c->index : 0;
}

const ToneCurve* ImageMod::curveAt(int32_t index) const
{
    const ImageModVariable* v = variableAt(index);
    const ImageModVariableDataCurve* c = v ? v->asCurve() : nullptr;
    return c ? &c->curve : nullptr;
}

const ImageModVariableDataColor* ImageMod::colorAt(int32_t index) const
{
    const ImageModVariable* v = variableAt(index);
    return v ? v->asColor() : nullptr;
}

const ImageModVariableDataPixel* ImageMod::pixelAt(int32_t index) const
{
    const ImageModVariable* v = variableAt(index);
    return v ? v->asPixel() : nullptr;
}

const ImageModVariableDataMultiChoice* ImageMod::multiChoiceAt(int32_t index) const
{
    const ImageModVariable* v = variableAt(index);
    return v ? v->asMultiChoice() : nullptr;
}

const ImageModVariableDataFile* ImageMod::fileAt(int32_t index) const
{
    const ImageModVariable* v = variableAt(index);
    return v ? v->asFile() : nullptr;
}

const ImageModVariableDataBoundary* ImageMod::boundaryAt(int32_t index) const
{
    const ImageModVariable* v = variableAt(index);
    return v ? v->asBoundary() : nullptr;
}

std::unique_ptr<ImageMod> cloneMod(const ImageMod& mod)
{
    std::unique_ptr<ImageMod> copy = mod.newInstance();
    if (copy)
        copy->copyFrom(mod);
    return copy;
}
