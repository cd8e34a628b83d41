#include "filters/FilterFile.h"

#include "FilterTestFiles.h"
#include "FilterTestMods.h"
#include "core/ImageModCompound.h"
#include "core/ImageModVariableDataBoundary.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ImageModVariableDataFile.h"
#include "core/ImageModVariableDataMultiChoice.h"
#include "core/ImageModVariableDataPixel.h"
#include "filters/TextNumbers.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
std::string writeText(const ModList& mods)
{
    std::vector<const ImageMod*> list;
    for (const auto& m : mods)
        list.push_back(m.get());
    return filterToXml(list).toText();
}

// The tiles as "Name[ off][ vN]", a group's children in braces: a whole structure in one check.
std::string describe(const ModList& mods)
{
    std::string out;
    for (const auto& m : mods) {
        out += (out.empty() ? "" : ", ") + m->name + (m->enabled ? "" : " off");
        if (m->version != 1)
            out += " v" + std::to_string(m->version);
        if (const auto* g = dynamic_cast<const ImageModCompound*>(m.get()))
            out += "{" + describe(g->children) + "}";
    }
    return out;
}

float f6(const char* text)
{
    return float(parseFloat(text));
}

const char* const kOldestFile = "<filter version=\"2.0\">\n"
                                "  <mod name=\"RGB Swap\" enabled=\"1\">\n"
                                "    <var name=\"Red\" type=\"color\">255.000000 0.000000 0.000000 </var>\n"
                                "    <var name=\"Green\" type=\"color\">0.000000 255.000000 0.000000 </var>\n"
                                "    <var name=\"Blue\" type=\"color\">0.000000 0.000000 255.000000 </var>\n"
                                "  </mod>\n"
                                "</filter>\n";

// The stand-in catalogue, a scratch folder, and the status of the last read.
class FilterFileTest : public ::testing::Test {
protected:
    FilterFileTest()
    {
        catalogue.push_back(std::make_unique<FilterTestHueMask>());
        catalogue.push_back(std::make_unique<FilterTestColorizeCurve>());
        catalogue.push_back(std::make_unique<FilterTestRgbSwap>());
        catalogue.push_back(std::make_unique<FilterTestPaper>());
        catalogue.push_back(std::make_unique<FilterTestEveryKind>());
    }
    ModList parse(const std::string& text)
    {
        XmlNode root;
        root.readText(text);
        return filterFromXml(root, catalogue, status);
    }
    std::string path(const char* name) const { return dir.filePath(name).toStdString(); }

    ModCatalogue catalogue;
    int32_t status = -1;
    QTemporaryDir dir;
};
using FilterFileWriter = FilterFileTest;
using FilterFileReader = FilterFileTest;

} // namespace

TEST_F(FilterFileWriter, BuildsTheColorizePresetByteForByte)
{
    ModList mods;
    auto mask = std::make_unique<FilterTestHueMask>();
    mask->variables[0]->asMultiChoice()->selected = { 1, 2 };
    mods.push_back(std::move(mask));
    auto colorize = std::make_unique<FilterTestColorizeCurve>();
    ToneCurve& curve = colorize->variables[0]->asCurve()->curve;
    curve.points = { { 0.0f, 0.5f }, { f6("0.518325"), 1.0f }, { 1.0f, 0.5f } };
    curve.rebuild();
    ImageModVariableDataColor* color = colorize->variables[1]->asColor();
    color->red = f6("108.776230");
    color->green = f6("68.700775");
    color->blue = 0.0f;
    colorize->variables[3]->asChoice()->index = 0;
    mods.push_back(std::move(colorize));

    ASSERT_TRUE(writeFilter(mods, path("Warm Highlights.vnf")));
    EXPECT_EQ(slurp(path("Warm Highlights.vnf")), kColorizeFile);

    // And it reads back to equal mods.
    const ModList back = readFilter(path("Warm Highlights.vnf"), catalogue, status);
    EXPECT_EQ(status, kFilterReadOk);
    ASSERT_EQ(back.size(), 2u);
    EXPECT_TRUE(back[0]->isEqual(*mods[0]));
    EXPECT_TRUE(back[1]->isEqual(*mods[1]));
}

TEST_F(FilterFileWriter, PlainShapes)
{
    ModList mods;
    mods.push_back(std::make_unique<FilterTestPaper>());
    mods.back()->enabled = false;
    mods.back()->attrNames = { "Hidden", "AliasRange" };
    mods.back()->attrValues = { "true", "0.2 0.5 1" };
    EXPECT_EQ(writeText(mods),
        "<filter version=\"4\">\n"
        "  <mod name=\"Paper\" version=\"1\" enabled=\"0\">\n"
        "    <attr name=\"Hidden\">true</attr>\n"
        "    <attr name=\"AliasRange\">0.2 0.5 1</attr>\n"
        "  </mod>\n"
        "</filter>\n");
    mods.back()->attrNames.clear();
    mods.back()->attrValues.clear();
    mods.back()->enabled = true;
    EXPECT_EQ(writeText(mods), "<filter version=\"4\">\n  <mod name=\"Paper\" version=\"1\" enabled=\"1\"></mod>\n</filter>\n");

    // Nothing to write: no file at all.
    EXPECT_FALSE(writeFilter(ModList(), path("empty.vnf")));
    EXPECT_EQ(slurp(path("empty.vnf")), "<absent>");
    EXPECT_FALSE(writeFilter(mods, path("missing/folder/x.vnf")));
}

TEST_F(FilterFileReader, OldestGenerationLoadsAndSavesAsVersion4)
{
    ModList mods = parse(kOldestFile);
    EXPECT_EQ(status, kFilterReadOk);
    ASSERT_EQ(mods.size(), 1u);
    // No version: the oldest algorithm (1), not the class's newest. Three numbers: opaque.
    EXPECT_EQ(writeText(mods),
        "<filter version=\"4\">\n"
        "  <mod name=\"RGB Swap\" version=\"1\" enabled=\"1\">\n"
        "    <var name=\"Red\" type=\"color\">255.000000 0.000000 0.000000 255.000000</var>\n"
        "    <var name=\"Green\" type=\"color\">0.000000 255.000000 0.000000 255.000000</var>\n"
        "    <var name=\"Blue\" type=\"color\">0.000000 0.000000 255.000000 255.000000</var>\n"
        "  </mod>\n"
        "</filter>\n");
}

TEST_F(FilterFileReader, Statuses)
{
    const struct {
        const char* text;
        int32_t status;
        size_t mods;
    } cases[] = {
        { "<filter version=\"5\"><mod name=\"Paper\"></mod><mod name=\"RGB Swap\"/></filter>", kFilterReadNewer, 2 },
        { "<filter version=\"4.99\"><mod name=\"Paper\"></mod></filter>", kFilterReadOk, 1 },
        { "<filter version=\"12\"></filter>", kFilterReadNewer, 0 },
        // An unknown tile is left out; damage outranks a newer version.
        { "<filter version=\"4\"><mod name=\"Paper\"></mod><mod name=\"Lens Flare 9000\"></mod>"
          "<mod name=\"RGB Swap\"></mod></filter>",
            kFilterReadDamaged, 2 },
        { "<filter version=\"6\"><mod name=\"Nope\"></mod><mod name=\"Paper\"></mod></filter>", kFilterReadDamaged, 1 },
        { "", kFilterReadDamaged, 0 },
        { "<preset><mod name=\"Paper\"></mod></preset>", kFilterReadDamaged, 0 },
        { "<!DOCTYPE x><filter></filter>", kFilterReadDamaged, 0 },
        { "just text", kFilterReadDamaged, 0 },
        { "<filter", kFilterReadDamaged, 0 },
        // Declarations and comments before the filter don't count as its first element.
        { "<?xml version=\"1.0\"?><!-- x --><filter version=\"4\"><mod name=\"Paper\"/></filter>", kFilterReadOk, 1 },
    };
    for (const auto& c : cases) {
        const ModList mods = parse(c.text);
        EXPECT_EQ(status, c.status) << c.text;
        EXPECT_EQ(mods.size(), c.mods) << c.text;
    }
    const ModList kept = parse(cases[3].text);
    ASSERT_EQ(kept.size(), 2u);
    EXPECT_EQ(kept[1]->name, "RGB Swap");
    EXPECT_TRUE(readFilter("/nonexistent/folder/x.vnf", catalogue, status).empty());
    EXPECT_EQ(status, kFilterReadDamaged);
}

TEST_F(FilterFileReader, ModAttributes)
{
    ModList mods = parse("<filter version=\"4\">"
                         "<mod name=\"Paper\" enabled=\"0\" version=\"7\" alias=\"Old Paper\"></mod>"
                         "<mod name=\"Paper\" enabled=\"0.9\"></mod>"
                         "<mod name=\"Paper\" enabled=\"-2\" version=\"2.8\"></mod>"
                         "<mod name=\"Paper\" enabled=\"\"><attr name=\"Hidden\">true</attr><attr name=\"K\">1</attr>"
                         "<attr name=\"Hidden\">false</attr><junk>x</junk></mod>"
                         "</filter>");
    EXPECT_EQ(status, kFilterReadOk);
    ASSERT_EQ(mods.size(), 4u);
    EXPECT_FALSE(mods[0]->enabled);
    EXPECT_EQ(mods[0]->version, 7);
    EXPECT_FALSE(mods[1]->enabled); // truncated to 0
    EXPECT_EQ(mods[1]->version, 1);
    EXPECT_TRUE(mods[2]->enabled);
    EXPECT_EQ(mods[2]->version, 2);
    EXPECT_FALSE(mods[3]->enabled); // present but empty reads as 0
    EXPECT_EQ(mods[3]->attrNames, (std::vector<std::string> { "Hidden", "K" }));
    EXPECT_EQ(mods[3]->attrValues, (std::vector<std::string> { "false", "1" }));
}

TEST_F(FilterFileReader, VariableRules)
{
    const FilterTestEveryKind fresh;
    ModList mods = parse("<filter version=\"3\"><mod name=\"Every Kind\" version=\"3\">"
                         "<var name=\"Curve\" type=\"curve\">0.2 0.3 </var>"
                         "<var name=\"Hue Curve\" type=\"curve\" hueOffset=\"45\">0 0.25 0.5 0.75 1 0.25</var>"
                         "<var name=\"Color\" type=\"color\">9 8</var>"
                         "<var name=\"Method\" type=\"choice\">Strong</var>"
                         "<var name=\"Picks\" type=\"multichoice\"><selection>c</selection>"
                         "<selection>zzz</selection><selection>a</selection></var>"
                         "<var name=\"Point\" type=\"pixelxy\">1 2 3 4 5</var>"
                         "<var name=\"Edges\" type=\"boundary\">0.1 0.2</var>"
                         "<var name=\"Image\" type=\"file\"> spaced path </var>"
                         "<var name=\"Nothing\" type=\"unknown\">5</var>"
                         "<var name=\"Not Declared\" type=\"float\">5</var>"
                         "<var name=\"Amount\" type=\"sparkle\">5</var>"
                         "</mod></filter>");
    EXPECT_EQ(status, kFilterReadOk);
    ASSERT_EQ(mods.size(), 1u);
    const ImageMod& m = *mods[0];
    EXPECT_EQ(m.floatValue(0), 0.5f); // not named with a known type: default kept
    EXPECT_TRUE(m.variables[1]->isEqual(*fresh.variables[1])); // one point: curve kept
    const ToneCurve& hue = m.variables[2]->asCurve()->curve;
    ASSERT_EQ(hue.points.size(), 3u);
    EXPECT_EQ(hue.points[1].y, 0.75f);
    EXPECT_EQ(hue.hueOffset, 45.0f);
    EXPECT_EQ(hue.closed, fresh.variables[2]->asCurve()->curve.closed);
    EXPECT_EQ(m.colorAt(3)->red, 1.0f); // two numbers: ignored
    EXPECT_EQ(m.choiceIndex(5), 1); // matched in the second label set
    EXPECT_EQ(m.multiChoiceAt(6)->selected, (std::vector<int32_t> { 2, 0 }));
    ASSERT_EQ(m.pixelAt(8)->points.size(), 2u);
    EXPECT_EQ(m.pixelAt(8)->points[1].x, 3.0f);
    EXPECT_EQ(m.boundaryAt(9)->left, 0.1f);
    EXPECT_EQ(m.boundaryAt(9)->top, 0.2f);
    EXPECT_EQ(m.boundaryAt(9)->right, 1.0f);
    EXPECT_EQ(m.fileAt(7)->path, " spaced path ");
    EXPECT_EQ(m.variables[10]->data, nullptr);
    EXPECT_EQ(m.variableCount(), fresh.variableCount());

    // A choice label nobody knows leaves the index; a multichoice with no match empties.
    mods = parse("<filter><mod name=\"Every Kind\"><var name=\"Method\" type=\"choice\">Wobbly</var>"
                 "<var name=\"Picks\" type=\"multichoice\"><selection>q</selection></var></mod></filter>");
    ASSERT_EQ(mods.size(), 1u);
    EXPECT_EQ(mods[0]->choiceIndex(5), 0);
    EXPECT_TRUE(mods[0]->multiChoiceAt(6)->selected.empty());
}

TEST_F(FilterFileReader, FileTypesOverrideTheDeclaredKind)
{
    ModList mods = parse("<filter><mod name=\"Every Kind\">"
                         "<var name=\"Method\" type=\"float\">0.75</var>"
                         "<var name=\"Amount\" type=\"choice\">Default</var>"
                         "<var name=\"Nothing\" type=\"color\">1 2 3</var>"
                         "</mod></filter>");
    ASSERT_EQ(mods.size(), 1u);
    const ImageModVariableData* f = mods[0]->variables[5]->data.get();
    ASSERT_EQ(f->kind(), kVariableFloat);
    EXPECT_EQ(f->value, 0.75f);
    EXPECT_EQ(f->hardMin, 0.0f);
    EXPECT_EQ(f->hardMax, 1.0f);
    const ImageModVariableDataChoice* c = mods[0]->variables[0]->asChoice();
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->currentLabel(), "Default");
    ASSERT_NE(mods[0]->colorAt(10), nullptr);
    EXPECT_EQ(mods[0]->colorAt(10)->alpha, 255.0f);
}

TEST_F(FilterFileReader, ButtonsNormaliseTextAndNotifyTheMod)
{
    ModList mods = parse("<filter><mod name=\"Every Kind\">"
                         "<var name=\"Button\" type=\"button\"><id>12.9</id><storedtext>a\r\nb\rc\r\n</storedtext></var>"
                         "</mod><mod name=\"Every Kind\"><var name=\"Button\" type=\"button\"></var></mod></filter>");
    ASSERT_EQ(mods.size(), 2u);
    const auto* first = static_cast<const FilterTestEveryKind*>(mods[0].get());
    EXPECT_EQ(first->variables[4]->asButton()->id, 12);
    EXPECT_EQ(first->variables[4]->asButton()->storedText, "a\nb\rc\n");
    EXPECT_EQ(first->changed, (std::vector<int32_t> { 4 }));
    const auto* second = static_cast<const FilterTestEveryKind*>(mods[1].get());
    EXPECT_EQ(second->variables[4]->asButton()->id, 0);
    EXPECT_EQ(second->variables[4]->asButton()->storedText, "");
    EXPECT_EQ(second->changed, (std::vector<int32_t> { 4 }));
}

TEST_F(FilterFileTest, EveryVariableKindsTextFormAndRoundTrip)
{
    auto m = std::make_unique<FilterTestEveryKind>();
    m->enabled = false;
    m->setVersion(2);
    m->variables[0]->asFloat()->value = 1.25f;
    m->variables[1]->asCurve()->curve.points = { { 0.0f, 0.125f }, { 0.25f, 0.5f }, { 1.0f, 0.875f } };
    m->variables[1]->asCurve()->curve.rebuild();
    m->variables[2]->asCurve()->curve.hueOffset = 90.5f;
    *m->variables[3]->asColor() = ImageModVariableDataColor(12.5f, 200.0f, 0.25f, 128.0f);
    m->variables[4]->asButton()->id = 3;
    m->variables[4]->asButton()->storedText = "line one\nline two\n";
    m->variables[5]->asChoice()->index = 2;
    m->variables[6]->asMultiChoice()->selected = { 3, 0 };
    m->variables[7]->asFile()->path = "/photos/My Border.png";
    m->variables[8]->asPixel()->points = { { 10.5f, -1.0f }, { 3.0f, 4.0f } };
    *m->variables[9]->asBoundary() = ImageModVariableDataBoundary(0.1875f, 0.25f, 0.75f, 0.5f);
    EXPECT_EQ(filterToXml({ m.get() }).toText(),
        "<filter version=\"4\">\n"
        "  <mod name=\"Every Kind\" version=\"2\" enabled=\"0\">\n"
        "    <var name=\"Amount\" type=\"float\">1.250000</var>\n"
        "    <var name=\"Curve\" type=\"curve\">0.000000 0.125000 0.250000 0.500000 1.000000 0.875000 </var>\n"
        "    <var name=\"Hue Curve\" type=\"curve\" hueOffset=\"90.500000\">0.000000 0.500000 0.500000 0.500000 "
        "1.000000 0.500000 </var>\n"
        "    <var name=\"Color\" type=\"color\">12.500000 200.000000 0.250000 128.000000</var>\n"
        "    <var name=\"Button\" type=\"button\">\n"
        "      <id>3</id>\n"
        "      <storedtext>line one\nline two\n</storedtext>\n"
        "    </var>\n"
        "    <var name=\"Method\" type=\"choice\">Both</var>\n"
        "    <var name=\"Picks\" type=\"multichoice\">\n"
        "      <selection>d</selection>\n"
        "      <selection>a</selection>\n"
        "    </var>\n"
        "    <var name=\"Image\" type=\"file\">/photos/My Border.png</var>\n"
        "    <var name=\"Point\" type=\"pixelxy\">10.500000 -1.000000 3.000000 4.000000</var>\n"
        "    <var name=\"Edges\" type=\"boundary\">0.187500 0.250000 0.750000 0.500000</var>\n"
        "    <var name=\"Nothing\" type=\"unknown\"></var>\n"
        "  </mod>\n"
        "</filter>\n");
    m->attrNames = { "Hidden" };
    m->attrValues = { "true" };

    // Line ends are written bare; a selection without a label is left out; a button without
    // text writes only its id.
    FilterTestEveryKind odd;
    odd.variables[4]->asButton()->storedText = "a\r\nb\r\n";
    odd.variables[6]->asMultiChoice()->selected = { 3, 0, 9 };
    EXPECT_EQ(variableToXml(*odd.variables[4]).children.at(1).text, "a\nb\n");
    EXPECT_EQ(variableToXml(*odd.variables[6]).children.size(), 2u);
    odd.variables[4]->asButton()->storedText.clear();
    const XmlNode button = variableToXml(*odd.variables[4]);
    ASSERT_EQ(button.children.size(), 1u);
    EXPECT_EQ(button.children[0].tag, "id");

    ModList list;
    list.push_back(cloneMod(*m));
    list.push_back(std::make_unique<FilterTestPaper>());
    auto group = std::make_unique<ImageModCompound>("Warm Group");
    group->addChild(cloneMod(*m));
    auto inner = std::make_unique<ImageModCompound>("Inner");
    inner->addChild(std::make_unique<FilterTestRgbSwap>());
    group->addChild(std::move(inner));
    list.push_back(std::move(group));

    ASSERT_TRUE(writeFilter(list, path("round.vnf")));
    const ModList back = readFilter(path("round.vnf"), catalogue, status);
    EXPECT_EQ(status, kFilterReadOk);
    ASSERT_EQ(back.size(), list.size());
    for (size_t i = 0; i < list.size(); ++i)
        EXPECT_TRUE(back[i]->isEqual(*list[i])) << i;
    EXPECT_EQ(back[0]->attrValues, m->attrValues);
    EXPECT_EQ(back[0]->variables[2]->asCurve()->curve.hueOffset, 90.5f);
    EXPECT_EQ(describe(back), "Every Kind off v2, Paper, Warm Group{Every Kind off v2, Inner{RGB Swap v2}}");
    // Saved again, the bytes don't move.
    ASSERT_TRUE(writeFilter(back, path("again.vnf")));
    EXPECT_EQ(slurp(path("again.vnf")), slurp(path("round.vnf")));
}

TEST_F(FilterFileReader, SubmodsAreGroupsAndLaterModsCopyThem)
{
    ModList mods = parse("<filter version=\"4\">"
                         "<submod name=\"Paper\"><mod name=\"RGB Swap\" version=\"2\"></mod>"
                         "<submod name=\"Deep\"><mod name=\"Paper\"></mod></submod></submod>"
                         "<mod name=\"Paper\" enabled=\"0\"></mod>"
                         "<mod name=\"Deep\"></mod>"
                         "<mod name=\"Hue Mask\"></mod>"
                         "</filter>");
    EXPECT_EQ(status, kFilterReadOk);
    // Inside the group "Paper" is not yet a group: the plain tile. After it, "Paper" and "Deep"
    // name the groups, as copies.
    EXPECT_EQ(describe(mods), "Paper{RGB Swap v2, Deep{Paper}}, Paper off{RGB Swap v2, Deep{Paper}}, Deep{Paper}, Hue Mask");
    ASSERT_EQ(mods.size(), 4u);
    const auto* group = dynamic_cast<const ImageModCompound*>(mods[0].get());
    const auto* copy = dynamic_cast<const ImageModCompound*>(mods[1].get());
    ASSERT_TRUE(group && copy && !group->children.empty() && !copy->children.empty());
    EXPECT_EQ(group->floatValue(0), 1.0f);
    EXPECT_NE(copy->children[0].get(), group->children[0].get());
}

TEST_F(FilterFileReader, LastCatalogueMatchWins)
{
    catalogue.clear();
    catalogue.push_back(std::make_unique<FilterTestPaper>());
    auto second = std::make_unique<FilterTestRgbSwap>();
    second->name = "Paper";
    catalogue.push_back(std::move(second));
    ModList mods = parse("<filter><mod name=\"Paper\"></mod><mod name=\"paper\"></mod></filter>");
    EXPECT_EQ(status, kFilterReadDamaged); // names compare exactly
    ASSERT_EQ(mods.size(), 1u);
    EXPECT_EQ(mods[0]->variableCount(), 3);
}

TEST_F(FilterFileReader, GroupsNamingGroupsCannotExplode)
{
    // Each level holds ten copies of the one before: 10^12 tiles if nothing stopped it.
    std::string text = "<filter version=\"4\"><submod name=\"L0\"><mod name=\"Paper\"></mod></submod>";
    for (int level = 1; level <= 12; ++level) {
        text += "<submod name=\"L" + std::to_string(level) + "\">";
        for (int i = 0; i < 10; ++i)
            text += "<mod name=\"L" + std::to_string(level - 1) + "\"></mod>";
        text += "</submod>";
    }
    text += "<mod name=\"Paper\"></mod></filter>";
    const ModList mods = parse(text);
    EXPECT_EQ(status, kFilterReadDamaged);
    ASSERT_EQ(mods.size(), 14u);
    EXPECT_EQ(mods.back()->name, "Paper");
    // The levels that fit are whole.
    const auto* l3 = dynamic_cast<const ImageModCompound*>(mods[3].get());
    ASSERT_NE(l3, nullptr);
    EXPECT_EQ(l3->children.size(), 10u);
}

TEST_F(FilterFileReader, ScrambledFilesNeverBreakTheReader)
{
    const std::string good = std::string(kColorizeFile)
        + "<submod name=\"G\"><mod name=\"Every Kind\"><var name=\"Button\" type=\"button\"><id>1</id></var>"
          "<var name=\"Hue Curve\" type=\"curve\" hueOffset=\"3\">0 0 1 1</var></mod></submod><mod name=\"G\"></mod>";
    const char nasty[] = { '<', '>', '/', '"', ' ', '=', '0', '9', 'e', '-' };
    TestRandom next { 7 };
    for (int round = 0; round < 3000; ++round) {
        std::string text = good;
        const int flips = 1 + int(next() % 6);
        for (int f = 0; f < flips; ++f)
            text[next() % text.size()] = nasty[next() % sizeof nasty];
        const ModList mods = parse(text);
        ASSERT_TRUE(status == kFilterReadOk || status == kFilterReadNewer || status == kFilterReadDamaged);
        ASSERT_LE(mods.size(), 10u);
        if (status == kFilterReadDamaged && mods.empty())
            continue;
        // Whatever loaded is written in a form that reads back to the same text ("%f" rounds
        // odd numbers once, on the first writing).
        const std::string written = writeText(mods);
        const ModList back = parse(written);
        EXPECT_EQ(status, kFilterReadOk);
        ASSERT_EQ(back.size(), mods.size()) << text;
        ASSERT_EQ(writeText(back), written) << round << "\n" << text;
    }
}
