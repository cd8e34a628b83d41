#pragma once
#include <cstdint>

// The built-in image borders. Each frame picture is cut in nine pieces (see NineSlice.h): its
// corners keep their shape at any photo size and its edges stretch, or repeat when they carry a
// pattern. The pictures are drawn by resources/tools (the `artwork` target) from this same table,
// so a piece size here always matches the picture.
struct BorderFileStyle {
    const char* name;     // the tile's name and label
    const char* file;     // ":/img/borders/<file>.png"
    int32_t insets[4];    // piece sizes in picture pixels: left, top, right, bottom
    int32_t bands[4];     // of each piece, the part that lies outside the photo (the rest covers it)
    int32_t middle;       // picture pixels between the corner pieces, on both axes
    bool tileEdges;       // edges repeat (a pattern) rather than stretch
    uint8_t backdrop[3];  // colour under the artwork in the added bands
    double scale = 1.0;   // output pixels per picture pixel at the reference size (smooth art is kept small)
};

// The photo's shorter side, in output pixels, at which a picture is drawn one to one.
inline constexpr double kBorderArtReference = 3000.0;

inline constexpr BorderFileStyle kBorderFileStyles[] = {
    { "Paper", "paper", { 190, 190, 190, 190 }, { 190, 190, 190, 190 }, 64, false, { 244, 241, 233 } },
    { "Instant Film", "instant_film", { 140, 140, 140, 470 }, { 128, 128, 128, 458 }, 64, false, { 243, 241, 234 } },
    { "Film Strip", "film_strip", { 70, 330, 70, 330 }, { 70, 330, 70, 330 }, 240, true, { 20, 18, 16 } },
    { "Slide Mount", "slide_mount", { 420, 420, 420, 420 }, { 340, 340, 340, 340 }, 64, false, { 226, 222, 211 } },
    { "Thin Line", "thin_line", { 140, 140, 140, 140 }, { 140, 140, 140, 140 }, 64, false, { 255, 255, 255 } },
    { "Rounded Black", "rounded_black", { 230, 230, 230, 230 }, { 100, 100, 100, 100 }, 64, false, { 12, 12, 12 } },
    { "Torn Edge", "torn_edge", { 230, 230, 230, 230 }, { 150, 150, 150, 150 }, 256, true, { 248, 247, 243 } },
    { "Deckled Edge", "deckled_edge", { 260, 260, 260, 260 }, { 240, 240, 240, 240 }, 192, true, { 38, 37, 40 } },
    { "Stamp", "stamp", { 240, 240, 240, 240 }, { 240, 240, 240, 240 }, 120, true, { 52, 56, 62 } },
    { "Gallery Mat", "gallery_mat", { 430, 430, 430, 430 }, { 420, 420, 420, 420 }, 64, false, { 238, 235, 228 } },
    { "Black Frame", "black_frame", { 250, 250, 250, 250 }, { 220, 220, 220, 220 }, 64, false, { 14, 14, 15 } },
    { "Burned Edges", "burned_edges", { 96, 96, 96, 96 }, { 0, 0, 0, 0 }, 80, true, { 0, 0, 0 }, 4.0 },
    { "Filed Carrier", "filed_carrier", { 170, 170, 170, 170 }, { 80, 80, 80, 80 }, 256, true, { 6, 6, 6 } },
    { "Cinema", "cinema", { 0, 380, 0, 380 }, { 0, 380, 0, 380 }, 64, false, { 0, 0, 0 } },
};

inline constexpr int32_t kBorderFileStyleCount = int32_t(sizeof(kBorderFileStyles) / sizeof(kBorderFileStyles[0]));
