#include "core/ImageModVariable.h"

#include "core/ImageModVariableDataBoundary.h"
#include "core/ImageModVariableDataButton.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ImageModVariableDataFile.h"
#include "core/ImageModVariableDataMultiChoice.h"
#include "core/ImageModVariableDataPixel.h"

ImageModVariable::ImageModVariable(std::string variableName, int32_t group)
    : panelGroup(group), name(std::move(variableName))
{
}

ImageModVariable::ImageModVariable(std::string variableName, std::unique_ptr<ImageModVariableData> value, int32_t group)
    : panelGroup(group), name(std::move(variableName)), data(std::move(value))
{
}

ImageModVariable::ImageModVariable(const ImageModVariable& other)
{
    *this = other;
}

ImageModVariable& ImageModVariable::operator=(const ImageModVariable& other)
{
    if (this == &other)
        return *this;
    panelGroup = other.panelGroup;
    name = other.name;
    data = other.data ? other.data->clone() : nullptr;
    controlKind = other.controlKind;
    labelOverride = other.labelOverride ? std::make_unique<std::string>(*other.labelOverride) : nullptr;
    visible = other.visible;
    tag = other.tag;
    return *this;
}

ImageModVariable::~ImageModVariable() = default;

ImageModVariable ImageModVariable::makeFloat(const std::string& n, float value, float min, float max)
{
    return ImageModVariable(n, std::make_unique<ImageModVariableData>(value, min, max));
}

ImageModVariable ImageModVariable::makeFloat(const std::string& n, float value, float hardMin, float hardMax,
                                             float displayMin, float displayMax)
{
    return ImageModVariable(n, std::make_unique<ImageModVariableData>(value, hardMin, hardMax, displayMin, displayMax));
}

ImageModVariable ImageModVariable::makeCurve(const std::string& n, const std::string& points)
{
    return ImageModVariable(n, std::make_unique<ImageModVariableDataCurve>(points));
}

ImageModVariable ImageModVariable::makeHueCurve(const std::string& n, const std::string& points)
{
    ImageModVariable v(n, std::make_unique<ImageModVariableDataCurve>(points, true));
    v.controlKind = hueCurveControlKind;
    return v;
}

ImageModVariable ImageModVariable::makeColor(const std::string& n, float r, float g, float b, float a)
{
    return ImageModVariable(n, std::make_unique<ImageModVariableDataColor>(r, g, b, a));
}

ImageModVariable ImageModVariable::makeButton(const std::string& n, int32_t id)
{
    return ImageModVariable(n, std::make_unique<ImageModVariableDataButton>(id));
}

ImageModVariable ImageModVariable::makeChoice(const std::string& n, std::vector<std::string> labels, int32_t index)
{
    return ImageModVariable(n, std::make_unique<ImageModVariableDataChoice>(std::move(labels), index));
}

ImageModVariable ImageModVariable::makeMultiChoice(const std::string& n, std::vector<std::string> labels,
                                                   std::vector<int32_t> selected)
{
    return ImageModVariable(n, std::make_unique<ImageModVariableDataMultiChoice>(std::move(labels), std::move(selected)));
}

ImageModVariable ImageModVariable::makeFile(const std::string& n, const std::string& path, const std::string& filter)
{
    return ImageModVariable(n, std::make_unique<ImageModVariableDataFile>(path, filter));
}

ImageModVariable ImageModVariable::makePixel(const std::string& n, float x, float y)
{
    return ImageModVariable(n, std::make_unique<ImageModVariableDataPixel>(x, y));
}

ImageModVariable ImageModVariable::makeBoundary(const std::string& n, float l, float t, float r, float b)
{
    return ImageModVariable(n, std::make_unique<ImageModVariableDataBoundary>(l, t, r, b));
}

ImageModVariableData* ImageModVariable::variableAs(int32_t kind) const
{
    return data && data->kind() == kind ? data.get() : nullptr;
}

ImageModVariableDataCurve* ImageModVariable::asCurve() const
{
    return static_cast<ImageModVariableDataCurve*>(variableAs(kVariableCurve));
}

ImageModVariableDataColor* ImageModVariable::asColor() const
{
    return static_cast<ImageModVariableDataColor*>(variableAs(kVariableColor));
}

ImageModVariableDataButton* ImageModVariable::asButton() const
{
    return static_cast<ImageModVariableDataButton*>(variableAs(kVariableButton));
}

ImageModVariableDataChoice* ImageModVariable::asChoice() const
{
    return static_cast<ImageModVariableDataChoice*>(variableAs(kVariableChoice));
}

ImageModVariableDataMultiChoice* ImageModVariable::asMultiChoice() const
{
    return static_cast<ImageModVariableDataMultiChoice*>(variableAs(kVariableMultiChoice));
}

ImageModVariableDataFile* ImageModVariable::asFile() const
{
    return static_cast<ImageModVariableDataFile*>(variableAs(kVariableFile));
}

ImageModVariableDataPixel* ImageModVariable::asPixel() const
{
    return static_cast<ImageModVariableDataPixel*>(variableAs(kVariablePixel));
}

ImageModVariableDataBoundary* ImageModVariable::asBoundary() const
{
    return static_cast<ImageModVariableDataBoundary*>(variableAs(kVariableBoundary));
}

float ImageModVariable::floatValue() const
{
    const ImageModVariableData* f = asFloat();
    return f ? f->value : 0.0f;
}

void ImageModVariable::setFloatValue(float v)
{
    if (!asFloat())
        data = std::make_unique<ImageModVariableData>();
    data->value = v;
}

std::string ImageModVariable::currentLabel() const
{
    const ImageModVariableDataChoice* c = asChoice();
    return c ? c->currentLabel() : std::string();
}

bool ImageModVariable::isEqual(const ImageModVariable& other) const
{
    if (!data || !other.data)
        return !data && !other.data;
    return data->isEqual(*other.data);
}
