#pragma once
#include "core/ImageMod.h"

#include <memory>
#include <string>
#include <vector>

// A nested group of tiles, masked, dimmed or moved as one. Variable 0 is "Amount" (0..1): below 1
// the group's result is blended with the image as it came in.
class ImageModCompound : public ImageMod {
public:
    static constexpr int32_t compoundKind = 3;

    explicit ImageModCompound(std::string modName = "Compound Filter");
    ~ImageModCompound() override;

    // Children are copied by index, and only from another compound.
    void copyFrom(const ImageMod& other) override;
    ImageModVariable* amountVariable() const override { return firstVariable(); }
    int32_t paddingNeeded(int32_t width, int32_t height, float scale) const override;
    int32_t kind() const override { return compoundKind; }
    // Clones every child; keeps the name and the preset link.
    std::unique_ptr<ImageMod> newInstance() const override;
    bool passIsPure(int32_t pass) const override;
    int32_t passCount() const override { return 1; }
    bool needsAnalysis() const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
    std::vector<ImageModVariable*> variationVariables() const override;
    ImageMod* borderMod() override;
    std::string presetLink() const override { return presetLinkPath; }
    bool isEqual(const ImageMod& other) const override;

    // Takes ownership; null is ignored.
    void addChild(std::unique_ptr<ImageMod> child);
    int32_t childCount() const { return int32_t(children.size()); }

    std::vector<std::unique_ptr<ImageMod>> children;
    // The preset this group came from; empty for a group the user made.
    std::string presetLinkPath;

private:
    template <typename Sample>
    void applyGroup(FlexImageT<Sample>* image, const ImageModApplyContext* context);
};
