#include "CliTestSupport.h"
#include "cli/CliBatch.h"
#include "desktop_only/MediaLoading.h"
#include "document/core/HeadlessRender.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>
#include <thread>

namespace {

// The look's tiles, owned, and the plain list the renderer takes.
struct LoadedLook {
    ModList mods;
    std::vector<ImageMod*> list;
};

LoadedLook readLook(const std::string& look)
{
    const ModCatalogueContents catalogue = buildModCatalogue();
    int32_t status = 0;
    LoadedLook l;
    l.mods = readFilter(look, catalogue.mods, status);
    EXPECT_EQ(status, kFilterReadOk) << look;
    for (const auto& m : l.mods)
        l.list.push_back(m.get());
    return l;
}

// What the headless render function makes of a photo through a filter file.
bool headlessRender(const std::string& photo, const std::string& look, FlexImageFloat& out, int32_t w, int32_t h)
{
    const LoadedLook l = readLook(look);
    FlexImageFloat source(1, 1, 4);
    return LoadMediaFile(source, photo, nullptr) && renderFullSize(source, l.list, out, w, h);
}

// Largest colour difference between a float render, clipped to the writable range, and a written
// image of the same size (infinite on shape mismatch, so no bound passes by accident).
float maxColourDifference(const FlexImageFloat& render, const FlexImageFloat& written)
{
    if (render.width != written.width || render.height != written.height)
        return std::numeric_limits<float>::infinity();
    float worst = 0.0f;
    for (int32_t y = 0; y < render.height; ++y) {
        const float* ra = render.row(y);
        const float* rb = written.row(y);
        for (int32_t x = 0; x < render.width; ++x)
            for (int32_t c = 0; c < 3; ++c) {
                const float clipped = std::clamp(ra[x * render.channels + c], 0.0f, 255.0f);
                worst = std::max(worst, std::fabs(clipped - rb[x * written.channels + c]));
            }
    }
    return worst;
}

} // namespace

// ---- render equals the headless render -------------------------------------------------------

TEST(CliRender, SixteenBitOutputEqualsHeadlessRenderWithinQuantisation)
{
    REQUIRE_PHOTO(photo, "orientation_1.jpg");
    CliFolder folder;
    const std::string look = folder.writeLook("look.vnf", false);
    // Full size and a given size, each within one 16-bit step (255/65535) of the float result.
    const struct {
        const char* out;
        const char* type;
        int32_t width, height;
    } cases[] = { { "result.png", "png16", 0, 0 }, { "small.tif", "tif16", 320, 200 } };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.out);
        const std::string out = folder.path(c.out);
        std::vector<std::string> args = { "render", "-f", look, "-o", out, "--type", c.type, photo };
        if (c.width > 0)
            args.insert(args.end() - 1, { "--width", std::to_string(c.width), "--height", std::to_string(c.height) });
        const CliRun r = run(args);
        ASSERT_EQ(r.status, kCliOk) << r.err;
        FlexImageFloat expected(1, 1, 4), written(1, 1, 4);
        ASSERT_TRUE(headlessRender(photo, look, expected, c.width, c.height));
        LoadedMediaInfo info;
        ASSERT_TRUE(LoadMediaFile(written, out, &info));
        EXPECT_EQ(info.bitsPerComponent, 16);
        ASSERT_EQ(written.width, c.width > 0 ? c.width : 640);
        ASSERT_EQ(written.height, c.height > 0 ? c.height : 400);
        EXPECT_LE(maxColourDifference(expected, written), 0.004f);
    }
}

TEST(CliRender, OutputTypeFollowsTheFileNameUnlessTypeIsGiven)
{
    REQUIRE_PHOTO(photo, "camera_grey8.png");
    CliFolder folder;
    const std::string look = folder.writeLook("look.vnf", true);
    ASSERT_EQ(run({ "render", "-f", look, "-o", folder.path("a.tif"), photo }).status, kCliOk);
    EXPECT_TRUE(exists(folder.path("a.tif")));
    // --type swaps the extension of the named file.
    ASSERT_EQ(run({ "render", "-f", look, "-o", folder.path("b.tif"), "--type", "png", photo }).status, kCliOk);
    EXPECT_TRUE(exists(folder.path("b.png")));
    EXPECT_FALSE(exists(folder.path("b.tif")));
    // An extension no writer takes is refused before anything is written.
    const CliRun bad = run({ "render", "-f", look, "-o", folder.path("c.xyz"), photo });
    EXPECT_EQ(bad.status, kCliBadUsage);
    EXPECT_FALSE(exists(folder.path("c.xyz")));
    // A folder as -o names outputs as a batch does.
    ASSERT_EQ(run({ "render", "-f", look, "-o", folder.path("outdir") + "/", "--postfix", "-v1", photo }).status, kCliOk);
    EXPECT_TRUE(exists(folder.path("outdir/camera_grey8-v1.jpg")));
}

// ---- batch names, postfix, skipping ----------------------------------------------------------

TEST(CliBatchNames, OutputPathIsFolderBaseNamePostfixAndExtension)
{
    EXPECT_EQ(batchOutputPath("/out", "/in/photo.jpg", "_batch", "jpg"), "/out/photo_batch.jpg");
    EXPECT_EQ(batchOutputPath("/out/", "/in/photo.JPG", "_batch", "png"), "/out/photo_batch.png");
    // Only the last extension goes; earlier dots stay in the base name.
    EXPECT_EQ(batchOutputPath("/out", "/in/a.b.c.tif", "", "tif"), "/out/a.b.c.tif");
    EXPECT_EQ(batchOutputPath("out", "noext", "-x", "vni"), "out/noext-x.vni");
    // A leading dot is part of the name, not an extension.
    EXPECT_EQ(batchOutputPath("/o", "/i/.hidden", "_b", "jpg"), "/o/.hidden_b.jpg");
}

TEST(CliBatchNames, TypeWordsAndFileList)
{
    CliOutputType t;
    ASSERT_TRUE(parseOutputType("png16", t));
    EXPECT_EQ(t.extension + std::to_string(t.bits), "png16");
    ASSERT_TRUE(parseOutputType("tif", t));
    EXPECT_EQ(t.extension + std::to_string(t.bits), "tif8");
    ASSERT_TRUE(parseOutputType("vni", t));
    EXPECT_EQ(t.extension, "vni");
    for (const char* bad : { "JPG", "bmp", "" })
        EXPECT_FALSE(parseOutputType(bad, t)) << bad;

    // Only loadable files, in name order; hidden files and folders are left out.
    CliFolder folder;
    for (const char* name : { "b.jpg", "a.PNG", "notes.txt", "c.vni", "d.tiff", "Makefile", ".hidden.jpg" })
        spill(folder.path(name), "x");
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(folder.path("sub.jpg"))));
    EXPECT_EQ(batchInputFiles(folder.root()), (std::vector<std::string> { folder.path("a.PNG"), folder.path("b.jpg"),
                                                  folder.path("c.vni"), folder.path("d.tiff") }));
}

// ---- batch end to end, exit statuses ---------------------------------------------------------

TEST(CliBatchRun, AllGoodGivesZeroAndOneLinePerFile)
{
    REQUIRE_PHOTO(a, "orientation_1.jpg");
    REQUIRE_PHOTO(b, "camera_grey8.png");
    CliFolder folder;
    const std::string look = folder.writeLook("look.vnf", false);
    folder.copyIn(a, "in/one.jpg");
    folder.copyIn(b, "in/two.png");
    spill(folder.path("in/readme.txt"), "not a photo");
    const CliRun r = run({ "batch", "-f", look, folder.path("in"), folder.path("out"), "--postfix", "_done", "--type", "png" });
    ASSERT_EQ(r.status, kCliOk) << r.err;
    EXPECT_TRUE(exists(folder.path("out/one_done.png")));
    EXPECT_TRUE(exists(folder.path("out/two_done.png")));
    EXPECT_EQ(QDir(QString::fromStdString(folder.path("out"))).entryList(QDir::Files).size(), 2);
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 2);
    EXPECT_TRUE(r.err.empty()) << r.err;
}

TEST(CliBatchRun, DamagedInputAmongGoodOnesGivesOneWithEveryGoodOutputWritten)
{
    REQUIRE_PHOTO(a, "orientation_1.jpg");
    REQUIRE_PHOTO(b, "camera_grey8.png");
    CliFolder folder;
    const std::string look = folder.writeLook("look.vnf", true);
    folder.copyIn(a, "in/a.jpg");
    // The head of a real JPEG, cut short: a reader opens it, then fails.
    spill(folder.path("in/b_broken.jpg"), slurp(a).substr(0, 700));
    spill(folder.path("in/c_junk.png"), "this is no picture at all");
    folder.copyIn(b, "in/d.png");
    for (const char* jobs : { "1", "3" }) {
        const std::string out = folder.path(std::string("out") + jobs);
        const CliRun r = run({ "batch", "-f", look, "--jobs", jobs, folder.path("in"), out });
        EXPECT_EQ(r.status, kCliSomeFailed);
        EXPECT_TRUE(exists(out + "/a_batch.jpg"));
        EXPECT_TRUE(exists(out + "/d_batch.jpg"));
        EXPECT_FALSE(exists(out + "/b_broken_batch.jpg"));
        EXPECT_FALSE(exists(out + "/c_junk_batch.jpg"));
        EXPECT_NE(r.err.find("b_broken.jpg"), std::string::npos) << r.err;
        EXPECT_NE(r.err.find("c_junk.png"), std::string::npos) << r.err;
        EXPECT_NE(r.err.find("2 of 4 files failed"), std::string::npos) << r.err;
    }
    // Several at once write the same bytes as one at a time.
    EXPECT_EQ(slurp(folder.path("out1/a_batch.jpg")), slurp(folder.path("out3/a_batch.jpg")));
    EXPECT_EQ(slurp(folder.path("out1/d_batch.jpg")), slurp(folder.path("out3/d_batch.jpg")));
}

TEST(CliExitStatus, BadUsageGivesTwoAndWritesNothing)
{
    REQUIRE_PHOTO(photo, "camera_grey8.png");
    CliFolder folder;
    const std::string look = folder.writeLook("look.vnf", true);
    const std::string unknown = folder.writeEdited(look, "unknown.vnf", "name=\"Exposure\"", "name=\"NoSuchTile\"");
    folder.copyIn(photo, "in/p.png");
    const std::string out = folder.path("never");
    const std::vector<std::vector<std::string>> lines = {
        {},
        { "paint" },
        { "render", photo },                                                  // no look
        { "render", "-f", look },                                             // no input
        { "render", "-f", look, "--frobnicate", photo },
        { "render", "-f", look, "-o", out, "--quality", "101", photo },
        { "render", "-f", look, "-o", out, "--width", "100", photo },         // height missing
        { "render", "-f", look, "-o", out, "--type", "bmp", photo },
        { "render", "-f", folder.path("missing.vnf"), "-o", out, photo },
        { "render", "-f", look, "-p", "Nope", "-o", out, photo },             // not Group/Name
        { "render", "-p", "Group/Missing", "--presets-dir", folder.path("lib"), "-o", out, photo },
        { "batch", "-f", look, folder.root() },
        { "batch", "-f", look, "--jobs", "0", folder.root(), out },
        { "batch", "-f", folder.path("missing.vnf"), folder.root(), out },
        { "batch", "-f", unknown, folder.path("in"), out },                   // damaged look: fails first
        { "export-lut", "-f", look },
        { "filter", "downgrade", look, out },
        { "info" },
        { "mods", "extra" },
    };
    for (const auto& line : lines) {
        const CliRun r = run(line);
        std::string joined;
        for (const auto& w : line)
            joined += w + " ";
        EXPECT_EQ(r.status, kCliBadUsage) << joined;
        EXPECT_FALSE(r.err.empty()) << joined;
        EXPECT_FALSE(exists(out)) << joined;
    }
}

TEST(CliExitStatus, HelpForEveryCommandGivesZero)
{
    for (const char* command : { "render", "batch", "export-lut", "filter", "info", "mods", "presets" }) {
        const CliRun r = run({ command, "--help" });
        EXPECT_EQ(r.status, kCliOk) << command;
        EXPECT_EQ(r.out.rfind("Usage: vantrel-cli ", 0), 0u) << command;
    }
    EXPECT_EQ(run({ "--help" }).status, kCliOk);
}

// ---- presets ----------------------------------------------------------------------------------

TEST(CliPresets, PresetIsFoundInTheLibraryAndListed)
{
    REQUIRE_PHOTO(photo, "camera_grey8.png");
    CliFolder folder;
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(folder.path("lib/Presets/Warm Looks"))));
    const std::string look = folder.writeLook("lib/Presets/Warm Looks/Golden.vnf", true);
    const CliRun list = run({ "presets", "--presets-dir", folder.path("lib") });
    EXPECT_EQ(list.status, kCliOk);
    EXPECT_EQ(list.out, "Warm Looks/Golden\n");
    const std::string out = folder.path("p.png");
    const CliRun r = run({ "render", "-p", "Warm Looks/Golden", "--presets-dir", folder.path("lib"), "-o", out, photo });
    ASSERT_EQ(r.status, kCliOk) << r.err;
    // The preset renders as its file does.
    const std::string viaFile = folder.path("f.png");
    ASSERT_EQ(run({ "render", "-f", look, "-o", viaFile, photo }).status, kCliOk);
    EXPECT_EQ(slurp(out), slurp(viaFile));
}

// ---- export-lut -------------------------------------------------------------------------------

namespace {

struct Cube {
    int32_t size = 0;
    std::vector<float> rgb; // red fastest
};

bool readCube(const std::string& path, Cube& cube)
{
    std::istringstream in(slurp(path));
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#' || line.rfind("TITLE", 0) == 0 || line.rfind("DOMAIN_", 0) == 0)
            continue;
        if (line.rfind("LUT_3D_SIZE", 0) == 0) {
            cube.size = std::atoi(line.c_str() + 11);
            continue;
        }
        float r, g, b;
        if (std::sscanf(line.c_str(), "%f %f %f", &r, &g, &b) != 3)
            return false;
        cube.rgb.insert(cube.rgb.end(), { r, g, b });
    }
    return cube.size > 1 && cube.rgb.size() == static_cast<size_t>(cube.size) * cube.size * cube.size * 3;
}

// Trilinear look-up of a 0..255 colour, giving 0..255.
void applyCube(const Cube& c, const float* in, float* out)
{
    const int32_t n = c.size;
    int32_t i0[3];
    float f[3];
    for (int k = 0; k < 3; ++k) {
        const float p = std::clamp(in[k], 0.0f, 255.0f) / 255.0f * (n - 1);
        i0[k] = std::min(static_cast<int32_t>(p), n - 2);
        f[k] = p - i0[k];
    }
    for (int ch = 0; ch < 3; ++ch) {
        float v = 0.0f;
        for (int corner = 0; corner < 8; ++corner) {
            const int dr = corner & 1, dg = (corner >> 1) & 1, db = (corner >> 2) & 1;
            const float w = (dr ? f[0] : 1 - f[0]) * (dg ? f[1] : 1 - f[1]) * (db ? f[2] : 1 - f[2]);
            const size_t index = ((static_cast<size_t>(i0[2] + db) * n + (i0[1] + dg)) * n + (i0[0] + dr)) * 3;
            v += w * c.rgb[index + ch];
        }
        out[ch] = std::clamp(v * 255.0f, 0.0f, 255.0f);
    }
}

} // namespace

// Smooth looks only: saturation after a strong exposure clips at the top, a kink that no 33-point
// lattice follows within a level and a half, whoever writes the table.
class CliExportLut : public testing::TestWithParam<std::pair<float, float>> {};

TEST_P(CliExportLut, WritesA33PointCubeThatReappliesWithinOneAndAHalfLevels)
{
    CliFolder folder;
    const std::string look = folder.writeLook("look.vnf", true, GetParam().first, GetParam().second);
    const std::string cubePath = folder.path("look.cube");
    const CliRun r = run({ "export-lut", "-f", look, "-o", cubePath });
    ASSERT_EQ(r.status, kCliOk) << r.err;
    Cube cube;
    ASSERT_TRUE(readCube(cubePath, cube));
    EXPECT_EQ(cube.size, 33);

    // A strip of colours between the lattice points, rendered straight and through the table.
    FlexImageFloat strip(64, 1, 4);
    uint32_t seed = 12345;
    for (int32_t x = 0; x < 64; ++x) {
        for (int32_t c = 0; c < 3; ++c) {
            seed = seed * 1664525u + 1013904223u;
            strip.row(0)[x * 4 + c] = static_cast<float>((seed >> 8) % 25500) / 100.0f;
        }
        strip.row(0)[x * 4 + 3] = 255.0f;
    }
    FlexImageFloat direct(1, 1, 4);
    ASSERT_TRUE(renderFullSize(strip, readLook(look).list, direct));
    FlexImageFloat viaCube(64, 1, 4);
    for (int32_t x = 0; x < 64; ++x)
        applyCube(cube, strip.row(0) + x * 4, viaCube.row(0) + x * 4);
    EXPECT_LE(maxColourDifference(direct, viaCube), 1.5f);
    // Not the identity: the look changed the colours.
    EXPECT_GT(maxColourDifference(direct, strip), 10.0f);
}

INSTANTIATE_TEST_SUITE_P(Looks, CliExportLut,
    testing::Values(std::make_pair(1.25f, 0.0f), std::make_pair(1.0f, 0.2f)));

// ---- filter upgrade ---------------------------------------------------------------------------

TEST(CliFilterUpgrade, StatusDecidesTheExitAndTheKnownTilesAreWritten)
{
    CliFolder folder;
    const std::string look = folder.writeLook("look.vnf", false);
    const CliRun clean = run({ "filter", "upgrade", look, folder.path("same.vnf") });
    EXPECT_EQ(clean.status, kCliOk) << clean.err;
    EXPECT_EQ(slurp(folder.path("same.vnf")), slurp(look));

    const std::string unknown = folder.writeEdited(look, "unknown.vnf", "name=\"Exposure\"", "name=\"NoSuchTile\"");
    const CliRun dropped = run({ "filter", "upgrade", unknown, folder.path("fixed.vnf") });
    EXPECT_EQ(dropped.status, kCliSomeFailed);
    EXPECT_NE(dropped.out.find("dropped"), std::string::npos) << dropped.out;
    const ModList fixed = readLook(folder.path("fixed.vnf")).mods;
    ASSERT_EQ(fixed.size(), 2u);
    EXPECT_EQ(fixed[0]->name, "Saturation");
    EXPECT_EQ(fixed[1]->name, "Split Tone");

    const std::string newer = folder.writeEdited(look, "newer.vnf", "version=\"4\"", "version=\"7\"");
    const CliRun fromNewer = run({ "filter", "upgrade", newer, folder.path("older.vnf") });
    EXPECT_EQ(fromNewer.status, kCliSomeFailed);
    EXPECT_NE(fromNewer.out.find("newer"), std::string::npos) << fromNewer.out;
    EXPECT_EQ(slurp(folder.path("older.vnf")), slurp(look));
}

// ---- info and mods ----------------------------------------------------------------------------

TEST(CliInfo, ReportsSizeOrientationCameraAndFailsOnMissingFiles)
{
    REQUIRE_PHOTO(photo, "panasonic_gf1_orientation6.jpg");
    const CliRun r = run({ "info", photo });
    ASSERT_EQ(r.status, kCliOk) << r.err;
    EXPECT_NE(r.out.find("size: 640 x 428"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("orientation: 6"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("Panasonic"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("bits per component: 8"), std::string::npos) << r.out;
    const CliRun missing = run({ "info", photo, "/nonexistent/x.jpg" });
    EXPECT_EQ(missing.status, kCliSomeFailed);
    EXPECT_NE(missing.err.find("/nonexistent/x.jpg"), std::string::npos);
}

TEST(CliMods, ListsEveryCatalogueEntryOnce)
{
    const CliRun r = run({ "mods" });
    ASSERT_EQ(r.status, kCliOk);
    const ModCatalogueContents c = buildModCatalogue();
    EXPECT_EQ(static_cast<size_t>(std::count(r.out.begin(), r.out.end(), '\n')), c.mods.size() + 1);
    EXPECT_NE(r.out.find("\nSaturation\tSaturation\tBasics\t"), std::string::npos) << r.out.substr(0, 400);
}

// ---- memory gate ------------------------------------------------------------------------------

TEST(CliMemory, GateHoldsBackWhatDoesNotFitAndAdmitsOversizeAlone)
{
    CliMemoryGate gate(100);
    gate.acquire(60);
    std::atomic<bool> admitted { false };
    std::thread second([&] {
        gate.acquire(60);
        admitted = true;
        gate.release(60);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(admitted.load());
    gate.release(60);
    second.join();
    EXPECT_TRUE(admitted.load());
    // Larger than the whole budget: runs when nothing else does.
    gate.acquire(500);
    gate.release(500);
    EXPECT_EQ(gate.peakReserved(), 500u);
    EXPECT_EQ(estimateRenderBytes(6000, 4000), 6000ull * 4000ull * 64ull);
    EXPECT_GE(defaultMemoryBudget(), 256ull << 20);
}
