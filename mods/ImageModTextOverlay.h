#pragma once
#include "core/ImageMod.h"
#include "mods/TextRendering.h"

#include <memory>
#include <string>

// "Text Overlay": a block of text set over the image. The text lives in the stored text of the
// "Text" button and the family in that of "Font" (new tiles take the family last chosen); the em
// size is "Size" times the image's height; "Position" (document pixels, unset: low in the middle)
// is where the block's aligned edge and vertical centre stand; "Shadow" darkens a soft copy below.
class ImageModTextOverlay : public ImageMod {
public:
    static constexpr int32_t textIndex = 0;
    static constexpr int32_t fontIndex = 1;
    static constexpr int32_t sizeIndex = 2;
    static constexpr int32_t colorIndex = 3;
    static constexpr int32_t positionIndex = 4;
    static constexpr int32_t alignmentIndex = 5;
    static constexpr int32_t shadowIndex = 6;

    ImageModTextOverlay();

    std::unique_ptr<ImageMod> newInstance() const override;
    // Also shares the set text, so a clone for the worker doesn't set it again.
    void copyFrom(const ImageMod& other) override;
    void variableChanged(int32_t index) override;
    bool consumeRefreshRequest() override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    std::string text() const;
    std::string fontFamily() const;
    void setText(const std::string& text);
    void setFontFamily(const std::string& family);

    // The family new tiles start with (the application passes the "LastFont" preference).
    static void setDefaultFontFamily(const std::string& family);
    static std::string defaultFontFamily();

    // The measured box of the text in a buffer of imageWidth x imageHeight: left, top, width,
    // height in buffer pixels, and the raster laid there. False when nothing is set.
    struct Layout {
        int32_t x = 0; // where raster pixel (0, 0) lands
        int32_t y = 0;
        std::shared_ptr<const TextRaster> raster;
    };
    bool layout(int32_t imageWidth, int32_t imageHeight, const ImageModApplyContext* context, Layout& out);

private:
    template <typename Sample>
    void applyT(FlexImageT<Sample>* image, const ImageModApplyContext* context);

    // The last block set, kept while text, family, size and alignment stay.
    struct Cache {
        std::string text;
        std::string family;
        float pixelSize = 0.0f;
        int32_t alignment = -1;
        float shiftX = -1.0f;
        float shiftY = -1.0f;
        std::shared_ptr<const TextRaster> raster;
    };
    Cache cache;
    bool refreshRequested = false;
};
