#pragma once
#include <cstdint>
#include <string>
#include <vector>

// Moves one variable along key values, frame by frame. Does not own the variable.
class ImageModVarAnimator {
public:
    virtual ~ImageModVarAnimator() = default;
    virtual void apply(int32_t frame) = 0;

    // Blank-separated numbers in the C locale; a token that is no number counts as 0.
    static std::vector<float> parseKeys(const std::string& text);
    // Linear interpolation over equal intervals spread across one period. Returns 0 for no keys;
    // a period below 2 frames yields the first key.
    static float keyValueAt(const std::vector<float>& keys, int32_t periodFrames, int32_t frame);
    // Phase position x in key units, shared by the colour animator's four channels.
    static float keyPosition(int32_t keyCount, int32_t periodFrames, int32_t frame);
    static float interpolateAt(const std::vector<float>& keys, float x);
};
