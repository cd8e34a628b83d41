#pragma once
#include "core/FlexImage.h"
#include "core/ImageModApplyContext.h"

#include <cstdint>

class ToneCurve;

// A colour for a stage, on the 0..255 scale.
struct StyleColor {
    float r = 0.0f;
    float g = 0.0f;
    float b = 0.0f;
};

// Runs the program's own tiles, each built on the stack with the values given, one after another
// on one float image. A camera style is a list of these calls; nothing is kept between them.
// Amounts are written as the tile's own variable reads them (Noise and Blur on 0..100, the rest
// around their neutral 1 or 0).
class StyleStages {
public:
    StyleStages(FlexImageFloat* image, const ImageModApplyContext* context) : image(image), context(context) {}

    void gamma(float amount);
    void saturation(float amount, int32_t version = 2);
    void contrast(float amount, float center = 90.0f, int32_t version = 2);
    void luminanceContrast(float amount, float center);
    void brightness(float amount);
    void luminanceCurve(float amount, const char* points);
    void rgbCombinedCurve(float amount, const char* points);
    // Null or empty strings keep that channel's identity curve.
    void rgbCurves(float amount, const char* red, const char* green, const char* blue, const char* rgb = nullptr);
    void rgbCurves(float amount, const ToneCurve& red, const ToneCurve& green, const ToneCurve& blue);
    // Method 0 is the colorize step.
    void colorizeCurve(float amount, const char* points, StyleColor color, int32_t method = 0);
    void dye(float amount, StyleColor color, int32_t version);
    void colorFilter(float amount, StyleColor color);
    void splitTone(float amount, StyleColor dark, StyleColor light);
    void colorCorrector(float amount, StyleColor shadows, StyleColor midtones, StyleColor highlights);
    void vignette(float amount, float sharpness, float radius);
    void noise(float amount, float scale, float offset, int32_t version = 1);
    void blur(float amount, float mix);
    void discolor(float amount, float offset, StyleColor color, float scale, float stretch);
    // The Colorcross tile at its own Variation input.
    void colorcross(float amount, float variation, int32_t version = 2);

private:
    FlexImageFloat* image;
    const ImageModApplyContext* context;
};
