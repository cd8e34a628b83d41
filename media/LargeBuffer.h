#pragma once
#include <cstddef>

// Asks the kernel to back a large, untouched buffer with huge pages: a decoded photo otherwise
// costs one page fault per 4 KB on first touch, which dominates a plain copy. Harmless elsewhere.
void adviseLargeBuffer(void* data, size_t bytes);
