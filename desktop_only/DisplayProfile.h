#pragma once
#include <cstdint>
#include <vector>

// The ICC bytes the X server publishes for the first screen (the root window's "_ICC_PROFILE"
// property, as colour managers set it); empty without a display or a profile.
std::vector<uint8_t> readX11DisplayIccProfile();

// Makes displayIccBytes() read the X11 profile, falling back on the built-in sRGB. Called once at
// start-up by the application.
void installDisplayIccProvider();
