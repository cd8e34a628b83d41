#pragma once
#include <QtGui/QColor>

// One palette for every piece of art, matched to the program's grey theme (60/40/80 greys) with
// a single warm accent.
namespace ArtworkPalette {
inline QColor panelTop() { return QColor(0x2a, 0x2a, 0x2a); }
inline QColor panelBottom() { return QColor(0x1d, 0x1d, 0x1d); }
inline QColor edge() { return QColor(0x4a, 0x4a, 0x4a); }
inline QColor hairline() { return QColor(0x12, 0x12, 0x12); }
inline QColor textBright() { return QColor(0xf2, 0xf2, 0xf2); }
inline QColor textNormal() { return QColor(0xc4, 0xc4, 0xc4); }
inline QColor textMuted() { return QColor(0x8e, 0x8e, 0x8e); }
inline QColor textFaint() { return QColor(0x6c, 0x6c, 0x6c); }
inline QColor controlTop() { return QColor(0x40, 0x40, 0x40); }
inline QColor controlBottom() { return QColor(0x35, 0x35, 0x35); }
inline QColor controlEdge() { return QColor(0x5a, 0x5a, 0x5a); }
inline QColor accentLight() { return QColor(0xf2, 0xb6, 0x5e); }
inline QColor accent() { return QColor(0xe3, 0x96, 0x3e); }
inline QColor accentDark() { return QColor(0xc9, 0x7a, 0x2a); }
inline QColor onAccent() { return QColor(0x1e, 0x1a, 0x16); }
} // namespace ArtworkPalette
