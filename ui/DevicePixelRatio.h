#pragma once
// The primary screen's device pixel ratio, read once at start-up. Widgets multiply their logical
// sizes by it to get pixel sizes; a later move to another screen deliberately changes nothing.
extern float gDevicePixelRatio;
