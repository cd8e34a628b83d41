// Saves that fail half way (a full disk, a kill) keep the file that was there.
#include "tests/FaultInjection.h"

#include "desktop_only/MediaLoading.h"
#include "media/NativeImage.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdint>

namespace {

// Noise, so the encoded file is about as big as the pixels and can't slip under a size limit.
void noise(FlexImageFloat& img, int w, int h, uint32_t seed)
{
    img.resize(w, h, 3);
    uint32_t s = seed * 2654435761u + 1u;
    for (int y = 0; y < h; ++y) {
        float* row = img.row(y);
        for (int i = 0; i < w * 3; ++i) {
            s = s * 1664525u + 1013904223u;
            row[i] = float(s >> 24);
        }
    }
}

bool saveVersion(const std::string& path, int version)
{
    FlexImageFloat img;
    noise(img, 384, 384, uint32_t(version) + 7u);
    return saveRenderedMediaFile(img, LoadedMediaInfo(), path, 90.0f);
}

MediaSaveRenderer rendererOf(const FlexImageFloat& img)
{
    MediaSaveRenderer r;
    r.renderFullSize = [&img](FlexImageFloat& out, int32_t, int32_t) {
        out.resize(img.width, img.height, img.channels);
        for (int32_t y = 0; y < img.height; ++y)
            std::copy(img.row(y), img.row(y) + int64_t(img.width) * img.channels, out.row(y));
        return true;
    };
    return r;
}

struct Folder {
    QTemporaryDir dir;
    std::string root() const { return dir.path().toStdString(); }
    std::string path(const char* name) const { return root() + "/" + name; }
};

} // namespace

TEST(SaveFault, FullDiskGivesProcessingErrorAndKeepsTheFormerFileForEveryWriter)
{
    for (const char* name : { "photo.jpg", "photo.png", "photo.tif", "photo.vni" }) {
        SCOPED_TRACE(name);
        Folder folder;
        const std::string path = folder.path(name);
        ASSERT_TRUE(saveVersion(path, 0));
        const std::string before = fault::slurp(path);
        ASSERT_GT(before.size(), 100000u);

        FlexImageFloat other;
        noise(other, 384, 384, 99);
        MediaLoadStatus status = MediaLoadStatus::Ok;
        bool saved = true;
        {
            fault::FileSizeLimit limit(16384);
            ASSERT_TRUE(limit.active());
            saved = SaveMediaFile(rendererOf(other), LoadedMediaInfo(), path, 0, 0, 90.0f, &status);
        }
        EXPECT_FALSE(saved);
        EXPECT_EQ(status, MediaLoadStatus::WriteFailed);
        EXPECT_EQ(mediaLoadFailureMessage(status, path).title, "Processing Error");
        EXPECT_EQ(fault::slurp(path), before) << "the former file changed";
        EXPECT_EQ(fault::temporaryCount(folder.root()), 0);

        // Once there is room again the same save goes through.
        EXPECT_TRUE(SaveMediaFile(rendererOf(other), LoadedMediaInfo(), path, 0, 0, 90.0f, &status));
        EXPECT_EQ(status, MediaLoadStatus::Ok);
        EXPECT_NE(fault::slurp(path), before);
    }
}

TEST(SaveFault, FailedRenderWritesNothingAndSaysProcessingError)
{
    Folder folder;
    const std::string path = folder.path("photo.png");
    MediaSaveRenderer r;
    r.renderFullSize = [](FlexImageFloat&, int32_t, int32_t) { return false; };
    MediaLoadStatus status = MediaLoadStatus::Ok;
    EXPECT_FALSE(SaveMediaFile(r, LoadedMediaInfo(), path, 0, 0, 90.0f, &status));
    EXPECT_EQ(status, MediaLoadStatus::WriteFailed);
    EXPECT_FALSE(QFileInfo::exists(QString::fromStdString(path)));
}

// Run only as the child of the kill tests: saves version 0 and 1 in turn until killed.
TEST(SaveFaultChild, SavesInALoopUntilKilled)
{
    const char* target = fault::loopTarget();
    if (!target)
        GTEST_SKIP() << "runs as the child of the kill tests";
    for (int i = 0;; ++i) {
        if (!saveVersion(target, i % 2))
            _exit(3);
        if (i == 0)
            fault::markStarted(target);
    }
}

TEST(SaveFault, KillDuringASaveLeavesTheOldOrTheNewFileAndAtMostOneStray)
{
    for (const char* name : { "photo.jpg", "photo.vni" }) {
        SCOPED_TRACE(name);
        Folder folder;
        const std::string target = folder.path(name);
        std::string refs[2];
        for (int v = 0; v < 2; ++v) {
            const std::string ref = folder.path(v == 0 ? "ref0" : "ref1") + std::string(name).substr(5);
            ASSERT_TRUE(saveVersion(ref, v));
            refs[v] = fault::slurp(ref);
        }
        ASSERT_NE(refs[0], refs[1]);
        int strays = 0;
        for (int round = 0; round < 4; ++round) {
            ASSERT_TRUE(fault::killDuringSaves("SaveFaultChild.SavesInALoopUntilKilled", target,
                                               std::chrono::milliseconds(15 + 41 * round)));
            const std::string now = fault::slurp(target);
            EXPECT_TRUE(now == refs[0] || now == refs[1]) << "round " << round << ": a half file of "
                                                         << now.size() << " bytes";
            const int count = fault::temporaryCount(folder.root());
            EXPECT_LE(count, 1) << "round " << round;
            strays += count;
        }
        // The next save clears what the killed writers left.
        ASSERT_TRUE(saveVersion(target, 0));
        EXPECT_EQ(fault::temporaryCount(folder.root()), 0);
        RecordProperty(std::string("strays_") + (name + 6), strays);
    }
}
