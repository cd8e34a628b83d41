#include "core/FlexImage.h"
#include "core/ImageModApplyContext.h"
#include "core/ModCatalogue.h"
#include "filters/FilterArchive.h"
#include "filters/FilterFile.h"
#include "mods/GeometryCalculation.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#if defined(VANTREL_PRESET_ARCHIVE) && defined(VANTREL_PRESET_SOURCE) && defined(VANTREL_LEGACY_ARCHIVE)

namespace {

// A colourful ramp: every channel moves across the image, with shadows, mid tones and highlights.
void fillTestImage(FlexImageFloat& img)
{
    img.resize(48, 32, 3);
    for (int32_t y = 0; y < img.height; ++y) {
        float* p = img.row(y);
        for (int32_t x = 0; x < img.width; ++x, p += 3) {
            p[0] = 255.0f * float(x) / float(img.width - 1);
            p[1] = 255.0f * float(y) / float(img.height - 1);
            p[2] = 255.0f * float((x + 2 * y) % 17) / 16.0f;
        }
    }
}

float largestChange(const FlexImageFloat& a, const FlexImageFloat& b)
{
    float worst = 0.0f;
    for (int64_t i = 0; i < a.sampleCount(); ++i)
        worst = std::fmax(worst, std::fabs(a.data[i] - b.data[i]));
    return worst;
}

bool allFinite(const FlexImageFloat& img)
{
    for (int64_t i = 0; i < img.sampleCount(); ++i) {
        if (!std::isfinite(img.data[i]))
            return false;
    }
    return true;
}

QStringList filesBelow(const QString& root)
{
    QStringList out;
    QDirIterator it(root, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        out << QDir(root).relativeFilePath(it.next());
    out.sort();
    return out;
}

QByteArray bytesOf(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Applies the enabled tiles in order; borders act in the geometry step, so they may be left out.
void applyLook(const ModList& mods, FlexImageFloat& img, bool skipBorders)
{
    ReferenceFrame frame;
    frame.imageWidth = img.width;
    frame.imageHeight = img.height;
    ImageModApplyContext ctx;
    ctx.referenceFrame = &frame;
    for (const auto& mod : mods) {
        if (mod->enabled && !(skipBorders && mod->kind() == 1))
            mod->apply(&img, &ctx);
    }
}

} // namespace

TEST(DefaultPresets, EveryPresetUnpacksIntoItsGroupLoadsAndChangesAPhoto)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    ASSERT_EQ(extractArchive(VANTREL_PRESET_ARCHIVE, dir.path().toStdString()), kArchiveOk);
    const QStringList source = filesBelow(VANTREL_PRESET_SOURCE);
    ASSERT_GE(source.size(), 12);
    EXPECT_EQ(filesBelow(dir.path()), source); // no inner archive left behind, every file in its group
    for (const QString& rel : source)
        EXPECT_EQ(bytesOf(dir.filePath(rel)), bytesOf(QString(VANTREL_PRESET_SOURCE) + "/" + rel)) << rel.toStdString();
    EXPECT_GE(QDir(dir.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 4);

    ASSERT_EQ(extractArchive(VANTREL_LEGACY_ARCHIVE, dir.filePath("legacy").toStdString()), kArchiveOk);
    const ModCatalogueContents catalogue = buildModCatalogue();

    FlexImageFloat original;
    fillTestImage(original);
    const QStringList files = filesBelow(dir.path());
    ASSERT_FALSE(files.isEmpty());
    for (const QString& rel : files) {
        SCOPED_TRACE(rel.toStdString());
        int32_t status = -1;
        ModList mods = readFilter(dir.filePath(rel).toStdString(), catalogue.mods, status);
        EXPECT_EQ(status, kFilterReadOk);
        ASSERT_FALSE(mods.empty());

        // The legacy archive holds exactly one tile per file, named by its kind.
        if (rel.startsWith("legacy/")) {
            EXPECT_TRUE(rel.startsWith("legacy/Adjustment ") || rel.startsWith("legacy/Camera ")
                || rel.startsWith("legacy/Border "));
            EXPECT_EQ(mods.size(), 1u);
        }
        // A border acts in the geometry step, not in apply: it must widen the picture or keep its
        // size (a frame laid over the photo, whose picture needs the application's decoder).
        if (mods.size() == 1 && mods[0]->kind() == 1) {
            std::vector<ImageMod*> list { mods[0].get() };
            const GeometryResult g = computeGeometry(original.width, original.height, list);
            EXPECT_GE(g.width, original.width);
            EXPECT_GE(g.height, original.height);
            continue;
        }
        FlexImageFloat img;
        img.copyFrom(original, true);
        applyLook(mods, img, false);
        EXPECT_TRUE(allFinite(img));
        // A look that moves no sample by at least two levels is no look.
        EXPECT_GT(largestChange(img, original), 2.0f);
    }
}

// Skin, sky, foliage and grey: whatever a look does, these mid tones must stay readable. A
// look that crushes a face to black or burns a sky to white is broken, however stylish.
TEST(DefaultPresets, EveryPresetKeepsMidTonesReadable)
{
    struct Patch {
        const char* what;
        float rgb[3];
    };
    const Patch patches[] = {
        { "skin", { 205.0f, 150.0f, 125.0f } },
        { "sky", { 105.0f, 155.0f, 215.0f } },
        { "foliage", { 70.0f, 115.0f, 55.0f } },
        { "grey", { 128.0f, 128.0f, 128.0f } },
    };
    const ModCatalogueContents catalogue = buildModCatalogue();
    const QStringList files = filesBelow(VANTREL_PRESET_SOURCE);
    ASSERT_FALSE(files.isEmpty());
    for (const QString& rel : files) {
        int32_t status = -1;
        ModList mods = readFilter(QString(VANTREL_PRESET_SOURCE "/" + rel).toStdString(), catalogue.mods, status);
        ASSERT_EQ(status, kFilterReadOk) << rel.toStdString();
        for (const Patch& patch : patches) {
            SCOPED_TRACE(rel.toStdString() + " on " + patch.what);
            FlexImageFloat img;
            img.resize(96, 64, 3);
            for (int32_t y = 0; y < img.height; ++y) {
                float* p = img.row(y);
                for (int32_t x = 0; x < img.width; ++x, p += 3)
                    std::copy(patch.rgb, patch.rgb + 3, p);
            }
            applyLook(mods, img, true);
            // The mean of a block in the middle: grain averages out, a vignette hardly reaches.
            double sum[3] = { 0.0, 0.0, 0.0 };
            for (int32_t y = 24; y < 40; ++y) {
                const float* p = img.row(y) + 40 * 3;
                for (int32_t x = 0; x < 16; ++x, p += 3) {
                    for (int c = 0; c < 3; ++c)
                        sum[c] += p[c];
                }
            }
            const double r = sum[0] / 256.0, g = sum[1] / 256.0, b = sum[2] / 256.0;
            const double luma = 0.299 * r + 0.587 * g + 0.114 * b;
            EXPECT_GT(luma, 30.0);
            EXPECT_LT(luma, 225.0);
            for (double v : { r, g, b }) {
                EXPECT_GE(v, 1.0);
                EXPECT_LE(v, 254.0);
            }
        }
    }
}

#endif
