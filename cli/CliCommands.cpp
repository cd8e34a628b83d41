#include "cli/CliCommands.h"

#include "cli/CliBatch.h"
#include "core/ModCatalogue.h"
#include "desktop_only/MediaCodec.h"
#include "desktop_only/MediaLoading.h"
#include "filters/MultiData.h"
#include "filters/FilterArchive.h"
#include "filters/PresetLibrary.h"
#include "media/ColorTransformSet.h"
#include "media/MediaFormats.h"
#include "mods/FilterLutExport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdlib>
#include <map>
#include <ostream>
#include <set>

namespace {

QString q(const std::string& s)
{
    return QFile::decodeName(s.c_str());
}

const char* const kMainHelp =
    "Usage: vantrel-cli COMMAND [OPTIONS]\n"
    "\n"
    "Commands:\n"
    "  render      render photos through a filter file or preset\n"
    "  batch       render every photo of a folder into another folder\n"
    "  export-lut  write a filter as a 33-point .cube look-up table\n"
    "  filter      filter file tools (filter upgrade IN.vnf OUT.vnf)\n"
    "  info        size, depth, orientation, profile and camera of a photo\n"
    "  mods        every tile the program knows\n"
    "  presets     the preset library\n"
    "\n"
    "vantrel-cli COMMAND --help describes one command.\n"
    "Exit status: 0 all done, 1 some files failed (all others written), 2 bad usage (nothing written).\n";

const char* const kRenderHelp =
    "Usage: vantrel-cli render (-f LOOK.vnf | -p \"Group/Preset\") [OPTIONS] INPUT...\n"
    "\n"
    "Renders each INPUT (a photo, or a folder of photos) the way the editor saves it.\n"
    "  -f FILE          filter file to apply\n"
    "  -p GROUP/NAME    preset to apply (after the filter file's tiles when both are given)\n"
    "  -o PATH          with one input photo: the output file (its extension picks the type);\n"
    "                   otherwise: the output folder (made when missing). Default: beside each input\n"
    "  --type T         jpg, png, tif, png16, tif16 or vni (default jpg, or the -o file's extension)\n"
    "  --quality Q      0..100 for lossy types (default 85)\n"
    "  --width W --height H  output size (default: the size the filter's geometry gives)\n"
    "  --postfix TEXT   added to output names made from input names (default _batch)\n"
    "  --jobs N         files rendered at once (default 1; bounded by memory)\n"
    "  --presets-dir D  data folder holding Presets/ (default: the program's data folder)\n";

const char* const kBatchHelp =
    "Usage: vantrel-cli batch (-f LOOK.vnf | -p \"Group/Preset\") INPUT_DIR OUTPUT_DIR [OPTIONS]\n"
    "\n"
    "Renders every photo of INPUT_DIR (name order, unknown files skipped, no sub-folders) into\n"
    "OUTPUT_DIR as base name + postfix + \".\" + extension. Existing files are replaced.\n"
    "  --postfix TEXT   default _batch\n"
    "  --type T         jpg, png, tif, png16, tif16 or vni (default jpg)\n"
    "  --quality Q      0..100 (default 85)\n"
    "  --jobs N         files rendered at once (default 1). A file starts only when the memory its\n"
    "                   size needs (about 64 bytes a pixel) fits, with those running, in three\n"
    "                   quarters of the available memory\n"
    "  --presets-dir D  data folder holding Presets/\n";

const char* const kExportHelp =
    "Usage: vantrel-cli export-lut (-f LOOK.vnf | -p \"Group/Preset\") -o LOOK.cube\n"
    "\n"
    "Writes the colour part of the filter as a 33-point .cube table; tiles that change the\n"
    "picture's shape are left out.\n";

const char* const kFilterHelp =
    "Usage: vantrel-cli filter upgrade IN.vnf OUT.vnf\n"
    "\n"
    "Reads a filter file of any generation and writes it in the current form. Says when the file\n"
    "came from a newer program or held tiles this program doesn't know (dropped); exits 1 then.\n";

const char* const kInfoHelp =
    "Usage: vantrel-cli info FILE...\n"
    "\n"
    "Prints size, bit depth, orientation, colour profile kind and name, camera, lens and date.\n";

const char* const kModsHelp =
    "Usage: vantrel-cli mods\n"
    "\n"
    "Lists every catalogue entry: file name, label, section and newest version, tab-separated.\n";

const char* const kPresetsHelp =
    "Usage: vantrel-cli presets [--presets-dir D]\n"
    "\n"
    "Lists the preset library as Group/Name, the form -p takes.\n";

// A parsed command line: options that take a value, flags, and the words in between.
struct CliArgs {
    std::map<std::string, std::string> values;
    std::set<std::string> flags;
    std::vector<std::string> positional;
};

bool parseArgs(const std::vector<std::string>& args, size_t first, const std::set<std::string>& valued,
               CliArgs& parsed, std::string& error)
{
    for (size_t i = first; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--help" || a == "-h") {
            parsed.flags.insert("--help");
        } else if (valued.count(a)) {
            if (i + 1 >= args.size()) {
                error = "option " + a + " needs a value";
                return false;
            }
            parsed.values[a] = args[++i];
        } else if (a.size() > 1 && a[0] == '-') {
            error = "unknown option " + a;
            return false;
        } else {
            parsed.positional.push_back(a);
        }
    }
    return true;
}

bool parseInt(const std::string& text, int32_t lo, int32_t hi, int32_t& value)
{
    if (text.empty())
        return false;
    char* end = nullptr;
    const long v = std::strtol(text.c_str(), &end, 10);
    if (*end != '\0' || v < lo || v > hi)
        return false;
    value = static_cast<int32_t>(v);
    return true;
}

int badUsage(std::ostream& err, const std::string& reason, const char* help)
{
    err << "vantrel-cli: " << reason << "\n\n" << help;
    return kCliBadUsage;
}

std::string dataFolderFrom(const CliArgs& a)
{
    auto it = a.values.find("--presets-dir");
    if (it == a.values.end())
        return dataFolder();
    std::string folder = it->second;
    if (folder.empty() || folder.back() != '/')
        folder += '/';
    return folder;
}

// -f and -p into a look; prints the reason and gives false when neither is usable.
bool lookFrom(const CliArgs& a, std::ostream& err, CliLook& look)
{
    const std::string filter = a.values.count("-f") ? a.values.at("-f") : std::string();
    const std::string preset = a.values.count("-p") ? a.values.at("-p") : std::string();
    if (filter.empty() && preset.empty()) {
        err << "vantrel-cli: a filter file (-f) or a preset (-p) is needed\n";
        return false;
    }
    std::string error;
    if (!loadCliLook(filter, preset, dataFolderFrom(a), look, error)) {
        err << "vantrel-cli: " << error << "\n";
        return false;
    }
    return true;
}

// --quality, --width/--height and --jobs shared by render and batch.
bool renderSettingsFrom(const CliArgs& a, CliRenderSettings& s, std::string& error)
{
    if (a.values.count("--quality")) {
        int32_t qv = 0;
        if (!parseInt(a.values.at("--quality"), 0, 100, qv)) {
            error = "--quality takes a whole number from 0 to 100";
            return false;
        }
        s.quality = static_cast<float>(qv);
    }
    const bool w = a.values.count("--width") != 0, h = a.values.count("--height") != 0;
    if (w != h) {
        error = "--width and --height go together";
        return false;
    }
    if (w && (!parseInt(a.values.at("--width"), 1, 1 << 20, s.width)
              || !parseInt(a.values.at("--height"), 1, 1 << 20, s.height))) {
        error = "--width and --height take whole numbers above 0";
        return false;
    }
    if (a.values.count("--jobs") && !parseInt(a.values.at("--jobs"), 1, 256, s.jobs)) {
        error = "--jobs takes a whole number from 1 to 256";
        return false;
    }
    return true;
}

bool writableType(const std::string& extension)
{
    return extension == "vni" || canEncodeMediaPath("x." + extension);
}

bool isFolder(const std::string& path)
{
    return QFileInfo(q(path)).isDir();
}

bool makeFolder(const std::string& path, std::ostream& err)
{
    if (QDir().mkpath(q(path)))
        return true;
    err << "vantrel-cli: " << path << ": can't make the output folder\n";
    return false;
}

int finish(int32_t failed, size_t total, std::ostream& err)
{
    if (failed > 0) {
        err << "vantrel-cli: " << failed << " of " << total << " files failed\n";
        return kCliSomeFailed;
    }
    return kCliOk;
}

const std::set<std::string> kRenderOptions = { "-f", "-p", "-o", "--quality", "--width", "--height", "--type",
                                               "--postfix", "--jobs", "--presets-dir" };

int commandRender(const std::vector<std::string>& args, std::ostream& out, std::ostream& err, bool terminal)
{
    CliArgs a;
    std::string error;
    if (!parseArgs(args, 1, kRenderOptions, a, error))
        return badUsage(err, error, kRenderHelp);
    if (a.flags.count("--help")) {
        out << kRenderHelp;
        return kCliOk;
    }
    if (a.positional.empty())
        return badUsage(err, "no input given", kRenderHelp);
    CliRenderSettings settings;
    if (!renderSettingsFrom(a, settings, error))
        return badUsage(err, error, kRenderHelp);
    CliOutputType type { "jpg", 0 };
    const bool typeGiven = a.values.count("--type") != 0;
    if (typeGiven && !parseOutputType(a.values.at("--type"), type))
        return badUsage(err, "unknown --type " + a.values.at("--type"), kRenderHelp);
    const std::string postfix = a.values.count("--postfix") ? a.values.at("--postfix") : std::string("_batch");
    const std::string outPath = a.values.count("-o") ? a.values.at("-o") : std::string();

    // One photo with -o naming a file: that file, its extension the type unless --type says.
    std::vector<CliRenderItem> items;
    const bool singleFile = a.positional.size() == 1 && !isFolder(a.positional[0]);
    const bool outIsFolder = !(singleFile && !outPath.empty() && !isFolder(outPath) && outPath.back() != '/');
    if (!outIsFolder) {
        CliRenderItem item { a.positional[0], outPath, typeGiven ? type.bits : 0 };
        const std::string ext = mediaPathExtension(outPath);
        if (typeGiven && ext != type.extension)
            item.output = outPath.substr(0, ext.empty() ? outPath.size() : outPath.size() - ext.size() - 1) + "."
                + type.extension;
        else if (!writableType(ext))
            return badUsage(err, "can't write files of the type of " + outPath + " (use --type)", kRenderHelp);
        items.push_back(item);
    } else {
        if (!typeGiven)
            type.bits = 0; // the default jpg: 8 bits either way
        for (const std::string& input : a.positional) {
            std::vector<std::string> files;
            std::string folder = outPath;
            if (isFolder(input)) {
                files = batchInputFiles(input);
                if (folder.empty())
                    folder = input;
            } else {
                files.push_back(input);
                if (folder.empty()) {
                    const QString dir = QFileInfo(q(input)).path();
                    folder = QFile::encodeName(dir).toStdString();
                }
            }
            for (const std::string& file : files)
                items.push_back({ file, batchOutputPath(folder, file, postfix, type.extension), type.bits });
        }
        if (items.empty()) {
            err << "vantrel-cli: No media was found to process.\n";
            return kCliSomeFailed;
        }
    }
    if (!writableType(type.extension))
        return badUsage(err, "can't write " + type.extension + " files here", kRenderHelp);

    CliLook look;
    if (!lookFrom(a, err, look))
        return kCliBadUsage;
    if (outIsFolder && !outPath.empty() && !makeFolder(outPath, err))
        return kCliSomeFailed;
    const int32_t failed = renderItems(items, look.list(), settings, out, err, terminal);
    return finish(failed, items.size(), err);
}

int commandBatch(const std::vector<std::string>& args, std::ostream& out, std::ostream& err, bool terminal)
{
    CliArgs a;
    std::string error;
    if (!parseArgs(args, 1, kRenderOptions, a, error))
        return badUsage(err, error, kBatchHelp);
    if (a.flags.count("--help")) {
        out << kBatchHelp;
        return kCliOk;
    }
    if (a.positional.size() != 2)
        return badUsage(err, "batch takes INPUT_DIR and OUTPUT_DIR", kBatchHelp);
    if (a.values.count("-o") || a.values.count("--width"))
        return badUsage(err, "batch keeps each photo's size and takes OUTPUT_DIR instead of -o", kBatchHelp);
    CliRenderSettings settings;
    if (!renderSettingsFrom(a, settings, error))
        return badUsage(err, error, kBatchHelp);
    CliOutputType type { "jpg", 0 };
    if (a.values.count("--type") && !parseOutputType(a.values.at("--type"), type))
        return badUsage(err, "unknown --type " + a.values.at("--type"), kBatchHelp);
    if (!writableType(type.extension))
        return badUsage(err, "can't write " + type.extension + " files here", kBatchHelp);
    const std::string postfix = a.values.count("--postfix") ? a.values.at("--postfix") : std::string("_batch");
    const std::string& inDir = a.positional[0];
    const std::string& outDir = a.positional[1];
    if (!isFolder(inDir))
        return badUsage(err, inDir + " is not a folder", kBatchHelp);

    CliLook look;
    if (!lookFrom(a, err, look))
        return kCliBadUsage;
    const std::vector<std::string> files = batchInputFiles(inDir);
    if (files.empty()) {
        err << "vantrel-cli: " << inDir << ": No media was found to batch process.\n";
        return kCliSomeFailed;
    }
    if (!makeFolder(outDir, err))
        return kCliSomeFailed;
    std::vector<CliRenderItem> items;
    for (const std::string& file : files)
        items.push_back({ file, batchOutputPath(outDir, file, postfix, type.extension), type.bits });
    const int32_t failed = renderItems(items, look.list(), settings, out, err, terminal);
    return finish(failed, items.size(), err);
}

int commandExportLut(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    CliArgs a;
    std::string error;
    if (!parseArgs(args, 1, { "-f", "-p", "-o", "--presets-dir" }, a, error))
        return badUsage(err, error, kExportHelp);
    if (a.flags.count("--help")) {
        out << kExportHelp;
        return kCliOk;
    }
    if (!a.positional.empty() || !a.values.count("-o"))
        return badUsage(err, "export-lut takes -f or -p and -o OUT.cube only", kExportHelp);
    CliLook look;
    if (!lookFrom(a, err, look))
        return kCliBadUsage;
    const std::string& path = a.values.at("-o");
    if (!exportFilterLut(look.list(), path)) {
        err << "vantrel-cli: " << path << ": can't write the table\n";
        return kCliSomeFailed;
    }
    out << path << "\n";
    return kCliOk;
}

int commandFilter(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    CliArgs a;
    std::string error;
    if (!parseArgs(args, 1, {}, a, error))
        return badUsage(err, error, kFilterHelp);
    if (a.flags.count("--help")) {
        out << kFilterHelp;
        return kCliOk;
    }
    if (a.positional.size() != 3 || a.positional[0] != "upgrade")
        return badUsage(err, "filter takes: upgrade IN.vnf OUT.vnf", kFilterHelp);
    const std::string& in = a.positional[1];
    const std::string& outPath = a.positional[2];
    if (!QFileInfo(q(in)).isFile())
        return badUsage(err, in + ": no such file", kFilterHelp);
    const ModCatalogueContents catalogue = buildModCatalogue();
    int32_t status = 0;
    const ModList mods = readFilter(in, catalogue.mods, status);
    out << in << ": " << filterReadStatusText(status) << "\n";
    if (mods.empty()) {
        err << "vantrel-cli: " << in << ": no tile could be read; nothing written\n";
        return kCliSomeFailed;
    }
    if (!writeFilter(mods, outPath)) {
        err << "vantrel-cli: " << outPath << ": can't write the filter\n";
        return kCliSomeFailed;
    }
    out << outPath << ": written with " << mods.size() << " tiles in version " << kFilterFileVersion << "\n";
    return status == kFilterReadOk ? kCliOk : kCliSomeFailed;
}

std::string propertyOf(const MediaProperties* p, std::initializer_list<const char*> keys)
{
    if (!p)
        return {};
    for (const char* key : keys) {
        const std::string v = p->value(key);
        if (!v.empty())
            return v;
    }
    return {};
}

int commandInfo(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    CliArgs a;
    std::string error;
    if (!parseArgs(args, 1, {}, a, error))
        return badUsage(err, error, kInfoHelp);
    if (a.flags.count("--help")) {
        out << kInfoHelp;
        return kCliOk;
    }
    if (a.positional.empty())
        return badUsage(err, "no file given", kInfoHelp);
    int32_t failed = 0;
    for (const std::string& path : a.positional) {
        if (isNativeImagePath(path)) {
            FlexImageFloat image(1, 1, 4);
            LoadedMediaInfo info;
            if (!LoadMediaFile(image, path, &info)) {
                err << "vantrel-cli: " << path << ": can't load the file\n";
                ++failed;
                continue;
            }
            out << path << "\n  size: " << image.width << " x " << image.height << "\n  format: vni\n";
            continue;
        }
        MediaDecoded d;
        const MediaCodecStatus s = decodeMediaFile(path, d, true);
        if (s != MediaCodecStatus::Ok) {
            err << "vantrel-cli: " << path << ": "
                << (s == MediaCodecStatus::TooLarge ? "the image is too large" : "can't load the file (missing, unreadable or damaged)")
                << "\n";
            ++failed;
            continue;
        }
        const ColorSpaceKind kind = classifyIccProfile(d.iccProfile);
        const MediaProperties* p = d.properties.get();
        const std::string make = propertyOf(p, { "Exif.Image.Make" });
        const std::string model = propertyOf(p, { "Exif.Image.Model" });
        out << path << "\n"
            << "  size: " << d.bitmap.width << " x " << d.bitmap.height
            << (std::max(d.orientation, mediaPropertiesOrientation(p)) >= 5
                    ? " stored, " + std::to_string(d.bitmap.height) + " x " + std::to_string(d.bitmap.width) + " upright"
                    : std::string())
            << "\n"
            << "  format: " << d.formatName << "\n"
            << "  bits per component: " << d.bitmap.bitsPerComponent << (d.sourceIsRgb ? "" : " (converted to RGB)")
            << "\n"
            << "  channels: " << d.bitmap.samplesPerPixel() << "\n"
            << "  orientation: " << std::max(d.orientation, mediaPropertiesOrientation(p)) << "\n"
            << "  colour profile: " << (d.iccProfile.empty() ? "none (taken as sRGB)" : colorSpaceKindName(kind))
            << (d.profileName.empty() ? "" : " \"" + d.profileName + "\"") << "\n"
            << "  camera: " << (make.empty() && model.empty() ? "-" : make + (make.empty() ? "" : " ") + model) << "\n"
            << "  lens: " << [&] {
                   const std::string lens = propertyOf(p, { "Exif.Photo.LensModel", "Exif.CanonCs.LensType",
                                                           "Exif.NikonLd3.LensIDNumber", "Xmp.aux.Lens" });
                   return lens.empty() ? std::string("-") : lens;
               }()
            << "\n"
            << "  date: " << [&] {
                   const std::string date = propertyOf(p, { "Exif.Photo.DateTimeOriginal", "Exif.Image.DateTime",
                                                           "Xmp.exif.DateTimeOriginal" });
                   return date.empty() ? std::string("-") : date;
               }()
            << "\n";
    }
    return failed ? kCliSomeFailed : kCliOk;
}

int commandMods(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    CliArgs a;
    std::string error;
    if (!parseArgs(args, 1, {}, a, error) || !a.positional.empty())
        return badUsage(err, error.empty() ? "mods takes no arguments" : error, kModsHelp);
    if (a.flags.count("--help")) {
        out << kModsHelp;
        return kCliOk;
    }
    const ModCatalogueContents c = buildModCatalogue();
    auto print = [&](const ModCatalogueContents::Range& range, const std::string& section) {
        for (const ImageMod* mod : c.modsIn(range))
            out << mod->name << "\t" << mod->displayName << "\t" << section << "\t" << mod->version << "\n";
    };
    out << "name\tlabel\tsection\tversion\n";
    for (const auto& section : c.sections)
        print(section, section.title);
    print(c.unlisted, "Unlisted");
    print(c.styles, "Camera Styles");
    return kCliOk;
}

int commandPresets(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    CliArgs a;
    std::string error;
    if (!parseArgs(args, 1, { "--presets-dir" }, a, error) || !a.positional.empty())
        return badUsage(err, error.empty() ? "presets takes no arguments" : error, kPresetsHelp);
    if (a.flags.count("--help")) {
        out << kPresetsHelp;
        return kCliOk;
    }
    const CliPresetSource source(dataFolderFrom(a));
    if (source.libraryFolder().empty()) {
        err << "vantrel-cli: no preset library found in " << dataFolderFrom(a) << "\n";
        return kCliSomeFailed;
    }
    const PresetLibrary library(source.libraryFolder());
    for (const std::string& group : library.groups())
        for (std::string name : library.presetsIn(group)) {
            const std::string suffix = std::string(".") + kFilterExtension;
            if (name.size() > suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0)
                name.erase(name.size() - suffix.size());
            out << group << "/" << name << "\n";
        }
    return kCliOk;
}

} // namespace

std::vector<ImageMod*> CliLook::list() const
{
    std::vector<ImageMod*> list;
    for (const auto& mod : mods)
        list.push_back(mod.get());
    return list;
}

CliPresetSource::CliPresetSource(std::string dataFolder)
{
    if (QDir(q(dataFolder + "Presets")).exists()) {
        folder_ = dataFolder;
        return;
    }
    if (!QFile::exists(QString::fromLatin1(PresetLibrary::kDefaultSetResource)))
        return;
    unpacked_ = std::make_unique<QTemporaryDir>();
    if (!unpacked_->isValid())
        return;
    const std::string folder = QFile::encodeName(unpacked_->path()).toStdString() + "/";
    if (extractResourceArchive(PresetLibrary::kDefaultSetResource, folder + "Presets") == kArchiveOk)
        folder_ = folder;
}

CliPresetSource::~CliPresetSource() = default;

std::string filterReadStatusText(int32_t status)
{
    switch (status) {
    case kFilterReadOk: return "read completely";
    case kFilterReadNewer: return "written by a newer version of the program; what could be read was kept";
    case kFilterReadDamaged: return "damaged, or holds tiles this program doesn't know; those were dropped";
    default: return "unknown read status " + std::to_string(status);
    }
}

bool loadCliLook(const std::string& filterPath, const std::string& preset, const std::string& dataFolder,
                 CliLook& look, std::string& error)
{
    const ModCatalogueContents catalogue = buildModCatalogue();
    ModList mods;
    auto readInto = [&](const std::string& path, const std::string& what) {
        if (!QFileInfo(q(path)).isFile()) {
            error = what + ": no such file";
            return false;
        }
        int32_t status = 0;
        ModList read = readFilter(path, catalogue.mods, status);
        if (status == kFilterReadDamaged) {
            error = what + ": " + filterReadStatusText(status);
            return false;
        }
        for (auto& mod : read)
            mods.push_back(std::move(mod));
        return true;
    };
    if (!filterPath.empty() && !readInto(filterPath, filterPath))
        return false;
    if (!preset.empty()) {
        const size_t slash = preset.find_last_of('/');
        if (slash == std::string::npos || slash == 0 || slash + 1 == preset.size()) {
            error = "preset \"" + preset + "\": give it as Group/Name";
            return false;
        }
        const CliPresetSource source(dataFolder);
        if (source.libraryFolder().empty()) {
            error = "preset \"" + preset + "\": no preset library found";
            return false;
        }
        const PresetLibrary library(source.libraryFolder());
        const std::string path = library.presetPath(preset.substr(slash + 1), preset.substr(0, slash));
        if (!QFileInfo(q(path)).isFile()) {
            error = "preset \"" + preset + "\": no such preset (vantrel-cli presets lists them)";
            return false;
        }
        if (!readInto(path, "preset \"" + preset + "\""))
            return false;
    }
    look.mods = std::move(mods);
    return true;
}

int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err, bool terminal)
{
    if (args.empty())
        return badUsage(err, "no command given", kMainHelp);
    const std::string& command = args[0];
    if (command == "--help" || command == "-h" || command == "help") {
        out << kMainHelp;
        return kCliOk;
    }
    if (command == "render")
        return commandRender(args, out, err, terminal);
    if (command == "batch")
        return commandBatch(args, out, err, terminal);
    if (command == "export-lut")
        return commandExportLut(args, out, err);
    if (command == "filter")
        return commandFilter(args, out, err);
    if (command == "info")
        return commandInfo(args, out, err);
    if (command == "mods")
        return commandMods(args, out, err);
    if (command == "presets")
        return commandPresets(args, out, err);
    return badUsage(err, "unknown command " + command, kMainHelp);
}
