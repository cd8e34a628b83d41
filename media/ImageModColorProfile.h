#pragma once
#include "core/ImageMod.h"
#include "media/ColorSpaceKind.h"
#include "media/ColorTransformSet.h"

#include <cstdint>
#include <memory>
#include <vector>

// The "Color Space" tile: names the space the numbers are meant in. It never changes pixels; the
// viewport shows the image through its transforms and a save writes its profile as the file's tag.
class ImageModColorProfile : public ImageMod {
public:
    // The catalogue's kind id of this tile (what the driver searches the sequence for).
    static constexpr int32_t colorProfileKindId = 6;

    ImageModColorProfile();

    int32_t group() const override { return 2; }
    std::unique_ptr<ImageMod> newInstance() const override;
    // Copies the variables and shares the other tile's transform set.
    void copyFrom(const ImageMod& other) override;
    void apply(FlexImage8*, const ImageModApplyContext*) override {}
    void apply(FlexImageFloat*, const ImageModApplyContext*) override {}
    // A new choice builds a new shared set (none for "None").
    void variableChanged(int32_t index) override;

    // The kind of the chosen row.
    ColorSpaceKind chosenKind() const;
    // Chooses the row of kind; false when the kind isn't offered.
    bool chooseKind(ColorSpaceKind kind);

    std::shared_ptr<ColorTransformSet> transformSet;
    std::vector<ColorSpaceKind> offeredKinds;
};

// The first "Color Space" tile in the sequence, looking into groups; null if there is none.
ImageModColorProfile* findColorProfileMod(const std::vector<ImageMod*>& mods);

// The profile a save writes instead of the source's: that of the first enabled "Color Space" tile
// whose set converts. False (and nothing written) otherwise.
bool colorProfileForSave(const std::vector<ImageMod*>& mods, std::vector<uint8_t>& icc, ColorSpaceKind& kind);
