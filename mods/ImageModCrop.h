#pragma once
#include "mods/CropFractions.h"
#include "mods/ImageModAspectRatio.h"

class ImageModVariableDataChoice;

// The crop and straighten tile. Its apply changes nothing: the driver cuts and turns the source once,
// before any other tile runs, wherever the tile stands.
class ImageModCrop : public ImageMod {
public:
    ImageModCrop();

    // Also takes the other crop's aspect choice, so a clone cuts the same rectangle.
    void copyFrom(const ImageMod& other) override;
    int32_t group() const override { return 0; }
    bool isPlainAdjustment() const override { return false; }
    std::unique_ptr<ImageMod> newInstance() const override;

    // The four cut fractions for a picture of width x height, widened to the aspect choice (if any),
    // centred on the rectangle the user set.
    CropFractions cropRect(float width, float height) const;
    float straighten() const { return floatValue(0); }

    // Holds the aspect list the crop tool offers.
    ImageModAspectRatio aspect;
    ImageModVariableDataChoice* aspectChoice = nullptr;
};
