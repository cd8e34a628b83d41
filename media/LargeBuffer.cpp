#include "media/LargeBuffer.h"

#include <cstdint>
#include <sys/mman.h>

void adviseLargeBuffer(void* data, size_t bytes)
{
#ifdef MADV_HUGEPAGE
    constexpr uintptr_t kHuge = uintptr_t(2) << 20;
    if (!data || bytes < 4 * kHuge)
        return;
    // Only whole huge pages inside the buffer.
    const uintptr_t begin = (reinterpret_cast<uintptr_t>(data) + kHuge - 1) & ~(kHuge - 1);
    const uintptr_t end = (reinterpret_cast<uintptr_t>(data) + bytes) & ~(kHuge - 1);
    if (end > begin)
        madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#else
    (void)data;
    (void)bytes;
#endif
}
