#include "filters/XmlNode.h"

#include "FilterTestFiles.h"

#include <QTemporaryDir>
#include <cstdint>
#include <iterator>
#include <string>

namespace {

XmlNode parse(const std::string& bytes, int* openAtEnd = nullptr)
{
    XmlNode root;
    root.readText(bytes, openAtEnd);
    return root;
}

XmlNode leaf(const std::string& tag, const std::string& text, std::initializer_list<std::pair<const char*, const char*>> attrs)
{
    XmlNode n(tag, text);
    for (const auto& a : attrs)
        n.setAttribute(a.first, a.second);
    return n;
}

} // namespace

TEST(XmlNodeAttributes, LastSettingDecidesOrderAndLookupIsExact)
{
    XmlNode n("mod");
    n.setAttribute("name", "Paper");
    n.setAttribute("version", "1");
    n.setAttribute("enabled", "1");
    n.setAttribute("name", "Paper 2");
    ASSERT_EQ(n.attrNames.size(), 3u);
    EXPECT_EQ(n.attrNames[0], "version");
    EXPECT_EQ(n.attrNames[2], "name");
    EXPECT_EQ(n.attrValues[2], "Paper 2");
    EXPECT_EQ(n.attribute("name"), "Paper 2");
    EXPECT_EQ(n.attribute("Name"), "");
    EXPECT_EQ(n.attribute("nam"), "");
    EXPECT_FALSE(n.hasAttribute("names"));

    // Duplicates can only come from outside setAttribute; the first one wins.
    n.attrNames.push_back("version");
    n.attrValues.push_back("7");
    EXPECT_EQ(n.attribute("version"), "1");
}

// The root's own tag and attributes are not written; values go out raw; text after children is
// indented as deep as the children's parent.
TEST(XmlNodeWriter, LayoutEmptyElementsAndRawValues)
{
    XmlNode root("ignored root");
    root.setAttribute("never", "written");
    root.addChild(leaf("mod", "", { { "name", "Paper" }, { "version", "1" }, { "enabled", "1" } }));
    XmlNode* at = &root.addChild(XmlNode("n0", "t0"));
    at = &at->addChild(XmlNode("n1", "t1"));
    at = &at->addChild(XmlNode("n2", "t2"));
    at->addChild(XmlNode("a", "x<y & z"));
    at->addChild(XmlNode("b"));
    root.addChild(leaf("q", "", { { "v", "say \"hi\"" } }));
    root.addChild(XmlNode("", ""));
    const std::string expected = "<mod name=\"Paper\" version=\"1\" enabled=\"1\"></mod>\n"
                                 "<n0>\n"
                                 "  <n1>\n"
                                 "    <n2>\n"
                                 "      <a>x<y & z</a>\n"
                                 "      <b></b>\n"
                                 "    t2\n"
                                 "    </n2>\n"
                                 "  t1\n"
                                 "  </n1>\n"
                                 "t0\n"
                                 "</n0>\n"
                                 "<q v=\"say \"hi\"\"></q>\n"
                                 "<></>\n";
    EXPECT_EQ(root.toText(), expected);

    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::string path = dir.filePath("a.vnf").toStdString();
    spit(path, std::string(5000, 'x')); // the writer truncates what was there
    ASSERT_TRUE(root.writeFile(path));
    EXPECT_EQ(slurp(path), expected);

    // "%s" stops at a NUL byte.
    XmlNode nul("file");
    nul.addChild(XmlNode("t", std::string("ab\0cd", 5)));
    EXPECT_EQ(nul.toText(), "<t>ab</t>\n");
    EXPECT_EQ(XmlNode("file").toText(), "");
}

TEST(XmlNodeReader, ReadsTheFilterLayoutAndWritesItBackUnchanged)
{
    int open = -1;
    XmlNode root = parse(kColorizeFile, &open);
    EXPECT_EQ(open, 0);
    EXPECT_EQ(root.tag, "file");
    ASSERT_EQ(root.children.size(), 1u);
    const XmlNode& filter = root.children[0];
    EXPECT_EQ(filter.tag, "filter");
    EXPECT_EQ(filter.attribute("version"), "4");
    ASSERT_EQ(filter.children.size(), 2u);
    // Values are checked through the filter reader, which reads this text back to equal tiles;
    // here only the layout. Elements with children keep the line end and indentation before
    // their closing tag; leaves carry exact text.
    const XmlNode& hue = filter.children[0].children[0];
    ASSERT_EQ(hue.children.size(), 2u);
    EXPECT_EQ(hue.children[1].text, "255 255 0");
    EXPECT_EQ(hue.text, "\n    ");
    EXPECT_EQ(filter.text, "\n");

    // So a file of leaves under one level round-trips byte for byte.
    XmlNode flat("file");
    XmlNode& prefs = flat.addChild(XmlNode("prefs"));
    prefs.addChild(leaf("Geometry", "100 100 1200 800", { { "type", "string" } }));
    prefs.addChild(leaf("Blank", "", { { "type", "string" } }));
    prefs.addChild(leaf("Spaced", "  two  ", { { "type", "string" } }));
    const std::string bytes = flat.toText();
    XmlNode back = parse(bytes);
    ASSERT_EQ(back.children.size(), 1u);
    back.children[0].text.clear();
    EXPECT_EQ(back.toText(), bytes);
    EXPECT_EQ(back.children[0].children[2].text, "  two  ");
}

// What the scanner makes of odd markup, shown as the tree written out again: every tag, attribute
// and text it kept. Nothing is repaired or unescaped.
TEST(XmlNodeReader, OddMarkupReadsAsTheseTrees)
{
    const char* const kPaperAfter = "<mod name=\"Paper\" version=\"1\" enabled=\"1\"></mod>\n<after></after>\n";
    const struct {
        const char* in;
        const char* tree;
        int open;
    } cases[] = {
        // Self-closing and empty pairs read alike; after the short form we are back at the top.
        { "<mod name=\"Paper\" version=\"1\" enabled=\"1\"></mod><after/>", kPaperAfter, 0 },
        { "<mod name=\"Paper\" version=\"1\" enabled=\"1\"/><after/>", kPaperAfter, 0 },
        { "<mod name=\"Paper\" version=\"1\" enabled=\"1\" /><after/>", kPaperAfter, 0 },
        { "<br/><x>t</x>", "<br></br>\n<x>t</x>\n", 0 },
        // Any first and last character of a value is cut, not only '"'; a bare name has no value.
        { "<var name=\"Colorize Temperature\" a=x b=\"\" flag c='q' d=\"1=2\"  e=\"z\"></var>",
            "<var name=\"Colorize Temperature\" a=\"\" b=\"\" flag=\"\" c=\"q\" d=\"1=2\" e=\"z\"></var>\n", 0 },
        // Repeated names keep the value and place of the last one; tags split at line ends too.
        { "<m k=\"1\" j=\"2\" k=\"3\"></m>", "<m j=\"2\" k=\"3\"></m>\n", 0 },
        { "<m\n  k=\"1\"\n\tj=\"2\"></m>", "<m k=\"1\" j=\"2\"></m>\n", 0 },
        // A written value with a quote in it comes back broken.
        { "<q v=\"5\" tall\">t</q>", "<q v=\"5\" tall\"=\"\">t</q>\n", 0 },
        // '<' in text starts a tag; entities stay raw; a '>' directly before '<' ends the former tag.
        { "<a>x<y</a><b>&amp;</b>", "<a>\n  <y/a>\n    <b>&amp;</b>\n  </y/a>\nx\n</a>\n", 2 },
        { "<b>&amp; &lt;</b>", "<b>&amp; &lt;</b>\n", 0 },
        { "<a>x></a><b>>y</b>", "<a>x</a>\n<b>>y</b>\n", 0 },
        // Comments and instructions vanish; any other "<!" is an ordinary tag and opens an element.
        { "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<filter version=\"4\">\n"
          "  <!-- a <comment> with <mod name=\"Fake\"></mod> inside -->\n  <mod name=\"Real\"></mod>\n"
          "  <!---->\n</filter>\n",
            "<filter version=\"4\">\n  <mod name=\"Real\"></mod>\n\n\n</filter>\n", 0 },
        { "<!DOCTYPE x><a></a>", "<!DOCTYPE x=\"\">\n  <a></a>\n</!DOCTYPE>\n", 1 },
        { "<a></a><!-- no end <b></b>", "<a></a>\n", 0 },
        // The bytes before each tag replace the current element's text; white space stays.
        { "<a>first<b>in b</b>last</a>", "<a>\n  <b>in b</b>\nlast\n</a>\n", 0 },
        { "<a>gone<b></b></a>", "<a>\n  <b></b>\n</a>\n", 0 },
        { "<a>\n  v\t\n</a>", "<a>\n  v\t\n</a>\n", 0 },
        // Any closing tag closes the current element; at the top level it changes nothing.
        { "</stray><a><b></zzz><c></c></a></a></a><d></d>", "<a>\n  <b></b>\n  <c></c>\n</a>\n<d></d>\n", 0 },
        // Cut in a tag: the cut tag is not used. Cut in text: the element stays, open.
        { "<filter version=\"4\"><mod name=\"A\"></mod><mod name=\"B", "<filter version=\"4\">\n  <mod name=\"A\"></mod>\n</filter>\n", 1 },
        { "<p><k>12</k><k>3", "<p>\n  <k>12</k>\n  <k></k>\n</p>\n", 2 },
        // An unterminated quote runs to the '>'; nothing is lost outside it.
        { "<m name=\"abc><n>t</n></m>", "<m name=\"ab\">\n  <n>t</n>\n</m>\n", 0 },
    };
    for (const auto& c : cases) {
        int open = -1;
        const XmlNode r = parse(c.in, &open);
        EXPECT_EQ(r.toText(), c.tree) << c.in;
        EXPECT_EQ(open, c.open) << c.in;
    }
}

TEST(XmlNodeReader, DeepNestingIsCutOff)
{
    std::string deep;
    for (int i = 0; i < 200000; ++i)
        deep += "<a>";
    int open = -1;
    XmlNode r = parse(deep, &open);
    EXPECT_EQ(open, XmlNode::kMaxReadDepth);
    int depth = 0;
    for (const XmlNode* n = &r; !n->children.empty(); n = &n->children[0])
        ++depth;
    EXPECT_EQ(depth, XmlNode::kMaxReadDepth);
    XmlNode copy = r; // copying and writing the capped tree must be safe
    EXPECT_FALSE(copy.toText().empty());

    // Nesting within the limit reads fully.
    std::string ok;
    for (int i = 0; i < 100; ++i)
        ok += "<a>";
    for (int i = 0; i < 100; ++i)
        ok += "</a>";
    ok += "<b></b>";
    r = parse(ok, &open);
    EXPECT_EQ(open, 0);
    EXPECT_EQ(r.children.size(), 2u);
}

TEST(XmlNodeFiles, MissingFilesAndWriteFailures)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    XmlNode r;
    r.addChild(XmlNode("old"));
    int open = -1;
    EXPECT_FALSE(r.readFile(dir.filePath("absent.xml").toStdString(), &open));
    EXPECT_EQ(r.tag, "file");
    EXPECT_TRUE(r.children.empty());
    EXPECT_EQ(open, 0);

    XmlNode w("file");
    w.addChild(XmlNode("x", "1"));
    EXPECT_FALSE(w.writeFile(dir.filePath("no/such/folder/f.xml").toStdString()));
    EXPECT_FALSE(w.writeFile(dir.path().toStdString())); // a folder

    const std::string path = dir.filePath("f.xml").toStdString();
    ASSERT_TRUE(w.writeFile(path));
    EXPECT_TRUE(r.readFile(path, &open));
    ASSERT_EQ(r.children.size(), 1u);
    EXPECT_EQ(r.children[0].text, "1");
}

TEST(XmlNodeReader, OddAndRandomMarkupNeverBreaksTheScanner)
{
    const XmlNode nul = parse(std::string("<a>\0\0<b x=\"\0\"></b></a>", 21));
    EXPECT_EQ(nul.children.at(0).children.at(0).tag, "b"); // NUL bytes are ordinary characters
    // Odd shapes first, then inputs drawn from the scanner's own alphabet, so most bytes steer it.
    const char* const odd[] = { "", "<", ">", "<>", "</>", "<<<>>>", "<a", "<a b=\"", "<!--", "<!-", "<?", "<a></",
        "<a b=\"1\"c=\"2\">", "\"<a>\"", "<a/ >", "< / >" };
    const char alphabet[] = "<<>>/\"\"=!-? ab\n";
    TestRandom next { 12345 };
    for (int round = 0; round < 20000; ++round) {
        std::string s = round < int(std::size(odd)) ? odd[round] : "";
        const size_t len = round < int(std::size(odd)) ? 0 : next() % 80;
        for (size_t i = 0; i < len; ++i)
            s.push_back(alphabet[next() % (sizeof alphabet - 1)]);
        int open = -1;
        XmlNode r = parse(s, &open);
        ASSERT_EQ(r.tag, "file") << s;
        ASSERT_GE(open, 0) << s;
        ASSERT_LE(open, XmlNode::kMaxReadDepth) << s;
        // What was read can be written and scanned again; names holding markup don't survive,
        // so only the bounds are checked.
        XmlNode again = parse(r.toText(), &open);
        ASSERT_GE(open, 0) << s;
        ASSERT_LE(open, XmlNode::kMaxReadDepth) << s;
    }
}
