#pragma once
#include "core/ModCatalogue.h"
#include "filters/XmlNode.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class ImageMod;

// A filter file (.vnf) is a sequence of mods as XML text; files of the generations "2.0", "3" and
// "4" load alike. The writer always writes generation 4.

inline constexpr const char* kFilterExtension = "vnf";
inline constexpr int32_t kFilterFileVersion = 4;

enum FilterReadStatus : int32_t {
    kFilterReadOk = 0,
    kFilterReadNewer = 1, // the file's version is 5 or more; all that could be read was read
    kFilterReadDamaged = 2, // no filter in the file, or at least one mod could not be made
};

using ModList = std::vector<std::unique_ptr<ImageMod>>;

// Names in files are looked up in a ModCatalogue (core/ModCatalogue.h); the last match wins.

// Builds the document for the list: a root "file" holding one "filter" element.
XmlNode filterToXml(const std::vector<const ImageMod*>& mods);
// Writes the list. An empty list writes nothing, creates no file and gives false; otherwise
// false only when the file can't be opened.
bool writeFilter(const std::vector<const ImageMod*>& mods, const std::string& path);
bool writeFilter(const ModList& mods, const std::string& path);

// Reads the mods of a document read into root (its first child must be the "filter" element).
ModList filterFromXml(const XmlNode& root, const ModCatalogue& catalogue, int32_t& status);
// Reads a filter file; the list belongs to the caller.
ModList readFilter(const std::string& path, const ModCatalogue& catalogue, int32_t& status);

// The text form of one variable's value as the writer puts it ("%f" numbers), and the reader's
// rules for it; shared with undo and the plug-in hand-back.
class ImageModVariable;
XmlNode variableToXml(const ImageModVariable& variable);
// Applies one "var" element to the variable; false when the element was ignored.
bool applyVariableXml(ImageModVariable& variable, const XmlNode& element);
