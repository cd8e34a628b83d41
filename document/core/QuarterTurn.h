#pragma once
#include "core/FlexImage.h"

// Turns the image a quarter in place (clockwise when `clockwise`): the record stays the same object,
// so whoever points at it keeps pointing at the turned picture. False, unchanged, when empty or when
// the scratch copy can't be made.
bool turnQuarter(FlexImageFloat& image, bool clockwise);
