#pragma once
#include "media/ColorSpaceKind.h"

#include <cstdint>
#include <vector>

class CompactImage;

// Four Little CMS transforms between one profile and the display's, at 8 and 16 bits a sample.
// Transforms are shared by many rows at once; Little CMS transforms are safe for that.
struct ColorTransformSet {
    bool valid = false;
    void* rgb8ToDisplay = nullptr;
    void* rgb16ToDisplay = nullptr;
    void* displayToRgb8 = nullptr;
    void* displayToRgb16 = nullptr;
    std::vector<uint8_t> displayProfile;
    std::vector<uint8_t> profile;
    ColorSpaceKind kind = ColorSpaceKind::None;

    ColorTransformSet() = default;
    ~ColorTransformSet();
    ColorTransformSet(const ColorTransformSet&) = delete;
    ColorTransformSet& operator=(const ColorTransformSet&) = delete;

    // Deletes the four transforms and clears valid.
    void release();
    // True when this set changes numbers: valid and not of kind None or Display.
    bool converts() const;
};

// Stores kind and bytes, fetches the display's profile, and builds the four perceptual transforms
// unless either profile is empty or kind is Display.
void buildTransformSet(ColorTransformSet& set, ColorSpaceKind kind, const std::vector<uint8_t>& profileBytes);
// Kinds Display, sRGB, Adobe RGB, Rec. 709: builds from the display's or a built-in profile.
void setKind(ColorTransformSet& set, ColorSpaceKind kind);
void setCustomProfile(ColorTransformSet& set, const std::vector<uint8_t>& bytes);

// The display's ICC bytes. The desktop layer installs a provider; without one, the built-in sRGB.
using DisplayIccProvider = std::vector<uint8_t> (*)();
void setDisplayIccProvider(DisplayIccProvider provider);
std::vector<uint8_t> displayIccBytes();

// Converts an RGB or RGBA compact image in place, rows in parallel; alpha stays untouched.
// toDisplay picks the profile-to-display pair, else display-to-profile. False if nothing was done.
bool transformCompactImage(CompactImage& image, const ColorTransformSet& set, bool toDisplay);

// Converts a 8-bit RGB row in place (the display copy of the viewport).
void transformRgb8RowToDisplay(const ColorTransformSet& set, uint8_t* rgb, int32_t pixels);

// What a file's embedded profile stands for: sRGB (3) or Adobe RGB (4) when it behaves like the
// built-in one, else Custom (1) with bytes, None (0) without.
ColorSpaceKind classifyIccProfile(const std::vector<uint8_t>& iccBytes);
// True when the bytes open as an RGB profile.
bool isRgbIccProfile(const std::vector<uint8_t>& iccBytes);

// The load-time conversion to the working space (sRGB): from the file's profile to the display's,
// then from the display's to sRGB. Nothing happens for kind sRGB or without bytes, or when the
// profile can't be used. True if the pixels were converted.
bool convertToWorkingSpace(CompactImage& image, ColorSpaceKind fileKind, const std::vector<uint8_t>& iccBytes);
