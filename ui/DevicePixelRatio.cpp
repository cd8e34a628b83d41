#include "ui/DevicePixelRatio.h"

// 1 until main() reads the screen, so widgets built in tests without a screen still lay out.
float gDevicePixelRatio = 1.0f;
