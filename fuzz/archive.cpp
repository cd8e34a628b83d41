// Archive extraction into a fresh folder per input: nothing may appear outside it. The target
// sits two levels below the sandbox root and the archive beside those levels, so a name that
// climbs out by one or two levels leaves a trace the check sees.
#include "FuzzTempFile.h"
#include "filters/FilterArchive.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>

namespace fs = std::filesystem;

namespace {

// True when folder holds exactly the one entry named only.
bool holdsOnly(const fs::path& folder, const std::string& only)
{
    std::error_code ec;
    int count = 0;
    for (const fs::directory_entry& e : fs::directory_iterator(folder, ec)) {
        if (e.path().filename() != only)
            return false;
        ++count;
    }
    return !ec && count <= 1;
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static FuzzTempFile file("input.mvr");
    if (!file.write(data, size))
        return 0;
    const fs::path sandbox = fs::path(file.folder) / "sandbox";
    const fs::path target = sandbox / "outer" / "target";
    std::error_code ec;
    fs::remove_all(sandbox, ec);
    fs::create_directories(sandbox / "outer", ec);

    const int status = extractArchive(file.path, target.string());
    if (status < 0 || status > 63)
        __builtin_trap();
    // The sandbox root holds only "outer", "outer" only "target", and the archive's folder only
    // the archive and the sandbox.
    if (!holdsOnly(sandbox, "outer") || !holdsOnly(sandbox / "outer", "target"))
        __builtin_trap();
    for (const fs::directory_entry& e : fs::directory_iterator(file.folder, ec)) {
        const fs::path leaf = e.path().filename();
        if (leaf != "input.mvr" && leaf != "sandbox")
            __builtin_trap();
    }
    // No link was ever made inside the target.
    for (auto it = fs::recursive_directory_iterator(target, ec); !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
        if (it->is_symlink())
            __builtin_trap();
    }
    fs::remove_all(sandbox, ec);
    return 0;
}
