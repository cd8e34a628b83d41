#pragma once
#include "mods/CropToolGeometry.h"

#include <cstdint>

class ImageModCrop;

// The crop tool's pixel read-out: what the crop cuts from each side of the source, in whole pixels.
struct CropPixelInsets {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;
};

// Writes the tool's insets into the crop (cp0..cp3) and a custom aspect into its aspect list, then
// returns the resulting cut for a source of sourceWidth x sourceHeight. Insets that sum past 1 go
// through as they are; the crop decides what they mean.
CropPixelInsets applyCropState(const CropToolGeometry& geometry, ImageModCrop& crop, int32_t sourceWidth,
                               int32_t sourceHeight);

// Reads cp0..cp3 and the crop's aspect choice into the tool's state.
void readCropState(const ImageModCrop& crop, CropToolGeometry& geometry);

// The row of the aspect list whose label is `label`; -1 when unknown.
int32_t cropAspectRow(const ImageModCrop& crop, const char* label);
