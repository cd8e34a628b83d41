#include "document/core/HeadlessRender.h"

#include "document/core/GeometryResampling.h"
#include "document/core/ModSequenceRunner.h"
#include "mods/GeometryCalculation.h"

void fullOutputSize(int32_t sourceWidth, int32_t sourceHeight, const std::vector<ImageMod*>& mods, int32_t& width,
                    int32_t& height)
{
    const GeometryResult g = computeGeometry(sourceWidth, sourceHeight, mods);
    width = g.width;
    height = g.height;
}

namespace {

// The size to render at: the one asked for, or the sequence's full output size when either side is
// below 1. False for an empty source, a source that is also the destination, or no size.
bool renderTarget(const FlexImageFloat& source, const std::vector<ImageMod*>& mods,
                  const FlexImageFloat& destination, int32_t width, int32_t height, int32_t& w, int32_t& h)
{
    if (source.isEmpty() || &source == &destination)
        return false;
    w = width;
    h = height;
    if (w < 1 || h < 1)
        fullOutputSize(source.width, source.height, mods, w, h);
    return w >= 1 && h >= 1;
}

} // namespace

bool renderFullSize(const FlexImageFloat& source, const std::vector<ImageMod*>& mods, FlexImageFloat& destination,
                    int32_t width, int32_t height)
{
    int32_t w, h;
    if (!renderTarget(source, mods, destination, width, height, w, h))
        return false;

    // Drawn straight into the destination: a full-size copy more would cost as much as a tile.
    if (destination.channels != source.channels)
        destination.resize(destination.width, destination.height, source.channels);
    if (!geometryResample(source, destination, mods, w, h, true))
        return false;
    ModSequenceRunner runner(false, false, 256, 0.5f);
    runner.run(mods, &destination, nullptr, -1, 0, nullptr);
    return true;
}

bool renderFullSizeTaking(FlexImageFloat& source, const std::vector<ImageMod*>& mods, FlexImageFloat& destination,
                          int32_t width, int32_t height)
{
    int32_t w, h;
    if (!renderTarget(source, mods, destination, width, height, w, h))
        return false;
    if (!geometryIsPlainCopy(source, mods, w, h, true))
        return renderFullSize(source, mods, destination, width, height);

    destination.reset();
    std::swap(destination.data, source.data);
    std::swap(destination.ownsData, source.ownsData);
    destination.width = source.width;
    destination.height = source.height;
    destination.channels = source.channels;
    destination.colorChannels = source.colorChannels;
    destination.marginLeft = source.marginLeft;
    destination.marginRight = source.marginRight;
    destination.marginTop = source.marginTop;
    destination.marginBottom = source.marginBottom;
    destination.scale = source.scale;
    source.reset();
    ModSequenceRunner runner(false, false, 256, 0.5f);
    runner.run(mods, &destination, nullptr, -1, 0, nullptr);
    return true;
}
