#include "filters/FileFilter.h"

namespace {

bool hasFilterExtension(const std::string& path, std::string& baseName)
{
    const size_t slash = path.find_last_of('/');
    const std::string file = slash == std::string::npos ? path : path.substr(slash + 1);
    const size_t dot = file.rfind('.');
    if (dot == std::string::npos)
        return false;
    const std::string ext = file.substr(dot + 1);
    const std::string want = kFilterExtension;
    if (ext.size() != want.size())
        return false;
    for (size_t i = 0; i < ext.size(); ++i) {
        const char c = ext[i] >= 'A' && ext[i] <= 'Z' ? char(ext[i] - 'A' + 'a') : ext[i];
        if (c != want[i])
            return false;
    }
    baseName = file.substr(0, dot);
    return true;
}

} // namespace

FileFilter::FileFilter(const std::string& path, const ModCatalogue& catalogue)
    : ImageModCompound("File Filter")
    , filePath(path)
{
    std::string baseName;
    if (!hasFilterExtension(path, baseName))
        return;
    ModList mods = readFilter(path, catalogue, status);
    for (auto& m : mods)
        addChild(std::move(m));
    for (char& c : baseName) {
        if (c == '_')
            c = ' ';
    }
    name = baseName;
    presetLinkPath = path;
}

std::unique_ptr<ImageMod> FileFilter::newInstance() const
{
    std::unique_ptr<ImageMod> plain = ImageModCompound::newInstance();
    auto* group = static_cast<ImageModCompound*>(plain.get());
    std::unique_ptr<FileFilter> copy(new FileFilter());
    copy->name = name;
    copy->filePath = filePath;
    copy->status = status;
    copy->presetLinkPath = presetLinkPath;
    for (auto& c : group->children)
        copy->addChild(std::move(c));
    return copy;
}
