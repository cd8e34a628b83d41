#include "LutTestSupport.h"

#include "core/ImageModVariableDataFile.h"
#include "mods/FilterLutExport.h"
#include "mods/ImageModExposure.h"
#include "mods/ImageModLUT3D.h"
#include "mods/ImageModSaturation.h"
#include "mods/ImageModToneCurve.h"
#include "core/ImageModVariableDataCurve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <sstream>
#include <vector>

namespace {

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line))
        lines.push_back(line);
    return lines;
}

size_t fileCount(const std::filesystem::path& dir)
{
    size_t n = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        (void)entry;
        ++n;
    }
    return n;
}

// Exports the sequence, loads the table with the 3D LUT tile and returns the worst distance between
// a random picture run through the sequence and run through the table.
float worstThroughTheTable(const std::vector<ImageMod*>& sequence, int32_t w, int32_t h, uint32_t seed)
{
    LutTempDir dir;
    const std::string path = dir.file("sequence.cube");
    EXPECT_TRUE(exportFilterLut(sequence, path));
    ImageModLUT3D lut;
    lut.variables[1]->asFile()->path = path;
    lut.variableChanged(1);
    EXPECT_NE(lut.table(), nullptr) << lut.loadMessage();
    FlexImageFloat direct(w, h, 3);
    fillRandom(direct, seed);
    FlexImageFloat viaTable(0, 0, 3);
    viaTable.copyFrom(direct, true);
    for (ImageMod* m : sequence) // a mask's own apply draws nothing
        m->apply(&direct, nullptr);
    lut.apply(&viaTable, nullptr);
    float worst = 0.0f;
    for (int64_t i = 0; i < direct.sampleCount(); ++i)
        worst = std::max(worst, std::fabs(direct.data[i] - viaTable.data[i]));
    return worst;
}

} // namespace

TEST(FilterLutExport, EmptySequenceWritesTheIdentityLattice)
{
    LutTempDir dir;
    const std::string path = dir.file("My Look.cube");
    ASSERT_TRUE(exportFilterLut({}, path));
    const std::string text = readWholeFile(path);
    const std::vector<std::string> lines = linesOf(text);
    ASSERT_EQ(lines.size(), 6u + 33u * 33u * 33u);
    const std::string header = "TITLE \"My Look\"\n\n# Created with Vantrel Pro\n\nLUT_3D_SIZE 33\n\n";
    EXPECT_EQ(text.substr(0, header.size()), header);
    EXPECT_EQ(lines[6], "0.000000 0.000000 0.000000");
    EXPECT_EQ(lines[7], "0.031250 0.000000 0.000000"); // 7.96875 * 0.003921569
    EXPECT_EQ(lines[6 + 32], "1.000000 0.000000 0.000000"); // index 32 of red is exactly 255
    EXPECT_EQ(lines[6 + 33], "0.000000 0.031250 0.000000"); // green is the row, after red
    EXPECT_EQ(lines[6 + 33 * 33], "0.000000 0.000000 0.031250");
    EXPECT_EQ(lines.back(), "1.000000 1.000000 1.000000");
    EXPECT_EQ(fileCount(dir.dir), 1u); // no temporary file left behind

    // It reads back as a 33-point table.
    ImageModLUT3DTable t;
    std::string message;
    ASSERT_TRUE(readCubeFile(path, t, message)) << message;
    EXPECT_EQ(t.size, 33);
    EXPECT_EQ(t.title, "My Look");
}

TEST(FilterLutExport, NumbersIgnoreTheProcessLocale)
{
    // A desktop session may run in a locale with decimal commas; the file must not.
    const char* previous = std::setlocale(LC_NUMERIC, nullptr);
    const std::string saved = previous ? previous : "C";
    if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8") && !std::setlocale(LC_NUMERIC, "fr_FR.UTF-8")) {
        std::setlocale(LC_NUMERIC, saved.c_str());
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    LutTempDir dir;
    const std::string path = dir.file("comma.cube");
    const bool ok = exportFilterLut({}, path);
    ImageModLUT3DTable t;
    std::string message;
    const bool read = readCubeFile(path, t, message);
    std::setlocale(LC_NUMERIC, saved.c_str());
    ASSERT_TRUE(ok);
    EXPECT_TRUE(read) << message;
    EXPECT_EQ(readWholeFile(path).find(','), std::string::npos);
}

TEST(FilterLutExport, ExportedTableMatchesTheSequence)
{
    LutTestSmoothMod smooth;
    TestSelectorLeftHalf mask; // disabled: the tile after it runs unmasked
    mask.enabled = false;
    LutTestSmoothMod second;
    second.variables[0]->setFloatValue(0.5f);
    const float worst = worstThroughTheTable({&mask, &smooth, &second}, 128, 64, 42u);
    EXPECT_LT(worst, 1.5f);
    EXPECT_GT(worst, 0.0f); // the sequence does change the picture
}

TEST(FilterLutExport, MasksActAndShapeChangingTilesAreLeftOut)
{
    LutTempDir dir;
    TestSelectorLeftHalf mask;
    LutTestSmoothMod smooth;
    LutTestShrinkMod size; // group 2: skipped
    const std::string path = dir.file("masked.cube");
    std::vector<ImageMod*> sequence = {&mask, &smooth, &size};
    ASSERT_TRUE(exportFilterLut(sequence, path));
    const std::vector<std::string> lines = linesOf(readWholeFile(path));
    ASSERT_EQ(lines.size(), 6u + 33u * 33u * 33u);
    // The mask is 1 on columns 0..15 of the lattice (red index) and 0 from 16 on.
    double out[3];
    smoothFn(1.0 / 32.0, 0.0, 0.0, out);
    float r = 0.0f;
    std::sscanf(lines[7].c_str(), "%f", &r);
    EXPECT_NEAR(r, out[0], 1e-5);
    EXPECT_EQ(lines[6 + 20], "0.625000 0.000000 0.000000"); // 20 * 7.96875 / 255

    // A tile of the ordinary group that changes the shape makes the export fail, and the target
    // (here an existing file) stays as it was.
    const std::string keep = dir.write("keep.cube", "old");
    size.groupValue = 1;
    EXPECT_FALSE(exportFilterLut(sequence, keep));
    EXPECT_EQ(readWholeFile(keep), "old");
    EXPECT_EQ(fileCount(dir.dir), 2u);
}

TEST(FilterLutExport, UnwritablePlaces)
{
    LutTempDir dir;
    EXPECT_FALSE(exportFilterLut({}, dir.file("no/such/folder/x.cube")));
    EXPECT_FALSE(exportFilterLut({}, ""));
    EXPECT_EQ(fileCount(dir.dir), 0u);
    EXPECT_EQ(filterLutTitle("/a/b/Film \"Look\".v2.cube"), "Film 'Look'.v2");
}

TEST(FilterLutExport, RealTilesRoundTrip)
{
    // Exposure, a gentle S tone curve and a little less colour, as a user might stack them. (A
    // saturation boost clips at the ends of the range, a kink no 33-point lattice follows.)
    ImageModExposure exposure(1.2f);
    ImageModToneCurve curve;
    curve.variables[ImageModToneCurve::varCurve]->asCurve()->curve.setFromString("0 0 .25 .2 .75 .8 1 1");
    ImageModSaturation saturation(2, 0.8f);
    const float worst = worstThroughTheTable({&exposure, &curve, &saturation}, 96, 64, 9u);
    EXPECT_LT(worst, 1.5f);
    EXPECT_GT(worst, 0.0f);
}
