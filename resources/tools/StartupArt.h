#pragma once
#include <QtCore/QRectF>

class QPainter;
class QColor;

// The welcome card (640 x 400) and its load button (240 x 48, placed at 304, 296 on the card).
void drawStartupBackground(QPainter& p);
void drawLoadPhotoButton(QPainter& p, bool hover);

// The program's emblem: a rounded amber tile with a mountain and a sun, used on the card and
// as the application icon.
void drawEmblem(QPainter& p, const QRectF& r);

// A small photo glyph (frame, mountain, sun) in one colour.
void drawPhotoGlyph(QPainter& p, const QRectF& r, const QColor& c);
