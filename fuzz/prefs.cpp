// The preferences reader, then the getters and the writer over whatever it kept.
#include "FuzzTempFile.h"
#include "filters/MultiData.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static FuzzTempFile file("VantrelPrefs.xml");
    if (!file.write(data, size))
        return 0;
    MultiData prefs;
    prefs.readFile(file.path);
    for (const std::string& key : prefs.keys()) {
        const std::string type = prefs.typeOf(key);
        if (type == "int")
            prefs.getInt(key, 1);
        else if (type == "bool")
            prefs.getBool(key, true);
        else if (type == "float")
            prefs.getFloat(key, 0.5f);
        else if (type == "string array")
            prefs.getStringArray(key, {"a"});
        else
            prefs.getString(key, "x");
    }
    const std::string text = prefs.toText();
    // What the writer makes of it reads back with the same keys.
    MultiData again;
    static FuzzTempFile copy("VantrelPrefs.xml");
    if (copy.write(reinterpret_cast<const uint8_t*>(text.data()), text.size())
        && again.readFile(copy.path) && again.keys() != prefs.keys())
        __builtin_trap();
    return 0;
}
