#pragma once
#include "core/FlexImage.h"
#include "core/ImageMod.h"

#include <cstdint>
#include <vector>

// The size a full-size render of a sourceWidth x sourceHeight picture through the list comes out at,
// every geometry tile included. Either side below 1 means the geometry leaves nothing.
void fullOutputSize(int32_t sourceWidth, int32_t sourceHeight, const std::vector<ImageMod*>& mods, int32_t& width,
                    int32_t& height);

// Renders source through the tile list at full quality, as a save does: geometry first, once,
// into destination at the output size (width x height when both are above 0, else the size the
// geometry asks for), then every tile in order on the whole image, with no cache and no frame.
// The destination takes the source's channel count. The list is cloned, never changed. False when
// the geometry leaves no pixel or the source is empty; no pixel is drawn then.
bool renderFullSize(const FlexImageFloat& source, const std::vector<ImageMod*>& mods, FlexImageFloat& destination,
                    int32_t width = 0, int32_t height = 0);

// renderFullSize for a caller done with the source: when the geometry leaves the picture as it is,
// the source's buffer becomes the destination (no full-size copy; the source is left empty),
// otherwise the source is kept and read as renderFullSize does. Same pixels either way.
bool renderFullSizeTaking(FlexImageFloat& source, const std::vector<ImageMod*>& mods, FlexImageFloat& destination,
                          int32_t width = 0, int32_t height = 0);
