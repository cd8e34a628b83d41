// The native image reader into each destination kind.
#include "FuzzTempFile.h"
#include "core/FlexImage.h"
#include "media/CompactImage.h"
#include "media/NativeImage.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static FuzzTempFile file("input.vni");
    // A short file with a huge header reads as white past its end: a legitimate gigabyte, but
    // only memory use, not a fault of the reader; keep the runs to what the machine holds.
    if (size >= 20) {
        uint32_t w = 0;
        uint32_t h = 0;
        std::memcpy(&w, data + 12, 4);
        std::memcpy(&h, data + 16, 4);
        if (uint64_t(w) * uint64_t(h) > (uint64_t(1) << 16))
            return 0;
    }
    if (!file.write(data, size))
        return 0;
    FlexImage8 image8;
    ReadNativeImage(file.path, image8);
    FlexImageFloat imageFloat;
    imageFloat.channels = 4;
    ReadNativeImage(file.path, imageFloat);
    CompactImage compact;
    if (ReadNativeImage(file.path, compact) && compact.isEmpty())
        __builtin_trap();
    return 0;
}
