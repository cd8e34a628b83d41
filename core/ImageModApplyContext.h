#pragma once
#include "core/FlexImage.h"

#include <cstdint>

class ImageModSelector;

// Where the pixels a mod sees stand in the whole picture; filled by the processing driver.
struct ReferenceFrame {
    int32_t marginLeft = 0;
    int32_t marginRight = 0;
    int32_t marginTop = 0;
    int32_t marginBottom = 0;
    int32_t imageWidth = 0;
    int32_t imageHeight = 0;
    int32_t originX = 0;
    int32_t originY = 0;
    int32_t sourceMarginLeft = 0;
    int32_t sourceMarginRight = 0;
    int32_t sourceMarginTop = 0;
    int32_t sourceMarginBottom = 0;
    float scale = 1.0f;
    FlexImageFloat* proxy = nullptr;
};

struct ImageModApplyContext {
    ReferenceFrame* referenceFrame = nullptr;
    ImageModSelector* selector = nullptr;
    int32_t frame = 0;
    int32_t pass = 0;
};
