#pragma once
class QPainter;

// The tool panel's pieces: its background, the header and row bands (nine-slice, 8-pixel
// borders), the plus and star marks of a row, the collapse arrows, the section icons and the
// pictures of the two tool buttons.
void drawToolPanelBackground(QPainter& p, int w, int h);
void drawPanelHeaderBackground(QPainter& p, int w, int h);
void drawPanelButtonBackground(QPainter& p, int w, int h);
// 16 x 16.
void drawPanelPlus(QPainter& p, bool lit);
// state: empty (not starred), low (hovered), high (starred); 16 x 16.
void drawPanelStar(QPainter& p, const char* state);
// 12 x 12, pointing down when open, right when closed.
void drawPanelCollapseArrow(QPainter& p, bool open);
// kind: basics, light, color, photographic, selectors, borders, utility, starred, presets; 16 x 16.
void drawSectionIcon(QPainter& p, const char* kind);
// kind: crop, heal; 22 x 22.
void drawToolButtonIcon(QPainter& p, const char* kind);
