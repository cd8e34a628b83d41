// The XML reader: any bytes give a bounded tree, which writes and reads back without trouble.
#include "filters/XmlNode.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

int depthOf(const XmlNode& node)
{
    int deepest = 0;
    for (const XmlNode& c : node.children) {
        const int d = depthOf(c) + 1;
        if (d > deepest)
            deepest = d;
    }
    return deepest;
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    XmlNode root;
    int open = -1;
    root.readText(std::string_view(reinterpret_cast<const char*>(data), size), &open);
    if (open < 0 || depthOf(root) > XmlNode::kMaxReadDepth + 1)
        __builtin_trap();
    if (root.attrNames.size() != root.attrValues.size())
        __builtin_trap();

    // What the writer makes of the tree must read again.
    const std::string text = root.toText();
    XmlNode again;
    again.readText(text, &open);
    (void)again.toText();
    XmlNode copy = again;
    (void)copy.firstChild("filter");
    return 0;
}
