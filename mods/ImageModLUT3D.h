#pragma once
#include "core/ImageMod.h"
#include "mods/ImageModLUT3DTable.h"

#include <memory>
#include <string>

// "LUT": a colour look-up table from a .cube file, trilinear for 3-D tables and per channel for
// 1-D ones, blended with the pixel by Amount (and the mask, rule B). The table is read when the
// File variable changes or on loadResources, never inside apply; clones share the read-only table.
class ImageModLUT3D : public ImageMod {
public:
    static constexpr int32_t amountIndex = 0;
    static constexpr int32_t fileIndex = 1;

    ImageModLUT3D();

    void releaseResources() override;
    void loadResources() override;
    void copyFrom(const ImageMod& other) override;
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModLUT3D>(); }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;
    void variableChanged(int32_t index) override;
    bool isPlainAdjustment() const override { return false; }

    // The table in use, or null when none is loaded.
    const ImageModLUT3DTable* table() const { return lut.get(); }
    // Why the last load failed; empty after a good load.
    const std::string& loadMessage() const { return message; }
    // Uses a table built elsewhere (tests, the exporter's round trip).
    void setTable(std::shared_ptr<const ImageModLUT3DTable> t, std::string fromPath = {});

private:
    std::string filePath() const;
    void loadFrom(const std::string& path);

    std::shared_ptr<const ImageModLUT3DTable> lut;
    std::string lutPath;
    std::string message;
};
