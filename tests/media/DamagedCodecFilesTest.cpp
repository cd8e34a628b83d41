#include "TestData.h"

#include "desktop_only/MediaLoading.h"

#include <gtest/gtest.h>

#include <random>

// Cut and scrambled copies of real files: every load returns, true or false, and a success gives
// an image of the file's size.
TEST(DamagedCodecFilesTest, CutAndScrambledFilesNeverCrash)
{
    struct Case {
        const char* name;
        const char* ext;
        int w, h;
    };
    const Case cases[] = {{"orientation_6.jpg", "jpg", 640, 400}, {"icc_unicode_description_48px.png", "png", 48, 48},
                          {"rgba8_unassoc_32px.tiff", "tiff", 32, 32}, {"tigers.hdr", "hdr", 400, 294}};
    QTemporaryDir dir;
    std::mt19937 rng(77);
    for (const Case& c : cases) {
        REQUIRE_TESTDATA(path, c.name);
        const std::vector<uint8_t> bytes = readFileBytes(path);
        ASSERT_FALSE(bytes.empty());
        const std::string damaged = dir.filePath(QString("damaged.") + c.ext).toStdString();
        for (int round = 0; round < 24; ++round) {
            std::vector<uint8_t> b = bytes;
            if (round % 2 == 0)
                b.resize(size_t(rng() % b.size()));
            if (round % 3 != 0)
                for (int k = 0; k < 8 && !b.empty(); ++k)
                    b[rng() % b.size()] = uint8_t(rng());
            writeFileBytes(damaged, b);
            FlexImageFloat img(100, 100, 4);
            LoadedMediaInfo info;
            MediaLoadStatus status = MediaLoadStatus::Ok;
            if (LoadMediaFile(img, damaged, &info, &status)) {
                EXPECT_EQ(img.width, c.w) << c.name << " round " << round;
                EXPECT_EQ(img.height, c.h) << c.name << " round " << round;
            } else {
                EXPECT_NE(status, MediaLoadStatus::Ok);
                EXPECT_EQ(img.width, 100);
            }
        }
    }
}
