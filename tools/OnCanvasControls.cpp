#include "tools/OnCanvasControls.h"

#include "core/ImageMod.h"
#include "document/MVMediaWidget.h"
#include "mods/ImageModWhitePoint.h"
#include "tools/MVBoundaryChooserControl.h"
#include "tools/MVColorChooserControl.h"
#include "tools/MVPixelChooserControl.h"

#include <algorithm>
#include <mutex>

bool sampleViewerSource(MVMediaWidget* viewer, float docX, float docY, float rgb[3])
{
    if (!viewer)
        return false;
    const QSize out = viewer->outputPixelSize();
    std::lock_guard<std::mutex> source(viewer->sourceMutex);
    const FlexImageFloat* img = viewer->sourceImage.get();
    if (!img || img->isEmpty() || out.width() < 1 || out.height() < 1)
        return false;
    const int32_t cx = std::clamp(int32_t(docX / float(out.width()) * float(img->width)), 0, img->width - 1);
    const int32_t cy = std::clamp(int32_t(docY / float(out.height()) * float(img->height)), 0, img->height - 1);
    const int32_t ch = img->channels;
    double sum[3] = {0.0, 0.0, 0.0};
    int32_t n = 0;
    for (int32_t y = std::max(cy - 1, 0); y <= std::min(cy + 1, img->height - 1); ++y)
        for (int32_t x = std::max(cx - 1, 0); x <= std::min(cx + 1, img->width - 1); ++x, ++n)
            for (int32_t c = 0; c < 3; ++c)
                sum[c] += img->row(y)[int64_t(x) * ch + std::min(c, ch - 1)];
    for (int32_t c = 0; c < 3; ++c)
        rgb[c] = float(sum[c] / n);
    return true;
}

std::vector<MVFullScreenControl*> createOnCanvasControls(ImageMod* mod, MVMediaWidget* viewer, bool withColorPanels)
{
    std::vector<MVFullScreenControl*> made;
    if (!mod)
        return made;
    if (dynamic_cast<ImageModWhitePoint*>(mod)) {
        auto* pick = new MVPixelChooserControl(mod, ImageModWhitePoint::kNeutralColor, viewer);
        pick->setPickMode([viewer](float x, float y, float rgb[3]) { return sampleViewerSource(viewer, x, y, rgb); });
        made.push_back(pick);
    } else {
        for (int32_t i = 0; i < mod->variableCount(); ++i) {
            const ImageModVariable* var = mod->variableAt(i);
            if (!var || !var->data)
                continue;
            switch (var->data->kind()) {
            case kVariablePixel:
                made.push_back(new MVPixelChooserControl(mod, i, viewer));
                break;
            case kVariableBoundary:
                made.push_back(new MVBoundaryChooserControl(mod, i, viewer));
                break;
            case kVariableColor:
                if (withColorPanels)
                    made.push_back(new MVColorChooserControl(mod, i, viewer));
                break;
            default:
                break;
            }
        }
    }
    for (MVFullScreenControl* c : made) {
        if (viewer)
            c->followViewer(viewer);
        c->show();
        c->raise();
    }
    return made;
}
