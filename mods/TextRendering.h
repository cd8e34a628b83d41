#pragma once
#include "core/FlexImage.h"

#include <cstdint>
#include <string>

// Text set in one block: lines split at "\n", each aligned within the block's width.
struct TextRenderRequest {
    std::string text;       // UTF-8
    std::string family;     // font family; a family the system lacks falls back to Bitstream Vera Sans
    float pixelSize = 0.0f; // the em size in output pixels
    int32_t alignment = 1;  // 0 left, 1 centre, 2 right
    // The block set this fraction of a pixel right and down (0..1), so a block placed between
    // pixels lands where it belongs at any scale.
    float shiftX = 0.0f;
    float shiftY = 0.0f;
};

// The block's coverage, 0..255, one channel, over its measured box: the lines' advances across and
// ascent to descent down, grown to take in any ink beyond them.
struct TextRaster {
    FlexImage8 coverage;
    // The box of advances and line heights inside the raster; alignment and placement use it.
    int32_t layoutX = 0;
    int32_t layoutY = 0;
    int32_t layoutWidth = 0;
    int32_t layoutHeight = 0;
    std::string fontFile;   // the face used, for the tool tip; empty for the bundled fallback
    bool fellBack = false;  // the family asked for wasn't found
};

// Sets text. The core has no type engine: the application installs one at start-up.
using TextRenderer = bool (*)(const TextRenderRequest& request, TextRaster& raster);
void setTextRenderer(TextRenderer renderer);
// False when no renderer is installed, the text is empty or nothing could be set.
bool renderText(const TextRenderRequest& request, TextRaster& raster);
