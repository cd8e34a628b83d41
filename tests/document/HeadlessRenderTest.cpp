#include "document/core/GeometryResampling.h"
#include "document/core/HeadlessRender.h"

#include "RunnerTestMods.h"
#include "core/GrowingArray.h"
#include "mods/ImageModBorderGeometry.h"
#include "mods/ImageModConstrainSize.h"
#include "mods/ImageModCrop.h"
#include "mods/ImageModExactSize.h"
#include "mods/ImageModSize2.h"

#include <gtest/gtest.h>

namespace {

// Records the size of the image it is applied to.
class SizeProbe : public ImageMod {
public:
    SizeProbe() : ImageMod("Size Probe", "") {}
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<SizeProbe>(); }
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override
    {
        seen() = {image->width, image->scale, context && context->referenceFrame};
    }
    struct Seen {
        int width = 0;
        float scale = 0.0f;
        bool frame = true;
    };
    static Seen& seen()
    {
        static Seen s;
        return s;
    }
};

// A border that adds a fixed band on every side and paints it, drawing the picture inside.
class BandBorder : public ImageMod, public ImageModBorderGeometry {
public:
    BandBorder() : ImageMod("Band Border", "") { appendGrowing(tags, kTagBorder); }
    int32_t kind() const override { return 1; }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<BandBorder>(); }
    void adjustGeometry(double& width, double& height, float&) override
    {
        width += 2 * band;
        height += 2 * band;
    }
    bool drawSource(const FlexImageFloat& source, const CropFractions*, FlexImageFloat& destination, int32_t width,
                    int32_t height, float) override
    {
        drawnWidth = width;
        drawnHeight = height;
        destination.resize(width, height, -1);
        for (int64_t i = 0; i < destination.sampleCount(); ++i)
            destination.data[i] = 250.0f;
        for (int32_t y = band; y < height - band && y - band < source.height; ++y)
            for (int32_t x = band; x < width - band && x - band < source.width; ++x)
                for (int32_t c = 0; c < 3; ++c)
                    destination.row(y)[x * destination.channels + c] =
                        source.row(y - band)[(x - band) * source.channels + c];
        return true;
    }
    int32_t band = 10;
    int32_t drawnWidth = 0;
    int32_t drawnHeight = 0;
};

FlexImageFloat* makeSource(int32_t w, int32_t h, int32_t ch = 3)
{
    auto* img = new FlexImageFloat(w, h, ch);
    for (int64_t i = 0; i < img->sampleCount(); ++i)
        img->data[i] = 100.0f;
    return img;
}

} // namespace

TEST(HeadlessRender, SizeTileThenEveryTileOnTheWholeImage)
{
    std::unique_ptr<FlexImageFloat> source(makeSource(3000, 2000));
    ImageModConstrainSize size;
    size.variableAt(2)->setFloatValue(1000.0f);
    TestCountMod add(0, 20.0f);
    SizeProbe probe;
    // The size tile sorts last in a tray; it still acts first.
    std::vector<ImageMod*> list{&add, &probe, &size};
    int32_t w, h;
    fullOutputSize(3000, 2000, list, w, h);
    EXPECT_EQ(w, 1000);
    EXPECT_EQ(h, 667);

    FlexImageFloat out(0, 0, 3);
    ASSERT_TRUE(renderFullSize(*source, list, out));
    EXPECT_EQ(out.width, 1000);
    EXPECT_EQ(out.height, 667);
    EXPECT_EQ(SizeProbe::seen().width, 1000);
    EXPECT_FALSE(SizeProbe::seen().frame);
    EXPECT_FLOAT_EQ(SizeProbe::seen().scale, 3.0f);
    EXPECT_NEAR(out.data[3 * (300 * 1000 + 500)], 120.0f, 1e-3);
    // The caller's tiles are untouched.
    EXPECT_EQ(add.floatValue(0), 20.0f);
}

TEST(HeadlessRender, GivenSizeOverridesAndChannelsFollowTheSource)
{
    std::unique_ptr<FlexImageFloat> source(makeSource(400, 300, 4));
    for (int32_t i = 0; i < 400 * 300; ++i)
        source->data[i * 4 + 3] = 128.0f;
    ImageModExactSize exact;
    std::vector<ImageMod*> list{&exact};
    FlexImageFloat out(0, 0, 3);
    ASSERT_TRUE(renderFullSize(*source, list, out, 200, 150));
    EXPECT_EQ(out.width, 200);
    EXPECT_EQ(out.height, 150);
    EXPECT_EQ(out.channels, 4);
    EXPECT_FLOAT_EQ(out.data[4 * 500 + 3], 128.0f);
    EXPECT_FLOAT_EQ(out.scale, 2.0f);
}

TEST(HeadlessRender, CropActsBeforeTheTilesWhereverItStands)
{
    std::unique_ptr<FlexImageFloat> source(makeSource(1000, 800));
    for (int32_t y = 0; y < 800; ++y)
        for (int32_t x = 0; x < 1000; ++x)
            source->row(y)[x * 3] = float(x) * 0.25f;
    ImageModCrop crop;
    crop.variableAt(1)->setFloatValue(0.5f);   // cut the left half
    SizeProbe probe;
    std::vector<ImageMod*> list{&probe, &crop};
    FlexImageFloat out(0, 0, 3);
    ASSERT_TRUE(renderFullSize(*source, list, out));
    EXPECT_EQ(out.width, 500);
    EXPECT_EQ(out.height, 800);
    EXPECT_EQ(SizeProbe::seen().width, 500);
    EXPECT_FLOAT_EQ(out.row(10)[0], 125.0f);
    EXPECT_FLOAT_EQ(out.row(10)[499 * 3], 249.75f);
    // The working scale is the source width over the result's width.
    EXPECT_FLOAT_EQ(out.scale, 2.0f);
}

TEST(HeadlessRender, NothingLeftIsAFailure)
{
    std::unique_ptr<FlexImageFloat> source(makeSource(100, 100));
    ImageModCrop crop;
    crop.variableAt(1)->setFloatValue(0.7f);
    crop.variableAt(2)->setFloatValue(0.6f);
    std::vector<ImageMod*> list{&crop};
    FlexImageFloat out(0, 0, 3);
    EXPECT_FALSE(renderFullSize(*source, list, out));
    FlexImageFloat empty(0, 0, 3);
    EXPECT_FALSE(renderFullSize(empty, {}, out));
    EXPECT_EQ(out.data, nullptr);
}

TEST(GeometryResampling, ScreenBoundFitsAndCountsAsChanged)
{
    std::unique_ptr<FlexImageFloat> source(makeSource(3000, 2000));
    source->scale = 1.0f;
    FlexImageFloat dst(0, 0, 3);
    bool changed = false;
    ASSERT_TRUE(geometryResample(*source, dst, {}, 800, 600, false, &changed));
    EXPECT_EQ(dst.width, 800);
    EXPECT_EQ(dst.height, 533);
    EXPECT_TRUE(changed);
    EXPECT_FLOAT_EQ(dst.scale, 3.75f);

    // A bound larger than the picture doesn't enlarge it.
    ASSERT_TRUE(geometryResample(*source, dst, {}, 4000, 4000, false, &changed));
    EXPECT_EQ(dst.width, 3000);
    EXPECT_FALSE(changed);
    EXPECT_FLOAT_EQ(dst.scale, 1.0f);

    // Exact: the target is the size, and a destination that had to change size counts.
    ASSERT_TRUE(geometryResample(*source, dst, {}, 300, 300, true, &changed));
    EXPECT_EQ(dst.width, 300);
    EXPECT_EQ(dst.height, 300);
    EXPECT_TRUE(changed);
    ASSERT_TRUE(geometryResample(*source, dst, {}, 300, 300, true, &changed));
    EXPECT_FALSE(changed);
}

TEST(GeometryResampling, BorderSlotsReplaceTheResampler)
{
    std::unique_ptr<FlexImageFloat> source(makeSource(60, 40));
    BandBorder border;
    std::vector<ImageMod*> list{&border};
    FlexImageFloat dst(0, 0, 3);
    ASSERT_TRUE(geometryResample(*source, dst, list, 0, 0, true));
    EXPECT_EQ(border.drawnWidth, 80);
    EXPECT_EQ(border.drawnHeight, 60);
    EXPECT_EQ(dst.width, 80);
    EXPECT_EQ(dst.row(0)[0], 250.0f);
    EXPECT_EQ(dst.row(30)[40 * 3], 100.0f);

    // Disabled, it is neither asked nor drawn.
    border.enabled = false;
    border.drawnWidth = 0;
    ASSERT_TRUE(geometryResample(*source, dst, list, 0, 0, true));
    EXPECT_EQ(border.drawnWidth, 0);
    EXPECT_EQ(dst.width, 60);
}

namespace {

// A 4-channel picture whose samples all differ, with a translucent corner, a margin and a scale,
// so a render that drops or shifts anything shows.
FlexImageFloat* makeVariedSource(int32_t w, int32_t h)
{
    auto* img = new FlexImageFloat(w, h, 4);
    for (int64_t i = 0; i < img->sampleCount(); ++i)
        img->data[i] = float((i * 37) % 251) + 0.25f;
    img->row(0)[3] = 17.0f;
    img->scale = 1.5f;
    img->marginLeft = 3;
    return img;
}

void expectSameImage(const FlexImageFloat& a, const FlexImageFloat& b)
{
    ASSERT_EQ(a.width, b.width);
    ASSERT_EQ(a.height, b.height);
    ASSERT_EQ(a.channels, b.channels);
    EXPECT_EQ(a.colorChannels, b.colorChannels);
    EXPECT_EQ(a.marginLeft, b.marginLeft);
    EXPECT_FLOAT_EQ(a.scale, b.scale);
    int64_t differing = 0;
    for (int64_t i = 0; i < a.sampleCount(); ++i)
        differing += a.data[i] != b.data[i];
    EXPECT_EQ(differing, 0);
}

} // namespace

TEST(HeadlessRender, TakingTheSourceGivesTheSamePixelsWithoutACopy)
{
    std::unique_ptr<FlexImageFloat> kept(makeVariedSource(301, 203));
    std::unique_ptr<FlexImageFloat> taken(makeVariedSource(301, 203));
    TestCountMod add(0, 20.0f);
    std::vector<ImageMod*> list{&add};
    EXPECT_TRUE(geometryIsPlainCopy(*taken, list, 0, 0, true));

    FlexImageFloat expected(1, 1, 3);
    ASSERT_TRUE(renderFullSize(*kept, list, expected));
    FlexImageFloat out(1, 1, 3);
    const float* buffer = taken->data;
    ASSERT_TRUE(renderFullSizeTaking(*taken, list, out));
    expectSameImage(out, expected);
    // The source's own buffer was rendered, and the source let go of it.
    EXPECT_EQ(out.data, buffer);
    EXPECT_EQ(taken->data, nullptr);
    EXPECT_TRUE(taken->isEmpty());

    // The same size asked for explicitly is still a plain copy.
    std::unique_ptr<FlexImageFloat> again(makeVariedSource(301, 203));
    FlexImageFloat sized(1, 1, 3);
    ASSERT_TRUE(renderFullSizeTaking(*again, list, sized, 301, 203));
    expectSameImage(sized, expected);
    EXPECT_EQ(again->data, nullptr);
}

TEST(HeadlessRender, TakingKeepsTheSourceWhenTheGeometryChangesIt)
{
    ImageModConstrainSize size;
    size.variableAt(2)->setFloatValue(100.0f);
    ImageModCrop crop;
    crop.variableAt(1)->setFloatValue(0.25f);
    BandBorder border;
    TestCountMod add(0, 5.0f);
    const std::vector<std::vector<ImageMod*>> lists{ { &size, &add }, { &crop, &add }, { &border, &add } };
    for (const std::vector<ImageMod*>& list : lists) {
        std::unique_ptr<FlexImageFloat> kept(makeVariedSource(120, 90));
        std::unique_ptr<FlexImageFloat> taken(makeVariedSource(120, 90));
        EXPECT_FALSE(geometryIsPlainCopy(*taken, list, 0, 0, true));
        FlexImageFloat expected(1, 1, 3);
        ASSERT_TRUE(renderFullSize(*kept, list, expected));
        FlexImageFloat out(1, 1, 3);
        ASSERT_TRUE(renderFullSizeTaking(*taken, list, out));
        expectSameImage(out, expected);
        ASSERT_NE(taken->data, nullptr);
        EXPECT_EQ(taken->width, 120);
        EXPECT_EQ(taken->data[5], kept->data[5]);
    }
    // A different output size is a resample too; bad input fails and leaves the source.
    std::unique_ptr<FlexImageFloat> source(makeVariedSource(120, 90));
    EXPECT_FALSE(geometryIsPlainCopy(*source, {}, 60, 45, true));
    FlexImageFloat out(1, 1, 3);
    ASSERT_TRUE(renderFullSizeTaking(*source, {}, out, 60, 45));
    EXPECT_EQ(out.width, 60);
    EXPECT_NE(source->data, nullptr);
    EXPECT_FALSE(renderFullSizeTaking(out, {}, out));
    FlexImageFloat empty(0, 0, 3);
    EXPECT_FALSE(renderFullSizeTaking(empty, {}, out));
    EXPECT_FALSE(geometryIsPlainCopy(empty, {}, 0, 0, true));
}
