#pragma once
class QPainter;

// The main window's pieces: backgrounds, the mini buttons and their 16 x 16 icons, the view mode
// buttons (28 x 22), the new tab button and the placeholder picture.
void drawMainBackground(QPainter& p, int w, int h);
void drawPanelBackground(QPainter& p, int w, int h);
void drawMiniButtonBackground(QPainter& p, int w, int h, bool down);
// kind: hide_p, show_p, hide_t, show_t, visible, del, previous_preset, next_preset, cancel
void drawMiniIcon(QPainter& p, const char* kind);
// mode: single, vertical, horizontal
void drawViewModeButton(QPainter& p, const char* mode, bool active);
void drawNewTabButton(QPainter& p, bool down);
void drawPlaceholderThumb(QPainter& p, int w, int h);
// The drop-down arrow of the preferences window's combo boxes.
void drawDownArrow(QPainter& p, int w, int h);
