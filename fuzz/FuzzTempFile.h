#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

// The readers under test take paths: each input is written to one file in a private folder made
// once per process (so parallel jobs never share it) and removed when the process ends.
class FuzzTempFile {
public:
    explicit FuzzTempFile(const char* fileName)
    {
        char pattern[] = "/tmp/vantrel-fuzz-XXXXXX";
        if (mkdtemp(pattern) != nullptr)
            folder = pattern;
        path = folder + "/" + fileName;
    }
    ~FuzzTempFile()
    {
        unlink(path.c_str());
        rmdir(folder.c_str());
    }

    // False when the folder could not be made or the bytes not written.
    bool write(const uint8_t* data, size_t size) const
    {
        if (folder.empty())
            return false;
        FILE* f = std::fopen(path.c_str(), "wb");
        if (f == nullptr)
            return false;
        const bool ok = std::fwrite(data, 1, size, f) == size;
        return std::fclose(f) == 0 && ok;
    }

    std::string folder;
    std::string path;
};
