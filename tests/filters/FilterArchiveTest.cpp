#include "filters/FilterArchive.h"

#include "FilterTestFiles.h"

#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

class FilterArchiveTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        ASSERT_TRUE(QDir().mkpath(dir.filePath("outside")));
    }
    std::string archive(const std::string& bytes, const QString& name = "a.mvr")
    {
        const QString p = dir.filePath(name);
        spit(p, bytes);
        return p.toStdString();
    }
    QString target() const { return dir.filePath("target"); }
    std::string targetStr() const { return target().toStdString(); }

    QTemporaryDir dir;
};

} // namespace

TEST_F(FilterArchiveTest, UnpacksFilesAndSubfolders)
{
    const std::string warm = "<filter version=\"4\">\n</filter>\n";
    std::string binary;
    for (int i = 0; i < 70000; ++i) // larger than one copy block
        binary.push_back(char(i * 31));
    const std::string a = archive(
        Pack().file("Warm 01.vnf", warm).file("deep/er/Bin.dat", binary).file("Zero.vnf", "").bytes);
    EXPECT_EQ(extractArchive(a, targetStr()), kArchiveOk);
    EXPECT_EQ(tree(target()), (QStringList { "Warm 01.vnf", "Zero.vnf", "deep/", "deep/er/", "deep/er/Bin.dat" }));
    EXPECT_EQ(slurp(target() + "/Warm 01.vnf"), warm);
    EXPECT_EQ(slurp(target() + "/deep/er/Bin.dat"), binary);
    EXPECT_EQ(slurp(target() + "/Zero.vnf"), "");

    // A second run replaces files whole, with a trailing separator or without.
    spit(target() + "/Warm 01.vnf", std::string(5000, 'q'));
    EXPECT_EQ(extractArchive(a, targetStr() + "/"), kArchiveOk);
    EXPECT_EQ(slurp(target() + "/Warm 01.vnf"), warm);
}

TEST_F(FilterArchiveTest, NestedArchivesUnpackIntoTheirOwnFolders)
{
    const std::string inner = Pack().file("Deep Look.vnf", "deep").empty().bytes;
    const std::string group = Pack().file("Look 1.vnf", "one").file("Sub.mvr", inner).file("Look 2.vnf", "two").bytes;
    const std::string emptyGroup = Pack().empty().bytes;
    const std::string a = archive(
        Pack().file("Color Essentials.mvr", group).file("Empty Group.mvr", emptyGroup).file("top.vnf", "t").bytes);
    EXPECT_EQ(extractArchive(a, targetStr()), kArchiveOk);
    EXPECT_EQ(tree(target()),
        (QStringList { "Color Essentials/", "Color Essentials/Look 1.vnf", "Color Essentials/Look 2.vnf",
            "Color Essentials/Sub/", "Color Essentials/Sub/Deep Look.vnf", "Empty Group/", "top.vnf" }));
    EXPECT_EQ(slurp(target() + "/Color Essentials/Sub/Deep Look.vnf"), "deep");
    EXPECT_TRUE(QFile::exists(QString::fromStdString(a))); // the outer archive itself stays

    // Only the exact extension nests.
    const std::string b = archive(Pack().file("Upper.MVR", inner).file("x.mvr.vnf", "v").bytes, "b.mvr");
    EXPECT_EQ(extractArchive(b, dir.filePath("t2").toStdString()), kArchiveOk);
    EXPECT_EQ(tree(dir.filePath("t2")), (QStringList { "Upper.MVR", "x.mvr.vnf" }));
}

TEST_F(FilterArchiveTest, EmptyAndMissingArchives)
{
    EXPECT_EQ(extractArchive(archive(""), targetStr()), kArchiveOk);
    EXPECT_FALSE(QFileInfo::exists(target()));

    EXPECT_EQ(extractArchive(archive(Pack().file("x.vnf", "x").bytes, "x.mvr"), ""), kArchiveWriteFailed);
    EXPECT_EQ(extractArchive(dir.filePath("absent.mvr").toStdString(), targetStr()), kArchiveNotOpened);
    EXPECT_FALSE(QFileInfo::exists(target()));

    EXPECT_EQ(extractArchive(archive("EMTY"), targetStr() + "/made/here"), kArchiveOk);
    EXPECT_TRUE(QFileInfo(target() + "/made/here").isDir());
    EXPECT_EQ(tree(target()), (QStringList { "made/", "made/here/" }));
}

TEST_F(FilterArchiveTest, EveryCutKeepsTheRecordsBeforeIt)
{
    const std::string inner = Pack().file("in.vnf", "inside").bytes;
    Pack p;
    std::vector<size_t> boundaries { 0 };
    p.file("one.vnf", "first payload");
    boundaries.push_back(p.bytes.size());
    p.empty();
    boundaries.push_back(p.bytes.size());
    p.file("g.mvr", inner);
    boundaries.push_back(p.bytes.size());
    p.file("two.vnf", "second payload");
    const std::string full = p.bytes;
    for (size_t cut = 0; cut < full.size(); ++cut) {
        const QString t = dir.filePath("cut" + QString::number(cut));
        const int status = extractArchive(archive(full.substr(0, cut), "cut.mvr"), t.toStdString());
        if (std::find(boundaries.begin(), boundaries.end(), cut) != boundaries.end()) {
            EXPECT_EQ(status, kArchiveOk) << cut; // a cut between records is a shorter archive
            continue;
        }
        EXPECT_EQ(status & kArchiveTruncated, kArchiveTruncated) << cut;
        EXPECT_EQ(status & ~kArchiveTruncated, 0) << cut;
        const std::string one = slurp(t + "/one.vnf");
        if (one != "<absent>") {
            EXPECT_EQ(std::string("first payload").rfind(one, 0), 0u) << "cut " << cut << ": " << one;
        }
        const size_t twoStart = full.find("FILE", full.find("second") - 20);
        if (cut >= twoStart) {
            EXPECT_EQ(slurp(t + "/one.vnf"), "first payload");
            EXPECT_EQ(slurp(t + "/g/in.vnf"), "inside");
        }
        for (const QString& f : tree(t))
            EXPECT_FALSE(f.endsWith(".mvr") && cut >= twoStart) << f.toStdString();
    }
}

TEST_F(FilterArchiveTest, OversizedFieldsEndTheArchiveWithoutAllocating)
{
    const struct {
        std::string bytes;
        int status;
        QStringList files;
    } cases[] = {
        // A payload size far beyond the input: the file gets what there is.
        { Pack().file("ok.vnf", "ok").raw("FILE").u32(5).raw("big.v").u32(0xffffffffu).raw("tail").bytes,
            kArchiveTruncated, { "big.v", "ok.vnf" } },
        // A name length no file system allows: damage, not a name.
        { Pack().file("ok.vnf", "ok").raw("FILE").u32(0xfffffff0u).raw("xyz").bytes, kArchiveBadRecord, { "ok.vnf" } },
        // A name length a little beyond the input.
        { Pack().file("ok.vnf", "ok").raw("FILE").u32(100).raw("short").bytes, kArchiveTruncated, { "ok.vnf" } },
        // An unknown tag ends the reading; what came before stays.
        { Pack().file("ok.vnf", "ok").raw("JUNK").file("after.vnf", "x").bytes, kArchiveBadRecord, { "ok.vnf" } },
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        const QString t = dir.filePath("t" + QString::number(i));
        EXPECT_EQ(extractArchive(archive(cases[i].bytes), t.toStdString()), cases[i].status) << i;
        EXPECT_EQ(tree(t), cases[i].files) << i;
        EXPECT_EQ(slurp(t + "/ok.vnf"), "ok") << i;
    }
    EXPECT_EQ(slurp(dir.filePath("t0/big.v")), "tail");
}

TEST_F(FilterArchiveTest, HostileNamesNeverEscapeTheTarget)
{
    const QString outside = dir.filePath("outside");
    const std::string abs = (outside + "/abs.vnf").toStdString();
    Pack p;
    for (const std::string& name : { std::string("../x.vnf"), std::string("../outside/y.vnf"), abs,
             std::string("a/../../x.vnf"), std::string("a/../b.vnf"), std::string("..\\x.vnf"),
             std::string("\\x.vnf"), std::string("ok/.."), std::string(".."), std::string("a\\..\\..\\x.vnf"),
             std::string("n\0ul.vnf", 8) })
        p.file(name, "evil");
    p.file("", "no name").file("folder/", "no name").file("./.", "dots");
    p.file("./fine/./ok.vnf", "good");
    p.file("..dots..vnf", "allowed");
    const int status = extractArchive(archive(p.bytes), targetStr());
    EXPECT_EQ(status, kArchiveNameRefused | kArchiveWriteFailed);
    EXPECT_EQ(tree(target()), (QStringList { "..dots..vnf", "fine/", "fine/ok.vnf" }));
    EXPECT_EQ(slurp(target() + "/fine/ok.vnf"), "good");
    EXPECT_TRUE(tree(outside).isEmpty());
    EXPECT_EQ(tree(dir.path()), (QStringList { "a.mvr", "outside/", "target/", "target/..dots..vnf", "target/fine/",
                                    "target/fine/ok.vnf" }));

    // The same names inside a nested archive are judged against the whole target.
    const std::string inner = Pack().file("../../x.vnf", "evil").file("../sibling.vnf", "evil").file("in.vnf", "ok").bytes;
    EXPECT_EQ(extractArchive(archive(Pack().file("g.mvr", inner).bytes, "n.mvr"), dir.filePath("t2").toStdString()),
        kArchiveNameRefused);
    EXPECT_EQ(tree(dir.filePath("t2")), (QStringList { "g/", "g/in.vnf" }));
    EXPECT_FALSE(QFile::exists(dir.filePath("x.vnf")));
}

TEST_F(FilterArchiveTest, LinksInTheTargetAreNotFollowed)
{
    const QString outside = dir.filePath("outside");
    ASSERT_TRUE(QDir().mkpath(target()));
    spit(outside + "/victim.vnf", "precious");
    ASSERT_EQ(::symlink(outside.toUtf8().constData(), (target() + "/linkdir").toUtf8().constData()), 0);
    ASSERT_EQ(::symlink((outside + "/victim.vnf").toUtf8().constData(), (target() + "/link.vnf").toUtf8().constData()), 0);
    ASSERT_EQ(::symlink(outside.toUtf8().constData(), (target() + "/Group").toUtf8().constData()), 0);
    ASSERT_EQ(::link((outside + "/victim.vnf").toUtf8().constData(), (target() + "/hard.vnf").toUtf8().constData()), 0);

    const std::string inner = Pack().file("victim.vnf", "evil").file("new.vnf", "evil").bytes;
    const std::string a = Pack()
                              .file("linkdir/victim.vnf", "evil")
                              .file("linkdir/new.vnf", "evil")
                              .file("link.vnf", "evil")
                              .file("Group.mvr", inner)
                              .file("hard.vnf", "replaced")
                              .file("plain.vnf", "ok")
                              .bytes;
    const int status = extractArchive(archive(a), targetStr());
    EXPECT_EQ(status, kArchiveNameRefused);
    EXPECT_EQ(slurp(outside + "/victim.vnf"), "precious");
    EXPECT_EQ(tree(outside), (QStringList { "victim.vnf" }));
    EXPECT_EQ(slurp(target() + "/hard.vnf"), "replaced"); // a new file, the other link keeps its data
    EXPECT_EQ(slurp(target() + "/plain.vnf"), "ok");
    EXPECT_TRUE(QFileInfo(target() + "/link.vnf").isSymLink());
    // The nested archive was written but not unpacked through the link, and is then removed.
    EXPECT_FALSE(QFile::exists(target() + "/Group.mvr"));
}

TEST_F(FilterArchiveTest, NestingDepthIsBounded)
{
    std::string bytes = Pack().file("bottom.vnf", "b").bytes;
    for (int i = 0; i < 12; ++i)
        bytes = Pack().file("L.mvr", bytes).bytes;
    const int status = extractArchive(archive(bytes), targetStr());
    EXPECT_EQ(status, kArchiveTooDeep);
    QString path = target();
    for (int i = 0; i < 8; ++i)
        path += "/L";
    EXPECT_TRUE(QFile::exists(path + "/L.mvr"));
    EXPECT_FALSE(QFile::exists(path + "/L"));
}

TEST_F(FilterArchiveTest, ResourceArchivesGoThroughAPrivateCopy)
{
    const QString tmp = dir.filePath("tmp");
    ASSERT_TRUE(QDir().mkpath(tmp));
    const ScopedEnv env("TMPDIR", QFile::encodeName(tmp));

    const std::string src = archive(Pack().file("Group.mvr", Pack().file("p.vnf", "preset").bytes).bytes, "res.mvr");
    ASSERT_EQ(::chmod(src.c_str(), 0444), 0); // as a copy out of the resources would be
    EXPECT_EQ(extractResourceArchive(src, targetStr()), kArchiveOk);
    EXPECT_EQ(slurp(target() + "/Group/p.vnf"), "preset");
    EXPECT_EQ(extractResourceArchive(":/prefs/no_such_bundle.mvr", dir.filePath("t2").toStdString()), kArchiveNotOpened);
    EXPECT_FALSE(QFileInfo::exists(dir.filePath("t2")));
    EXPECT_TRUE(tree(tmp).isEmpty());
}

namespace {

// Lists and removes by bytes: flipped names need not be valid text, which Qt can't handle.
std::vector<std::string> gWalked;
int collect(const char* path, const struct stat*, int, struct FTW*)
{
    gWalked.push_back(path);
    return 0;
}
int removeOne(const char* path, const struct stat*, int, struct FTW*)
{
    return ::remove(path);
}
std::vector<std::string> walk(const std::string& root)
{
    gWalked.clear();
    ::nftw(root.c_str(), collect, 16, FTW_PHYS);
    return gWalked;
}

} // namespace

TEST_F(FilterArchiveTest, FlippedBytesStayInsideTheTarget)
{
    const std::string inner = Pack().file("in.vnf", "inside").file("sub/x.vnf", "x").bytes;
    const std::string good = Pack().file("a.vnf", "aaaa").file("g.mvr", inner).empty().file("b/c.vnf", "cc").bytes;
    TestRandom next { 99 };
    // Bytes that turn names into traversals or lengths into nonsense.
    const char nasty[] = { '.', '/', '\\', '\0', char(0xff), 'E', 'F' };
    const std::string fz = dir.filePath("fz").toStdString();
    for (int round = 0; round < 200; ++round) {
        std::string bytes = good;
        const int flips = 1 + int(next() % 4);
        for (int f = 0; f < flips; ++f)
            bytes[next() % bytes.size()] = nasty[next() % sizeof nasty];
        const int status = extractArchive(archive(bytes, "fz.mvr"), fz + "/t");
        EXPECT_GE(status, 0);
        for (const std::string& p : walk(fz))
            EXPECT_TRUE(p == fz || p.rfind(fz + "/t", 0) == 0) << round << " " << p;
        EXPECT_EQ(walk(dir.filePath("outside").toStdString()).size(), 1u) << round;
        ::nftw(fz.c_str(), removeOne, 16, FTW_DEPTH | FTW_PHYS);
    }
}
