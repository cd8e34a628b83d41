#include "filters/XmlNode.h"

#include "core/SafeFileWriter.h"

#include <cstddef>
#include <cstdio>
#include <utility>

XmlNode::XmlNode(std::string tag_, std::string text_)
    : text(std::move(text_))
    , tag(std::move(tag_))
{
}

void XmlNode::setAttribute(const std::string& name, const std::string& value)
{
    for (size_t i = 0; i < attrNames.size(); ++i) {
        if (attrNames[i] == name) {
            attrNames.erase(attrNames.begin() + std::ptrdiff_t(i));
            attrValues.erase(attrValues.begin() + std::ptrdiff_t(i));
            break;
        }
    }
    attrNames.push_back(name);
    attrValues.push_back(value);
}

std::string XmlNode::attribute(const std::string& name) const
{
    for (size_t i = 0; i < attrNames.size() && i < attrValues.size(); ++i) {
        if (attrNames[i] == name)
            return attrValues[i];
    }
    return std::string();
}

bool XmlNode::hasAttribute(const std::string& name) const
{
    for (const std::string& n : attrNames) {
        if (n == name)
            return true;
    }
    return false;
}

XmlNode& XmlNode::addChild(const XmlNode& node)
{
    children.push_back(node);
    return children.back();
}

XmlNode& XmlNode::addChild(XmlNode&& node)
{
    children.push_back(std::move(node));
    return children.back();
}

XmlNode* XmlNode::firstChild(std::string_view childTag)
{
    for (XmlNode& c : children) {
        if (c.tag == childTag)
            return &c;
    }
    return nullptr;
}

const XmlNode* XmlNode::firstChild(std::string_view childTag) const
{
    for (const XmlNode& c : children) {
        if (c.tag == childTag)
            return &c;
    }
    return nullptr;
}

namespace {

// Tokens end at white space outside double quotes, so attribute values may hold blanks. The
// writer puts single spaces; tabs and line ends count too, for tags spread over lines by hand.
void splitTokens(std::string_view content, std::vector<std::string_view>& tokens)
{
    tokens.clear();
    bool inQuotes = false;
    size_t start = 0;
    for (size_t i = 0; i < content.size(); ++i) {
        const char c = content[i];
        if (c == '"') {
            inQuotes = !inQuotes;
        } else if ((c == ' ' || c == '\t' || c == '\n' || c == '\r') && !inQuotes) {
            if (i > start)
                tokens.push_back(content.substr(start, i - start));
            start = i + 1;
        }
    }
    if (content.size() > start)
        tokens.push_back(content.substr(start));
}

} // namespace

void XmlNode::readText(std::string_view in, int* openAtEnd)
{
    children.clear();
    text.clear();
    attrNames.clear();
    attrValues.clear();
    tag = "file";

    // Explicit stack of the open elements; each entry is the last child of the one below, so
    // appending to the top never moves the entries beneath it.
    std::vector<XmlNode*> open;
    open.push_back(this);
    std::vector<std::string_view> tokens;
    std::string content;
    size_t textStart = 0;
    const size_t n = in.size();
    size_t i = 0;
    bool stopped = false;

    while (i < n && !stopped) {
        if (in[i] != '<') {
            ++i;
            continue;
        }
        // The bytes since the last markup become the current element's text; a '>' standing
        // directly before this '<' closes the former tag and is not text.
        {
            std::string_view t = in.substr(textStart, i - textStart);
            if (!t.empty() && t.back() == '>')
                t.remove_suffix(1);
            open.back()->text.assign(t);
        }
        ++i;

        if (in.substr(i, 3) == "!--") {
            const size_t end = in.find("-->", i + 3);
            if (end == std::string_view::npos) {
                i = n;
                textStart = n;
                break;
            }
            i = end + 3;
            textStart = i;
            continue;
        }

        content.clear();
        bool closed = false;
        while (i < n) {
            const char c = in[i++];
            if (c == '>') {
                closed = true;
                break;
            }
            if (c != '<')
                content.push_back(c);
        }
        textStart = i;
        if (!closed)
            break; // a tag cut by the end of the input is not used

        splitTokens(content, tokens);
        const std::string_view first = tokens.empty() ? std::string_view() : tokens.front();
        if (!first.empty() && first.front() == '?')
            continue;
        if (!first.empty() && first.front() == '/') {
            // The name isn't checked against the open element.
            if (open.size() > 1)
                open.pop_back();
            continue;
        }

        const bool selfClosing = !content.empty() && content.back() == '/';
        if (selfClosing) {
            content.pop_back();
            splitTokens(content, tokens);
        }
        if (int(open.size()) > kMaxReadDepth) {
            stopped = true;
            break;
        }
        XmlNode& child = open.back()->addChild(XmlNode(tokens.empty() ? std::string() : std::string(tokens.front())));
        for (size_t k = 1; k < tokens.size(); ++k) {
            const std::string_view tok = tokens[k];
            const size_t eq = tok.find('=');
            if (eq == std::string_view::npos) {
                child.setAttribute(std::string(tok), std::string());
                continue;
            }
            std::string_view value = tok.substr(eq + 1);
            // The quotes are removed as the first and last character, whatever they are.
            value = value.size() >= 2 ? value.substr(1, value.size() - 2) : std::string_view();
            child.setAttribute(std::string(tok.substr(0, eq)), std::string(value));
        }
        if (!selfClosing)
            open.push_back(&child);
    }

    if (openAtEnd)
        *openAtEnd = int(open.size()) - 1;
}

bool XmlNode::readFile(const std::string& path, int* openAtEnd)
{
    std::FILE* f = std::fopen(path.c_str(), "r");
    if (!f) {
        readText(std::string_view(), openAtEnd);
        return false;
    }
    std::string bytes;
    char buf[65536];
    size_t got;
    while ((got = std::fread(buf, 1, sizeof buf, f)) > 0)
        bytes.append(buf, got);
    std::fclose(f);
    readText(bytes, openAtEnd);
    return true;
}

namespace {

// Strings go out as "%s" would write them: up to the first NUL.
void put(std::string& out, const std::string& s)
{
    out.append(s.c_str());
}

} // namespace

void XmlNode::writeNode(std::string& out, int depth) const
{
    const std::string indent(size_t(depth) * 2, ' ');
    out += indent;
    out += '<';
    put(out, tag);
    for (size_t i = 0; i < attrNames.size() && i < attrValues.size(); ++i) {
        out += ' ';
        put(out, attrNames[i]);
        out += "=\"";
        put(out, attrValues[i]);
        out += '"';
    }
    if (children.empty()) {
        out += '>';
        put(out, text);
        out += "</";
        put(out, tag);
        out += ">\n";
        return;
    }
    out += ">\n";
    for (const XmlNode& c : children)
        c.writeNode(out, depth + 1);
    if (!text.empty()) {
        out += indent;
        put(out, text);
        out += '\n';
    }
    out += indent;
    out += "</";
    put(out, tag);
    out += ">\n";
}

std::string XmlNode::toText() const
{
    std::string out;
    for (const XmlNode& c : children)
        c.writeNode(out, 0);
    return out;
}

bool XmlNode::writeFile(const std::string& path) const
{
    // Filter files and presets are replaced whole: a full disk or a kill mid-write keeps the old one.
    const std::string bytes = toText();
    return SafeFileWriter::writeWhole(path, bytes.data(), bytes.size());
}
