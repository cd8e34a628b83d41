#pragma once
#include "core/FlexImage.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// A colour table read from a .cube file. A 3-D table is a stack of N slices, one per blue index,
// each N wide (red) and N high (green) with three channels; a 1-D table is N entries per channel.
// Table values are on the 0..255 scale; the domain is the file's (0..1 unless it says otherwise).
class ImageModLUT3DTable {
public:
    static constexpr int32_t maxSize3D = 256;
    static constexpr int32_t maxSize1D = 65536;

    ImageModLUT3DTable() = default;
    ImageModLUT3DTable(ImageModLUT3DTable&&) = default;
    ImageModLUT3DTable& operator=(ImageModLUT3DTable&&) = default;

    bool isEmpty() const { return size < 2; }
    bool isOneDimensional() const { return oneDimensional; }

    int32_t size = 0;
    bool oneDimensional = false;
    float domainMin[3] = {0.0f, 0.0f, 0.0f};
    float domainMax[3] = {1.0f, 1.0f, 1.0f};
    std::string title;
    // 3-D: size slices of size x size RGB.
    std::vector<std::unique_ptr<FlexImageFloat>> slices;
    // 1-D: size entries of r, g, b.
    std::vector<float> curve;
};

// Reads a .cube file. On success the table is replaced and true returned. On failure the table is
// left as it was, and message holds a sentence the caller can show.
bool readCubeFile(const std::string& path, ImageModLUT3DTable& table, std::string& message);

// The same from text in memory.
bool parseCubeText(std::string_view text, ImageModLUT3DTable& table, std::string& message);
