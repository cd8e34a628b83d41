#pragma once
#include "core/ImageModVariableData.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class ImageModVariableDataCurve;
class ImageModVariableDataColor;
class ImageModVariableDataButton;
class ImageModVariableDataChoice;
class ImageModVariableDataMultiChoice;
class ImageModVariableDataFile;
class ImageModVariableDataPixel;
class ImageModVariableDataBoundary;

// One named parameter of a mod. Copies are deep.
class ImageModVariable {
public:
    static constexpr int32_t defaultControlKind = 14;
    static constexpr int32_t hueCurveControlKind = 11;

    explicit ImageModVariable(std::string variableName = {}, int32_t group = 1);
    ImageModVariable(std::string variableName, std::unique_ptr<ImageModVariableData> value, int32_t group = 1);
    ImageModVariable(const ImageModVariable& other);
    ImageModVariable& operator=(const ImageModVariable& other);
    ~ImageModVariable();

    // Shorthands for the declarations in mod constructors.
    static ImageModVariable makeFloat(const std::string& name, float value, float min, float max);
    static ImageModVariable makeFloat(const std::string& name, float value, float hardMin, float hardMax,
                                      float displayMin, float displayMax);
    static ImageModVariable makeCurve(const std::string& name, const std::string& points);
    static ImageModVariable makeHueCurve(const std::string& name, const std::string& points);
    static ImageModVariable makeColor(const std::string& name, float r, float g, float b, float a = 255.0f);
    static ImageModVariable makeButton(const std::string& name, int32_t id = 0);
    static ImageModVariable makeChoice(const std::string& name, std::vector<std::string> labels, int32_t index = 0);
    static ImageModVariable makeMultiChoice(const std::string& name, std::vector<std::string> labels,
                                            std::vector<int32_t> selected);
    static ImageModVariable makeFile(const std::string& name, const std::string& path, const std::string& filter);
    static ImageModVariable makePixel(const std::string& name, float x = -1.0f, float y = -1.0f);
    static ImageModVariable makeBoundary(const std::string& name, float l, float t, float r, float b);

    // The value if it is of this kind, else null.
    ImageModVariableData* variableAs(int32_t kind) const;
    ImageModVariableData* asFloat() const { return variableAs(kVariableFloat); }
    ImageModVariableDataCurve* asCurve() const;
    ImageModVariableDataColor* asColor() const;
    ImageModVariableDataButton* asButton() const;
    ImageModVariableDataChoice* asChoice() const;
    ImageModVariableDataMultiChoice* asMultiChoice() const;
    ImageModVariableDataFile* asFile() const;
    ImageModVariableDataPixel* asPixel() const;
    ImageModVariableDataBoundary* asBoundary() const;

    // 0 when there is no float value.
    float floatValue() const;
    // Writes a float value, replacing a missing or other-kind value by a fresh 0..1 float first.
    void setFloatValue(float v);
    // Label of the current choice; empty when this is no choice.
    std::string currentLabel() const;
    // Label shown in the panel.
    const std::string& label() const { return labelOverride ? *labelOverride : name; }
    // Value equality (Part of mod equality); two null values are equal.
    bool isEqual(const ImageModVariable& other) const;

    int32_t panelGroup = 1;
    std::string name;
    std::unique_ptr<ImageModVariableData> data;
    int32_t controlKind = defaultControlKind;
    std::unique_ptr<std::string> labelOverride;
    bool visible = true;
    std::string tag;
};
