#include "filters/MultiData.h"

#include "core/SafeFileWriter.h"

#include "filters/TextNumbers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

constexpr const char* kTypeInt = "int";
constexpr const char* kTypeBool = "bool";
constexpr const char* kTypeFloat = "float";
constexpr const char* kTypeString = "string";
constexpr const char* kTypeStringArray = "string array";
constexpr const char* kItemTag = "Item";

std::vector<std::string> itemsOf(const XmlNode& e)
{
    std::vector<std::string> out;
    for (const XmlNode& c : e.children) {
        if (c.tag == kItemTag)
            out.push_back(c.text);
    }
    return out;
}

bool parseBool(const std::string& text)
{
    std::string t;
    for (char c : text) {
        if (c != ' ' && c != '\t' && c != '\n' && c != '\r')
            t.push_back(char(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c));
    }
    if (t == "true" || t == "yes")
        return true;
    return parseTruncatedInt(t) != 0;
}

// A damaged tag can leave an attribute whose name or value the writer can't put back as it was
// read (a stray quote); written, it would garble the entry's tag on the next read.
bool carriesBack(const XmlNode& e)
{
    for (size_t i = 0; i < e.attrNames.size(); ++i) {
        if (!MultiData::isValidKey(e.attrNames[i]) || e.attrValues[i].find('"') != std::string::npos)
            return false;
    }
    return true;
}

} // namespace

MultiData::MultiData()
    : store(kRootTag)
{
}

MultiData& MultiData::global()
{
    static MultiData instance;
    return instance;
}

bool MultiData::isValidKey(const std::string& key)
{
    if (key.empty() || key[0] == '?' || key[0] == '!' || key[0] == '/')
        return false;
    for (char c : key) {
        switch (c) {
        case ' ': case '\t': case '\n': case '\r': case '<': case '>': case '/': case '"': case '=': case '\0':
            return false;
        default:
            break;
        }
    }
    return true;
}

bool MultiData::isStorableText(const std::string& value)
{
    // The scanner ends text at '<' and takes a '>' just before it for the end of a tag.
    return value.find('<') == std::string::npos && value.find('\0') == std::string::npos
        && (value.empty() || value.back() != '>');
}

XmlNode* MultiData::find(const std::string& key)
{
    for (XmlNode& e : store.children) {
        if (e.tag == key)
            return &e;
    }
    return nullptr;
}

const XmlNode* MultiData::find(const std::string& key) const
{
    for (const XmlNode& e : store.children) {
        if (e.tag == key)
            return &e;
    }
    return nullptr;
}

XmlNode& MultiData::entry(const std::string& key)
{
    if (XmlNode* e = find(key))
        return *e;
    return store.addChild(XmlNode(key));
}

const XmlNode* MultiData::getOrCreate(const std::string& key, const char* type, const std::string& defaultText)
{
    if (const XmlNode* e = find(key))
        return e;
    if (!isValidKey(key) || !isStorableText(defaultText))
        return nullptr;
    XmlNode& e = store.addChild(XmlNode(key, defaultText));
    e.setAttribute("type", type);
    return &e;
}

std::string MultiData::getString(const std::string& key, const std::string& defaultValue)
{
    std::lock_guard<std::mutex> lock(mutex);
    const XmlNode* e = getOrCreate(key, kTypeString, defaultValue);
    return e ? e->text : defaultValue;
}

bool MultiData::getBool(const std::string& key, bool defaultValue)
{
    std::lock_guard<std::mutex> lock(mutex);
    const XmlNode* e = getOrCreate(key, kTypeBool, defaultValue ? "1" : "0");
    return e ? parseBool(e->text) : defaultValue;
}

int MultiData::getInt(const std::string& key, int defaultValue)
{
    std::lock_guard<std::mutex> lock(mutex);
    const XmlNode* e = getOrCreate(key, kTypeInt, formatInt(defaultValue));
    return e ? parseTruncatedInt(e->text) : defaultValue;
}

float MultiData::getFloat(const std::string& key, float defaultValue)
{
    std::lock_guard<std::mutex> lock(mutex);
    const XmlNode* e = getOrCreate(key, kTypeFloat, formatFloat(defaultValue));
    return e ? float(parseFloat(e->text)) : defaultValue;
}

std::vector<std::string> MultiData::getStringArray(const std::string& key, const std::vector<std::string>& defaultValue)
{
    std::lock_guard<std::mutex> lock(mutex);
    if (const XmlNode* e = find(key))
        return itemsOf(*e);
    if (!isValidKey(key))
        return defaultValue;
    for (const std::string& s : defaultValue) {
        if (!isStorableText(s))
            return defaultValue;
    }
    XmlNode& e = store.addChild(XmlNode(key));
    e.setAttribute("type", kTypeStringArray);
    for (const std::string& s : defaultValue)
        e.addChild(XmlNode(kItemTag, s));
    return defaultValue;
}

bool MultiData::setString(const std::string& key, const std::string& value)
{
    if (!isValidKey(key) || !isStorableText(value))
        return false;
    std::lock_guard<std::mutex> lock(mutex);
    XmlNode& e = entry(key);
    e.children.clear();
    e.text = value;
    e.setAttribute("type", kTypeString);
    return true;
}

bool MultiData::setBool(const std::string& key, bool value)
{
    if (!isValidKey(key))
        return false;
    std::lock_guard<std::mutex> lock(mutex);
    XmlNode& e = entry(key);
    e.children.clear();
    e.text.assign(1, value ? '1' : '0');
    e.setAttribute("type", kTypeBool);
    return true;
}

bool MultiData::setInt(const std::string& key, int value)
{
    if (!isValidKey(key))
        return false;
    std::lock_guard<std::mutex> lock(mutex);
    XmlNode& e = entry(key);
    e.children.clear();
    e.text = formatInt(value);
    e.setAttribute("type", kTypeInt);
    return true;
}

bool MultiData::setFloat(const std::string& key, float value)
{
    if (!isValidKey(key))
        return false;
    std::lock_guard<std::mutex> lock(mutex);
    XmlNode& e = entry(key);
    e.children.clear();
    e.text = formatFloat(value);
    e.setAttribute("type", kTypeFloat);
    return true;
}

bool MultiData::setStringArray(const std::string& key, const std::vector<std::string>& values)
{
    if (!isValidKey(key))
        return false;
    for (const std::string& s : values) {
        if (!isStorableText(s))
            return false;
    }
    std::lock_guard<std::mutex> lock(mutex);
    XmlNode& e = entry(key);
    e.children.clear();
    e.text.clear();
    e.setAttribute("type", kTypeStringArray);
    for (const std::string& s : values)
        e.addChild(XmlNode(kItemTag, s));
    return true;
}

bool MultiData::contains(const std::string& key) const
{
    std::lock_guard<std::mutex> lock(mutex);
    return find(key) != nullptr;
}

std::string MultiData::typeOf(const std::string& key) const
{
    std::lock_guard<std::mutex> lock(mutex);
    const XmlNode* e = find(key);
    return e ? e->attribute("type") : std::string();
}

std::vector<std::string> MultiData::keys() const
{
    std::lock_guard<std::mutex> lock(mutex);
    std::vector<std::string> out;
    for (const XmlNode& e : store.children)
        out.push_back(e.tag);
    return out;
}

void MultiData::clear()
{
    std::lock_guard<std::mutex> lock(mutex);
    store = XmlNode(kRootTag);
}

bool MultiData::readFile(const std::string& path)
{
    XmlNode root;
    int openAtEnd = 0;
    const bool opened = root.readFile(path, &openAtEnd);

    XmlNode loaded(kRootTag);
    for (size_t i = 0; i < root.children.size(); ++i) {
        if (root.children[i].tag != kRootTag)
            continue;
        loaded = std::move(root.children[i]);
        loaded.text.clear();
        // Open elements always form the chain of last children. When the input ended inside
        // one of our entries, that entry is incomplete: its value or items may be cut.
        const bool endedInsideEntry = i + 1 == root.children.size() && openAtEnd >= 2;
        if (endedInsideEntry && !loaded.children.empty())
            loaded.children.pop_back();
        break;
    }
    // Entries must be plain elements with a usable name; anything else is debris.
    std::vector<XmlNode> kept;
    kept.reserve(loaded.children.size());
    for (XmlNode& e : loaded.children) {
        if (!isValidKey(e.tag) || !carriesBack(e))
            continue;
        if (!e.children.empty() && e.attribute("type") != kTypeStringArray)
            continue;
        if (!e.children.empty())
            e.text.clear();
        kept.push_back(std::move(e));
    }
    loaded.children = std::move(kept);

    std::lock_guard<std::mutex> lock(mutex);
    store = std::move(loaded);
    return opened;
}

std::string MultiData::toText() const
{
    XmlNode root("file");
    {
        std::lock_guard<std::mutex> lock(mutex);
        root.addChild(store);
    }
    return root.toText();
}

bool MultiData::writeFile(const std::string& path) const
{
    const QString qpath = QFile::decodeName(path.c_str());
    const QFileInfo info(qpath);
    if (!QDir().mkpath(info.absolutePath()))
        return false;
    const std::string bytes = toText();
    // The new file is renamed over the old one only once it is complete: a failure or a kill
    // leaves the former preferences.
    return SafeFileWriter::writeWhole(path, bytes.data(), bytes.size());
}

std::string dataFolder()
{
    QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (base.isEmpty())
        base = QDir::homePath() + QStringLiteral("/.local/share");
    return QFile::encodeName(base + QStringLiteral("/com.vantrel.photo/")).toStdString();
}

std::string preferencesPath()
{
    return dataFolder() + "VantrelPrefs.xml";
}
