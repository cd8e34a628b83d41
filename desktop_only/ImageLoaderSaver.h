#pragma once
#include "core/FlexImage.h"

#include <string>

// Loads and saves the images a mod or a widget needs (borders, overlays, resources).
class ImageLoaderSaver {
public:
    virtual ~ImageLoaderSaver() = default;
    virtual bool loadImage(const std::string& path, FlexImage8& image, bool useDisplayColorSpace) = 0;
    virtual bool loadImage(const std::string& path, FlexImageFloat& image, bool useDisplayColorSpace) = 0;
    virtual bool saveImage(const std::string& path, const FlexImage8& image, bool useDisplayColorSpace, float quality) = 0;
    virtual bool saveImage(const std::string& path, const FlexImageFloat& image, bool useDisplayColorSpace,
                           float quality) = 0;
};
