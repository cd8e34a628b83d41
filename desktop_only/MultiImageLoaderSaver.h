#pragma once
#include "desktop_only/ImageLoaderSaver.h"

#include <cstdint>

// The side route: native files, Qt resources (":/..."), and everything the codecs read.
// A loaded image carries its unstripped properties as a MultiImageLoaderSaverMetadata.
class MultiImageLoaderSaver : public ImageLoaderSaver {
public:
    // 1: write 16-bit files.
    int32_t saveBitMode = 0;

    bool loadImage(const std::string& path, FlexImage8& image, bool useDisplayColorSpace) override;
    bool loadImage(const std::string& path, FlexImageFloat& image, bool useDisplayColorSpace) override;
    bool saveImage(const std::string& path, const FlexImage8& image, bool useDisplayColorSpace, float quality) override;
    bool saveImage(const std::string& path, const FlexImageFloat& image, bool useDisplayColorSpace,
                   float quality) override;
};
