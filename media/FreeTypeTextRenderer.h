#pragma once
#include <cstdint>
#include <string>
#include <vector>

// The type engine behind the text overlay: FreeType glyphs from fonts that fontconfig finds,
// unhinted and anti-aliased, kerned, at fractional pen positions. A family the system lacks falls
// back to `fallbackFont` (the bundled Bitstream Vera Sans; read from the system's copy when empty).
// Installs itself as the core's text renderer; call once at start-up.
void installFreeTypeTextRenderer(std::vector<uint8_t> fallbackFont = {});

// The file fontconfig gives for `family`, or empty when no installed family has that name.
std::string findFontFile(const std::string& family);
