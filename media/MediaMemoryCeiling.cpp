#include "media/MediaMemoryCeiling.h"

#include <cstdlib>
#include <unistd.h>

int64_t mediaMemoryCeilingBytes()
{
    if (const char* text = std::getenv("VANTREL_MEMORY_LIMIT_MB")) {
        char* end = nullptr;
        const long long mb = std::strtoll(text, &end, 10);
        if (end != text && *end == '\0' && mb > 0 && mb < (int64_t(1) << 40))
            return int64_t(mb) * 1024 * 1024;
    }
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0)
        return int64_t(8) << 30; // unknown machine: assume 8 GB
    return int64_t(pages) / 4 * 3 * int64_t(pageSize);
}

bool mediaSizeWithinMemoryCeiling(int64_t width, int64_t height)
{
    if (width <= 0 || height <= 0)
        return true;
    const int64_t ceiling = mediaMemoryCeilingBytes();
    // Divide instead of multiplying so a forged header can't overflow the product.
    return width <= ceiling / kDocumentBytesPerPixel / height;
}
