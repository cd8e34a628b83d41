#pragma once
#include <string>
#include <string_view>
#include <vector>

// The program's own small XML element: a line-oriented tag scanner and writer, used for filter
// files and the preferences file. It knows elements, attributes and text; it skips comments and
// processing instructions and has no entities, so text and attribute values go out and come back
// exactly as they stand (a '<' in text is not safe).
class XmlNode {
public:
    std::vector<XmlNode> children;
    std::string text;
    std::string tag;
    std::vector<std::string> attrNames;
    std::vector<std::string> attrValues;

    // Elements nested deeper than this end the read, as if the file were cut there: the tree
    // stays bounded on hostile input, so copying, writing and destroying it can recurse safely.
    static constexpr int kMaxReadDepth = 256;

    XmlNode() = default;
    explicit XmlNode(std::string tag, std::string text = std::string());

    // A repeated name moves to the end, so the written order is the order of the last setting.
    void setAttribute(const std::string& name, const std::string& value);
    // The value, or an empty string. First match wins.
    std::string attribute(const std::string& name) const;
    bool hasAttribute(const std::string& name) const;

    // Appends a copy and gives back the stored child (valid until the next addChild).
    XmlNode& addChild(const XmlNode& node);
    XmlNode& addChild(XmlNode&& node);
    // First child with this tag, or null.
    XmlNode* firstChild(std::string_view childTag);
    const XmlNode* firstChild(std::string_view childTag) const;

    // Fills this node as the root (tag "file") with the document's top elements as children.
    // A file that can't be opened leaves an empty root and gives false; a damaged file gives
    // whatever the scan finds and true. openAtEnd, when given, receives how many elements were
    // still open when the input ended: 0 for a complete document.
    bool readFile(const std::string& path, int* openAtEnd = nullptr);
    void readText(std::string_view bytes, int* openAtEnd = nullptr);

    // Writes the children (not this node) with two blanks per depth. False only when the file
    // can't be opened; it is truncated first.
    bool writeFile(const std::string& path) const;
    // The exact bytes writeFile puts in the file.
    std::string toText() const;

private:
    void writeNode(std::string& out, int depth) const;
};
