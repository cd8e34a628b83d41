#pragma once
#include "core/ImageModVariableData.h"

#include <string>

class ImageModVariableDataFile : public ImageModVariableData {
public:
    ImageModVariableDataFile() = default;
    ImageModVariableDataFile(std::string filePath, std::string dialogFilter)
        : path(std::move(filePath)), filter(std::move(dialogFilter))
    {
    }

    int32_t kind() const override { return kVariableFile; }
    std::unique_ptr<ImageModVariableData> clone() const override
    {
        return std::unique_ptr<ImageModVariableData>(new ImageModVariableDataFile(*this));
    }
    // Old files store an empty path as a lone NUL; both mean "no file".
    bool isEqual(const ImageModVariableData& other) const override
    {
        if (other.kind() != kVariableFile)
            return false;
        return effectivePath(static_cast<const ImageModVariableDataFile&>(other).path) == effectivePath(path);
    }

    std::string path;
    std::string filter;

private:
    static std::string effectivePath(const std::string& p) { return p.size() == 1 && p[0] == '\0' ? std::string() : p; }
};
