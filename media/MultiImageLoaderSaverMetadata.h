#pragma once
#include "core/FlexImage.h"
#include "media/MediaProperties.h"

#include <cstdint>
#include <memory>

// The properties a side-route load found, kept unstripped on the image until a save asks.
class MultiImageLoaderSaverMetadata : public FlexImageMetadata {
public:
    int32_t bitsPerComponent = 0;
    std::unique_ptr<MediaProperties> properties;

    MultiImageLoaderSaverMetadata() = default;
    explicit MultiImageLoaderSaverMetadata(std::unique_ptr<MediaProperties> props)
        : properties(std::move(props))
    {
    }

    MultiImageLoaderSaverMetadata* clone() const
    {
        auto* copy = new MultiImageLoaderSaverMetadata(properties ? properties->clone() : nullptr);
        copy->bitsPerComponent = bitsPerComponent;
        return copy;
    }
    void stripForSaving()
    {
        if (properties)
            stripMediaPropertiesForSaving(*properties);
    }
};
