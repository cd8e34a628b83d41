// Preferences and presets replaced whole: a full disk, a kill or a folder that can't be written
// keeps what was there.
#include "tests/FaultInjection.h"

#include "FilterTestMods.h"
#include "filters/FilterFile.h"
#include "filters/MultiData.h"
#include "filters/PresetLibrary.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Folder {
    QTemporaryDir dir;
    std::string root() const { return dir.path().toStdString(); }
    std::string path(const std::string& name) const { return root() + "/" + name; }
};

// Preferences of some hundred kilobytes, different for each version.
void fillPrefs(MultiData& prefs, int version)
{
    for (int i = 0; i < 4000; ++i)
        prefs.setString("Key" + std::to_string(i), "value " + std::to_string(i * 7 + version) + " of version "
                                                       + std::to_string(version));
}

// A preset of many tiles, so it is larger than the size limit below.
ModList bigPreset(int version)
{
    ModList mods;
    for (int i = 0; i < 300; ++i) {
        mods.push_back(std::make_unique<FilterTestColorizeCurve>());
        mods.back()->enabled = ((i + version) % 3) != 0;
    }
    return mods;
}

bool writeVersion(const std::string& kind, const std::string& path, int version)
{
    if (kind == "prefs") {
        MultiData prefs;
        fillPrefs(prefs, version);
        return prefs.writeFile(path);
    }
    return writeFilter(bigPreset(version), path);
}

} // namespace

TEST(WriteFault, FullDiskKeepsTheFormerPreferences)
{
    Folder folder;
    const std::string path = folder.path("prefs.xml");
    MultiData prefs;
    fillPrefs(prefs, 0);
    ASSERT_TRUE(prefs.writeFile(path));
    const std::string before = fault::slurp(path);
    ASSERT_GT(before.size(), 100000u);
    fillPrefs(prefs, 1);
    {
        fault::FileSizeLimit limit(4096);
        ASSERT_TRUE(limit.active());
        EXPECT_FALSE(prefs.writeFile(path));
    }
    EXPECT_EQ(fault::slurp(path), before);
    EXPECT_EQ(fault::temporaryCount(folder.root()), 0);
    ASSERT_TRUE(prefs.writeFile(path));
    MultiData back;
    ASSERT_TRUE(back.readFile(path));
    EXPECT_EQ(back.getString("Key5", ""), "value 36 of version 1");
}

TEST(WriteFault, FullDiskKeepsTheFormerPresetAndSaysWriteFailed)
{
    Folder folder;
    PresetLibrary lib(folder.root() + "/", folder.path("none.mvr"));
    ASSERT_EQ(lib.saveToPresets(bigPreset(0), "Evening", false), PresetLibrary::kSaved);
    const std::string path = lib.presetPath("Evening");
    const std::string before = fault::slurp(path);
    ASSERT_GT(before.size(), 8192u);
    PresetLibrary::SaveResult result = PresetLibrary::kSaved;
    {
        fault::FileSizeLimit limit(4096);
        ASSERT_TRUE(limit.active());
        result = lib.saveToPresets(bigPreset(1), "Evening", true);
    }
    EXPECT_EQ(result, PresetLibrary::kWriteFailed);
    EXPECT_EQ(fault::slurp(path), before);
    EXPECT_EQ(fault::temporaryCount(lib.presetsFolder() + PresetLibrary::kMyPresets), 0);
    EXPECT_EQ(lib.presetsIn(PresetLibrary::kMyPresets), std::vector<std::string>{ "Evening.vnf" });
}

// Run only as the child of the kill tests.
TEST(WriteFaultChild, WritesInALoopUntilKilled)
{
    const char* target = fault::loopTarget();
    if (!target)
        GTEST_SKIP() << "runs as the child of the kill tests";
    const std::string kind = std::string(target).find("prefs") != std::string::npos ? "prefs" : "preset";
    for (int i = 0;; ++i) {
        if (!writeVersion(kind, target, i % 2))
            _exit(3);
        if (i == 0)
            fault::markStarted(target);
    }
}

TEST(WriteFault, KillDuringAWriteLeavesTheOldOrTheNewFileAndAtMostOneStray)
{
    for (const std::string kind : { "prefs", "preset" }) {
        SCOPED_TRACE(kind);
        Folder folder;
        const std::string target = folder.path(kind == "prefs" ? "prefs.xml" : "Evening.vnf");
        std::string refs[2];
        for (int v = 0; v < 2; ++v) {
            const std::string ref = folder.path("ref" + std::to_string(v) + (kind == "prefs" ? ".xml" : ".vnf"));
            ASSERT_TRUE(writeVersion(kind, ref, v));
            refs[v] = fault::slurp(ref);
        }
        ASSERT_NE(refs[0], refs[1]);
        for (int round = 0; round < 6; ++round) {
            ASSERT_TRUE(fault::killDuringSaves("WriteFaultChild.WritesInALoopUntilKilled", target,
                                               std::chrono::milliseconds(10 + 29 * round)));
            const std::string now = fault::slurp(target);
            EXPECT_TRUE(now == refs[0] || now == refs[1]) << "round " << round << ": a half file of "
                                                         << now.size() << " bytes";
            EXPECT_LE(fault::temporaryCount(folder.root()), 1) << "round " << round;
        }
        ASSERT_TRUE(writeVersion(kind, target, 0));
        EXPECT_EQ(fault::temporaryCount(folder.root()), 0);
    }
}

TEST(WriteFault, StrayTemporariesOfDeadProcessesOnlyAreRemoved)
{
    Folder folder;
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    ASSERT_GT(child, 0);
    waitpid(child, nullptr, 0);
    const std::string dead = folder.path(std::string(SafeFileWriter::kPrefix) + std::to_string(child) + "-abc123.jpg");
    const std::string mine = folder.path(std::string(SafeFileWriter::kPrefix) + std::to_string(getpid()) + "-abc123");
    const std::string parent = folder.path(std::string(SafeFileWriter::kPrefix) + std::to_string(getppid()) + "-x");
    const std::string odd = folder.path(std::string(SafeFileWriter::kPrefix) + "junk");
    const std::string other = folder.path("photo.jpg");
    for (const std::string& p : { dead, mine, parent, odd, other })
        fault::spill(p, "x");
    EXPECT_EQ(SafeFileWriter::removeStrayTemporaries(folder.root()), 1);
    EXPECT_FALSE(QFile::exists(QString::fromStdString(dead)));
    for (const std::string& p : { mine, parent, odd, other })
        EXPECT_TRUE(QFile::exists(QString::fromStdString(p))) << p;
}

TEST(WriteFault, WriterKeepsTheModeOfTheFileItReplacesAndCancelsCleanly)
{
    Folder folder;
    const std::string path = folder.path("keep.xml");
    fault::spill(path, "old");
    chmod(path.c_str(), 0600);
    {
        SafeFileWriter w;
        ASSERT_TRUE(w.open(path));
        ASSERT_TRUE(w.write("new!", 4));
        EXPECT_EQ(fault::temporaryCount(folder.root()), 1);
        // Dropped without commit: the old file stays and the temporary file goes.
    }
    EXPECT_EQ(fault::slurp(path), "old");
    EXPECT_EQ(fault::temporaryCount(folder.root()), 0);
    ASSERT_TRUE(SafeFileWriter::writeWhole(path, "new!", 4));
    EXPECT_EQ(fault::slurp(path), "new!");
    struct stat st;
    ASSERT_EQ(stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    // Through a link the linked file is replaced and the link stays.
    const std::string link = folder.path("link.xml");
    ASSERT_EQ(symlink(path.c_str(), link.c_str()), 0);
    ASSERT_TRUE(SafeFileWriter::writeWhole(link, "via link", 8));
    struct stat ls;
    ASSERT_EQ(lstat(link.c_str(), &ls), 0);
    EXPECT_TRUE(S_ISLNK(ls.st_mode));
    EXPECT_EQ(fault::slurp(path), "via link");
    // A target in a folder that does not exist fails and makes nothing.
    EXPECT_FALSE(SafeFileWriter::writeWhole(folder.path("missing/x.xml"), "x", 1));
    EXPECT_FALSE(SafeFileWriter::writeWhole(folder.root() + "/", "x", 1));
}

// A presets folder the program can't write: saving says kWriteFailed (the tray shows "The preset
// could not be written."), nothing half-made appears, and the library still lists and reads.
// Root writes into read-only folders, so as root the checks run in a child that drops to nobody.
TEST(WriteFault, UnwritablePresetsFolderFailsCleanlyAndTheLibraryKeepsWorking)
{
    Folder folder;
    PresetLibrary lib(folder.root() + "/", folder.path("none.mvr"));
    ASSERT_EQ(lib.saveToPresets(bigPreset(0), "Evening", false), PresetLibrary::kSaved);
    const std::string group = lib.presetsFolder() + PresetLibrary::kMyPresets;
    const std::string before = fault::slurp(lib.presetPath("Evening"));
    chmod(group.c_str(), 0555);
    auto unwritable = [&] {
        EXPECT_EQ(lib.saveToPresets(bigPreset(1), "Evening", true), PresetLibrary::kWriteFailed);
        EXPECT_EQ(lib.saveToPresets(bigPreset(1), "Morning", false), PresetLibrary::kWriteFailed);
        EXPECT_EQ(fault::slurp(lib.presetPath("Evening")), before);
        EXPECT_EQ(lib.presetsIn(PresetLibrary::kMyPresets), std::vector<std::string>{ "Evening.vnf" });
    };
    if (geteuid() != 0) {
        unwritable();
    } else {
        chmod(folder.root().c_str(), 0755); // let nobody reach the folder
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            if (setgid(65534) != 0 || setuid(65534) != 0)
                _exit(3);
            unwritable();
            _exit(::testing::Test::HasFailure() ? 1 : 0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 0) << "the checks failed as user nobody (3: could not switch user)";
    }
    chmod(group.c_str(), 0755);
    EXPECT_EQ(lib.saveToPresets(bigPreset(1), "Morning", false), PresetLibrary::kSaved);
}

TEST(WriteFault, BlockedPresetsFolderFailsCleanlyAndTheLibraryKeepsWorking)
{
    Folder folder;
    PresetLibrary lib(folder.root() + "/", folder.path("none.mvr"));
    ASSERT_EQ(lib.saveToPresets(bigPreset(0), "Evening", false), PresetLibrary::kSaved);
    // A plain file where a group folder would go: no folder and no preset can be made there.
    QDir().mkpath(QString::fromStdString(lib.presetsFolder()));
    fault::spill(lib.presetsFolder() + "Film", "not a folder");
    EXPECT_EQ(lib.saveToPresets(bigPreset(1), "Evening", false, "Film"), PresetLibrary::kWriteFailed);
    EXPECT_EQ(fault::slurp(lib.presetsFolder() + "Film"), "not a folder");
    EXPECT_EQ(lib.groups(), std::vector<std::string>{ PresetLibrary::kMyPresets });
    EXPECT_EQ(lib.saveToPresets(bigPreset(1), "Evening", true), PresetLibrary::kSaved);
    int32_t status = 0;
    ModCatalogue catalogue;
    catalogue.push_back(std::make_unique<FilterTestColorizeCurve>());
    EXPECT_EQ(readFilter(lib.presetPath("Evening"), catalogue, status).size(), 300u);
    EXPECT_EQ(status, kFilterReadOk);
}
