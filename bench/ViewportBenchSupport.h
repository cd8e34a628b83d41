#pragma once
// What the viewport benchmarks share: an offscreen application and the five-tile session whose
// last tile a slider drags.
#include "core/ImageMod.h"
#include "core/ImageModVariable.h"
#include "mods/ImageModBrightness.h"
#include "mods/ImageModContrast.h"
#include "mods/ImageModExposure.h"
#include "mods/ImageModSaturation.h"
#include "mods/ImageModToneCurve.h"

#include <QtWidgets/QApplication>

#include <vector>

// The one application of the process, made on first use; `name` stands as argv[0].
inline QApplication* offscreenApplication(const char* name)
{
    static int argc = 1;
    static char* argv[] = {const_cast<char*>(name), nullptr};
    static QApplication* app = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new QApplication(argc, argv);
    }();
    return app;
}

// Exposure, brightness, saturation and a tone curve, then the dragged tile: a contrast, a power
// pair on every colour sample.
struct SliderSession {
    ImageModExposure exposure{1.2f};
    ImageModSaturation saturation{ImageModSaturation::newestVersion, 1.2f};
    ImageModToneCurve curve;
    ImageModBrightness brightness{1.1f};
    ImageModContrast dragged{ImageModContrast::newestVersion, 1.0f};
    const std::vector<ImageMod*> list{&exposure, &brightness, &saturation, &curve, &dragged};

    // The dragged tile's value for step `i` of a drag that sweeps back and forth over 0.8..1.19.
    void dragTo(int i) { dragged.variableAt(0)->setFloatValue(0.8f + 0.01f * float(i % 40)); }
};
