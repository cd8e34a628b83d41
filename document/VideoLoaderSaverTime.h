#pragma once
#include <cstdint>

// A position in a video: value ticks of a time base (30000 per second throughout the program).
struct VideoLoaderSaverTime {
    int64_t value = 0;
    int32_t timeBase = 30000;
};
