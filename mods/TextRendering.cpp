#include "mods/TextRendering.h"

#include <atomic>

namespace {
std::atomic<TextRenderer> gRenderer { nullptr };
}

void setTextRenderer(TextRenderer renderer)
{
    gRenderer.store(renderer);
}

bool renderText(const TextRenderRequest& request, TextRaster& raster)
{
    const TextRenderer renderer = gRenderer.load();
    if (!renderer || request.text.empty() || !(request.pixelSize >= 1.0f) || request.pixelSize > 20000.0f)
        return false;
    return renderer(request, raster);
}
