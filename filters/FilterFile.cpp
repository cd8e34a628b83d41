#include "filters/FilterFile.h"

#include "core/ImageMod.h"
#include "core/ImageModCompound.h"
#include "core/ImageModVariableDataBoundary.h"
#include "core/ImageModVariableDataButton.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ImageModVariableDataFile.h"
#include "core/ImageModVariableDataMultiChoice.h"
#include "core/ImageModVariableDataPixel.h"
#include "filters/TextNumbers.h"

namespace {

constexpr const char* kTagFilter = "filter";
constexpr const char* kTagMod = "mod";
constexpr const char* kTagSubmod = "submod";
constexpr const char* kTagVar = "var";
constexpr const char* kTagAttr = "attr";
constexpr const char* kTagSelection = "selection";
constexpr const char* kTagId = "id";
constexpr const char* kTagStoredText = "storedtext";

const char* typeWord(const ImageModVariableData* data)
{
    if (!data)
        return "unknown";
    switch (data->kind()) {
    case kVariableFloat: return "float";
    case kVariableCurve: return "curve";
    case kVariableColor: return "color";
    case kVariableButton: return "button";
    case kVariableChoice: return "choice";
    case kVariableMultiChoice: return "multichoice";
    case kVariableFile: return "file";
    case kVariablePixel: return "pixelxy";
    case kVariableBoundary: return "boundary";
    default: return "unknown";
    }
}

std::string normalizeLineEnds(const std::string& text)
{
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
            continue;
        out.push_back(text[i]);
    }
    return out;
}

void appendNumbers(std::string& out, std::initializer_list<float> values, bool trailingBlank)
{
    bool first = true;
    for (float v : values) {
        if (!first)
            out += ' ';
        out += formatFloat(v);
        first = false;
    }
    if (trailingBlank)
        out += ' ';
}

// Gives the value of the kind the file names, replacing a missing or other-kind value.
template <typename Data>
Data* forceKind(ImageModVariable& variable, int32_t kind)
{
    if (!variable.data || variable.data->kind() != kind)
        variable.data = std::make_unique<Data>();
    return static_cast<Data*>(variable.data.get());
}

void setAttr(ImageMod& mod, const std::string& key, const std::string& value)
{
    for (size_t i = 0; i < mod.attrNames.size() && i < mod.attrValues.size(); ++i) {
        if (mod.attrNames[i] == key) {
            mod.attrValues[i] = value;
            return;
        }
    }
    mod.attrNames.push_back(key);
    mod.attrValues.push_back(value);
}

void modToXml(const ImageMod& mod, XmlNode& parent);

void modsToXml(const std::vector<const ImageMod*>& mods, XmlNode& parent)
{
    for (const ImageMod* m : mods) {
        if (m)
            modToXml(*m, parent);
    }
}

void modToXml(const ImageMod& mod, XmlNode& parent)
{
    const auto* compound = mod.kind() == ImageModCompound::compoundKind ? dynamic_cast<const ImageModCompound*>(&mod)
                                                                        : nullptr;
    if (compound) {
        // A group keeps only its name and children; it reads back enabled with Amount 1.
        XmlNode& sub = parent.addChild(XmlNode(kTagSubmod));
        sub.setAttribute("name", mod.name);
        std::vector<const ImageMod*> children;
        for (const auto& c : compound->children)
            children.push_back(c.get());
        modsToXml(children, sub);
        return;
    }
    XmlNode& node = parent.addChild(XmlNode(kTagMod));
    node.setAttribute("name", mod.name);
    node.setAttribute("version", formatInt(mod.version));
    node.setAttribute("enabled", mod.enabled ? "1" : "0");
    for (const auto& v : mod.variables) {
        if (v)
            node.addChild(variableToXml(*v));
    }
    for (size_t i = 0; i < mod.attrNames.size() && i < mod.attrValues.size(); ++i) {
        XmlNode& a = node.addChild(XmlNode(kTagAttr, mod.attrValues[i]));
        a.setAttribute("name", mod.attrNames[i]);
    }
}

// Each use of a group copies it whole, so a small hostile file of groups that name earlier
// groups would grow exponentially; past this many tiles, further copies fail like unknown mods.
constexpr size_t kMaxModsPerFile = 100000;

struct ReadContext {
    const ModCatalogue& catalogue;
    std::vector<const ImageMod*> defined; // groups of this file, in reading order
    int32_t& status;
    size_t made = 0;
};

size_t modCount(const ImageMod& mod)
{
    size_t n = 1;
    if (mod.kind() == ImageModCompound::compoundKind) {
        if (const auto* g = dynamic_cast<const ImageModCompound*>(&mod)) {
            for (const auto& c : g->children)
                n += c ? modCount(*c) : 0;
        }
    }
    return n;
}

std::unique_ptr<ImageMod> readMod(const XmlNode& element, ReadContext& ctx)
{
    const std::string name = element.attribute("name");
    const bool enabled = element.hasAttribute("enabled") ? parseTruncatedInt(element.attribute("enabled")) != 0 : true;
    const int32_t version = element.hasAttribute("version") ? parseTruncatedInt(element.attribute("version")) : 1;
    // "alias" is read by older releases and has no effect.

    std::unique_ptr<ImageMod> mod;
    const ImageMod* group = nullptr;
    for (const ImageMod* d : ctx.defined) {
        if (d && d->name == name)
            group = d;
    }
    if (group) {
        const size_t size = modCount(*group);
        if (ctx.made + size > kMaxModsPerFile) {
            ctx.status = kFilterReadDamaged;
            return nullptr;
        }
        ctx.made += size;
        mod = group->newInstance();
    }
    if (!mod && !group) {
        const ImageMod* match = findInCatalogue(ctx.catalogue, name);
        if (match && ctx.made < kMaxModsPerFile) {
            ++ctx.made;
            mod = match->newInstance();
        }
    }
    if (!mod) {
        ctx.status = kFilterReadDamaged;
        return nullptr;
    }
    mod->enabled = enabled;
    mod->setVersion(version);

    for (const XmlNode& child : element.children) {
        if (child.tag == kTagVar) {
            const std::string varName = child.attribute("name");
            for (int32_t i = 0; i < mod->variableCount(); ++i) {
                ImageModVariable* v = mod->variableAt(i);
                if (!v || v->name != varName)
                    continue;
                const bool applied = applyVariableXml(*v, child);
                if (applied && v->asButton())
                    mod->variableChanged(i);
                break;
            }
        } else if (child.tag == kTagAttr) {
            setAttr(*mod, child.attribute("name"), child.text);
        }
    }
    return mod;
}

ModList readChildren(const XmlNode& parent, ReadContext& ctx)
{
    ModList out;
    for (const XmlNode& child : parent.children) {
        if (child.tag == kTagMod) {
            if (auto m = readMod(child, ctx))
                out.push_back(std::move(m));
        } else if (child.tag == kTagSubmod) {
            ModList inner = readChildren(child, ctx);
            auto group = std::make_unique<ImageModCompound>(child.attribute("name"));
            for (auto& m : inner)
                group->addChild(std::move(m));
            ctx.defined.push_back(group.get());
            out.push_back(std::move(group));
        }
    }
    return out;
}

} // namespace

XmlNode variableToXml(const ImageModVariable& variable)
{
    const ImageModVariableData* data = variable.data.get();
    XmlNode node(kTagVar);
    node.setAttribute("name", variable.name);
    node.setAttribute("type", typeWord(data));
    if (!data)
        return node;
    switch (data->kind()) {
    case kVariableFloat:
        node.text = formatFloat(data->value);
        break;
    case kVariableCurve: {
        const auto* c = static_cast<const ImageModVariableDataCurve*>(data);
        if (variable.controlKind == ImageModVariable::hueCurveControlKind)
            node.setAttribute("hueOffset", formatFloat(c->curve.hueOffset));
        for (const ToneCurvePoint& p : c->curve.points)
            appendNumbers(node.text, { p.x, p.y }, true);
        break;
    }
    case kVariableColor: {
        const auto* c = static_cast<const ImageModVariableDataColor*>(data);
        appendNumbers(node.text, { c->red, c->green, c->blue, c->alpha }, false);
        break;
    }
    case kVariableButton: {
        const auto* b = static_cast<const ImageModVariableDataButton*>(data);
        node.addChild(XmlNode(kTagId, formatInt(b->id)));
        if (!b->storedText.empty())
            node.addChild(XmlNode(kTagStoredText, normalizeLineEnds(b->storedText)));
        break;
    }
    case kVariableChoice:
        node.text = static_cast<const ImageModVariableDataChoice*>(data)->currentLabel();
        break;
    case kVariableMultiChoice: {
        const auto* m = static_cast<const ImageModVariableDataMultiChoice*>(data);
        for (int32_t s : m->selected) {
            if (s >= 0 && size_t(s) < m->labels.size())
                node.addChild(XmlNode(kTagSelection, m->labels[size_t(s)]));
        }
        break;
    }
    case kVariableFile:
        node.text = static_cast<const ImageModVariableDataFile*>(data)->path;
        break;
    case kVariablePixel: {
        const auto* p = static_cast<const ImageModVariableDataPixel*>(data);
        for (size_t i = 0; i < p->points.size(); ++i) {
            if (i > 0)
                node.text += ' ';
            appendNumbers(node.text, { p->points[i].x, p->points[i].y }, false);
        }
        break;
    }
    case kVariableBoundary: {
        const auto* b = static_cast<const ImageModVariableDataBoundary*>(data);
        appendNumbers(node.text, { b->left, b->top, b->right, b->bottom }, false);
        break;
    }
    default:
        break;
    }
    return node;
}

bool applyVariableXml(ImageModVariable& variable, const XmlNode& element)
{
    const std::string type = element.attribute("type");
    const std::string& text = element.text;

    if (type == "float") {
        variable.setFloatValue(float(parseFloat(text)));
        return true;
    }
    if (type == "choice") {
        auto* c = forceKind<ImageModVariableDataChoice>(variable, kVariableChoice);
        const int32_t i = c->indexOfLabel(text);
        if (i >= 0)
            c->index = i;
        return true;
    }
    if (type == "multichoice") {
        auto* m = forceKind<ImageModVariableDataMultiChoice>(variable, kVariableMultiChoice);
        std::vector<int32_t> selection;
        for (const XmlNode& s : element.children) {
            if (s.tag != kTagSelection)
                continue;
            for (size_t i = 0; i < m->labels.size(); ++i) {
                if (m->labels[i] == s.text) {
                    selection.push_back(int32_t(i));
                    break;
                }
            }
        }
        m->selected = std::move(selection);
        return true;
    }
    if (type == "file") {
        forceKind<ImageModVariableDataFile>(variable, kVariableFile)->path = text;
        return true;
    }
    if (type == "color") {
        const std::vector<double> n = parseFloatList(text, 4);
        if (n.size() < 3)
            return false;
        auto* c = forceKind<ImageModVariableDataColor>(variable, kVariableColor);
        c->red = float(n[0]);
        c->green = float(n[1]);
        c->blue = float(n[2]);
        c->alpha = n.size() > 3 ? float(n[3]) : 255.0f;
        return true;
    }
    if (type == "pixelxy") {
        const std::vector<double> n = parseFloatList(text);
        auto* p = forceKind<ImageModVariableDataPixel>(variable, kVariablePixel);
        p->points.clear();
        for (size_t i = 0; i + 1 < n.size(); i += 2)
            p->points.push_back({ float(n[i]), float(n[i + 1]) });
        return true;
    }
    if (type == "curve") {
        const std::vector<double> n = parseFloatList(text);
        if (n.size() < 4)
            return false;
        auto* c = forceKind<ImageModVariableDataCurve>(variable, kVariableCurve);
        // A new set of points on the same kind of curve (open or closed), table built once.
        std::vector<ToneCurvePoint> points;
        for (size_t i = 0; i + 1 < n.size(); i += 2)
            points.push_back({ float(n[i]), float(n[i + 1]) });
        c->curve.points = std::move(points);
        if (element.hasAttribute("hueOffset"))
            c->curve.hueOffset = float(parseFloat(element.attribute("hueOffset")));
        c->curve.rebuild();
        return true;
    }
    if (type == "button") {
        auto* b = forceKind<ImageModVariableDataButton>(variable, kVariableButton);
        const XmlNode* id = element.firstChild(kTagId);
        b->id = id ? parseTruncatedInt(id->text) : 0;
        const XmlNode* stored = element.firstChild(kTagStoredText);
        b->storedText = stored ? normalizeLineEnds(stored->text) : std::string();
        return true;
    }
    if (type == "boundary") {
        const std::vector<double> n = parseFloatList(text, 4);
        auto* b = forceKind<ImageModVariableDataBoundary>(variable, kVariableBoundary);
        float* fields[] = { &b->left, &b->top, &b->right, &b->bottom };
        for (size_t i = 0; i < n.size(); ++i)
            *fields[i] = float(n[i]);
        return true;
    }
    return false; // "unknown" and words of no kind
}

XmlNode filterToXml(const std::vector<const ImageMod*>& mods)
{
    XmlNode root("file");
    XmlNode& filter = root.addChild(XmlNode(kTagFilter));
    filter.setAttribute("version", formatInt(kFilterFileVersion));
    modsToXml(mods, filter);
    return root;
}

bool writeFilter(const std::vector<const ImageMod*>& mods, const std::string& path)
{
    if (mods.empty())
        return false;
    return filterToXml(mods).writeFile(path);
}

bool writeFilter(const ModList& mods, const std::string& path)
{
    std::vector<const ImageMod*> list;
    for (const auto& m : mods)
        list.push_back(m.get());
    return writeFilter(list, path);
}

ModList filterFromXml(const XmlNode& root, const ModCatalogue& catalogue, int32_t& status)
{
    status = kFilterReadOk;
    if (root.children.empty() || root.children[0].tag != kTagFilter) {
        status = kFilterReadDamaged;
        return {};
    }
    const XmlNode& filter = root.children[0];
    if (parseTruncatedInt(filter.attribute("version")) >= 5)
        status = kFilterReadNewer;
    ReadContext ctx { catalogue, {}, status };
    return readChildren(filter, ctx);
}

ModList readFilter(const std::string& path, const ModCatalogue& catalogue, int32_t& status)
{
    XmlNode root;
    root.readFile(path);
    return filterFromXml(root, catalogue, status);
}
