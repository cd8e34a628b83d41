#include "filters/MultiData.h"
#include "filters/PreferenceKeys.h"
#include "filters/TextNumbers.h"

#include "FilterTestFiles.h"

#include <QTemporaryDir>
#include <clocale>
#include <cstdio>
#include <string>

namespace {

void fillSample(MultiData& d)
{
    d.setFloat(PrefKeys::kDefaultFiltersVersion, 4.2f);
    d.setString(PrefKeys::kWindowGeometry, "10 20 1300 900");
    d.setBool(PrefKeys::kIsFullscreen, true);
    d.setInt(PrefKeys::kCurrentTab, -3);
    d.setStringArray(PrefKeys::kStarredFilterList, { "Film/Warm Fade.vnf", "B&W/Deep Silver.vnf" });
    d.setString(PrefKeys::kLastFont, "Bitstream Vera Sans");
}

// Every key of part is in whole, with the same type and value.
void expectEntriesOf(MultiData& part, MultiData& whole, const std::string& where)
{
    for (const std::string& k : part.keys()) {
        ASSERT_TRUE(whole.contains(k)) << where << " key " << k;
        EXPECT_EQ(part.typeOf(k), whole.typeOf(k)) << where << " key " << k;
        if (whole.typeOf(k) == "string array")
            EXPECT_EQ(part.getStringArray(k, {}), whole.getStringArray(k, {})) << where << " key " << k;
        else
            EXPECT_EQ(part.getString(k, "?"), whole.getString(k, "?")) << where << " key " << k;
    }
}

const char* const kSampleText = "<VantrelPrefs>\n"
                                "  <DefaultFiltersVersion type=\"float\">4.200000</DefaultFiltersVersion>\n"
                                "  <WindowGeometry type=\"string\">10 20 1300 900</WindowGeometry>\n"
                                "  <IsFullscreen type=\"bool\">1</IsFullscreen>\n"
                                "  <CurrentTab type=\"int\">-3</CurrentTab>\n"
                                "  <StarredFilterList type=\"string array\">\n"
                                "    <Item>Film/Warm Fade.vnf</Item>\n"
                                "    <Item>B&W/Deep Silver.vnf</Item>\n"
                                "  </StarredFilterList>\n"
                                "  <LastFont type=\"string\">Bitstream Vera Sans</LastFont>\n"
                                "</VantrelPrefs>\n";

} // namespace

TEST(TextNumbers, FormatsAndParsesLikeTheCLibrary)
{
    EXPECT_EQ(formatFloat(4.2f), "4.200000");
    EXPECT_EQ(formatFloat(-0.0000004), "-0.000000");
    EXPECT_EQ(formatFloat(0.0000006), "0.000001");
    // Same digits as printf's "%f" in the C locale.
    char buf[400];
    double v = 1.0;
    for (int i = 0; i < 2000; ++i) {
        v = v * -1.37 + 0.3;
        if (i % 40 == 0)
            v = 1.0 / (i + 3);
        std::snprintf(buf, sizeof buf, "%f", v);
        ASSERT_EQ(formatFloat(v), buf) << i;
    }
    EXPECT_EQ(formatFloat(255.0), "255.000000");
    EXPECT_EQ(formatFloat(1e20), "100000000000000000000.000000");
    EXPECT_EQ(formatInt(-2147483647 - 1), "-2147483648");
    EXPECT_DOUBLE_EQ(parseFloat("  12.5abc"), 12.5);
    EXPECT_DOUBLE_EQ(parseFloat("abc"), 0.0);
    EXPECT_DOUBLE_EQ(parseFloat(""), 0.0);
    EXPECT_DOUBLE_EQ(parseFloat("2.0"), 2.0);
    EXPECT_DOUBLE_EQ(parseFloat("-1e2x"), -100.0);
    EXPECT_EQ(parseTruncatedInt("3.99"), 3);
    EXPECT_EQ(parseTruncatedInt("-2.5"), -2);
    EXPECT_EQ(parseTruncatedInt("1e30"), 2147483647);
    EXPECT_EQ(parseTruncatedInt("nan"), 0);
    EXPECT_EQ(float(parseFloat(formatFloat(4.2f))), 4.2f);
}

TEST(TextNumbers, IgnoresTheProcessLocale)
{
    const char* const candidates[] = { "de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "ru_RU.UTF-8" };
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    const char* used = nullptr;
    for (const char* c : candidates) {
        if (std::setlocale(LC_NUMERIC, c)) {
            used = c;
            break;
        }
    }
    if (!used)
        GTEST_SKIP() << "no locale with a decimal comma installed";
    EXPECT_EQ(formatFloat(4.2), "4.200000");
    EXPECT_DOUBLE_EQ(parseFloat("4.25"), 4.25);
    std::setlocale(LC_NUMERIC, before.c_str());
}

TEST(MultiData, GettersCreateMissingKeysWithTheirDefaults)
{
    MultiData d;
    EXPECT_FALSE(d.contains("Geometry"));
    EXPECT_EQ(d.getString("Geometry", "100 100 1200 800"), "100 100 1200 800");
    EXPECT_TRUE(d.getBool("Hover", true));
    EXPECT_EQ(d.getInt("Tab", 2), 2);
    EXPECT_EQ(d.getFloat("Version", 0.5f), 0.5f);
    EXPECT_EQ(d.getStringArray("Sections", { "0 Masks", "1 Borders" }), (std::vector<std::string> { "0 Masks", "1 Borders" }));
    EXPECT_TRUE(d.getStringArray("Starred", {}).empty());

    // Once created, the stored value wins over a later caller's default.
    EXPECT_EQ(d.getString("Geometry", "0 0 1 1"), "100 100 1200 800");
    EXPECT_TRUE(d.getBool("Hover", false));
    EXPECT_EQ(d.getInt("Tab", 5), 2);
    EXPECT_EQ(d.getFloat("Version", 9.0f), 0.5f);
    EXPECT_EQ(d.getStringArray("Sections", { "x" }).size(), 2u);
    EXPECT_EQ(d.keys(), (std::vector<std::string> { "Geometry", "Hover", "Tab", "Version", "Sections", "Starred" }));
    std::string types;
    for (const std::string& k : d.keys())
        types += d.typeOf(k) + ",";
    EXPECT_EQ(types, "string,bool,int,float,string array,string array,");
}

TEST(MultiData, SettersReplaceValueAndTypeInPlace)
{
    MultiData d;
    fillSample(d);
    EXPECT_EQ(d.toText(), kSampleText);
    EXPECT_TRUE(d.setStringArray(PrefKeys::kStarredFilterList, {}));
    EXPECT_TRUE(d.setInt(PrefKeys::kWindowGeometry, 7)); // same place, new type
    EXPECT_EQ(d.keys().at(1), "WindowGeometry");
    EXPECT_EQ(d.typeOf("WindowGeometry"), "int");
    EXPECT_EQ(d.getInt("WindowGeometry", 0), 7);
    EXPECT_TRUE(d.getStringArray(PrefKeys::kStarredFilterList, { "a" }).empty());
    EXPECT_TRUE(d.setStringArray(PrefKeys::kLastFont, { "a", "", " b " }));
    EXPECT_EQ(d.getStringArray(PrefKeys::kLastFont, {}), (std::vector<std::string> { "a", "", " b " }));
    EXPECT_TRUE(d.setString(PrefKeys::kLastFont, "plain"));
    EXPECT_EQ(d.getString(PrefKeys::kLastFont, ""), "plain");
    EXPECT_TRUE(d.getStringArray(PrefKeys::kLastFont, { "z" }).empty());

    // Reading one type through another getter parses the text like the C library.
    d.setString("Mixed", "12.7 px");
    EXPECT_EQ(d.getInt("Mixed", 0), 12);
    EXPECT_FLOAT_EQ(d.getFloat("Mixed", 0), 12.7f);
    EXPECT_TRUE(d.getBool("Mixed", false));
    d.setString("Mixed", "abc");
    EXPECT_EQ(d.getInt("Mixed", 9), 0);
    EXPECT_FALSE(d.getBool("Mixed", true));
    d.setString("Mixed", " TRUE ");
    EXPECT_TRUE(d.getBool("Mixed", false));
    d.setString("Mixed", "false");
    EXPECT_FALSE(d.getBool("Mixed", true));
}

TEST(MultiData, RefusesWhatTheFileCannotCarry)
{
    MultiData d;
    for (const char* key : { "", "two words", "a/b", "<x", "q\"", "k=v", "?pi", "!x", "tab\tkey" }) {
        EXPECT_FALSE(d.setString(key, "v")) << key;
        EXPECT_EQ(d.getInt(key, 4), 4) << key;
    }
    EXPECT_FALSE(d.setString("Path", "/photos/a<b"));
    EXPECT_FALSE(d.setString("Path", "arrow>"));
    EXPECT_FALSE(d.setString("Path", std::string("a\0b", 3)));
    EXPECT_FALSE(d.setStringArray("List", { "fine", "bad<" }));
    EXPECT_EQ(d.getString("Path", "x<y"), "x<y"); // given back, not stored
    EXPECT_TRUE(d.keys().empty());
    EXPECT_TRUE(d.setString("Path", "a > b & c\nline two"));
    EXPECT_EQ(d.getString("Path", ""), "a > b & c\nline two");
}

TEST(MultiData, FileRoundTripKeepsEveryType)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::string path = dir.filePath("deep/er/VantrelPrefs.xml").toStdString();
    MultiData out;
    fillSample(out);
    out.setString("Empty", "");
    out.setString("Spaced", "  lead and trail  \n");
    out.setFloat("Tiny", 0.0000004f);
    out.setInt("Min", -2147483647 - 1);
    out.setStringArray("NoItems", {});
    ASSERT_TRUE(out.writeFile(path)); // makes the missing folders
    const std::string bytes = slurp(path);
    EXPECT_EQ(bytes, out.toText());

    MultiData in;
    in.setString("Stale", "gone after reading");
    ASSERT_TRUE(in.readFile(path));
    EXPECT_FALSE(in.contains("Stale"));
    EXPECT_EQ(in.keys(), out.keys());
    expectEntriesOf(in, out, "read back");
    EXPECT_EQ(in.getFloat(PrefKeys::kDefaultFiltersVersion, 0.0f), 4.2f); // exact: the start-up check compares
    EXPECT_EQ(in.getString("Spaced", ""), "  lead and trail  \n");
    EXPECT_EQ(in.getFloat("Tiny", 1.0f), 0.0f); // "%f" keeps six decimals
    EXPECT_EQ(in.getInt("Min", 0), -2147483647 - 1);
    EXPECT_TRUE(in.getStringArray("NoItems", { "x" }).empty());
    EXPECT_EQ(in.toText(), bytes);
}

TEST(MultiData, CutFilesKeepEveryWholeEntry)
{
    MultiData full;
    fillSample(full);
    const std::string bytes = full.toText();
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::string path = dir.filePath("cut.xml").toStdString();

    // Every entry of the loaded store must hold its full value; every entry whose closing tag
    // lies before the cut must be there.
    const std::vector<std::string> keys = full.keys();
    for (size_t cut = 0; cut <= bytes.size(); ++cut) {
        spit(path, bytes.substr(0, cut));
        MultiData d;
        ASSERT_TRUE(d.readFile(path));
        expectEntriesOf(d, full, "cut " + std::to_string(cut));
        for (const std::string& k : keys) {
            const size_t close = bytes.find("</" + k + ">");
            if (close + k.size() + 3 <= cut) {
                EXPECT_TRUE(d.contains(k)) << "cut " << cut << " key " << k;
            }
        }
    }

    // A value cut short falls back to the caller's default instead of a broken value.
    spit(path, bytes.substr(0, bytes.find("1300") + 2));
    MultiData d;
    d.readFile(path);
    EXPECT_EQ(d.getString(PrefKeys::kWindowGeometry, PrefKeys::kWindowGeometryDefault), "100 100 1200 800");
    EXPECT_EQ(d.getFloat(PrefKeys::kDefaultFiltersVersion, 0.0f), 4.2f);
}

TEST(MultiData, ForeignAndBrokenFilesGiveAnEmptyOrPartialStore)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::string path = dir.filePath("p.xml").toStdString();
    MultiData d;
    EXPECT_FALSE(d.readFile(dir.filePath("absent.xml").toStdString()));
    EXPECT_TRUE(d.keys().empty());

    std::string junk;
    for (int i = 0; i < 4096; ++i)
        junk.push_back(char((i * 7919 + 13) & 0xff));
    const std::string nested = "<?xml version=\"1.0\"?>\n<!-- hand edited -->\n<VantrelPrefs><A type=\"int\">5</A>"
                               "<B type=\"string\">x<nested>y</nested></B><C type=\"int\">6</C></VantrelPrefs>";
    for (const std::string& content : { std::string(), junk, std::string("<other><A type=\"int\">1</A></other>"), nested,
             std::string("<VantrelPrefs><A type=\"int\">5</A><B type=\"string array\"><Item>p</Item><Item>q") }) {
        spit(path, content);
        EXPECT_TRUE(d.readFile(path));
        for (const std::string& k : d.keys())
            EXPECT_TRUE(k == "A" || k == "C") << k;
    }
    // The last two: the entry with a stray element inside and the cut array are dropped.
    EXPECT_EQ(d.keys(), std::vector<std::string> { "A" });
    EXPECT_EQ(d.getInt("A", 0), 5);
    spit(path, nested);
    d.readFile(path);
    EXPECT_EQ(d.getInt("C", 0), 6);
    EXPECT_FALSE(d.contains("B"));
}

// Found by fuzzing: a damaged tag left an attribute value holding a quote. Kept, it was written
// back as it stood and the next read garbled the entry, so a save and reload lost keys. Such an
// entry is debris; the whole entries around it stay and the save reads back key for key.
TEST(MultiData, EntriesWithStrayQuotesAreDroppedSoSavesReadBack)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::string path = dir.filePath("p.xml").toStdString();
    spit(path, std::string("<VantrelPrefs>\n  <DefaultFiltersVersion type=\"float\">4.200000</DefaultFiltersVersion>\n"
                           "  <WindowGeometry typE=\"string\"\x02" "10 isj type=\"string array\">\n"
                           "    <Item>Film/Warm Fade.vnf</Item>\n  </WindowGeometry>\n"
                           "  <Tab type=\"int\">3</Tab>\n</VantrelPrefs>\n"));
    MultiData d;
    ASSERT_TRUE(d.readFile(path));
    EXPECT_EQ(d.keys(), (std::vector<std::string> { "DefaultFiltersVersion", "Tab" }));
    EXPECT_EQ(d.getInt("Tab", 0), 3);
    ASSERT_TRUE(d.writeFile(path));
    MultiData again;
    ASSERT_TRUE(again.readFile(path));
    EXPECT_EQ(again.keys(), d.keys());
    EXPECT_EQ(again.toText(), d.toText());
}

TEST(MultiData, SavingReplacesTheWholeFileOrNothing)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::string path = dir.filePath("VantrelPrefs.xml").toStdString();
    spit(path, std::string(20000, 'z'));
    MultiData d;
    d.setInt("A", 1);
    ASSERT_TRUE(d.writeFile(path));
    EXPECT_EQ(slurp(path), "<VantrelPrefs>\n  <A type=\"int\">1</A>\n</VantrelPrefs>\n");

    // A target that can't be replaced: the save fails and leaves no temporary file behind.
    const QString blocked = dir.filePath("blocked");
    ASSERT_TRUE(QDir().mkpath(blocked + "/inside"));
    EXPECT_FALSE(d.writeFile(blocked.toStdString()));
    EXPECT_TRUE(QDir(blocked + "/inside").exists());
    // The folder can't be made because a file stands in its place.
    EXPECT_FALSE(d.writeFile(path + "/sub/VantrelPrefs.xml"));
    EXPECT_EQ(slurp(path), "<VantrelPrefs>\n  <A type=\"int\">1</A>\n</VantrelPrefs>\n");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden | QDir::System), QStringList { "VantrelPrefs.xml" });
}

TEST(MultiData, DataFolderFollowsTheDesktopDataLocation)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const ScopedEnv env("XDG_DATA_HOME", QFile::encodeName(dir.path()));
    EXPECT_EQ(dataFolder(), dir.path().toStdString() + "/com.vantrel.photo/");
    EXPECT_EQ(preferencesPath(), dir.path().toStdString() + "/com.vantrel.photo/VantrelPrefs.xml");
    MultiData& g = MultiData::global();
    EXPECT_EQ(&g, &MultiData::global());
    g.clear();
    g.getBool(PrefKeys::kAutohideControls, PrefKeys::kAutohideControlsDefault);
    EXPECT_TRUE(g.writeFile(preferencesPath()));
    MultiData back;
    EXPECT_TRUE(back.readFile(preferencesPath()));
    EXPECT_EQ(back.typeOf(PrefKeys::kAutohideControls), "bool");
    g.clear();
}
