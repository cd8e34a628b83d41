#include "filters/XmlNode.h"

#include "FilterTestFiles.h"

#include <QTemporaryDir>
#include <cstdint>
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

TEST(XmlNodeReader, SelfClosingAndEmptyPairReadAlike)
{
    const XmlNode a = parse("<mod name=\"Paper\" version=\"1\" enabled=\"1\"></mod><after/>");
    const XmlNode b = parse("<mod name=\"Paper\" version=\"1\" enabled=\"1\"/><after/>");
    const XmlNode c = parse("<mod name=\"Paper\" version=\"1\" enabled=\"1\" /><after/>");
    for (const XmlNode* r : { &a, &b, &c }) {
        ASSERT_EQ(r->children.size(), 2u);
        const XmlNode& m = r->children[0];
        EXPECT_EQ(m.tag, "mod");
        EXPECT_TRUE(m.children.empty());
        ASSERT_EQ(m.attrNames.size(), 3u);
        EXPECT_EQ(m.attrNames[2], "enabled");
        EXPECT_EQ(m.attribute("name"), "Paper");
        EXPECT_EQ(m.attribute("enabled"), "1");
        EXPECT_EQ(r->children[1].tag, "after"); // back at the top level after the short form
    }
    const XmlNode br = parse("<br/><x>t</x>");
    ASSERT_EQ(br.children.size(), 2u);
    EXPECT_EQ(br.children[0].tag, "br");
}

TEST(XmlNodeReader, AttributeTokens)
{
    const XmlNode r = parse("<var name=\"Colorize Temperature\" a=x b=\"\" flag c='q' d=\"1=2\"  e=\"z\"></var>");
    const XmlNode& v = r.children.at(0);
    EXPECT_EQ(v.attribute("name"), "Colorize Temperature");
    EXPECT_EQ(v.attribute("a"), ""); // one character: both ends cut away
    EXPECT_TRUE(v.hasAttribute("a"));
    EXPECT_EQ(v.attribute("b"), "");
    EXPECT_TRUE(v.hasAttribute("flag"));
    EXPECT_EQ(v.attribute("flag"), "");
    EXPECT_EQ(v.attribute("c"), "q"); // any first and last character is cut, not only '"'
    EXPECT_EQ(v.attribute("d"), "1=2");
    EXPECT_EQ(v.attribute("e"), "z");
    EXPECT_EQ(v.attrNames.size(), 7u);

    // Repeated names keep the value and place of the last one.
    const XmlNode dup = parse("<m k=\"1\" j=\"2\" k=\"3\"></m>");
    ASSERT_EQ(dup.children.at(0).attrNames.size(), 2u);
    EXPECT_EQ(dup.children[0].attrNames[1], "k");
    EXPECT_EQ(dup.children[0].attribute("k"), "3");

    // Tags spread over lines split at the line ends too.
    const XmlNode lines = parse("<m\n  k=\"1\"\n\tj=\"2\"></m>");
    EXPECT_EQ(lines.children.at(0).tag, "m");
    EXPECT_EQ(lines.children[0].attribute("j"), "2");
}

TEST(XmlNodeReader, QuotesAndAnglesAreNotRepaired)
{
    // A written value with a quote in it comes back broken.
    XmlNode root("file");
    root.addChild(leaf("q", "t", { { "v", "5\" tall" } }));
    const XmlNode back = parse(root.toText());
    EXPECT_EQ(back.children.at(0).attribute("v"), "5");
    EXPECT_TRUE(back.children.at(0).hasAttribute("tall\""));

    // '<' in text starts a tag on reading; '&' stays raw.
    const XmlNode lt = parse("<a>x<y</a><b>&amp;</b>");
    EXPECT_NE(lt.children.at(0).text, "x<y");
    const XmlNode amp = parse("<b>&amp; &lt;</b>");
    EXPECT_EQ(amp.children.at(0).text, "&amp; &lt;");

    // A '>' directly before '<' is taken as the end of the former tag.
    const XmlNode gt = parse("<a>x></a><b>>y</b>");
    EXPECT_EQ(gt.children.at(0).text, "x");
    EXPECT_EQ(gt.children.at(1).text, ">y");
}

TEST(XmlNodeReader, CommentsInstructionsAndDeclarations)
{
    const XmlNode r = parse("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                            "<filter version=\"4\">\n"
                            "  <!-- a <comment> with <mod name=\"Fake\"></mod> inside -->\n"
                            "  <mod name=\"Real\"></mod>\n"
                            "  <!---->\n"
                            "</filter>\n");
    ASSERT_EQ(r.children.size(), 1u);
    const XmlNode& f = r.children[0];
    EXPECT_EQ(f.tag, "filter");
    ASSERT_EQ(f.children.size(), 1u);
    EXPECT_EQ(f.children[0].attribute("name"), "Real");

    // Any other "<!" is an ordinary tag, and opens an element.
    const XmlNode d = parse("<!DOCTYPE x><a></a>");
    ASSERT_EQ(d.children.size(), 1u);
    EXPECT_EQ(d.children[0].tag, "!DOCTYPE");
    EXPECT_TRUE(d.children[0].hasAttribute("x"));
    ASSERT_EQ(d.children[0].children.size(), 1u);

    // An unterminated comment swallows the rest.
    const XmlNode u = parse("<a></a><!-- no end <b></b>");
    ASSERT_EQ(u.children.size(), 1u);
}

TEST(XmlNodeReader, TextIsReplacedByTheLastRun)
{
    // The bytes before each tag become the current element's text, replacing what was there.
    const XmlNode r = parse("<a>first<b>in b</b>last</a>");
    const XmlNode& a = r.children.at(0);
    EXPECT_EQ(a.text, "last");
    EXPECT_EQ(a.children.at(0).text, "in b");

    const XmlNode cleared = parse("<a>gone<b></b></a>");
    EXPECT_EQ(cleared.children.at(0).text, "");

    // Line ends and indentation stay in the text.
    const XmlNode ws = parse("<a>\n  v\t\n</a>");
    EXPECT_EQ(ws.children.at(0).text, "\n  v\t\n");
}

TEST(XmlNodeReader, ClosingTagsAreNotMatched)
{
    // Any closing tag closes the current element; at the top level it changes nothing.
    const XmlNode r = parse("</stray><a><b></zzz><c></c></a></a></a><d></d>");
    ASSERT_EQ(r.children.size(), 2u);
    const XmlNode& a = r.children[0];
    ASSERT_EQ(a.children.size(), 2u);
    EXPECT_EQ(a.children[0].tag, "b");
    EXPECT_EQ(a.children[1].tag, "c");
    EXPECT_EQ(r.children[1].tag, "d");
}

TEST(XmlNodeReader, DamagedInputKeepsWhatWasRead)
{
    int open = -1;
    // Cut in the middle of a tag: the cut tag is not used.
    XmlNode r = parse("<filter version=\"4\"><mod name=\"A\"></mod><mod name=\"B", &open);
    EXPECT_EQ(open, 1);
    ASSERT_EQ(r.children.size(), 1u);
    ASSERT_EQ(r.children[0].children.size(), 1u);
    EXPECT_EQ(r.children[0].children[0].attribute("name"), "A");

    // Cut in text: the element stays, open.
    r = parse("<p><k>12</k><k>3", &open);
    EXPECT_EQ(open, 2);
    ASSERT_EQ(r.children.at(0).children.size(), 2u);
    EXPECT_EQ(r.children[0].children[0].text, "12");

    // An unterminated quote runs to the '>'; nothing is lost outside it.
    r = parse("<m name=\"abc><n>t</n></m>", &open);
    ASSERT_EQ(r.children.size(), 1u);
    EXPECT_EQ(r.children[0].tag, "m");
    EXPECT_EQ(r.children[0].attribute("name"), "ab");
    EXPECT_EQ(r.children[0].children.at(0).text, "t");
    EXPECT_EQ(open, 0);

    // Odd shapes that must neither crash nor loop.
    for (const char* s : { "", "<", ">", "<>", "</>", "<<<>>>", "<a", "<a b=\"", "<!--", "<!-", "<?",
             "<a></", "<a b=\"1\"c=\"2\">", "\"<a>\"", "<a/ >", "< / >" }) {
        XmlNode n = parse(s, &open);
        EXPECT_GE(open, 0) << s;
        EXPECT_EQ(n.tag, "file");
    }
    r = parse(std::string("<a>\0\0<b x=\"\0\"></b></a>", 21));
    EXPECT_EQ(r.children.at(0).children.at(0).tag, "b");
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

TEST(XmlNodeReader, RandomMarkupNeverBreaksTheScanner)
{
    // Inputs drawn from the scanner's own alphabet, so most bytes steer it somewhere.
    const char alphabet[] = "<<>>/\"\"=!-? ab\n";
    TestRandom next { 12345 };
    for (int round = 0; round < 20000; ++round) {
        std::string s;
        const size_t len = next() % 80;
        for (size_t i = 0; i < len; ++i)
            s.push_back(alphabet[next() % (sizeof alphabet - 1)]);
        int open = -1;
        XmlNode r = parse(s, &open);
        ASSERT_GE(open, 0) << s;
        ASSERT_LE(open, XmlNode::kMaxReadDepth) << s;
        // What was read can be written and scanned again; names holding markup don't survive,
        // so only the bounds are checked.
        XmlNode again = parse(r.toText(), &open);
        ASSERT_GE(open, 0) << s;
        ASSERT_LE(open, XmlNode::kMaxReadDepth) << s;
    }
}
