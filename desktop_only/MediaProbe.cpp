#include "desktop_only/MediaProbe.h"

#include <OpenImageIO/imageio.h>

bool probeMediaSize(const std::string& path, int32_t& width, int32_t& height, int32_t& channels)
{
    try {
        auto in = OIIO::ImageInput::open(path);
        if (!in)
            return false;
        const OIIO::ImageSpec imageSpec = in->spec_dimensions(0);
        width = imageSpec.width;
        height = imageSpec.height;
        channels = imageSpec.nchannels;
        in->close();
        return width > 0 && height > 0;
    } catch (...) {
        return false;
    }
}
