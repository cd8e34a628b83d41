#pragma once
#include <QtGui/QImage>

// A lake landscape in late-afternoon light, painted from shapes and seeded noise so the program
// can ship a photo-like sample that is entirely its own. 1600 x 1067 like a 3:2 camera frame.
QImage renderSampleScene(int width = 1600, int height = 1067);
