#pragma once
#include "mods/BorderFileStyles.h"
#include <QtGui/QImage>

// The frame picture of one built-in border, at the piece sizes its table row gives.
QImage drawBorderArt(const BorderFileStyle& style);
