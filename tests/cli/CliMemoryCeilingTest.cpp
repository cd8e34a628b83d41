// Photos past the memory ceiling are skipped and reported; the others are still written.
#include "cli/CliCommands.h"
#include "core/ModCatalogue.h"
#include "core/ImageModVariable.h"
#include "filters/FilterFile.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdlib>
#include <sstream>

namespace {

std::string photo(const char* name)
{
    const std::string path = std::string(VANTREL_TESTDATA) + "/" + name;
    return QFileInfo::exists(QString::fromStdString(path)) ? path : std::string();
}

// Sets VANTREL_MEMORY_LIMIT_MB for the scope.
struct MemoryLimit {
    explicit MemoryLimit(const char* mb) { setenv("VANTREL_MEMORY_LIMIT_MB", mb, 1); }
    ~MemoryLimit() { unsetenv("VANTREL_MEMORY_LIMIT_MB"); }
};

struct CliResult {
    int status = -1;
    std::string out, err;
};

CliResult cli(const std::vector<std::string>& args)
{
    std::ostringstream out, err;
    CliResult r;
    r.status = runCli(args, out, err, false);
    r.out = out.str();
    r.err = err.str();
    return r;
}

bool exists(const std::string& path)
{
    return QFileInfo::exists(QString::fromStdString(path));
}

} // namespace

TEST(CliMemoryCeiling, BatchSkipsAndReportsThePhotoPastTheCeilingAndWritesTheOthers)
{
    // 640x400 needs about 10 MB at 40 bytes a pixel, 1200x800 about 37 MB.
    const std::string small = photo("orientation_1.jpg");
    const std::string large = photo("canon_eos30d_srgb_16bit_1200x800.tif");
    if (small.empty() || large.empty())
        GTEST_SKIP() << "test photos not found under " << VANTREL_TESTDATA;
    QTemporaryDir dir;
    const std::string root = dir.path().toStdString();
    QDir().mkpath(QString::fromStdString(root + "/in"));
    QFile::copy(QString::fromStdString(small), QString::fromStdString(root + "/in/a_small.jpg"));
    QFile::copy(QString::fromStdString(large), QString::fromStdString(root + "/in/b_large.tif"));
    QFile::copy(QString::fromStdString(small), QString::fromStdString(root + "/in/c_small.jpg"));
    const ModCatalogueContents catalogue = buildModCatalogue();
    ModList mods;
    mods.push_back(createMod(catalogue.mods, "Exposure"));
    ASSERT_TRUE(mods.back());
    mods.back()->firstVariable()->setFloatValue(0.25f);
    ASSERT_TRUE(writeFilter(mods, root + "/look.vnf"));

    {
        MemoryLimit limit("20");
        for (const char* jobs : { "1", "2" }) {
            const std::string out = root + "/out" + jobs;
            const CliResult r = cli({ "batch", "-f", root + "/look.vnf", "--jobs", jobs, root + "/in", out });
            EXPECT_EQ(r.status, kCliSomeFailed) << r.err;
            EXPECT_TRUE(exists(out + "/a_small_batch.jpg"));
            EXPECT_TRUE(exists(out + "/c_small_batch.jpg"));
            EXPECT_FALSE(exists(out + "/b_large_batch.jpg"));
            EXPECT_NE(r.err.find("b_large.tif"), std::string::npos) << r.err;
            EXPECT_NE(r.err.find("too large"), std::string::npos) << r.err;
            EXPECT_NE(r.err.find("1 of 3 files failed"), std::string::npos) << r.err;
            EXPECT_EQ(r.err.find("a_small"), std::string::npos) << r.err;
        }
        // One file on its own: refused, nothing written.
        const CliResult one = cli({ "render", "-f", root + "/look.vnf", root + "/in/b_large.tif", "-o", root + "/one.jpg" });
        EXPECT_NE(one.status, kCliOk);
        EXPECT_NE(one.err.find("too large"), std::string::npos) << one.err;
        EXPECT_FALSE(exists(root + "/one.jpg"));
    }
    // Without the ceiling the large photo goes through.
    const CliResult r = cli({ "batch", "-f", root + "/look.vnf", root + "/in", root + "/outAll" });
    EXPECT_EQ(r.status, kCliOk) << r.err;
    EXPECT_TRUE(exists(root + "/outAll/b_large_batch.jpg"));
}
