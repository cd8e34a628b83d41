// Photos past the memory ceiling are skipped and reported; the others are still written.
#include "CliTestSupport.h"

#include <cstdlib>

namespace {

// Sets VANTREL_MEMORY_LIMIT_MB for the scope.
struct MemoryLimit {
    explicit MemoryLimit(const char* mb) { setenv("VANTREL_MEMORY_LIMIT_MB", mb, 1); }
    ~MemoryLimit() { unsetenv("VANTREL_MEMORY_LIMIT_MB"); }
};

} // namespace

TEST(CliMemoryCeiling, BatchSkipsAndReportsThePhotoPastTheCeilingAndWritesTheOthers)
{
    // 640x400 needs about 10 MB at 40 bytes a pixel, 1200x800 about 37 MB.
    REQUIRE_PHOTO(small, "orientation_1.jpg");
    REQUIRE_PHOTO(large, "canon_eos30d_srgb_16bit_1200x800.tif");
    CliFolder folder;
    const std::string root = folder.root();
    folder.copyIn(small, "in/a_small.jpg");
    folder.copyIn(large, "in/b_large.tif");
    folder.copyIn(small, "in/c_small.jpg");
    folder.writeLook("look.vnf", true);

    {
        MemoryLimit limit("20");
        for (const char* jobs : { "1", "2" }) {
            const std::string out = root + "/out" + jobs;
            const CliRun r = run({ "batch", "-f", root + "/look.vnf", "--jobs", jobs, root + "/in", out });
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
        const CliRun one = run({ "render", "-f", root + "/look.vnf", root + "/in/b_large.tif", "-o", root + "/one.jpg" });
        EXPECT_NE(one.status, kCliOk);
        EXPECT_NE(one.err.find("too large"), std::string::npos) << one.err;
        EXPECT_FALSE(exists(root + "/one.jpg"));
    }
    // Without the ceiling the large photo goes through.
    const CliRun r = run({ "batch", "-f", root + "/look.vnf", root + "/in", root + "/outAll" });
    EXPECT_EQ(r.status, kCliOk) << r.err;
    EXPECT_TRUE(exists(root + "/outAll/b_large_batch.jpg"));
}
