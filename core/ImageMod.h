#pragma once
#include "core/FlexImage.h"
#include "core/ImageModApplyContext.h"
#include "core/ImageModVarAnimator.h"
#include "core/ImageModVariable.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class ToneCurve;

// Name of the one float variable that remix and variation walk.
inline constexpr const char* kVariationVariableName = "Variation";
inline constexpr const char* kRemixName = "Remix";

// One tile of a filter. A subclass is mostly a constructor that declares its variables, in file
// order, plus the two apply overrides:
//
//   ImageModExample::ImageModExample() : ImageMod("Example", "")
//   {
//       addFloat("Amount", 1.0f, 0.0f, 2.0f)->data->setDisplayScale(0.0f, 100.0f);
//       addChoice("Method", {"Soft", "Hard"}, 0, "Blend");   // label shown instead of the name
//   }
//   std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModExample>(); }
//
// apply reads variables by index (floatValue(0), choiceIndex(1), ...), which return neutral values
// when a value is missing or of another kind, so a damaged file never crashes a mod. Variables are
// only ever appended: their index is part of the class's contract.
class ImageMod {
public:
    ImageMod(std::string modName, std::string label);
    ImageMod(const ImageMod&) = delete;
    ImageMod& operator=(const ImageMod&) = delete;

    // --- virtual operations, in their fixed order ---
    virtual void releaseResources() {}
    virtual void loadResources() {}
    // Copies identity, flags, attributes and variables by index (up to the shorter list, deep).
    virtual void copyFrom(const ImageMod& other);
    virtual ~ImageMod();
    // The first variable named exactly "Amount", else null.
    virtual ImageModVariable* amountVariable() const;
    // Sort group in the tray: 0 crop, 1 ordinary, 2 size/border/overlay/profile.
    virtual int32_t group() const { return 1; }
    // Radius in pixels read around each pixel.
    virtual int32_t paddingNeeded(int32_t width, int32_t height, float scale) const;
    virtual void setVersion(int32_t v) { version = v; }
    // 0 plain, 1 border, 2 style, 3 compound, 4 selector.
    virtual int32_t kind() const { return 0; }
    virtual bool supportsFlag1() const { return true; }
    virtual bool supportsFlag2() const { return true; }
    // A fresh instance of the same class, newest version, neutral values.
    virtual std::unique_ptr<ImageMod> newInstance() const = 0;
    virtual std::string emptyString() const { return {}; }
    virtual bool passIsPure(int32_t pass) const;
    virtual int32_t passCount() const { return 1; }
    virtual bool needsAnalysis() const { return false; }
    virtual void analyze(FlexImage8* image, const ImageModApplyContext* context) { apply(image, context); }
    virtual void analyze(FlexImageFloat* image, const ImageModApplyContext* context) { apply(image, context); }
    virtual void apply(FlexImage8* image, const ImageModApplyContext* context);
    virtual void apply(FlexImageFloat* image, const ImageModApplyContext* context);
    virtual ImageModVariable* firstVariable() const;
    virtual void randomizeVariation();
    virtual void variableChanged(int32_t index);
    virtual std::vector<ImageModVariable*> variationVariables() const;
    virtual ImageMod* borderMod() { return nullptr; }
    virtual std::string labelForTile() const { return displayName; }
    virtual bool isPlainAdjustment() const { return true; }
    virtual std::string presetLink() const { return {}; }
    virtual void onAdded() {}
    // name, variable count, enabled, pinned, version and every variable's value; labels and the
    // attribute bag don't count.
    virtual bool isEqual(const ImageMod& other) const;
    virtual bool hasAnimators() const { return !animators.empty(); }
    virtual float frameTime() const { return frameTimeValue; }
    // Runs every animator at frame, then variableChanged for every variable, in order.
    virtual void setFrame(int32_t frame);
    virtual bool consumeRefreshRequest() { return false; }
    // A press on the button variable at index: variableChanged(index) with the button marked
    // pressed for the call. Does nothing when the variable isn't a button.
    void pressButton(int32_t index);

    // --- declaration helpers ---
    // Deep-copies the template and appends it; returns the stored record.
    ImageModVariable* addVariable(const ImageModVariable& variable);
    ImageModVariable* addFloat(const std::string& varName, float value, float min, float max,
                               const std::string& label = {});
    ImageModVariable* addFloat(const std::string& varName, float value, float hardMin, float hardMax,
                               float displayMin, float displayMax, const std::string& label = {});
    ImageModVariable* addCurve(const std::string& varName, const std::string& points, const std::string& label = {});
    ImageModVariable* addHueCurve(const std::string& varName, const std::string& points, const std::string& label = {});
    ImageModVariable* addColor(const std::string& varName, float r, float g, float b, float a = 255.0f,
                               const std::string& label = {});
    ImageModVariable* addButton(const std::string& varName, int32_t id = 0, const std::string& label = {});
    ImageModVariable* addChoice(const std::string& varName, std::vector<std::string> labels, int32_t index = 0,
                                const std::string& label = {});
    ImageModVariable* addMultiChoice(const std::string& varName, std::vector<std::string> labels,
                                     std::vector<int32_t> selected, const std::string& label = {});
    ImageModVariable* addFile(const std::string& varName, const std::string& path, const std::string& filter,
                              const std::string& label = {});
    ImageModVariable* addPixel(const std::string& varName, float x = -1.0f, float y = -1.0f,
                               const std::string& label = {});
    ImageModVariable* addBoundary(const std::string& varName, float l, float t, float r, float b,
                                  const std::string& label = {});
    // Text the panel shows instead of the variable's name.
    void setLabel(ImageModVariable* variable, const std::string& text);
    // Float keys such as "30 70 30" over one cycle of `seconds`. A choice gets its last key repeated
    // so the last label holds for a whole interval. Ignored for a null variable.
    void addAnimator(ImageModVariable* variable, const std::string& keysText, float seconds);
    // Colour keys as groups of four, "h s v a h s v a ...": hue in degrees, the rest 0..1.
    void addColorAnimator(ImageModVariable* variable, const std::string& hsvaText, float seconds);
    // One text per control point, each "x y x y ..." along that point's path.
    void addCurveAnimator(ImageModVariable* variable, const std::vector<std::string>& pointTexts, float seconds);
    // Appends an animator that the mod will own.
    void addAnimator(std::unique_ptr<ImageModVarAnimator> animator);

    // --- readers by index; neutral results for a missing index, a null or another kind of value ---
    ImageModVariable* variableAt(int32_t index) const;
    ImageModVariable* variableNamed(const std::string& varName) const;
    float floatValue(int32_t index) const;
    int32_t choiceIndex(int32_t index) const;
    const ToneCurve* curveAt(int32_t index) const;
    const ImageModVariableDataColor* colorAt(int32_t index) const;
    const ImageModVariableDataPixel* pixelAt(int32_t index) const;
    const ImageModVariableDataMultiChoice* multiChoiceAt(int32_t index) const;
    const ImageModVariableDataFile* fileAt(int32_t index) const;
    const ImageModVariableDataBoundary* boundaryAt(int32_t index) const;
    int32_t variableCount() const { return int32_t(variables.size()); }

    float defaultFrameTime = 0.05f;
    std::vector<std::string> attrNames;
    std::vector<std::string> attrValues;
    std::vector<std::unique_ptr<ImageModVariable>> variables;
    std::vector<std::unique_ptr<ImageModVariable>> hiddenItems;
    std::vector<std::unique_ptr<ImageModVarAnimator>> animators;
    std::string name;
    std::string displayName;
    std::string toolTip;
    bool enabled = true;
    bool pinned = false;
    int32_t version = 1;
    float frameTimeValue = 0.05f;
    std::vector<int32_t> tags;
};

// newInstance followed by copyFrom: the one way a mod crosses to another owner or thread.
std::unique_ptr<ImageMod> cloneMod(const ImageMod& mod);
