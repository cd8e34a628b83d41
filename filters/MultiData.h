#pragma once
#include "filters/XmlNode.h"

#include <mutex>
#include <string>
#include <vector>

// Typed settings kept as text, one element per key below a root element: the tag is the key, the
// attribute "type" one of "int", "bool", "float", "string", "string array", the text the value;
// a string array holds one "Item" child per string. Every getter creates a missing key with the
// caller's default, so the file fills itself with the defaults the program asked for.
// All members lock, so workers may read settings while the GUI thread writes them.
class MultiData {
public:
    static constexpr const char* kRootTag = "VantrelPrefs";

    MultiData();
    MultiData(const MultiData&) = delete;
    MultiData& operator=(const MultiData&) = delete;

    // The one collection the program shares.
    static MultiData& global();

    // Replaces the content with what the file holds. A missing or unreadable file leaves the
    // collection empty and gives false. A damaged file is read as far as it goes: every entry
    // that was read whole is kept, and an entry the damage cut into is dropped, so its key
    // falls back to the caller's default.
    bool readFile(const std::string& path);
    // Writes into a temporary file next to the target and renames it over the target only when
    // everything was written, so a failed save leaves the former file as it was. Makes the
    // folder when missing.
    bool writeFile(const std::string& path) const;
    // The bytes writeFile would write.
    std::string toText() const;

    std::string getString(const std::string& key, const std::string& defaultValue);
    bool getBool(const std::string& key, bool defaultValue);
    int getInt(const std::string& key, int defaultValue);
    float getFloat(const std::string& key, float defaultValue);
    std::vector<std::string> getStringArray(const std::string& key, const std::vector<std::string>& defaultValue);

    // Replace the value and type of the entry, or append a new one. They refuse (false, nothing
    // changed) a key that can't be an element name and a value the file can't carry back: one
    // holding '<' or NUL, or ending in '>'.
    bool setString(const std::string& key, const std::string& value);
    bool setBool(const std::string& key, bool value);
    bool setInt(const std::string& key, int value);
    bool setFloat(const std::string& key, float value);
    bool setStringArray(const std::string& key, const std::vector<std::string>& values);

    bool contains(const std::string& key) const;
    // The type word of the entry, empty when absent.
    std::string typeOf(const std::string& key) const;
    std::vector<std::string> keys() const;
    void clear();

    static bool isValidKey(const std::string& key);
    static bool isStorableText(const std::string& value);

private:
    XmlNode* find(const std::string& key);
    const XmlNode* find(const std::string& key) const;
    XmlNode& entry(const std::string& key);
    // Gives the entry, creating it from the default when absent; null when the key or default
    // can't be stored.
    const XmlNode* getOrCreate(const std::string& key, const char* type, const std::string& defaultText);

    mutable std::mutex mutex;
    XmlNode store;
};

// The program's data folder, ending in "/": the desktop's generic data location plus
// "/com.vantrel.photo/". Presets and preferences live there.
std::string dataFolder();
// The data folder joined with "VantrelPrefs.xml".
std::string preferencesPath();
