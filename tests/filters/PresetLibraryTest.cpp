#include "filters/PresetLibrary.h"

#include "FilterTestFiles.h"
#include "FilterTestMods.h"
#include "filters/FileFilter.h"
#include "filters/MultiData.h"
#include "filters/PreferenceKeys.h"

#include <QTemporaryDir>

namespace {

const char* const kPaperPreset = "<filter version=\"4\">\n  <mod name=\"Paper\" version=\"1\" enabled=\"1\"></mod>\n</filter>\n";

class PresetLibraryTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        data = dir.filePath("data/com.vantrel.photo/");
        // An archive of archives, one inner archive per group, as the default set is packed.
        const Pack color = Pack().file("Warm Fade.vnf", kPaperPreset).file("Cool Fade.vnf", kPaperPreset);
        const Pack bw = Pack().file("Silver.vnf", kPaperPreset);
        bundle = dir.filePath("bundle.mvr");
        spit(bundle, Pack().file("Color Essentials.mvr", color.bytes).file("Black and White.mvr", bw.bytes).bytes);
    }
    QString presets() const { return data + "Presets/"; }

    QTemporaryDir dir;
    QString data;
    QString bundle;
};

} // namespace

TEST_F(PresetLibraryTest, FirstRunUnpacksWithoutABackup)
{
    PresetLibrary lib(data.toStdString(), bundle.toStdString());
    MultiData prefs;
    const PresetLibrary::StartupResult r = lib.startupCheck(prefs);
    EXPECT_TRUE(r.unpacked);
    EXPECT_EQ(r.archiveNumber, 0);
    EXPECT_EQ(r.archiveStatus, 0);
    EXPECT_FALSE(lib.filtersUpdated());
    EXPECT_EQ(prefs.getFloat(PrefKeys::kDefaultFiltersVersion, 0.0f), 4.2f);
    EXPECT_EQ(tree(presets()), (QStringList { "Black and White/", "Black and White/Silver.vnf", "Color Essentials/",
                                   "Color Essentials/Cool Fade.vnf", "Color Essentials/Warm Fade.vnf" }));
    EXPECT_FALSE(QFileInfo::exists(data + "Presets Archive"));
    EXPECT_EQ(lib.groups(), (std::vector<std::string> { "Black and White", "Color Essentials" }));
    EXPECT_EQ(lib.presetsIn("Color Essentials"), (std::vector<std::string> { "Cool Fade.vnf", "Warm Fade.vnf" }));

    // The same version again: nothing is touched.
    spit(presets() + "Color Essentials/Warm Fade.vnf", "edited");
    const PresetLibrary::StartupResult again = lib.startupCheck(prefs);
    EXPECT_FALSE(again.unpacked);
    EXPECT_EQ(slurp(presets() + "Color Essentials/Warm Fade.vnf"), "edited");
    EXPECT_FALSE(QFileInfo::exists(data + "Presets Archive"));
}

TEST_F(PresetLibraryTest, OlderSetsAreArchivedAndMyPresetsStay)
{
    PresetLibrary lib(data.toStdString(), bundle.toStdString());
    MultiData prefs;
    lib.startupCheck(prefs);
    spit(presets() + "My Presets/Mine.vnf", "mine");
    spit(presets() + "Color Essentials/Warm Fade.vnf", "old look");
    spit(presets() + "Legacy 2_6/Old.vnf", "legacy");

    prefs.setFloat(PrefKeys::kDefaultFiltersVersion, 4.1f);
    PresetLibrary::StartupResult r = lib.startupCheck(prefs);
    EXPECT_TRUE(r.unpacked);
    EXPECT_EQ(r.archiveNumber, 1);
    EXPECT_TRUE(lib.filtersUpdated());
    const QString a1 = data + "Presets Archive/Archive 1/";
    EXPECT_EQ(slurp(a1 + "Color Essentials/Warm Fade.vnf"), "old look");
    EXPECT_EQ(slurp(a1 + "My Presets/Mine.vnf"), "mine");
    EXPECT_EQ(slurp(a1 + "Legacy 2_6/Old.vnf"), "legacy");
    EXPECT_EQ(slurp(presets() + "Color Essentials/Warm Fade.vnf"), kPaperPreset);
    EXPECT_EQ(slurp(presets() + "My Presets/Mine.vnf"), "mine");
    EXPECT_EQ(slurp(presets() + "Legacy 2_6/Old.vnf"), "legacy");
    EXPECT_EQ(prefs.getFloat(PrefKeys::kDefaultFiltersVersion, 0.0f), 4.2f);

    // A stored version from the future counts as different too, and takes the next number.
    prefs.setFloat(PrefKeys::kDefaultFiltersVersion, 5.0f);
    PresetLibrary lib2(data.toStdString(), bundle.toStdString());
    r = lib2.startupCheck(prefs);
    EXPECT_EQ(r.archiveNumber, 2);
    EXPECT_TRUE(QFileInfo(data + "Presets Archive/Archive 2/My Presets/Mine.vnf").isFile());
    EXPECT_TRUE(QFileInfo(data + "Presets Archive/Archive 1/My Presets/Mine.vnf").isFile());
}

TEST_F(PresetLibraryTest, MissingDefaultSetKeepsTheStoredVersion)
{
    PresetLibrary lib(data.toStdString(), dir.filePath("absent.mvr").toStdString());
    MultiData prefs;
    const PresetLibrary::StartupResult r = lib.startupCheck(prefs);
    EXPECT_FALSE(r.unpacked);
    EXPECT_EQ(prefs.getFloat(PrefKeys::kDefaultFiltersVersion, 0.0f), 0.0f); // tried again next start
    EXPECT_TRUE(QFileInfo(presets()).isDir());
}

TEST_F(PresetLibraryTest, NoBackupMeansNoOverwrite)
{
    PresetLibrary lib(data.toStdString(), bundle.toStdString());
    MultiData prefs;
    lib.startupCheck(prefs);
    spit(presets() + "Color Essentials/Warm Fade.vnf", "my edit");
    spit(data + "Presets Archive", "a file where the archive folder belongs");
    prefs.setFloat(PrefKeys::kDefaultFiltersVersion, 3.0f);
    const PresetLibrary::StartupResult r = lib.startupCheck(prefs);
    EXPECT_FALSE(r.unpacked);
    EXPECT_EQ(r.archiveNumber, 0);
    EXPECT_FALSE(lib.filtersUpdated());
    EXPECT_EQ(slurp(presets() + "Color Essentials/Warm Fade.vnf"), "my edit");
    EXPECT_EQ(prefs.getFloat(PrefKeys::kDefaultFiltersVersion, 0.0f), 3.0f);
}

TEST_F(PresetLibraryTest, SavingToPresets)
{
    PresetLibrary lib(data.toStdString(), bundle.toStdString());
    ModList mods;
    mods.push_back(std::make_unique<FilterTestPaper>());
    EXPECT_EQ(lib.presetPath("Evening"), (presets() + "My Presets/Evening.vnf").toStdString());
    EXPECT_EQ(lib.presetPath("Evening", "Film"), (presets() + "Film/Evening.vnf").toStdString());

    EXPECT_EQ(lib.saveToPresets(mods, "", false), PresetLibrary::kNoName);
    for (const char* bad : { "..", ".", "a/b", "../../escape" })
        EXPECT_EQ(lib.saveToPresets(mods, bad, true), PresetLibrary::kBadName) << bad;
    EXPECT_EQ(lib.saveToPresets(mods, "x", true, "../up"), PresetLibrary::kBadName);
    EXPECT_EQ(lib.saveToPresets(ModList(), "Nothing", false), PresetLibrary::kNothingToSave);

    EXPECT_EQ(lib.saveToPresets(mods, "Evening", false), PresetLibrary::kSaved);
    EXPECT_EQ(slurp(presets() + "My Presets/Evening.vnf"), kPaperPreset);
    mods.back()->enabled = false;
    EXPECT_EQ(lib.saveToPresets(mods, "Evening", false), PresetLibrary::kNeedsOverwrite);
    EXPECT_EQ(slurp(presets() + "My Presets/Evening.vnf"), kPaperPreset);
    EXPECT_EQ(lib.saveToPresets(mods, "Evening", true), PresetLibrary::kSaved);
    EXPECT_NE(slurp(presets() + "My Presets/Evening.vnf").find("enabled=\"0\""), std::string::npos);
    EXPECT_EQ(tree(dir.path()).filter("escape").size(), 0);
}

TEST(FileFilter, ReadsFilterFilesAndTakesTheirName)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    ModCatalogue catalogue;
    catalogue.push_back(std::make_unique<FilterTestPaper>());
    catalogue.push_back(std::make_unique<FilterTestRgbSwap>());
    const QString path = dir.filePath("Warm_Film_Look.VNF");
    spit(path,
        "<filter version=\"4\"><mod name=\"Paper\"></mod><mod name=\"RGB Swap\" enabled=\"0\"></mod></filter>");
    FileFilter f(path.toStdString(), catalogue);
    EXPECT_EQ(f.name, "Warm Film Look");
    EXPECT_EQ(f.kind(), 3);
    EXPECT_EQ(f.readStatus(), kFilterReadOk);
    ASSERT_EQ(f.children.size(), 2u);
    EXPECT_FALSE(f.children[1]->enabled);
    EXPECT_EQ(f.floatValue(0), 1.0f);

    const std::unique_ptr<ImageMod> copy = f.newInstance();
    const auto* ff = dynamic_cast<const FileFilter*>(copy.get());
    ASSERT_NE(ff, nullptr);
    EXPECT_EQ(ff->name, "Warm Film Look");
    EXPECT_EQ(ff->path(), path.toStdString());
    ASSERT_EQ(ff->children.size(), 2u);
    EXPECT_NE(ff->children[0].get(), f.children[0].get());

    spit(dir.filePath("notes.txt"), "<filter><mod name=\"Paper\"></mod></filter>");
    FileFilter other(dir.filePath("notes.txt").toStdString(), catalogue);
    EXPECT_EQ(other.name, "File Filter");
    EXPECT_TRUE(other.children.empty());
    EXPECT_EQ(other.readStatus(), kFilterReadDamaged);

    FileFilter missing(dir.filePath("gone.vnf").toStdString(), catalogue);
    EXPECT_EQ(missing.readStatus(), kFilterReadDamaged);
    EXPECT_TRUE(missing.children.empty());
}
