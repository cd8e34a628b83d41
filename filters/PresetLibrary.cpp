#include "filters/PresetLibrary.h"

#include "filters/FilterArchive.h"
#include "filters/MultiData.h"
#include "filters/PreferenceKeys.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace {

QString q(const std::string& s)
{
    return QFile::decodeName(s.c_str());
}

std::string s8(const QString& s)
{
    return QFile::encodeName(s).toStdString();
}

// Copies the content of from into to, folders and files; links are not followed, so a backup
// never pulls in what lies outside the tree.
bool copyTree(const QString& from, const QString& to)
{
    if (!QDir().mkpath(to))
        return false;
    bool ok = true;
    QDirIterator it(from, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
        QDirIterator::Subdirectories);
    const QDir base(from);
    while (it.hasNext()) {
        it.next();
        const QFileInfo info = it.fileInfo();
        if (info.isSymLink())
            continue;
        const QString dest = to + QLatin1Char('/') + base.relativeFilePath(it.filePath());
        if (info.isDir())
            ok = QDir().mkpath(dest) && ok;
        else if (info.isFile())
            ok = QFile::copy(it.filePath(), dest) && ok;
    }
    return ok;
}

bool holdsAnything(const QString& folder)
{
    return !QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System).isEmpty();
}

} // namespace

PresetLibrary::PresetLibrary(std::string dataFolder, std::string defaultSetArchive)
    : dataFolder_(std::move(dataFolder))
    , defaultSetArchive_(std::move(defaultSetArchive))
{
    if (dataFolder_.empty() || dataFolder_.back() != '/')
        dataFolder_ += '/';
}

PresetLibrary::StartupResult PresetLibrary::startupCheck(MultiData& prefs)
{
    StartupResult result;
    const QString presets = q(presetsFolder());
    QDir().mkpath(presets);
    const float stored = prefs.getFloat(PrefKeys::kDefaultFiltersVersion, PrefKeys::kDefaultFiltersVersionDefault);
    if (stored == kDefaultSetVersion)
        return result;

    // An empty folder (a first run) has nothing worth an archive.
    if (holdsAnything(presets)) {
        for (int n = 1; n < 1000000; ++n) {
            const QString candidate = q(archiveFolder()) + QStringLiteral("Archive %1").arg(n);
            if (QFileInfo(candidate).isDir() || QFileInfo(candidate).exists())
                continue;
            if (copyTree(presets, candidate))
                result.archiveNumber = n;
            break;
        }
        // Without a backup the user's edits to the former set would be overwritten: try again
        // at the next start.
        if (result.archiveNumber == 0)
            return result;
        updated_ = true;
    }
    result.archiveStatus = extractResourceArchive(defaultSetArchive_, presetsFolder());
    result.unpacked = (result.archiveStatus & kArchiveNotOpened) == 0;
    if (result.unpacked)
        prefs.setFloat(PrefKeys::kDefaultFiltersVersion, kDefaultSetVersion);
    return result;
}

std::string PresetLibrary::presetPath(const std::string& name, const std::string& group) const
{
    return presetsFolder() + group + "/" + name + "." + kFilterExtension;
}

PresetLibrary::SaveResult PresetLibrary::saveToPresets(const ModList& mods, const std::string& name, bool overwrite,
    const std::string& group) const
{
    if (name.empty())
        return kNoName;
    for (const std::string& part : { name, group }) {
        if (part.empty() || part == "." || part == ".." || part.find('/') != std::string::npos
            || part.find('\0') != std::string::npos)
            return kBadName;
    }
    if (mods.empty())
        return kNothingToSave;
    const std::string path = presetPath(name, group);
    if (!overwrite && QFileInfo::exists(q(path)))
        return kNeedsOverwrite;
    if (!QDir().mkpath(q(presetsFolder() + group)))
        return kWriteFailed;
    return writeFilter(mods, path) ? kSaved : kWriteFailed;
}

std::vector<std::string> PresetLibrary::groups() const
{
    std::vector<std::string> out;
    const QStringList names = QDir(q(presetsFolder())).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString& n : names)
        out.push_back(s8(n));
    return out;
}

std::vector<std::string> PresetLibrary::presetsIn(const std::string& group) const
{
    std::vector<std::string> out;
    const QStringList names = QDir(q(presetsFolder() + group))
                                  .entryList({ QStringLiteral("*.") + QLatin1String(kFilterExtension) },
                                      QDir::Files, QDir::Name);
    for (const QString& n : names)
        out.push_back(s8(n));
    return out;
}
