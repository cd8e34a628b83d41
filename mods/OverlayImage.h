#pragma once
#include "core/FlexImage.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// A picture laid over the photo (border artwork, a watermark): RGBA with its alpha multiplied in,
// with halved copies so a small preview reads as smooth as the full-size save.
class OverlayImage {
public:
    // Level 0 is the picture itself, each further level half the one before, down to one pixel.
    std::vector<std::unique_ptr<FlexImage8>> levels;

    int32_t width() const { return levels.empty() ? 0 : levels[0]->width; }
    int32_t height() const { return levels.empty() ? 0 : levels[0]->height; }
    bool isEmpty() const { return levels.empty(); }

    // Builds the levels from straight (not premultiplied) RGBA; null for an empty or non-RGBA image.
    static std::shared_ptr<const OverlayImage> fromRgba(const FlexImage8& rgba);
};

// Colour and coverage at (x, y) in level-0 pixels (integers are pixel centres), read from the level
// that fits `footprint` level-0 pixels per output pixel; premultiplied 0..255 RGBA. Outside the
// picture it reads the nearest edge pixel.
void sampleOverlay(const OverlayImage& image, double x, double y, double footprint, float out[4]);

// Decodes an image file to 8-bit straight RGBA. The core decodes nothing itself: the application
// installs a decoder at start-up. False with a message for the user when nothing could be read.
using OverlayImageDecoder = bool (*)(const std::string& path, FlexImage8& rgba, std::string& message);
void setOverlayImageDecoder(OverlayImageDecoder decoder);

// The decoded image of `path`, shared and kept for later calls (a border's artwork is read once).
// Null with a message when there is no decoder or the file can't be read; failures aren't kept,
// so a file that appears later is found.
std::shared_ptr<const OverlayImage> loadOverlayImage(const std::string& path, std::string& message);

class ImageModVariableDataFile;

// The picture a mod's file variable names, decoded once and kept until another file is chosen.
// Copies share the decoded picture.
struct ChosenOverlayImage {
    std::shared_ptr<const OverlayImage> art;
    std::string path;
    // Why the picture couldn't be used; empty when it could (or no file is chosen yet).
    std::string message;

    // Reads the file `file` names unless it is the one held; a failed read is not retried until
    // the choice changes. False when nothing changed.
    bool update(const ImageModVariableDataFile* file);
    // `baseTip`, plus the reason when the picture can't be drawn.
    std::string toolTip(const char* baseTip, const char* what) const;
};
