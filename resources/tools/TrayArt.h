#pragma once
class QPainter;

// The tray's pieces. Tile faces are nine-slice images (slices 20 40 20 40 in image pixels), so
// they are drawn at twice their logical size only.
// face: plain, plain_sel, combo, combo_sel, camera, selector, selector_sel
void drawTrayTile(QPainter& p, const char* face, int w, int h);
// kind: close, close_down, disable, disable_high, enable, pin, pin_high, pin_down, exit, exit_down
void drawTrayButton(QPainter& p, const char* kind, int size);
void drawTrayEncloser(QPainter& p, int w, int h);
void drawTrayPreviewOverlay(QPainter& p, int w, int h);
void drawTraySeparator(QPainter& p, int w, int h, bool section);
void drawFloatingMenuBackground(QPainter& p, int w, int h);
