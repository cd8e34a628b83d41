// The document loader over the codec seam. The first byte picks the file's extension (and so the
// route: native reader or the codecs, and which reader the codecs try first); the rest is the file.
#include "FuzzTempFile.h"
#include "core/FlexImage.h"
#include "desktop_only/MediaLoading.h"
#include "media/LoadedMediaInfo.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace {

constexpr const char* kExtensions[] = {"jpg", "png", "tif", "webp", "heic", "exr", "hdr", "vni",
                                       "cr2", "dng", "nef", "psd", "jpeg", "tiff", "txt"};
constexpr size_t kExtensionCount = sizeof kExtensions / sizeof kExtensions[0];

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // Keep decoded photos small: a forged header must be refused by the ceiling, not fill the
    // fuzzer's memory limit. 64 MB allows about 1.6 megapixels.
    setenv("VANTREL_MEMORY_LIMIT_MB", "64", 1);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    static std::unique_ptr<FuzzTempFile> files[kExtensionCount];
    const size_t pick = data[0] % kExtensionCount;
    if (!files[pick])
        files[pick] = std::make_unique<FuzzTempFile>((std::string("input.") + kExtensions[pick]).c_str());
    const FuzzTempFile& file = *files[pick];
    if (!file.write(data + 1, size - 1))
        return 0;

    FlexImageFloat image(1, 1, 4);
    LoadedMediaInfo info;
    MediaLoadStatus status = MediaLoadStatus::Ok;
    const bool loaded = LoadMediaFile(image, file.path, &info, &status);
    // A success must give a real image and say so; a failure must leave the scratch image alone.
    if (loaded && (image.isEmpty() || status != MediaLoadStatus::Ok))
        __builtin_trap();
    if (!loaded && (image.width != 1 || image.height != 1 || status == MediaLoadStatus::Ok))
        __builtin_trap();
    // The path without metadata takes a different branch through the seam.
    FlexImageFloat plain;
    LoadMediaFile(plain, file.path, nullptr, nullptr);
    return 0;
}
