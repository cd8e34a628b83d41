#include "LutTestSupport.h"

#include "mods/ImageModLUT3DTable.h"

#include <gtest/gtest.h>

namespace {

const float* slicePixel(const ImageModLUT3DTable& t, int r, int g, int b)
{
    return t.slices[size_t(b)]->data + (g * t.size + r) * 3;
}

// A table that parsing must leave alone on failure.
ImageModLUT3DTable sentinelTable()
{
    ImageModLUT3DTable t;
    t.size = 2;
    t.oneDimensional = true;
    t.title = "keep";
    t.curve = {1, 2, 3, 4, 5, 6};
    return t;
}

void expectRejected(const std::string& text, const char* why)
{
    ImageModLUT3DTable t = sentinelTable();
    std::string message;
    EXPECT_FALSE(parseCubeText(text, t, message)) << why;
    EXPECT_FALSE(message.empty()) << why;
    EXPECT_EQ(t.size, 2) << why;
    EXPECT_TRUE(t.oneDimensional) << why;
    EXPECT_EQ(t.title, "keep") << why;
    EXPECT_EQ(t.curve.size(), 6u) << why;
    EXPECT_TRUE(t.slices.empty()) << why;
}

} // namespace

TEST(CubeReader, RowsAreRedFastestAndScaledTo255)
{
    // Each row encodes its own lattice position.
    const int n = 3;
    const std::string text = cubeText(n, [](double r, double g, double b, double out[3]) {
        out[0] = r * 0.5;
        out[1] = g * 0.25 + 0.5;
        out[2] = b;
    });
    ImageModLUT3DTable t;
    std::string message;
    ASSERT_TRUE(parseCubeText(text, t, message)) << message;
    EXPECT_EQ(t.size, 3);
    EXPECT_FALSE(t.isOneDimensional());
    ASSERT_EQ(t.slices.size(), 3u);
    EXPECT_EQ(t.slices[0]->width, 3);
    EXPECT_EQ(t.slices[0]->height, 3);
    EXPECT_EQ(t.slices[0]->channels, 3);
    EXPECT_FLOAT_EQ(slicePixel(t, 2, 0, 0)[0], 127.5f);
    EXPECT_FLOAT_EQ(slicePixel(t, 0, 2, 0)[1], 0.75f * 255.0f);
    EXPECT_FLOAT_EQ(slicePixel(t, 1, 1, 2)[2], 255.0f);
    EXPECT_FLOAT_EQ(slicePixel(t, 1, 1, 2)[0], 63.75f);
    EXPECT_EQ(t.domainMin[0], 0.0f);
    EXPECT_EQ(t.domainMax[2], 1.0f);
    EXPECT_TRUE(message.empty());
}

TEST(CubeReader, HeaderKeysCommentsAndLineEndings)
{
    std::string text = "# made by hand\r\n"
                       "TITLE \"Warm  look\"\r\n"
                       "\r\n"
                       "DOMAIN_MIN 0.1 0.2 0.3\r\n"
                       "DOMAIN_MAX 0.9 +1.0 1e0\r\n"
                       "LUT_IN_VIDEO_RANGE\r\n"
                       "LUT_3D_SIZE 2\r\n"
                       "LUT_3D\r\n"
                       "   # comment between rows\r\n";
    const char* rows[] = {"0 0 0", "1 0 0", "0 1 0", "1 1 0", "0 0 1", "1 0 1", "0 1 1", "1 1 1 # trailing"};
    for (const char* r : rows)
        text += std::string("\t") + r + "  \r\n";
    text += "\n# end\n";
    ImageModLUT3DTable t;
    std::string message;
    ASSERT_TRUE(parseCubeText(text, t, message)) << message;
    EXPECT_EQ(t.title, "Warm  look");
    EXPECT_FLOAT_EQ(t.domainMin[0], 0.1f);
    EXPECT_FLOAT_EQ(t.domainMin[2], 0.3f);
    EXPECT_FLOAT_EQ(t.domainMax[1], 1.0f);
    EXPECT_FLOAT_EQ(t.domainMax[2], 1.0f);
    EXPECT_EQ(slicePixel(t, 1, 1, 1)[0], 255.0f);
    EXPECT_EQ(slicePixel(t, 1, 0, 1)[1], 0.0f);
    EXPECT_EQ(slicePixel(t, 1, 0, 1)[2], 255.0f);

    // The Resolve form of the domain: one range for all three channels.
    ImageModLUT3DTable u;
    ASSERT_TRUE(parseCubeText("LUT_3D_INPUT_RANGE -0.5 2\nLUT_3D_SIZE 2\n" + cubeRows(2, identityFn), u, message)) << message;
    EXPECT_EQ(u.domainMin[1], -0.5f);
    EXPECT_EQ(u.domainMax[0], 2.0f);
}

TEST(CubeReader, OneDimensionalTable)
{
    ImageModLUT3DTable t;
    std::string message;
    ASSERT_TRUE(parseCubeText("LUT_1D_SIZE 3\n0 0.5 1\n0.25 0.5 1\n1 0.5 0\n", t, message)) << message;
    EXPECT_TRUE(t.isOneDimensional());
    EXPECT_EQ(t.size, 3);
    EXPECT_TRUE(t.slices.empty());
    ASSERT_EQ(t.curve.size(), 9u);
    EXPECT_EQ(t.curve[3], 0.25f * 255.0f);
    EXPECT_EQ(t.curve[8], 0.0f);
}

TEST(CubeReader, SizeBoundsAndTheLargestTable)
{
    std::string message;
    ImageModLUT3DTable t;
    ASSERT_TRUE(parseCubeText(cubeText(2, identityFn), t, message));
    EXPECT_EQ(t.size, 2);

    expectRejected("LUT_3D_SIZE 1\n0 0 0\n", "size 1");
    expectRejected("LUT_3D_SIZE 257\n0 0 0\n", "size 257");
    expectRejected("LUT_3D_SIZE 4000000000\n", "size beyond 32 bits");
    expectRejected("LUT_3D_SIZE -3\n", "negative size");
    expectRejected("LUT_3D_SIZE 2.5\n", "fractional size");
    expectRejected("LUT_3D_SIZE\n", "missing size");
    expectRejected("LUT_1D_SIZE 65537\n", "1-D size too large");
    expectRejected("LUT_1D_SIZE 1\n", "1-D size 1");
}

TEST(CubeReader, DamagedTextFailsWithoutTouchingTheTable)
{
    const std::string good = cubeText(2, identityFn);
    const std::string rows = cubeRows(2, identityFn);
    expectRejected("", "empty");
    expectRejected("# only a comment\nTITLE \"x\"\n", "no size");
    expectRejected(good.substr(0, good.rfind("1 1 1")), "one row missing");
    expectRejected(good.substr(0, good.size() - 3), "last row cut mid-way");
    expectRejected(good + "0 0 0\n", "one row too many");
    expectRejected(rows + "LUT_3D_SIZE 2\n", "data before the size");
    expectRejected("LUT_3D_SIZE 2\n0 0\n" + rows.substr(6), "two numbers in a row");
    expectRejected("LUT_3D_SIZE 2\n0 0 0 0\n" + rows.substr(6), "four numbers in a row");
    expectRejected("LUT_3D_SIZE 2\n0 0 nan\n" + rows.substr(6), "NaN");
    expectRejected("LUT_3D_SIZE 2\n0 0 inf\n" + rows.substr(6), "infinity");
    expectRejected("LUT_3D_SIZE 2\n0 0 1e99\n" + rows.substr(6), "out of float range");
    expectRejected("LUT_3D_SIZE 2\n0 0 0,5\n" + rows.substr(6), "decimal comma");
    expectRejected("LUT_3D_SIZE 2\nLUT_3D_SIZE 2\n" + rows, "size twice");
    expectRejected("LUT_3D_SIZE 2\nLUT_1D_SIZE 2\n" + rows, "both kinds");
    expectRejected("LUT_3D_SIZE 2\n0 0 0\nTITLE \"late\"\n" + rows.substr(6), "keyword inside the data");
    expectRejected("DOMAIN_MIN 0 0 0\nDOMAIN_MAX 1 0 1\n" + good, "empty domain");
    expectRejected("DOMAIN_MIN 0 0\n" + good, "short domain");
    expectRejected("hello world\n" + good, "prose");
    expectRejected(std::string("LUT_3D_SIZE 2\n\x01\x02\xff\n", 18) + rows, "binary bytes");
    expectRejected("LUT_3D_SIZE 2\n" + std::string(5000, '0') + " 0 0\n", "overlong line");
}

TEST(CubeReader, Files)
{
    LutTempDir dir;
    ImageModLUT3DTable t = sentinelTable();
    std::string message;
    EXPECT_FALSE(readCubeFile(dir.file("missing.cube"), t, message));
    EXPECT_FALSE(message.empty());
    EXPECT_EQ(t.title, "keep");

    // No final newline, and a file larger than one read buffer.
    std::string text = cubeText(33, smoothFn, "TITLE \"Smooth\"\n");
    text.pop_back();
    ASSERT_GT(text.size(), 70000u);
    const std::string path = dir.write("smooth.cube", text);
    message.clear();
    ASSERT_TRUE(readCubeFile(path, t, message)) << message;
    EXPECT_EQ(t.size, 33);
    EXPECT_EQ(t.title, "Smooth");
    double out[3];
    smoothFn(1.0, 1.0, 1.0, out);
    EXPECT_NEAR(slicePixel(t, 32, 32, 32)[2], out[2] * 255.0, 1e-4);

    // Cut in the middle of a row that straddles the first buffer boundary.
    ImageModLUT3DTable u = sentinelTable();
    EXPECT_FALSE(readCubeFile(dir.write("cut.cube", text.substr(0, 65540)), u, message));
    EXPECT_EQ(u.title, "keep");
    EXPECT_TRUE(u.slices.empty());

    // A claim of the largest size with almost no data fails after the data ends.
    EXPECT_FALSE(readCubeFile(dir.write("claim.cube", "LUT_3D_SIZE 256\n0 0 0\n"), u, message));
    EXPECT_NE(message.find("1 of 16777216"), std::string::npos) << message;

    EXPECT_FALSE(readCubeFile(dir.write("empty.cube", ""), u, message));
    EXPECT_EQ(u.title, "keep");
}

TEST(CubeReader, TestdataFilesLoad)
{
    struct Case {
        const char* name;
        int32_t size;
        bool oneD;
    };
    const Case cases[] = {{"GREEN_TINT_33.cube", 33, false},
                          {"TEAL_ORANGE_16.cube", 16, false},
                          {"grayscale_32.cube", 32, false},
                          {"identity_1d_32.cube", 32, true}};
    for (const Case& c : cases) {
        const std::string path = std::string(VANTREL_TESTDATA) + "/" + c.name;
        if (!std::filesystem::exists(path))
            GTEST_SKIP() << path << " is absent";
        ImageModLUT3DTable t;
        std::string message;
        ASSERT_TRUE(readCubeFile(path, t, message)) << c.name << ": " << message;
        EXPECT_EQ(t.size, c.size) << c.name;
        EXPECT_EQ(t.isOneDimensional(), c.oneD) << c.name;
        if (!c.oneD) {
            ASSERT_EQ(t.slices.size(), size_t(c.size));
        }
    }
    ImageModLUT3DTable teal;
    std::string message;
    ASSERT_TRUE(readCubeFile(std::string(VANTREL_TESTDATA) + "/TEAL_ORANGE_16.cube", teal, message));
    EXPECT_NEAR(slicePixel(teal, 0, 0, 0)[0], -0.054618f * 255.0f, 1e-3);
}
